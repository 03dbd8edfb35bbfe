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

}  // namespace

int main() {
  // Made through the class, so calls go through the vtable as in a host.
  KrRfNumber* float64 = KrRfNumber::cast(KrVtFloat64::desc()->create());
  KrRfNumber* int16 = KrRfNumber::cast(KrVtInt16::desc()->create());

  double ours = bench::nsPerCall([&](long long i) {
    float64->fromDouble(kSamples[i & 15]);
    int out = 0;
    bench::keep(float64->toInt32(out));
    bench::keep(out);
  });
  double peer = bench::nsPerCall([&](long long i) {
    volatile double held = kSamples[i & 15];
    double d = held;
    int out = 0;
    if (d >= -2147483648.0 && d <= 2147483647.0) out = static_cast<int>(d);
    bench::keep(out);
  });
  bench::report("KrVtFloat64 fromDouble + toInt32", ours, "store + range test + cast", peer);

  ours = bench::nsPerCall([&](long long i) { bench::keep(int16->fromDouble(kSamples[i & 15])); });
  peer = bench::nsPerCall([&](long long i) {
    double d = kSamples[i & 15];
    volatile short out = 0;
    if (d >= -32768.0 && d <= 32767.0) out = static_cast<short>(d);
    bench::keep(out);
  });
  bench::report("KrVtInt16 fromDouble", ours, "range test + cast to short", peer);

  KrVtFloat64 number(1234.5);
  KrVtInt32 whole(-123456);
  ours = bench::nsPerCall([&](long long) {
    wchar_t* text = nullptr;
    krrxFormatObject(&number, text, nullptr);
    free(text);
  }, 20000);
  peer = bench::nsPerCall([&](long long) {
    wchar_t buffer[64];
    bench::keep(__mingw_snwprintf(buffer, 64, L"%.03f", number.value()));
    bench::keep(buffer);
  }, 20000);
  bench::report("krrxFormatObject KrVtFloat64", ours, "swprintf %.03f to stack", peer);

  ours = bench::nsPerCall([&](long long) {
    wchar_t* text = nullptr;
    krrxFormatObject(&whole, text, nullptr);
    free(text);
  }, 20000);
  peer = bench::nsPerCall([&](long long) {
    wchar_t buffer[64];
    bench::keep(__mingw_snwprintf(buffer, 64, L"%ld", whole.value()));
    bench::keep(buffer);
  }, 20000);
  bench::report("krrxFormatObject KrVtInt32", ours, "swprintf %ld to stack", peer);

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

  delete float64;
  delete int16;
  return 0;
}
