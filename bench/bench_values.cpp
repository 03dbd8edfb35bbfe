// Reflected values, their conversions and their text forms beside the
// plain C++ each of them replaces.

#include <cstdio>
#include <cstdlib>
#include <cwchar>

#include "BenchHarness.h"
#include "kr1st.h"

namespace {

const double kSamples[16] = {0.5, -3.25, 1e9, 42.0, -2e9, 7.75, 3e10, -0.125,
                             123.0, 9.5, -65.0, 1e5, 2.5, -1e4, 31.0, 0.0};

// A double behind a plain pointer, as a C++ program would hold one.
struct DoubleHolder {
  double value;
};

// The plain range test and cast as a called function: the cost of a call without the vtable.
__attribute__((noinline)) int calledToInt32(const double& value, int& out) {
  if (!(value >= -2147483648.0 && value <= 2147483647.0)) return 151;
  out = static_cast<int>(value);
  return 0;
}

}  // namespace

int main() {
  // Made through their classes, so every call goes through the vtable as in a host.
  KrRfNumber* float64s[16];
  for (int i = 0; i < 16; ++i) {
    float64s[i] = KrRfNumber::cast(KrVtFloat64::desc()->create());
    float64s[i]->fromDouble(kSamples[i]);
  }
  KrRfNumber* int16 = KrRfNumber::cast(KrVtInt16::desc()->create());

  double ours = bench::nsPerCall([&](long long i) {
    int out = 0;
    bench::keep(float64s[i & 15]->toInt32(out));
    bench::keep(out);
  });
  double peer = bench::nsPerCall([&](long long i) {
    double d = kSamples[i & 15];
    int out = 0;
    bench::keep(d >= -2147483648.0 && d <= 2147483647.0 ? (out = static_cast<int>(d), 0) : 151);
    bench::keep(out);
  });
  bench::report("KrVtFloat64 toInt32", ours, "range test + cast to int", peer);
  peer = bench::nsPerCall([&](long long i) {
    int out = 0;
    bench::keep(calledToInt32(kSamples[i & 15], out));
    bench::keep(out);
  });
  bench::report("KrVtFloat64 toInt32", ours, "the same in a called function", peer);

  ours = bench::nsPerCall([&](long long i) { bench::keep(int16->fromDouble(kSamples[i & 15])); });
  short held = 0;
  peer = bench::nsPerCall([&](long long i) {
    double d = kSamples[i & 15];
    bench::keep(d >= -32768.0 && d <= 32767.0 ? (held = static_cast<short>(d), 0) : 151);
    bench::keep(held);
  });
  bench::report("KrVtInt16 fromDouble", ours, "range test + cast to short", peer);

  // Writing and reading a value through its formattable, beside printing it
  // into a stack buffer and scanning it with the C library.
  auto formatting = [](const KrRxObject* value) {
    return [value](long long) {
      wchar_t* text = nullptr;
      krrxFormatObject(value, text, nullptr);
      free(text);
    };
  };
  auto printing = [](const wchar_t* format, auto value) {
    return [format, value](long long) {
      wchar_t buffer[64];
      bench::keep(__mingw_snwprintf(buffer, 64, format, value));
      bench::keep(buffer);
    };
  };
  KrVtFloat64 number(1234.5);
  KrVtInt32 whole(-123456);
  bench::sideBySide("krrxFormatObject KrVtFloat64", formatting(&number), "swprintf %.03f to stack",
                    printing(L"%.03f", number.value()), 20000);
  bench::sideBySide("krrxFormatObject KrVtInt32", formatting(&whole), "swprintf %ld to stack",
                    printing(L"%ld", whole.value()), 20000);

  // The floor under any formatter that hands out a CRT heap text.
  bench::sideBySide("malloc + free of an 8-character text", [](long long) {
    void* block = malloc(9 * sizeof(wchar_t));
    bench::keep(block);
    free(block);
  }, "swprintf %ld to stack", printing(L"%ld", whole.value()), 20000);

  auto parsing = [](KrRxObject* value, const wchar_t* text) {
    return [value, text](long long) { bench::keep(krrxParseObject(value, text, nullptr)); };
  };
  auto scanning = [](const wchar_t* format, const wchar_t* text, auto value) {
    return [format, text, value](long long) mutable {
      bench::keep(__mingw_swscanf(text, format, &value));
      bench::keep(value);
    };
  };
  bench::sideBySide("krrxParseObject KrVtFloat64 \"1234.5\"", parsing(&number, L"1234.5"), "swscanf %lf",
                    scanning(L"%lf", L"1234.5", 0.0), 20000);
  bench::sideBySide("krrxParseObject KrVtInt32 \"-123456\"", parsing(&whole, L"-123456"), "swscanf %ld",
                    scanning(L"%ld", L"-123456", 0L), 20000);

  ours = bench::nsPerCall([&](long long i) {
    KrRxObject* value = new KrVtFloat64(kSamples[i & 15]);
    bench::keep(value);
    delete value;
  });
  peer = bench::nsPerCall([&](long long i) {
    DoubleHolder* holder = new DoubleHolder{kSamples[i & 15]};
    bench::keep(holder);
    delete holder;
  });
  bench::report("new + delete KrVtFloat64", ours, "new + delete struct {double}", peer);

  for (KrRfNumber* number : float64s) delete number;
  delete int16;
  return 0;
}
