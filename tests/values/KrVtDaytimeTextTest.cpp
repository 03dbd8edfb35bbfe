// Text forms of dates, times and date-times, printed and scanned by the C
// runtime under its own rules.

#include <gtest/gtest.h>

#include <cmath>
#include <cstdlib>
#include <string>

#include "values/KrVtDayValue.h"
#include "values/KrVtDaytimeText.h"

namespace {

using namespace KrVtDaytimeText;
typedef Kesu::ErrorStatus (*Writer)(double, wchar_t*&);
typedef Kesu::ErrorStatus (*Reader)(double&, const wchar_t*);

std::wstring written(Writer write, double v) {
  wchar_t* text = nullptr;
  Kesu::ErrorStatus status = write(v, text);
  std::wstring result = status == Kesu::eOk && text ? text : L"<status " + std::to_wstring(status) + L">";
  free(text);
  return result;
}

double at(short y, short mo, short d, short h = 0, short mi = 0, short s = 0, short ms = 0, bool universal = false) {
  double v = universal ? -0.0 : 0.0;
  EXPECT_EQ(KrVtDay::setDate(v, y, mo, d), Kesu::eOk);
  EXPECT_EQ(KrVtDay::setTime(v, h, mi, s, ms), Kesu::eOk);
  return v;
}

double readOk(Reader read, const wchar_t* text, double start = 0.0) {
  double v = start;
  EXPECT_EQ(read(v, text), Kesu::eOk) << text;
  return v;
}

TEST(KrVtDaytimeText, WritesDatesWithTheZoneMark) {
  EXPECT_EQ(written(dateToText, at(2023, 5, 17, 0, 0, 0, 0, true)), L"2023-05-17Z");
  EXPECT_EQ(written(dateToText, at(2023, 5, 17, 13)), L"2023-05-17");
  EXPECT_EQ(written(dateToText, at(0, 1, 1)), L"0000-01-01");
  EXPECT_EQ(written(dateToText, at(-4713, 11, 24)), L"-4713-11-24");
}

TEST(KrVtDaytimeText, WritesTimesToTheirLastNonZeroPart) {
  EXPECT_EQ(written(timeToText, at(2023, 5, 17, 8, 30)), L"08:30");
  EXPECT_EQ(written(timeToText, at(2023, 5, 17, 8, 30, 5)), L"08:30:05");
  EXPECT_EQ(written(timeToText, at(2023, 5, 17, 8, 30, 5, 250, true)), L"08:30:05.250Z");
  EXPECT_EQ(written(timeToText, at(2023, 5, 17, 8, 30, 0, 0, true)), L"08:30Z");
  EXPECT_EQ(written(timeToText, at(2023, 5, 17, 8, 30, 0, 7)), L"08:30:00.007");
  EXPECT_EQ(written(timeToText, 2460385.0 + (86400000.0 - 0.2) / 86400000.0), L"24:00");
}

TEST(KrVtDaytimeText, WritesDateTimesAlwaysWithZ) {
  EXPECT_EQ(written(dateTimeToText, at(2024, 2, 29, 23, 59, 58, 999)), L"2024-02-29T23:59:58.999Z");
  EXPECT_EQ(written(dateTimeToText, at(2024, 2, 29, 1, 2, 3, 4, true)), L"2024-02-29T01:02:03.004Z");
}

TEST(KrVtDaytimeText, UnsetAndOpenEndHaveTheirOwnTexts) {
  for (Writer write : {dateToText, timeToText, dateTimeToText}) {
    EXPECT_EQ(written(write, KrVtDay::unset()), L"*");
    EXPECT_EQ(written(write, HUGE_VAL), L"\u221E");
  }
  for (Reader read : {dateFromText, timeFromText, dateTimeFromText}) {
    EXPECT_TRUE(KrVtDay::isUnset(readOk(read, L"*", 5.0)));
    EXPECT_EQ(readOk(read, L"\u221E", 5.0), HUGE_VAL);
  }
}

TEST(KrVtDaytimeText, ReadsDatesWithAnySeparatorFromSpaceToSlash) {
  double may17 = at(2023, 5, 17);
  EXPECT_EQ(readOk(dateFromText, L"2023-05-17"), may17);
  for (wchar_t separator = L' '; separator <= L'/'; ++separator) {
    std::wstring text = L"2023" + std::wstring(1, separator) + L"05" + std::wstring(1, separator) + L"17";
    EXPECT_EQ(readOk(dateFromText, text.c_str()), may17) << text;
  }
  // Outside the set the reading ends after the year.
  EXPECT_EQ(readOk(dateFromText, L"2023:05:17"), at(2023, 1, 1));
  // A date read is fresh: the target's time and zone go.
  EXPECT_EQ(readOk(dateFromText, L"2023-05-17", -5.75), may17);
}

TEST(KrVtDaytimeText, ReadsPartialDatesAndTheZoneMark) {
  EXPECT_EQ(readOk(dateFromText, L"2023"), at(2023, 1, 1));
  EXPECT_EQ(readOk(dateFromText, L"2023-05Z"), at(2023, 5, 1, 0, 0, 0, 0, true));
  EXPECT_EQ(readOk(dateFromText, L"2023z"), at(2023, 1, 1, 0, 0, 0, 0, true));
  EXPECT_EQ(readOk(dateFromText, L"2023-05-17z"), at(2023, 5, 17, 0, 0, 0, 0, true));
  EXPECT_EQ(readOk(dateFromText, L"2023-05-17Zulu"), at(2023, 5, 17, 0, 0, 0, 0, true));
  double v = 7.0;
  EXPECT_EQ(dateFromText(v, L"2023-02-29"), Kesu::eInvalidInput);
  EXPECT_EQ(dateFromText(v, L"2023-"), Kesu::eInvalidInput);  // a month announced but missing
  EXPECT_EQ(v, 7.0);
}

TEST(KrVtDaytimeText, ReadsTimeFractionsByTheirValue) {
  EXPECT_EQ(readOk(timeFromText, L"12:30:15.5"), at(-4713, 11, 24, 12, 30, 15, 500));
  EXPECT_EQ(readOk(timeFromText, L"12:30:15.25"), at(-4713, 11, 24, 12, 30, 15, 250));
  EXPECT_EQ(readOk(timeFromText, L"12:30:15.125"), at(-4713, 11, 24, 12, 30, 15, 125));
  EXPECT_EQ(readOk(timeFromText, L"12:30:15.1234"), at(-4713, 11, 24, 12, 30, 15, 0));
  // Leading zeros are lost: 05 counts as 5.
  EXPECT_EQ(readOk(timeFromText, L"12:30:15.05"), at(-4713, 11, 24, 12, 30, 15, 500));
  for (const wchar_t* text : {L"12 30 15,5", L"12:30:15'5", L"12:30:15.5"})
    EXPECT_EQ(std::fabs(readOk(timeFromText, text)), at(-4713, 11, 24, 12, 30, 15, 500)) << text;
}

TEST(KrVtDaytimeText, ReadsTheZoneMarkAfterTheLastNumberKept) {
  double universal = -at(-4713, 11, 24, 8, 30);
  EXPECT_EQ(readOk(timeFromText, L"08:30Z"), universal);
  EXPECT_EQ(readOk(timeFromText, L"08:30z"), universal);
  EXPECT_EQ(readOk(timeFromText, L"08:30"), -universal);
  // A Z as a separator ends the numbers: what follows it is dropped.
  EXPECT_EQ(readOk(timeFromText, L"08:30Z15"), universal);
  EXPECT_EQ(readOk(timeFromText, L"08Z30"), -at(-4713, 11, 24, 8));
  EXPECT_EQ(readOk(timeFromText, L"12:30:15Z5"), -at(-4713, 11, 24, 12, 30, 15));
  EXPECT_EQ(readOk(timeFromText, L"12:30:15.5Z"), -at(-4713, 11, 24, 12, 30, 15, 500));
  double v = 1.0;
  EXPECT_EQ(timeFromText(v, L"24:00"), Kesu::eInvalidInput);
  EXPECT_EQ(timeFromText(v, L"12:60"), Kesu::eInvalidInput);
  EXPECT_EQ(v, 1.0);
}

TEST(KrVtDaytimeText, DateTimesKeepTheTargetsZone) {
  double model = at(2023, 5, 17, 8, 30, 5, 250);
  EXPECT_EQ(readOk(dateTimeFromText, L"2023-05-17T08:30:05.250Z", 1.0), model);
  EXPECT_EQ(readOk(dateTimeFromText, L"2023-05-17T08:30:05.250Z", -1.0), -model);
  EXPECT_EQ(readOk(dateTimeFromText, L"2023-05-17T08:30:05.250", -1.0), -model);
  EXPECT_TRUE(KrVtDay::isUnset(readOk(dateTimeFromText, L"2023-05-17T08:30:05.250Z", KrVtDay::unset())));
  EXPECT_EQ(readOk(dateTimeFromText, L"2023"), at(2023, 1, 1));
  EXPECT_EQ(readOk(dateTimeFromText, L"2023-07"), at(2023, 7, 1));
  EXPECT_EQ(readOk(dateTimeFromText, L"2023-07-04T09"), at(2023, 7, 4, 9));
  double v = 3.0;
  EXPECT_EQ(dateTimeFromText(v, L"2023-07-04T25:00"), Kesu::eInvalidInput);
  EXPECT_EQ(v, 3.0);
}

TEST(KrVtDaytimeText, RoundTripsAcrossTheCalendar) {
  struct Form {
    Writer write;
    Reader read;
  };
  const Form forms[] = {{dateToText, dateFromText}, {timeToText, timeFromText}, {dateTimeToText, dateTimeFromText}};
  const short years[] = {-4713, 0, 1582, 1900, 2000, 2024, 9999};
  for (bool universal : {false, true}) {
    for (short year : years) {
      double v = at(year, 12, 31, 23, 59, 58, 125, universal);
      for (const Form& form : forms) {
        std::wstring text = written(form.write, v);
        double back = universal ? -0.0 : 0.0;  // date-times keep the target's zone
        ASSERT_EQ(form.read(back, text.c_str()), Kesu::eOk) << text;
        EXPECT_EQ(written(form.write, back), text);
        EXPECT_EQ(KrVtDay::isUniversal(back), universal) << text;
      }
      double whole = 0;
      dateTimeFromText(whole, written(dateTimeToText, v).c_str());
      EXPECT_EQ(KrVtDay::millisecondsOfDay(whole), KrVtDay::millisecondsOfDay(v));
      EXPECT_EQ(std::floor(whole), std::floor(std::fabs(v)));
    }
  }
}

TEST(KrVtDaytimeText, TextsThatDoNotScanGiveAStatusNeverACrash) {
  std::wstring longDigits(100000, L'9'), longLetters(100000, L'x');
  std::wstring longDate = L"2023-05-17" + std::wstring(100000, L'Z');
  for (Reader read : {dateFromText, timeFromText, dateTimeFromText}) {
    double v = 42.0;
    for (const wchar_t* text : {L"", L"abc", L"T12", L"-", L"**", L"\u221E\u221E", longLetters.c_str()})
      EXPECT_EQ(read(v, text), Kesu::eInvalidInput) << (text[0] ? text : L"(empty)");
    EXPECT_EQ(read(v, nullptr), Kesu::eInvalidInput);
    EXPECT_EQ(v, 42.0);
    read(v, longDigits.c_str());  // overlong numbers wrap as the C runtime reads them
    read(v, longDate.c_str());
  }
}

}  // namespace
