#pragma once
/// @file
/// Dates, times and date-times. Each is a KrVtFloat64 holding one day value:
/// the magnitude is the Julian Day Number (day 2,440,588 is 1970-01-01, days
/// start at midnight) plus the time of day as a fraction, the sign bit marks
/// universal time (clear: the drawing's model time), NaN is the unset value
/// and +infinity the open end. The calendar is Gregorian for all years.
///
/// @code
///   KrVtDate day;
///   day.setDate(2023, 5, 17);                  // model time
///   wchar_t* text = nullptr;
///   krrxFormatObject(&day, text, nullptr);     // L"2023-05-17"
///   free(text);
///   KrVtDateTime now;
///   now.getUniversalTime();                    // universal, from the system clock
///
/// @endcode
/// KrVtDate, KrVtTime and KrVtDateTime differ only in their text forms (see
/// their formattables below).

#include <ctime>

#include "krrfarray.h"
#include "krrfvalue.h"
#include "krrxformattable.h"

/// A day value: Julian Day Number and time of day in one double (see above).
class KR1ST_API KrVtDaytime : public KrRfValueT<double> {
  KRRX_DECLARE_MEMBERS(KrVtDaytime);

 public:
  /// Day 0, model time.
  KrVtDaytime() = default;
  /// Stores the day value unchanged.
  KrVtDaytime(double dayValue) : KrRfValueT<double>(dayValue) {}
  /// Seconds since 1970-01-01 00:00 UTC; always universal.
  explicit KrVtDaytime(__int64 secondsSince1970);
  /// Sets date and time from t and negates when tm_isdst is 0; since the
  /// value starts unset and setDate keeps it unset, the result is unset.
  explicit KrVtDaytime(const tm& t);
  KrVtDaytime(const KrVtDaytime& other) = default;  ///< copies the day value
  KrVtDaytime(KrVtDaytime&& other) = default;  ///< copies the day value
  KrVtDaytime& operator=(const KrVtDaytime& other) = default;  ///< copies the day value
  KrVtDaytime& operator=(KrVtDaytime&& other) = default;  ///< copies the day value

  /// Seconds since 1970 rounded half away from zero; model time gives the smallest __int64.
  operator __int64() const;
  /// The same for a modifiable value, which would otherwise convert through its double.
  operator __int64() { return static_cast<const KrVtDaytime&>(*this); }
  /// Calendar parts: tm_wday is the C remainder of the signed day number by 7
  /// (0 on Mondays, zero or negative for universal values), tm_yday is 0,
  /// tm_isdst 1 for model time and 0 for universal time.
  operator tm() const;

  /// The date; an unset value gives 0, 0, 0 and eNotSupported.
  Kesu::ErrorStatus getDate(short& year, short& month, short& day) const;
  /// Replaces the date, keeping time of day and zone (an unset value stays
  /// unset, status eOk); eInvalidInput for a year below -4713 or a month or
  /// day outside the calendar.
  Kesu::ErrorStatus setDate(short year, short month, short day);
  /// The time of day rounded to milliseconds (hour 24 when it rounds up to a
  /// whole day); an unset value gives zeros and eNotSupported.
  Kesu::ErrorStatus getTime(short& hour, short& minute, short& second, short& millisecond) const;
  /// Replaces the time of day, keeping date and zone; eInvalidInput unless
  /// hour 0..23, minute and second 0..59 and millisecond 0..9,999.
  Kesu::ErrorStatus setTime(short hour, short minute, short second, short millisecond);

  /// True when the sign bit is set (also for -0.0 and the unset value).
  bool isUniversal() const;
  /// The current time from the system clock, universal.
  void getUniversalTime();
  /// For model time only (else false, unchanged): v := -(v - (minutes / 1440 + hours x 3600)).
  bool modelToUniversal(short hours, short minutes);
  /// For universal time only (else false, unchanged): v := minutes / 1440 + hours x 3600 - v.
  bool universalToModel(short hours, short minutes);

  /// |v - 0.5|: the magnitude less half a day in model time, plus half a day in universal time.
  double julianFraction() const;
  /// v := copysign(|j| + 0.5, j): the sign of j chooses the zone.
  void setJulianFraction(double j);
  /// Days since the rata die epoch: floor(|v| - 1,721,424).
  double rataDieFraction() const;
  /// Universal: v := -|r + 1,721,424|.
  void setRataDieFraction(double r);
  /// Days of the Lilian count: floor(|v| - 2,299,159).
  double lilianFraction() const;
  /// Universal: v := -|l + 2,299,159|.
  void setLilianFraction(double l);
};

/// Days between two values of the same zone (|a| - |b|); NaN across zones.
KR1ST_API double operator-(const KrVtDaytime& a, const KrVtDaytime& b);
/// Moves by days keeping the zone; unset when the magnitude would fall below 0.
///@{
KR1ST_API KrVtDaytime operator+(const KrVtDaytime& v, double days);
KR1ST_API KrVtDaytime operator+(double days, const KrVtDaytime& v);
///@}
/// Scales the magnitude keeping the zone; unset for a negative factor.
///@{
KR1ST_API KrVtDaytime operator*(const KrVtDaytime& v, double factor);
KR1ST_API KrVtDaytime operator/(const KrVtDaytime& v, double factor);
///@}

/// A date: written "2023-05-17", with a trailing Z in universal time.
class KR1ST_API KrVtDate : public KrVtDaytime {
  KRRX_DECLARE_MEMBERS(KrVtDate);

 public:
  using KrVtDaytime::KrVtDaytime;
};

/// A time of day: written "08:30", "08:30:05" or "08:30:05.250" (the shortest
/// that keeps every non-zero part), with a trailing Z in universal time.
class KR1ST_API KrVtTime : public KrVtDaytime {
  KRRX_DECLARE_MEMBERS(KrVtTime);

 public:
  using KrVtDaytime::KrVtDaytime;
};

/// A date and time: written "2023-05-17T08:30:05.250Z", with the Z in either zone.
class KR1ST_API KrVtDateTime : public KrVtDaytime {
  KRRX_DECLARE_MEMBERS(KrVtDateTime);

 public:
  using KrVtDaytime::KrVtDaytime;
};

static_assert(sizeof(KrVtDateTime) == sizeof(KrVtFloat64), "a day value adds no data");

/// The text forms, attached at start-up as the classes' formattables. All
/// write "*" for the unset value and U+221E for +infinity and read them back.
/// Reading a date or a time makes a fresh value of the numbers read: a Z or z
/// where a separator may stand ends the numbers there and makes the value
/// universal, and parts not read default to month and day 1, or to zero for a
/// time. Dates take any separator from space to slash; times ':' or space, and
/// '.', ',', '\'' or space before the fraction digits, which count by their
/// value (".5" and ".05" are 500 ms, four or more digits give 0). Reading a
/// date-time keeps the target's zone (and an unset target stays unset). Texts
/// that do not scan, a null text or an object of another class give
/// eInvalidInput.
class KR1ST_API KrVtDateFormattable : public KrRxFormattablePE {
  KRRX_DECLARE_MEMBERS(KrVtDateFormattable);

 public:
  Kesu::ErrorStatus toText(const KrRxObject* object, wchar_t*& text, const KrRxFormatContext* context) override;
  Kesu::ErrorStatus fromText(KrRxObject* object, const wchar_t* text, const KrRxFormatContext* context) override;
};

/// The text form of KrVtTime.
class KR1ST_API KrVtTimeFormattable : public KrRxFormattablePE {
  KRRX_DECLARE_MEMBERS(KrVtTimeFormattable);

 public:
  Kesu::ErrorStatus toText(const KrRxObject* object, wchar_t*& text, const KrRxFormatContext* context) override;
  Kesu::ErrorStatus fromText(KrRxObject* object, const wchar_t* text, const KrRxFormatContext* context) override;
};

/// The text form of KrVtDateTime.
class KR1ST_API KrVtDateTimeFormattable : public KrRxFormattablePE {
  KRRX_DECLARE_MEMBERS(KrVtDateTimeFormattable);

 public:
  Kesu::ErrorStatus toText(const KrRxObject* object, wchar_t*& text, const KrRxFormatContext* context) override;
  Kesu::ErrorStatus fromText(KrRxObject* object, const wchar_t* text, const KrRxFormatContext* context) override;
};

/// A growable array of day values.
typedef KrRfValueArrayT<double, KrVtDaytime> KrVtDateTimeArray;
template <>
inline const wchar_t* KrVtDateTimeArray::className() { return L"KrVtDateTimeArray"; }
template <>
inline const wchar_t* KrVtDateTimeArray::parentName() { return L"KrVtFloat64Array"; }
