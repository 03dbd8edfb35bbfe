// The text forms of yes/no, the integer kinds and Float64.

#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <limits>
#include <string>

#include "KrVtTextOf.h"
#include "kr1st.h"

namespace {

TEST(KrVtNumberFormattableTest, YesAndNo) {
  KrVtBool flag(true);
  EXPECT_EQ(krvtTextOf(&flag), L"Yes");
  flag = false;
  EXPECT_EQ(krvtTextOf(&flag), L"No");
  for (const wchar_t* yes : {L"yes", L"YES", L"Yes"}) {
    flag = false;
    EXPECT_EQ(krrxParseObject(&flag, yes, nullptr), Kesu::eOk);
    EXPECT_TRUE(flag.value());
  }
  EXPECT_EQ(krrxParseObject(&flag, L"NO", nullptr), Kesu::eOk);
  EXPECT_FALSE(flag.value());
  EXPECT_EQ(krrxParseObject(&flag, L"true", nullptr), Kesu::eInvalidInput);
  EXPECT_EQ(krrxParseObject(&flag, L"Yes ", nullptr), Kesu::eInvalidInput);
  EXPECT_EQ(krrxParseObject(&flag, nullptr, nullptr), Kesu::eInvalidInput);
  EXPECT_FALSE(flag.value());
  // A flag byte other than 1 still reads as yes.
  unsigned char byte = 2;
  memcpy(flag.addressOf(), &byte, 1);
  EXPECT_EQ(krvtTextOf(&flag), L"Yes");
}

template <typename T>
void roundTrip(T value, const wchar_t* text) {
  KrRfValueT<T> number(value);
  EXPECT_EQ(krvtTextOf(&number), text);
  KrRfValueT<T> read;
  EXPECT_EQ(krrxParseObject(&read, text, nullptr), Kesu::eOk) << text;
  EXPECT_EQ(read.value(), value) << text;
  EXPECT_EQ(krrxParseObject(&read, L"seven", nullptr), Kesu::eInvalidInput);
  EXPECT_EQ(krrxParseObject(&read, nullptr, nullptr), Kesu::eInvalidInput);
  EXPECT_EQ(read.value(), value) << "unchanged after a failed read";
}

TEST(KrVtNumberFormattableTest, IntegerKindsAtTheirLimits) {
  roundTrip<signed char>(-128, L"-128");
  roundTrip<signed char>(127, L"127");
  roundTrip<unsigned char>(255, L"255");
  roundTrip<short>(-32768, L"-32768");
  roundTrip<unsigned short>(65535, L"65535");
  roundTrip<int>(std::numeric_limits<int>::min(), L"-2147483648");
  roundTrip<unsigned int>(4294967295u, L"4294967295");
  roundTrip<__int64>(std::numeric_limits<__int64>::min(), L"-9223372036854775808");
  roundTrip<unsigned __int64>(18446744073709551615ULL, L"18446744073709551615");
}

TEST(KrVtNumberFormattableTest, AnIntegerFormattableRefusesAnotherKind) {
  KrVtInt16 small(5);
  KrRxObject* formattable = small.queryX(KrRxFormattablePE::desc());
  ASSERT_NE(formattable, nullptr);
  KrVtInt32 other(7);
  wchar_t* text = nullptr;
  EXPECT_EQ(static_cast<KrRxFormattablePE*>(formattable)->toText(&other, text, nullptr), Kesu::eInvalidInput);
  EXPECT_EQ(static_cast<KrRxFormattablePE*>(formattable)->fromText(&other, L"1", nullptr), Kesu::eInvalidInput);
  EXPECT_EQ(text, nullptr);
  EXPECT_EQ(other.value(), 7);
}

// Three decimals, the exponent form from 1e10 on, and the special texts.
TEST(KrVtNumberFormattableTest, Float64Texts) {
  const double kInfinity = std::numeric_limits<double>::infinity();
  const struct {
    double value;
    const wchar_t* text;
  } kForms[] = {{1234.5, L"1234.500"},         {-0.0004, L"-0.000"},     {9999999999.0, L"9999999999.000"},
                {12345678901.0, L"1.235E+10"}, {-1e10, L"-1.000E+10"},   {std::nan(""), L"*"},
                {kInfinity, L"\u221E"},          {-kInfinity, L"-\u221E"}};
  for (const auto& row : kForms) {
    KrVtFloat64 number(row.value);
    EXPECT_EQ(krvtTextOf(&number), row.text);
  }

  KrVtFloat64 number;
  EXPECT_EQ(krrxParseObject(&number, L"*", nullptr), Kesu::eOk);
  uint64_t bits;
  memcpy(&bits, &number.value(), sizeof bits);
  EXPECT_EQ(bits, 0xFFF8000000000000ULL);
  EXPECT_EQ(krrxParseObject(&number, L"\u221E", nullptr), Kesu::eOk);
  EXPECT_EQ(number.value(), kInfinity);
  EXPECT_EQ(krrxParseObject(&number, L"-\u221E", nullptr), Kesu::eOk);
  EXPECT_EQ(number.value(), -kInfinity);
}

TEST(KrVtNumberFormattableTest, Float64Reading) {
  KrVtFloat64 number;
  EXPECT_EQ(krrxParseObject(&number, L"  -12.5e1", nullptr), Kesu::eOk);
  EXPECT_EQ(number.value(), -125.0);
  EXPECT_EQ(krrxParseObject(&number, L"3 apples", nullptr), Kesu::eOk) << "one field converts";
  EXPECT_EQ(number.value(), 3.0);
  EXPECT_EQ(krrxParseObject(&number, L"apples", nullptr), Kesu::eInvalidInput);
  EXPECT_EQ(krrxParseObject(&number, L"", nullptr), Kesu::eInvalidInput);
  EXPECT_EQ(krrxParseObject(&number, L" *", nullptr), Kesu::eInvalidInput) << "special texts match exactly";
  EXPECT_EQ(krrxParseObject(&number, nullptr, nullptr), Kesu::eInvalidInput);
  EXPECT_EQ(number.value(), 3.0);
}

}  // namespace
