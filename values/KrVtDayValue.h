#pragma once
// The day value behind dates, times and date-times: one double whose
// magnitude holds the Julian Day Number (day starting at midnight) plus the
// time of day as a fraction, whose sign bit marks universal time, NaN the
// unset value and +infinity the open end. These functions are the whole
// model; the value classes and their text forms apply them to their field.

#include <cstdint>
#include <ctime>

#include "krerrorstatus.h"
#include "krexport.h"

namespace KrVtDay {

constexpr double kUnixEpochDay = 2440588.0;  // 1970-01-01
constexpr double kSecondsPerDay = 86400.0;
constexpr long kMillisecondsPerDay = 86400000;
constexpr short kFirstYear = -4713;

// The unset value, stored as the negative quiet NaN 0xFFF8000000000000.
KR1ST_API double unset();
inline bool isUnset(double v) { return v != v; }
// The sign bit: -0.0 and the unset value count as universal.
KR1ST_API bool isUniversal(double v);

// Gregorian leap year, also before 1582 and for negative years.
KR1ST_API bool isLeapYear(int year);
// Days in month 1..12 of year.
KR1ST_API int daysInMonth(int year, int month);

// Julian Day Number of a Gregorian date, and the date of a day number, by
// Fliegel and Van Flandern's integer algorithm (divisions truncate).
KR1ST_API long dayNumberOfDate(long year, long month, long day);
KR1ST_API void dateOfDayNumber(long dayNumber, short& year, short& month, short& day);

// The date of v; the unset value gives 0, 0, 0 and eNotSupported.
KR1ST_API Kesu::ErrorStatus getDate(double v, short& year, short& month, short& day);
// Replaces the day number and keeps the time of day and the sign; an unset
// value stays unset (status 0). eInvalidInput for a year below -4713 or a
// month or day outside the calendar.
KR1ST_API Kesu::ErrorStatus setDate(double& v, short year, short month, short day);
// The time of day, from the fraction rounded to milliseconds (hour 24 when it
// rounds up to a whole day); the unset value gives zeros and eNotSupported.
KR1ST_API Kesu::ErrorStatus getTime(double v, short& hour, short& minute, short& second, short& millisecond);
// Replaces the time of day and keeps the day number and the sign; an unset
// value stays unset. eInvalidInput unless hour 0..23, minute and second
// 0..59, millisecond 0..9999.
KR1ST_API Kesu::ErrorStatus setTime(double& v, short hour, short minute, short second, short millisecond);
// The fraction of v rounded to whole milliseconds (0 when unset).
KR1ST_API long millisecondsOfDay(double v);

// Seconds since 1970-01-01 00:00 UTC as a universal value, and back; model
// time (and whatever does not fit) converts to the smallest 64-bit integer.
KR1ST_API double fromSeconds(int64_t seconds);
KR1ST_API int64_t toSeconds(double v);
// The calendar form of the C library; see the class header for the rules.
KR1ST_API double fromTm(const tm& t);
KR1ST_API tm toTm(double v);

// The offsets are applied exactly as defined: minutes as a fraction of a
// day, hours as hours x 3600 day units. False (v unchanged) unless v is of
// the kind being converted from.
KR1ST_API bool modelToUniversal(double& v, short hours, short minutes);
KR1ST_API bool universalToModel(double& v, short hours, short minutes);

// Differences and shifts; a result that is not defined is the unset value.
KR1ST_API double difference(double a, double b);
KR1ST_API double addDays(double v, double days);
KR1ST_API double scaled(double v, double factor);
KR1ST_API double divided(double v, double factor);

}  // namespace KrVtDay
