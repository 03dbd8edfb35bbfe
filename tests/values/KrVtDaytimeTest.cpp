// The day value: calendar, time of day, universal flag, conversions and
// arithmetic.

#include <gtest/gtest.h>

#include <cmath>
#include <cstdio>
#include <cstring>
#include <string>

#include "values/KrVtDayValue.h"

namespace {

using namespace KrVtDay;

struct Ymd {
  int year, month, day;
};

// An independent proleptic Gregorian calendar walk: one day at a time, with
// its own month lengths and leap rule.
class CalendarWalk {
 public:
  explicit CalendarWalk(Ymd start) : mDate(start) {}
  const Ymd& date() const { return mDate; }
  void next() {
    if (mDate.day < monthLength()) {
      ++mDate.day;
    } else if (mDate.month < 12) {
      ++mDate.month;
      mDate.day = 1;
    } else {
      ++mDate.year;
      mDate.month = mDate.day = 1;
    }
  }

 private:
  int monthLength() const {
    if (mDate.month == 2) {
      bool leap = mDate.year % 400 == 0 || (mDate.year % 100 != 0 && mDate.year % 4 == 0);
      return leap ? 29 : 28;
    }
    return mDate.month == 4 || mDate.month == 6 || mDate.month == 9 || mDate.month == 11 ? 30 : 31;
  }
  Ymd mDate;
};

uint64_t bitsOf(double v) {
  uint64_t bits;
  memcpy(&bits, &v, sizeof bits);
  return bits;
}

Ymd dateOf(double v) {
  short y = -1, m = -1, d = -1;
  EXPECT_EQ(getDate(v, y, m, d), Kesu::eOk);
  return {y, m, d};
}

double dayOf(short y, short m, short d, double start = 0.0) {
  double v = start;
  EXPECT_EQ(setDate(v, y, m, d), Kesu::eOk);
  return v;
}

TEST(KrVtDayValue, AgreesWithAnIndependentCalendarOnEveryDayFromMinus4713To9999) {
  // Day 0 of the count is -4713-11-24; January 1st of that year lies 327 days before.
  CalendarWalk walk({-4713, 1, 1});
  long reference = -327;
  long mismatches = 0;
  for (; walk.date().year <= 9999; walk.next(), ++reference) {
    const Ymd& date = walk.date();
    long j = dayNumberOfDate(date.year, date.month, date.day);
    short y, m, d;
    dateOfDayNumber(reference, y, m, d);
    bool same = j == reference && y == date.year && m == date.month && d == date.day;
    if (reference >= 0) {
      // Through the value, in both time kinds, with the time of day kept.
      double model = 0.75, universal = -0.25;
      setDate(model, short(date.year), short(date.month), short(date.day));
      setDate(universal, short(date.year), short(date.month), short(date.day));
      short my, mm, md, uy, um, ud;
      getDate(model, my, mm, md);
      getDate(universal, uy, um, ud);
      same = same && model == reference + 0.75 && universal == -(reference + 0.25) && my == date.year &&
             mm == date.month && md == date.day && uy == date.year && um == date.month && ud == date.day;
    }
    if (!same && ++mismatches < 5)
      ADD_FAILURE() << date.year << "-" << date.month << "-" << date.day << " reference day " << reference;
    if (date.year == 1970 && date.month == 1 && date.day == 1) {
      EXPECT_EQ(reference, 2440588);
    }
    if (date.year == 2000 && date.month == 1 && date.day == 1) {
      EXPECT_EQ(reference, 2451545);
    }
  }
  EXPECT_EQ(mismatches, 0);
  EXPECT_EQ(reference, dayNumberOfDate(10000, 1, 1));
}

TEST(KrVtDayValue, DaysBeforeTheStartOfTheCountKeepOnlyTheirMagnitude) {
  // -4713-01-01 is day -327: the stored value takes the old value's sign, so
  // the magnitude holds 327 - fraction.
  EXPECT_EQ(dayOf(-4713, 1, 1, 0.0), 327.0);
  EXPECT_EQ(dayOf(-4713, 11, 24, 0.5), 0.5);
}

TEST(KrVtDayValue, SetDateChecksTheCalendar) {
  double v = 0;
  EXPECT_EQ(setDate(v, 2023, 2, 29), Kesu::eInvalidInput);
  EXPECT_EQ(setDate(v, 1900, 2, 29), Kesu::eInvalidInput);
  EXPECT_EQ(v, 0.0);
  EXPECT_EQ(setDate(v, 2024, 2, 29), Kesu::eOk);
  EXPECT_EQ(setDate(v, 2000, 2, 29), Kesu::eOk);
  for (short month : {0, 13, -1}) EXPECT_EQ(setDate(v, 2000, month, 1), Kesu::eInvalidInput);
  for (short day : {0, 32, -3}) EXPECT_EQ(setDate(v, 2000, 1, day), Kesu::eInvalidInput);
  EXPECT_EQ(setDate(v, 2000, 4, 31), Kesu::eInvalidInput);
  EXPECT_EQ(setDate(v, -4714, 12, 31), Kesu::eInvalidInput);
  EXPECT_EQ(setDate(v, -4713, 12, 31), Kesu::eOk);
}

TEST(KrVtDayValue, SetDateKeepsTimeOfDayAndSign) {
  double universal = -(2440588.0 + 0.75);
  EXPECT_EQ(setDate(universal, 2024, 3, 15), Kesu::eOk);
  EXPECT_EQ(universal, -(2460385.0 + 0.75));
  EXPECT_TRUE(isUniversal(universal));
  double negativeZero = -0.0;
  setDate(negativeZero, 2024, 3, 15);
  EXPECT_EQ(negativeZero, -2460385.0);
}

TEST(KrVtDayValue, UnsetStaysUnsetThroughSetDateAndSetTime) {
  EXPECT_EQ(bitsOf(unset()), 0xFFF8000000000000ull);
  double v = unset();
  EXPECT_EQ(setDate(v, 2024, 1, 1), Kesu::eOk);
  EXPECT_TRUE(isUnset(v));
  EXPECT_EQ(setTime(v, 12, 0, 0, 0), Kesu::eOk);
  EXPECT_TRUE(isUnset(v));
  short a = 9, b = 9, c = 9, d = 9;
  EXPECT_EQ(getDate(v, a, b, c), Kesu::eNotSupported);
  EXPECT_EQ(a + b + c, 0);
  a = b = c = d = 9;
  EXPECT_EQ(getTime(v, a, b, c, d), Kesu::eNotSupported);
  EXPECT_EQ(a + b + c + d, 0);
}

TEST(KrVtDayValue, SetTimeAcceptsMillisecondsUpToAlmostTenSeconds) {
  double v = -2460385.0;
  EXPECT_EQ(setTime(v, 23, 59, 59, 9999), Kesu::eOk);
  EXPECT_EQ(v, -(2460385.0 + (86399000.0 + 9999) / 86400.0 / 1000.0));
  EXPECT_EQ(dateOf(v).day, 16);  // the extra seconds run into the next day
  for (auto bad : {Ymd{24, 0, 0}, Ymd{0, 60, 0}, Ymd{0, 0, 60}, Ymd{-1, 0, 0}}) {
    double w = 5.5;
    EXPECT_EQ(setTime(w, short(bad.year), short(bad.month), short(bad.day), 0), Kesu::eInvalidInput);
    EXPECT_EQ(w, 5.5);
  }
  double w = 5.5;
  EXPECT_EQ(setTime(w, 0, 0, 0, 10000), Kesu::eInvalidInput);
  EXPECT_EQ(setTime(w, 0, 0, 0, -1), Kesu::eInvalidInput);
}

TEST(KrVtDayValue, TimeOfDayRoundsToMillisecondsAndReachesHour24) {
  double v = 2460385.0;
  ASSERT_EQ(setTime(v, 8, 30, 5, 250), Kesu::eOk);
  short h, m, s, ms;
  EXPECT_EQ(getTime(v, h, m, s, ms), Kesu::eOk);
  EXPECT_EQ(h * 10000000 + m * 100000 + s * 1000 + ms, 8 * 10000000 + 30 * 100000 + 5 * 1000 + 250);
  // A fraction within half a millisecond of the whole day.
  double late = 2460385.0 + (86400000.0 - 0.2) / 86400000.0;
  EXPECT_EQ(getTime(late, h, m, s, ms), Kesu::eOk);
  EXPECT_EQ(h, 24);
  EXPECT_EQ(m + s + ms, 0);
  EXPECT_EQ(millisecondsOfDay(late), 86400000);
}

TEST(KrVtDayValue, SecondsSince1970AreUniversal) {
  EXPECT_EQ(fromSeconds(0), -2440588.0);
  EXPECT_EQ(toSeconds(fromSeconds(0)), 0);
  EXPECT_EQ(toSeconds(fromSeconds(1700000000)), 1700000000);
  EXPECT_EQ(toSeconds(fromSeconds(-86400 * 365)), -86400 * 365);
  EXPECT_EQ(fromSeconds(43200), -2440588.5);
  // Half a second rounds away from zero.
  EXPECT_EQ(toSeconds(-(2440588.0 + 0.5 / 86400.0)), 1);
  EXPECT_EQ(toSeconds(2440588.0), INT64_MIN);
  EXPECT_EQ(toSeconds(0.0), INT64_MIN);
  EXPECT_EQ(toSeconds(unset()), INT64_MIN);
}

// A struct tm as "year-month-day hour:minute:second", then with kind
// "weekday yearday dst".
std::string fieldsOf(const tm& t, bool withKind = true) {
  char text[80];
  int length = snprintf(text, sizeof text, "%d-%d-%d %d:%d:%d", t.tm_year, t.tm_mon, t.tm_mday, t.tm_hour, t.tm_min,
                        t.tm_sec);
  if (withKind) snprintf(text + length, sizeof text - length, " %d %d %d", t.tm_wday, t.tm_yday, t.tm_isdst);
  return text;
}

TEST(KrVtDayValue, StructTmTakesTheValueApart) {
  double friday = 2460385.0;  // 2024-03-15
  ASSERT_EQ(setTime(friday, 12, 34, 56, 0), Kesu::eOk);
  // Weekdays are counted from Monday, negative for universal values; the year day stays 0.
  EXPECT_EQ(fieldsOf(toTm(friday)), "124-2-15 12:34:56 4 0 1");
  EXPECT_EQ(fieldsOf(toTm(-friday)), "124-2-15 12:34:56 -4 0 0");
  EXPECT_EQ(toTm(2460388.0).tm_wday, 0);  // a Monday
  EXPECT_EQ(fieldsOf(toTm(unset()), false), "-1900--1-0 0:0:0");
}

TEST(KrVtDayValue, FromStructTmStaysUnsetAndFlipsTheSignForStandardTime) {
  tm t = toTm(2460385.25);
  t.tm_isdst = 1;
  double daylight = fromTm(t);
  EXPECT_TRUE(isUnset(daylight));
  EXPECT_TRUE(std::signbit(daylight));
  t.tm_isdst = 0;
  double standard = fromTm(t);
  EXPECT_TRUE(isUnset(standard));
  EXPECT_FALSE(std::signbit(standard));
  t.tm_mon = 12;  // a failing date stops before the flip
  EXPECT_TRUE(std::signbit(fromTm(t)));
}

TEST(KrVtDayValue, ZoneOffsetsFollowTheirFormulas) {
  double model = 2460385.25;
  ASSERT_TRUE(modelToUniversal(model, 2, 30));
  EXPECT_EQ(model, -(2460385.25 - (30 * 60 / 86400.0 + 2 * 3600)));
  EXPECT_FALSE(modelToUniversal(model, 1, 0));
  double universal = -2460385.25;
  ASSERT_TRUE(universalToModel(universal, 2, 30));
  EXPECT_EQ(universal, 30 * 60 / 86400.0 + 2 * 3600 + 2460385.25);
  EXPECT_FALSE(universalToModel(universal, 1, 0));
  double stillUnset = unset();
  EXPECT_FALSE(modelToUniversal(stillUnset, 1, 0));  // the unset value carries the sign bit
  EXPECT_TRUE(universalToModel(stillUnset, 1, 0));
  EXPECT_TRUE(isUnset(stillUnset));
}

}  // namespace
