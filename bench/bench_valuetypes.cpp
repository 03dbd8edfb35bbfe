// Value-type speed beside peers measured in the same run: taking a date
// apart and putting it together against the civil-calendar conversions
// written here, a date-time's text form through the formattable against the
// C runtime printing and scanning the same format on a stack buffer, and the
// bounded fraction of a ratio against printing the same double.

#include <windows.h>

#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <random>
#include <vector>

#include "BenchHarness.h"
#include "krvtdaytime.h"
#include "krvtratio.h"

namespace {

// Days since 1970-01-01 of a proleptic Gregorian date and back, with the
// era-of-400-years arithmetic.
long long daysFromCivil(int y, unsigned m, unsigned d) {
  y -= m <= 2;
  const long long era = (y >= 0 ? y : y - 399) / 400;
  const unsigned yoe = static_cast<unsigned>(y - era * 400);
  const unsigned doy = (153 * (m > 2 ? m - 3 : m + 9) + 2) / 5 + d - 1;
  const unsigned doe = yoe * 365 + yoe / 4 - yoe / 100 + doy;
  return era * 146097 + static_cast<long long>(doe) - 719468;
}

void civilFromDays(long long z, int& y, unsigned& m, unsigned& d) {
  z += 719468;
  const long long era = (z >= 0 ? z : z - 146096) / 146097;
  const unsigned doe = static_cast<unsigned>(z - era * 146097);
  const unsigned yoe = (doe - doe / 1460 + doe / 36524 - doe / 146096) / 365;
  const unsigned doy = doe - (365 * yoe + yoe / 4 - yoe / 100);
  const unsigned mp = (5 * doy + 2) / 153;
  d = doy - (153 * mp + 2) / 5 + 1;
  m = mp < 10 ? mp + 3 : mp - 9;
  y = static_cast<int>(yoe) + static_cast<int>(era) * 400 + (m <= 2);
}

void benchCalendar() {
  KrVtDate date(2460385.25);
  double ours = bench::nsPerCall([&](long long i) {
    short y, m, d;
    date.getDate(y, m, d);
    date.setDate(y, m, short(1 + i % 28));
    bench::keep(date);
  }, 1000000);
  long long days = 19797;
  double peer = bench::nsPerCall([&](long long i) {
    int y;
    unsigned m, d;
    civilFromDays(days, y, m, d);
    days = daysFromCivil(y, m, unsigned(1 + i % 28));
    bench::keep(days);
  }, 1000000);
  bench::report("KrVtDate getDate + setDate", ours, "civil from days + days from civil", peer);
}

void benchDateTimeText() {
  KrVtDateTime value(2460385.0 + 0.354224537);
  KrVtDateTimeFormattable formattable;
  bench::sideBySide("KrVtDateTime toText (+ free)", [&](long long) {
    wchar_t* text = nullptr;
    formattable.toText(&value, text, nullptr);
    free(text);
  }, "_snwprintf, same format, stack", [&](long long) {
    wchar_t buffer[64];
    _snwprintf(buffer, 64, L"%04hd-%02hu-%02huT%02hu:%02hu:%02hu.%03huZ", 2024, 3, 15, 8, 30, 5, 250);
    bench::keep(buffer);
  }, 200000);
  bench::sideBySide("KrVtDateTime fromText", [&](long long) {
    formattable.fromText(&value, L"2024-03-15T08:30:05.250Z", nullptr);
    bench::keep(value);
  }, "swscanf, same format", [&](long long) {
    short y;
    unsigned short mo, d, h, mi, s, ms;
    __ms_swscanf(L"2024-03-15T08:30:05.250Z", L"%hd-%hu-%huT%hu:%hu:%hu.%huZ", &y, &mo, &d, &h, &mi, &s, &ms);
    bench::keep(ms);
  }, 200000);
}

void benchFraction() {
  std::mt19937_64 random(7);
  std::uniform_real_distribution<double> exponent(-3, 5);
  std::vector<double> values(4096);
  for (double& v : values) v = std::pow(10.0, exponent(random));
  KrVtRatio ratio;
  double ours = bench::nsPerCall([&](long long i) {
    ratio.value() = values[i & 4095];
    __int64 n;
    unsigned __int64 d;
    ratio.toFraction(n, d);
    bench::keep(n);
  }, 200000);
  double peer = bench::nsPerCall([&](long long i) {
    wchar_t buffer[64];
    _snwprintf(buffer, 64, L"%lf", values[i & 4095]);
    bench::keep(buffer);
  }, 200000);
  bench::report("KrVtRatio toFraction, random doubles", ours, "_snwprintf %lf of the same", peer);
}

}  // namespace

int main() {
  benchCalendar();
  benchDateTimeText();
  benchFraction();
  return 0;
}
