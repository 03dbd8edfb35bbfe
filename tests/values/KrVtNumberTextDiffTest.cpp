// The number texts against the C library's formats and scans they must
// match character for character: each kind writes and reads many values,
// and each result is compared with what printf and scanf give for the same
// format. KR_DIFF_COUNT sets the number of values per kind (100,000 when
// unset; the long run uses 10,000,000).

#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <limits>
#include <random>
#include <string>

#include "KrVtTextOf.h"
#include "kr1st.h"

namespace {

long long valuesPerKind() {
  const char* count = getenv("KR_DIFF_COUNT");
  return count ? atoll(count) : 100000;
}

template <typename... Args>
std::wstring printed(const wchar_t* format, Args... args) {
  wchar_t buffer[400];
  __mingw_snwprintf(buffer, 400, format, args...);
  return buffer;
}

// What the floating kinds wrote before: the special texts, else printf.
std::wstring printedDouble(double v, const wchar_t* format, const wchar_t* exponentFormat) {
  if (std::isnan(v)) return L"*";
  if (std::isinf(v)) return v > 0 ? L"\u221E" : L"-\u221E";
  return printed(std::fabs(v) < 1e10 ? format : exponentFormat, v);
}

double fromBits(uint64_t bits) {
  double v;
  memcpy(&v, &bits, sizeof v);
  return v;
}

// Doubles that probe the digits: random bit patterns, powers of ten one ulp
// either side, exact ties of the 2-, 3- and 6-decimal and 3-digit exponent
// roundings, and the magnitudes around the switch to the exponent form.
class DoubleSource {
 public:
  double next() {
    switch (mRandom() % 6) {
      case 0: return fromBits(mRandom());
      case 1: {
        double power = std::pow(10.0, int(mRandom() % 40) - 12);
        return std::nextafter(power, mRandom() % 2 ? 0.0 : HUGE_VAL) * sign();
      }
      case 2: return sign() * double(mRandom() % 100000000 * 2 + 1) / double(1 << (3 + mRandom() % 5));
      case 3: return sign() * (double(mRandom() % 10000 * 10 + 5) * std::pow(10.0, int(mRandom() % 12 + 6)));
      case 4: return sign() * std::nextafter(mRandom() % 2 ? 1e10 : 9999999999.9995, mRandom() % 2 ? 0.0 : HUGE_VAL);
      default: return sign() * double(mRandom() % 2000000) / 1000.0 * std::pow(10.0, int(mRandom() % 8));
    }
  }
  uint64_t bits() { return mRandom(); }

 private:
  double sign() { return mRandom() % 2 ? -1.0 : 1.0; }
  std::mt19937_64 mRandom{20};
};

template <typename Value>
void expectDoubleTexts(const wchar_t* format, const wchar_t* exponentFormat) {
  DoubleSource source;
  Value value;
  for (long long i = valuesPerKind(); i > 0; --i) {
    value.value() = source.next();
    ASSERT_EQ(krvtTextOf(&value), printedDouble(value.value(), format, exponentFormat))
        << std::hexfloat << value.value();
  }
}

TEST(KrVtNumberTextDiff, Float64AndCurrencyWriteThePrintfDigits) {
  expectDoubleTexts<KrVtFloat64>(L"%.03f", L"%.03E");
  expectDoubleTexts<KrVtCurrency>(L"%.02f", L"%.02f");
  // Besides: the rounding carried into the whole part, the neighbours of
  // 2^-11 (where the fraction's bits outgrow 64), 2^53 + 2 and 2^64 (where
  // whole numbers outgrow 64 bits), and ties of every decimal both kinds use.
  for (double edge : {-0.0, -0.0004, 0.0005, 0.0625, -0.0625, 0.125, 1e300, -1.7976931348623157e308, 4.9e-324,
                      0.9996, -0.99951, 0x1p-11, std::nextafter(0x1p-11, 0.0), std::nextafter(0x1p-11, 1.0),
                      std::nextafter(0.0005, 0.0), std::nextafter(0.0005, 1.0), 0x1p53 + 2, 0x1p64,
                      std::nextafter(0x1p64, 0.0), 0.0025, 2.5e-3 + 0x1p-60, 8.0625, 0.5, -2.5}) {
    KrVtFloat64 number(edge);
    KrVtCurrency amount(edge);
    EXPECT_EQ(krvtTextOf(&number), printedDouble(edge, L"%.03f", L"%.03E"));
    EXPECT_EQ(krvtTextOf(&amount), printedDouble(edge, L"%.02f", L"%.02f"));
  }
}

template <typename T>
void expectIntegerTexts(const wchar_t* format) {
  DoubleSource source;
  KrRfValueT<T> value;
  for (long long i = valuesPerKind(); i > 0; --i) {
    value.value() = T(source.bits() >> (source.bits() % 64));
    ASSERT_EQ(krvtTextOf(&value), printed(format, value.value()));
  }
  for (T edge : {std::numeric_limits<T>::min(), std::numeric_limits<T>::max(), T(0)}) {
    value.value() = edge;
    EXPECT_EQ(krvtTextOf(&value), printed(format, edge));
  }
}

TEST(KrVtNumberTextDiff, IntegerKindsWriteThePrintfDigits) {
  expectIntegerTexts<signed char>(L"%hhd");
  expectIntegerTexts<unsigned char>(L"%hhu");
  expectIntegerTexts<short>(L"%hd");
  expectIntegerTexts<unsigned short>(L"%hu");
  expectIntegerTexts<int>(L"%ld");
  expectIntegerTexts<unsigned int>(L"%lu");
  expectIntegerTexts<__int64>(L"%lld");
  expectIntegerTexts<unsigned __int64>(L"%llu");
}

TEST(KrVtNumberTextDiff, RatiosPercentagesAndPermillesWriteThePrintfDigits) {
  DoubleSource source;
  for (long long i = valuesPerKind(); i > 0; --i) {
    double v = source.next();
    KrVtPercentage percentage(v);
    KrVtPermille permille(v);
    ASSERT_EQ(krvtTextOf(&percentage), printed(L"%ld%%", std::lround(v * 100))) << std::hexfloat << v;
    ASSERT_EQ(krvtTextOf(&permille), printed(L"%ld\u2030", std::lround(v * 1000))) << std::hexfloat << v;
    KrVtRatio ratio(v / std::pow(10.0, int(source.bits() % 300)));
    __int64 numerator = 0;
    unsigned __int64 denominator = 0;
    std::wstring expected;
    try {
      if (ratio.toFraction(numerator, denominator) != Kesu::eOk) expected = printed(L"%lf", ratio.value());
      else if (denominator == 1) expected = printed(L"%lld", numerator);
      else expected = printed(L"%lld : %llu", numerator, denominator);
    } catch (const std::overflow_error&) {
      continue;
    }
    ASSERT_EQ(krvtTextOf(&ratio), expected) << std::hexfloat << ratio.value();
  }
}

// Day values over the whole calendar, model and universal, with and without
// milliseconds, seconds and minutes; written as the date, time and date-time
// formats printed them.
TEST(KrVtNumberTextDiff, DatesAndTimesWriteThePrintfDigits) {
  std::mt19937_64 random(5);
  for (long long i = valuesPerKind(); i > 0; --i) {
    double day = double(random() % 6000000) - 1000000;
    double fraction = double(random() % 86400 * (random() % 2 ? 1000 : random() % 3 ? 60000 : 1)) / 86400000.0;
    double v = (random() % 2 ? -1 : 1) * (day + (random() % 8 ? fraction : double(random()) / 2e19));
    KrVtDaytime parts(v);
    short year, month, dayOfMonth, hour, minute, second, millisecond;
    parts.getDate(year, month, dayOfMonth);
    parts.getTime(hour, minute, second, millisecond);
    const wchar_t* zone = parts.isUniversal() ? L"Z" : L"";
    const wchar_t* timeFormat = millisecond ? L"%02hu:%02hu:%02hu.%03hu%ls"
                                : second    ? L"%02hu:%02hu:%02hu%ls"
                                            : L"%02hu:%02hu%ls";
    std::wstring time = millisecond ? printed(timeFormat, hour, minute, second, millisecond, zone)
                        : second    ? printed(timeFormat, hour, minute, second, zone)
                                    : printed(timeFormat, hour, minute, zone);
    KrVtDate date(v);
    KrVtTime clock(v);
    KrVtDateTime moment(v);
    ASSERT_EQ(krvtTextOf(&date), printed(L"%04hd-%02hu-%02hu%ls", year, month, dayOfMonth, zone)) << v;
    ASSERT_EQ(krvtTextOf(&clock), time) << v;
    ASSERT_EQ(krvtTextOf(&moment), printed(L"%04hd-%02hu-%02huT%02hu:%02hu:%02hu.%03huZ", year, month, dayOfMonth,
                                           hour, minute, second, millisecond))
        << v;
  }
}

// Texts for the scans: first the boundaries of the shortcut (a tie that the
// scan's two roundings break differently, 19 and 20 digits, incomplete
// exponents, hexadecimal, other white space, the integer limits), then
// numbers printed in several forms and mutated with the units that steer a
// number scan, prefixes of white space and signs, and cuts at random places.
class ScanTextSource {
 public:
  std::wstring next() {
    if (mFixed < sizeof kFixed / sizeof *kFixed) return kFixed[mFixed++];
    std::wstring text = number();
    for (int edits = int(mRandom() % 4); edits > 0; --edits) {
      size_t at = mRandom() % (text.size() + 1);
      switch (mRandom() % 3) {
        case 0: text.insert(at, 1, kUnits[mRandom() % (sizeof kUnits / sizeof *kUnits - 1)]); break;
        case 1: text.resize(at); break;
        default: text.insert(0, 1, kUnits[mRandom() % 8 + 20]); break;
      }
    }
    return text;
  }

 private:
  std::wstring number() {
    double v = mDoubles.next();
    switch (mRandom() % 6) {
      case 0: return printed(L"%.17g", v);
      case 1: return printed(L"%.3f", std::fmod(v, 1e12));
      case 2: return printed(L"%a", v);
      case 3: return printed(L"%lld", (long long)(mDoubles.bits() >> (mRandom() % 64)));
      case 4: return printed(L"%llu", (unsigned long long)mDoubles.bits());
      default: return printed(L"%.*e", int(mRandom() % 25), v);
    }
  }

  static constexpr const wchar_t* kFixed[] = {
      L"8.47474890233", L"1234567890123456789", L"12345678901234567890", L"9223372036854775808",
      L"-9223372036854775809", L"18446744073709551615", L"18446744073709551616", L"-0", L" +1.5e3", L"1e",
      L"1e+x", L"0x1p3", L"-0X10", L".5", L"5.", L".", L"-", L"\u00A012", L"\u300012", L"inf", L"-nan",
      L"1e27", L"1e-27", L"3e28", L"0e999999", L"-128", L"-129", L"255", L"256", L"4294967296", L"-2147483649"};
  size_t mFixed = 0;
  static constexpr wchar_t kUnits[] = L"0123456789eExXpP.-+inftyaINFTYAN \t\n\v\f\r\u00A0\u3000\u2030%,:";
  std::mt19937_64 mRandom{7};
  DoubleSource mDoubles;
};

template <typename T>
void expectIntegerScan(const std::wstring& text, const wchar_t* format) {
  KrRfValueT<T> value(T(99));
  T expected = T(99);
  int read = __mingw_swscanf(text.c_str(), format, &expected);
  ASSERT_EQ(krrxParseObject(&value, text.c_str(), nullptr), read == 1 ? Kesu::eOk : Kesu::eInvalidInput) << text;
  ASSERT_EQ(value.value(), expected) << text;
}

TEST(KrVtNumberTextDiff, NumberKindsReadWhatTheScanReads) {
  ScanTextSource source;
  for (long long i = valuesPerKind(); i > 0; --i) {
    std::wstring text = source.next();
    KrVtFloat64 number(99.0);
    double expected = 99.0;
    bool special = text == L"*" || text == L"\u221E" || text == L"-\u221E";
    int read = __mingw_swscanf(text.c_str(), L"%lf", &expected);
    ASSERT_EQ(krrxParseObject(&number, text.c_str(), nullptr), read == 1 || special ? Kesu::eOk : Kesu::eInvalidInput)
        << text;
    if (!special) {
      ASSERT_EQ(memcmp(&number.value(), &expected, sizeof expected), 0) << text;
    }
    expectIntegerScan<signed char>(text, L"%hhd");
    expectIntegerScan<unsigned char>(text, L"%hhu");
    expectIntegerScan<short>(text, L"%hd");
    expectIntegerScan<unsigned short>(text, L"%hu");
    expectIntegerScan<int>(text, L"%ld");
    expectIntegerScan<unsigned int>(text, L"%lu");
    expectIntegerScan<__int64>(text, L"%lld");
    expectIntegerScan<unsigned __int64>(text, L"%llu");
    KrVtPercentage percentage(0.5);
    long count = 50;
    read = __mingw_swscanf(text.c_str(), L"%ld%%", &count);
    ASSERT_EQ(krrxParseObject(&percentage, text.c_str(), nullptr), read >= 1 ? Kesu::eOk : Kesu::eInvalidInput)
        << text;
    ASSERT_EQ(percentage.value(), double(count) / 100) << text;
  }
}

}  // namespace

// Date-time texts as written, with fields out of range, then mutated with the
// characters that steer the scan (digits, separators, signs, white space of
// several kinds, a full-width digit), digit runs beyond 16 bits and cuts;
// read into model and universal values and compared with the scan's fields.
TEST(KrVtNumberTextDiff, DateTimesReadWhatTheScanReads) {
  static constexpr const wchar_t* kUnits[] = {L"7",  L"0", L"-", L"T", L":", L".", L"Z", L"+", L" ", L"\t",
                                              L"\u00A0", L"\u3000", L"\u001C", L"\uFF11", L"x", L"65537",
                                              L"123456789012345678901"};
  std::mt19937_64 random(11);
  for (long long i = valuesPerKind(); i > 0; --i) {
    std::wstring text = printed(L"%04hd-%02hu-%02huT%02hu:%02hu:%02hu.%03huZ", short(random() % 12000 - 5000),
                                unsigned(random() % 14), unsigned(random() % 33), unsigned(random() % 25),
                                unsigned(random() % 61), unsigned(random() % 61), unsigned(random() % 10001));
    for (int edits = int(random() % 4); edits > 0; --edits) {
      size_t at = random() % (text.size() + 1);
      if (random() % 3) text.insert(at, kUnits[random() % (sizeof kUnits / sizeof *kUnits)]);
      else text.resize(at);
    }
    double start = random() % 2 ? 2460000.25 : -2460000.25;
    short year = 0;
    unsigned short fields[6] = {};
    int read = __ms_swscanf(text.c_str(), L"%hd-%hu-%huT%hu:%hu:%hu.%huZ", &year, &fields[0], &fields[1],
                            &fields[2], &fields[3], &fields[4], &fields[5]);
    KrVtDateTime expected(start), scratch(start);
    Kesu::ErrorStatus status = read <= 0 ? Kesu::eInvalidInput
                                         : scratch.setDate(year, read < 2 ? 1 : fields[0], read < 3 ? 1 : fields[1]);
    if (status == Kesu::eOk) status = scratch.setTime(fields[2], fields[3], fields[4], fields[5]);
    if (status == Kesu::eOk) expected = scratch;
    KrVtDateTime moment(start);
    ASSERT_EQ(krrxParseObject(&moment, text.c_str(), nullptr), status) << text;
    ASSERT_EQ(memcmp(&moment.value(), &expected.value(), sizeof(double)), 0) << text;
  }
}
