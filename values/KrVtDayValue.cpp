#include "values/KrVtDayValue.h"

#include <climits>
#include <cmath>
#include <cstring>

namespace KrVtDay {

namespace {

// The integer part of a double as the platform's 32-bit conversion gives it:
// the smallest int for whatever does not fit (infinities, NaN).
long truncatedToLong(double x) {
  return x > -2147483649.0 && x < 2147483648.0 ? static_cast<long>(x) : LONG_MIN;
}

// The same for 64 bits.
int64_t truncatedToInt64(double x) {
  return x >= -9223372036854775808.0 && x < 9223372036854775808.0 ? static_cast<int64_t>(x) : INT64_MIN;
}

long dayNumberOf(double v) { return truncatedToLong(std::fabs(v)); }

// Day number (integer part) and time of day (fraction) of the magnitude; both
// NaN for the unset value, infinity and 0 for infinity.
double dayPart(double v) { return std::floor(std::fabs(v)); }
double fractionPart(double v) {
  double whole;
  return std::modf(std::fabs(v), &whole);
}

}  // namespace

double unset() {
  const uint64_t bits = 0xFFF8000000000000ull;
  double v;
  memcpy(&v, &bits, sizeof v);
  return v;
}

bool isUniversal(double v) { return std::signbit(v); }

bool isLeapYear(int year) { return (year % 4 == 0 && year % 100 != 0) || year % 400 == 0; }

int daysInMonth(int year, int month) {
  static const int kDays[2][12] = {{31, 28, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31},
                                   {31, 29, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31}};
  return kDays[isLeapYear(year)][month - 1];
}

long dayNumberOfDate(long year, long month, long day) {
  long a = (month - 14) / 12;
  return day - 32075 + 1461 * (year + 4800 + a) / 4 + 367 * (month - 2 - 12 * a) / 12 -
         3 * ((year + 4900 + a) / 100) / 4;
}

void dateOfDayNumber(long dayNumber, short& year, short& month, short& day) {
  // 64-bit steps, so that day numbers far outside the calendar do not overflow.
  int64_t l = int64_t(dayNumber) + 68569;
  int64_t n = 4 * l / 146097;
  l = l - (146097 * n + 3) / 4;
  int64_t i = 4000 * (l + 1) / 1461001;
  l = l - 1461 * i / 4 + 31;
  int64_t k = 80 * l / 2447;
  day = static_cast<short>(l - 2447 * k / 80);
  l = k / 11;
  month = static_cast<short>(k + 2 - 12 * l);
  year = static_cast<short>(100 * (n - 49) + i + l);
}

Kesu::ErrorStatus getDate(double v, short& year, short& month, short& day) {
  if (isUnset(v)) {
    year = month = day = 0;
    return Kesu::eNotSupported;
  }
  dateOfDayNumber(dayNumberOf(v), year, month, day);
  return Kesu::eOk;
}

Kesu::ErrorStatus setDate(double& v, short year, short month, short day) {
  if (year < kFirstYear || month < 1 || month > 12 || day < 1 || day > daysInMonth(year, month))
    return Kesu::eInvalidInput;
  v = std::copysign(double(dayNumberOfDate(year, month, day)) + fractionPart(v), v);
  return Kesu::eOk;
}

long millisecondsOfDay(double v) {
  return isUnset(v) ? 0 : std::lround(fractionPart(v) * double(kMillisecondsPerDay));
}

Kesu::ErrorStatus getTime(double v, short& hour, short& minute, short& second, short& millisecond) {
  long ms = millisecondsOfDay(v);
  hour = static_cast<short>(ms / 3600000);
  minute = static_cast<short>(ms / 60000 % 60);
  second = static_cast<short>(ms / 1000 % 60);
  millisecond = static_cast<short>(ms % 1000);
  return isUnset(v) ? Kesu::eNotSupported : Kesu::eOk;
}

Kesu::ErrorStatus setTime(double& v, short hour, short minute, short second, short millisecond) {
  if (hour < 0 || hour > 23 || minute < 0 || minute > 59 || second < 0 || second > 59 || millisecond < 0 ||
      millisecond > 9999)
    return Kesu::eInvalidInput;
  long ms = ((hour * 60L + minute) * 60 + second) * 1000 + millisecond;
  v = std::copysign(ms / 86400.0 / 1000.0 + dayPart(v), v);
  return Kesu::eOk;
}

double fromSeconds(int64_t seconds) { return -std::fabs(double(seconds) / kSecondsPerDay + kUnixEpochDay); }

int64_t toSeconds(double v) {
  if (!isUniversal(v)) return INT64_MIN;
  return truncatedToInt64(std::round((std::fabs(v) - kUnixEpochDay) * kSecondsPerDay));
}

double fromTm(const tm& t) {
  double v = unset();
  if (setDate(v, short(1900 + t.tm_year), short(t.tm_mon + 1), short(t.tm_mday)) != Kesu::eOk) return v;
  if (setTime(v, short(t.tm_hour), short(t.tm_min), short(t.tm_sec), 0) != Kesu::eOk) return v;
  return t.tm_isdst == 0 ? -v : v;
}

tm toTm(double v) {
  tm t = {};
  long ms = millisecondsOfDay(v);
  t.tm_hour = int(ms / 3600000);
  t.tm_min = int(ms / 60000 % 60);
  t.tm_sec = int(ms / 1000 % 60);
  short year, month, day;
  getDate(v, year, month, day);
  t.tm_mday = day;
  t.tm_mon = month - 1;
  t.tm_year = year - 1900;
  // Of the signed value, so universal days give zero or negative weekdays.
  t.tm_wday = int(truncatedToLong(v) % 7);
  t.tm_yday = 0;
  t.tm_isdst = isUniversal(v) ? 0 : 1;
  return t;
}

bool modelToUniversal(double& v, short hours, short minutes) {
  if (isUniversal(v)) return false;
  v = -(v - (minutes * 60 / 86400.0 + hours * 3600));
  return true;
}

bool universalToModel(double& v, short hours, short minutes) {
  if (!isUniversal(v)) return false;
  v = minutes * 60 / 86400.0 + hours * 3600 - v;
  return true;
}

double difference(double a, double b) {
  return isUniversal(a) == isUniversal(b) ? std::fabs(a) - std::fabs(b) : unset();
}

double addDays(double v, double days) {
  double x = std::fabs(v) + days;
  return x < 0 ? unset() : std::copysign(x, v);
}

double scaled(double v, double factor) { return factor < 0 ? unset() : std::copysign(std::fabs(v) * factor, v); }

double divided(double v, double factor) { return factor < 0 ? unset() : std::copysign(std::fabs(v) / factor, v); }

}  // namespace KrVtDay
