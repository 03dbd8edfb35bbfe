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

// Dates with the zone mark, times to their last non-zero part, date-times always with Z.
TEST(KrVtDaytimeText, WritesEachFormToItsRules) {
  const struct {
    Writer write;
    double value;
    const wchar_t* text;
  } kTexts[] = {
      {dateToText, at(2023, 5, 17, 0, 0, 0, 0, true), L"2023-05-17Z"},
      {dateToText, at(2023, 5, 17, 13), L"2023-05-17"},
      {dateToText, at(0, 1, 1), L"0000-01-01"},
      {dateToText, at(-4713, 11, 24), L"-4713-11-24"},
      {timeToText, at(2023, 5, 17, 8, 30), L"08:30"},
      {timeToText, at(2023, 5, 17, 8, 30, 5), L"08:30:05"},
      {timeToText, at(2023, 5, 17, 8, 30, 5, 250, true), L"08:30:05.250Z"},
      {timeToText, at(2023, 5, 17, 8, 30, 0, 0, true), L"08:30Z"},
      {timeToText, at(2023, 5, 17, 8, 30, 0, 7), L"08:30:00.007"},
      {timeToText, 2460385.0 + (86400000.0 - 0.2) / 86400000.0, L"24:00"},
      {dateTimeToText, at(2024, 2, 29, 23, 59, 58, 999), L"2024-02-29T23:59:58.999Z"},
      {dateTimeToText, at(2024, 2, 29, 1, 2, 3, 4, true), L"2024-02-29T01:02:03.004Z"},
  };
  for (const auto& row : kTexts) EXPECT_EQ(written(row.write, row.value), row.text);
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

// Each text read into a target that held start.
TEST(KrVtDaytimeText, ReadsPartialTextsFractionsAndTheZoneMark) {
  const double noon = at(-4713, 11, 24, 12, 30, 15, 500), model = at(2023, 5, 17, 8, 30, 5, 250);
  const double universal = -at(-4713, 11, 24, 8, 30);
  const struct {
    Reader read;
    const wchar_t* text;
    double start;
    double value;
  } kReadings[] = {
      // Partial dates, and the zone mark after them.
      {dateFromText, L"2023", 0, at(2023, 1, 1)},
      {dateFromText, L"2023-05Z", 0, at(2023, 5, 1, 0, 0, 0, 0, true)},
      {dateFromText, L"2023z", 0, at(2023, 1, 1, 0, 0, 0, 0, true)},
      {dateFromText, L"2023-05-17z", 0, at(2023, 5, 17, 0, 0, 0, 0, true)},
      {dateFromText, L"2023-05-17Zulu", 0, at(2023, 5, 17, 0, 0, 0, 0, true)},
      // Fractions by their value: leading zeros are lost, 05 counts as 5.
      {timeFromText, L"12:30:15.5", 0, noon},
      {timeFromText, L"12:30:15.25", 0, at(-4713, 11, 24, 12, 30, 15, 250)},
      {timeFromText, L"12:30:15.125", 0, at(-4713, 11, 24, 12, 30, 15, 125)},
      {timeFromText, L"12:30:15.1234", 0, at(-4713, 11, 24, 12, 30, 15, 0)},
      {timeFromText, L"12:30:15.05", 0, noon},
      {timeFromText, L"12 30 15,5", 0, noon},
      {timeFromText, L"12:30:15'5", 0, noon},
      // The zone mark after the last number kept; a Z as a separator ends the numbers.
      {timeFromText, L"08:30Z", 0, universal},
      {timeFromText, L"08:30z", 0, universal},
      {timeFromText, L"08:30", 0, -universal},
      {timeFromText, L"08:30Z15", 0, universal},
      {timeFromText, L"08Z30", 0, -at(-4713, 11, 24, 8)},
      {timeFromText, L"12:30:15Z5", 0, -at(-4713, 11, 24, 12, 30, 15)},
      {timeFromText, L"12:30:15.5Z", 0, -noon},
      // Date-times keep the target's zone.
      {dateTimeFromText, L"2023-05-17T08:30:05.250Z", 1.0, model},
      {dateTimeFromText, L"2023-05-17T08:30:05.250Z", -1.0, -model},
      {dateTimeFromText, L"2023-05-17T08:30:05.250", -1.0, -model},
      {dateTimeFromText, L"2023", 0, at(2023, 1, 1)},
      {dateTimeFromText, L"2023-07", 0, at(2023, 7, 1)},
      {dateTimeFromText, L"2023-07-04T09", 0, at(2023, 7, 4, 9)},
  };
  for (const auto& row : kReadings) EXPECT_EQ(readOk(row.read, row.text, row.start), row.value) << row.text;
  EXPECT_TRUE(KrVtDay::isUnset(readOk(dateTimeFromText, L"2023-05-17T08:30:05.250Z", KrVtDay::unset())));

  // Refused texts leave the target alone.
  const struct {
    Reader read;
    const wchar_t* text;
  } kRefused[] = {{dateFromText, L"2023-02-29"}, {dateFromText, L"2023-"}, {timeFromText, L"24:00"},
                  {timeFromText, L"12:60"}, {dateTimeFromText, L"2023-07-04T25:00"}};
  for (const auto& row : kRefused) {
    double v = 7.0;
    EXPECT_EQ(row.read(v, row.text), Kesu::eInvalidInput) << row.text;
    EXPECT_EQ(v, 7.0) << row.text;
  }
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
