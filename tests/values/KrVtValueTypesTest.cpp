// The date, time, ratio, percentage, permille and currency classes as a
// module sees them: registered classes, their members, their text forms
// through the formattables attached at start-up, and the value arrays.

#include <gtest/gtest.h>

#include <cmath>
#include <cstdlib>
#include <ctime>
#include <memory>
#include <stdexcept>
#include <string>

#include "krrxformattable.h"
#include "krvtcurrency.h"
#include "krvtdaytime.h"
#include "krvtratio.h"
#include "KrVtTextOf.h"

namespace {

// The text of a value, also of a temporary one.
std::wstring formatted(const KrRxObject& object) { return krvtTextOf(&object); }

TEST(KrVtValueTypes, DaysWriteAndReadThroughTheirClassesFormattable) {
  KrVtDate date;
  ASSERT_EQ(date.setDate(2023, 5, 17), Kesu::eOk);
  EXPECT_EQ(formatted(date), L"2023-05-17");
  KrVtDateTime dateTime(date.value());
  EXPECT_EQ(formatted(dateTime), L"2023-05-17T00:00:00.000Z");
  KrVtTime time(-date.value());
  ASSERT_EQ(time.setTime(8, 30, 5, 250), Kesu::eOk);
  EXPECT_EQ(formatted(time), L"08:30:05.250Z");
  EXPECT_EQ(krrxParseObject(&date, L"2024-02-29Z", nullptr), Kesu::eOk);
  EXPECT_EQ(formatted(date), L"2024-02-29Z");
  EXPECT_EQ(krrxParseObject(&time, L"12:30:15.5", nullptr), Kesu::eOk);
  EXPECT_EQ(formatted(time), L"12:30:15.500");
  EXPECT_EQ(krrxParseObject(&dateTime, L"*", nullptr), Kesu::eOk);
  EXPECT_EQ(formatted(dateTime), L"*");
  EXPECT_EQ(krrxParseObject(&dateTime, nullptr, nullptr), Kesu::eInvalidInput);
  // A plain day value has no text form of its own: it writes as its parent, a Float64.
  EXPECT_EQ(formatted(KrVtDaytime(2460385.5)), L"2460385.500");
  // The pseudo-constructors make default values of the real classes.
  KrRxObject* made = KrVtDateTime::desc()->create();
  ASSERT_NE(KrVtDateTime::cast(made), nullptr);
  EXPECT_EQ(formatted(*made), L"-4713-11-24T00:00:00.000Z");
  delete made;
}

TEST(KrVtValueTypes, FormattablesRefuseObjectsOfOtherClasses) {
  KrVtDate date;
  KrVtTime time;
  KrVtRatio ratio;
  KrVtCurrency currency;
  wchar_t* text = nullptr;
  EXPECT_EQ(KrVtDateFormattable().toText(&time, text, nullptr), Kesu::eInvalidInput);
  EXPECT_EQ(KrVtTimeFormattable().fromText(&date, L"08:30", nullptr), Kesu::eInvalidInput);
  EXPECT_EQ(KrVtDateTimeFormattable().toText(nullptr, text, nullptr), Kesu::eInvalidInput);
  EXPECT_EQ(KrVtPercentageFormattable().toText(&ratio, text, nullptr), Kesu::eInvalidInput);
  EXPECT_EQ(KrVtRatioFormattable().toText(&currency, text, nullptr), Kesu::eInvalidInput);
  EXPECT_EQ(KrVtCurrencyFormattable().fromText(&ratio, L"1.00", nullptr), Kesu::eInvalidInput);
  EXPECT_EQ(text, nullptr);
}

TEST(KrVtValueTypes, DaytimeConvertsToSecondsAndStructTm) {
  KrVtDateTime epoch(static_cast<__int64>(0));
  EXPECT_EQ(formatted(epoch), L"1970-01-01T00:00:00.000Z");
  EXPECT_EQ(static_cast<__int64>(KrVtDateTime(2440588.0)), INT64_MIN);
  tm parts = KrVtDateTime(-2460385.5);
  EXPECT_EQ(parts.tm_hour, 12);
  EXPECT_TRUE(std::isnan(KrVtDateTime(parts).value()));
  KrVtDateTime now;
  now.getUniversalTime();
  EXPECT_TRUE(now.isUniversal());
  EXPECT_LE(std::llabs(static_cast<__int64>(now) - _time64(nullptr)), 2);
}

TEST(KrVtValueTypes, DayCountsOfOtherCalendars) {
  KrVtDaytime day(2460385.25);
  EXPECT_EQ(day.julianFraction(), 2460384.75);
  EXPECT_EQ(KrVtDaytime(-2460385.25).julianFraction(), 2460385.75);
  EXPECT_EQ(day.rataDieFraction(), 738961.0);
  EXPECT_EQ(day.lilianFraction(), 161226.0);
  day.setJulianFraction(-2460384.75);
  EXPECT_EQ(day.value(), -2460385.25);
  day.setRataDieFraction(738961.0);
  EXPECT_EQ(day.value(), -2460385.0);
  day.setLilianFraction(-2299160.0);
  EXPECT_EQ(day.value(), -1.0);
}

TEST(KrVtValueTypes, DayArithmeticKeepsTheZone) {
  KrVtDateTime a(-2460385.5), b(-2460380.25), model(2460380.25);
  EXPECT_EQ(a - b, 5.25);
  EXPECT_TRUE(std::isnan(a - model));
  EXPECT_EQ((a + 1.5).value(), -2460387.0);
  EXPECT_EQ((1.5 + a).value(), -2460387.0);
  EXPECT_TRUE(std::isnan((model + -3e6).value()));
  EXPECT_EQ((a * 2.0).value(), -4920771.0);
  EXPECT_EQ((a / 2.0).value(), -1230192.75);
  EXPECT_TRUE(std::isnan((a / -2.0).value()));
}

TEST(KrVtValueTypes, RatiosPercentagesPermilleAndCurrencyWriteTheirForms) {
  const struct {
    const KrRxObject& value;
    const wchar_t* text;
  } kForms[] = {
      {KrVtRatio(0.5), L"1 : 2"}, {KrVtRatio(3.0), L"3"}, {KrVtRatio(-0.75), L"-3 : 4"},
      {KrVtRatio(3.14159265358979323846), L"3126535 : 995207"}, {KrVtRatio(HUGE_VAL), L"9223372036854775807 : 0"},
      // Rounded half away from zero.
      {KrVtPercentage(0.125), L"13%"}, {KrVtPercentage(-0.125), L"-13%"}, {KrVtPermille(0.0125), L"13\u2030"},
      {KrVtCurrency(1234.5), L"1234.50"}, {KrVtCurrency(12345678901.0), L"12345678901.00"},
      {KrVtCurrency(std::nan("")), L"*"}, {KrVtCurrency(HUGE_VAL), L"\u221E"},
  };
  for (const auto& row : kForms) EXPECT_EQ(formatted(row.value), row.text);
  EXPECT_EQ(formatted(KrVtRatio(1e300)).substr(0, 6), L"100000");  // no fraction: the double itself
  EXPECT_THROW(formatted(KrVtRatio(967428643.1946106)), std::overflow_error);
}

// Each text read into a value of the class that held 42: the status, and the value afterwards.
TEST(KrVtValueTypes, RatiosPercentagesPermilleAndCurrencyReadTheirForms) {
  const struct {
    KrRxClass* (*cls)();
    const wchar_t* text;
    Kesu::ErrorStatus status;
    double value;
  } kReadings[] = {
      {KrVtRatio::desc, L"3 : 4", Kesu::eOk, 0.75}, {KrVtRatio::desc, L"0.75", Kesu::eOk, 0.75},
      {KrVtRatio::desc, L"-9:2", Kesu::eOk, -4.5}, {KrVtRatio::desc, L"1 : 0", Kesu::eOk, HUGE_VAL},
      {KrVtRatio::desc, L"3 :", Kesu::eOk, 3.0}, {KrVtRatio::desc, L"one half", Kesu::eInvalidInput, 42},
      {KrVtRatio::desc, L"", Kesu::eInvalidInput, 42}, {KrVtPercentage::desc, L"13%", Kesu::eOk, 0.13},
      {KrVtPercentage::desc, L"13", Kesu::eOk, 0.13}, {KrVtPercentage::desc, L" 13 %", Kesu::eOk, 0.13},
      {KrVtPercentage::desc, L"", Kesu::eInvalidInput, 42}, {KrVtPercentage::desc, L"%", Kesu::eInvalidInput, 42},
      {KrVtPercentage::desc, L"*", Kesu::eInvalidInput, 42}, {KrVtPercentage::desc, L"\u221E", Kesu::eInvalidInput, 42},
      {KrVtPercentage::desc, L"abc", Kesu::eInvalidInput, 42}, {KrVtPercentage::desc, nullptr, Kesu::eInvalidInput, 42},
      {KrVtPermille::desc, L"250\u2030", Kesu::eOk, 0.25}, {KrVtCurrency::desc, L"-\u221E", Kesu::eOk, -HUGE_VAL},
      {KrVtCurrency::desc, L"99.95", Kesu::eOk, 99.95}, {KrVtCurrency::desc, L"dollars", Kesu::eInvalidInput, 42},
  };
  for (const auto& row : kReadings) {
    std::unique_ptr<KrRxObject> value(row.cls()->create());
    KrVtFloat64::cast(value.get())->value() = 42;
    const wchar_t* text = row.text ? row.text : L"(null)";
    EXPECT_EQ(krrxParseObject(value.get(), row.text, nullptr), row.status) << row.cls()->name() << " " << text;
    EXPECT_EQ(KrVtFloat64::cast(value.get())->value(), row.value) << row.cls()->name() << " " << text;
  }
  KrVtRatio ratio;
  __int64 n = 0;
  unsigned __int64 d = 0;
  EXPECT_EQ(ratio.fromFraction(-1, 3), Kesu::eOk);
  EXPECT_EQ(ratio.value(), -1.0 / 3);
  EXPECT_EQ(ratio.toFraction(n, d), Kesu::eOk);
  EXPECT_EQ(n, -1);
  EXPECT_EQ(d, 3u);
  EXPECT_EQ(ratio.fromFraction(0, 0), Kesu::eOk);
  EXPECT_TRUE(std::isnan(ratio.value()));
}

TEST(KrVtValueTypes, ValueArraysHandOutTheirElementClasses) {
  KrVtPercentageArray percentages;
  percentages.append(0.5);
  EXPECT_EQ(percentages.elementType(), KrVtPercentage::desc());
  KrVtPercentage element;
  ASSERT_EQ(percentages.getAt(0, &element), Kesu::eOk);
  EXPECT_EQ(formatted(element), L"50%");
  KrVtRatio ratio(0.25);
  EXPECT_EQ(percentages.setAt(0, &ratio), Kesu::eWrongObjectType);
  KrVtCurrencyArray amounts;
  EXPECT_EQ(amounts.elementType(), KrVtCurrency::desc());
  KrVtDateTimeArray days;
  days.append(-2460385.5);
  EXPECT_EQ(days.elementType(), KrVtDaytime::desc());
  KrVtDateTime noon;
  ASSERT_EQ(days.getAt(0, &noon), Kesu::eOk);
  EXPECT_EQ(formatted(noon), L"2024-03-15T12:00:00.000Z");
  EXPECT_TRUE(days.contains(&noon));
  for (KrRxClass* cls : {KrVtPercentageArray::desc(), KrVtCurrencyArray::desc(), KrVtDateTimeArray::desc()}) {
    ASSERT_NE(cls, nullptr);
    KrRxObject* made = cls->create();
    EXPECT_NE(made, nullptr);
    delete made;
  }
}

}  // namespace
