// String speed beside std::wstring and the bare Windows conversion, measured
// in one run: copying a 32-character string, reading a cached wide form, the
// first narrow conversion of a 1,000-character text, and interning a known name.

#include <windows.h>

#include <cwctype>
#include <string>
#include <unordered_map>

#include "BenchHarness.h"
#include "krstring.h"
#include "kruniquestring.h"

namespace {

void benchCopy() {
  const std::wstring text(32, L'x');  // past the small-string buffer, so the peer allocates
  const KrString ours(text.c_str());
  double copyOurs = bench::nsPerCall([&](long long) {
    KrString copy(ours);
    bench::keep(copy);
  }, 1000000);
  double copyPeer = bench::nsPerCall([&](long long) {
    std::wstring copy(text);
    bench::keep(copy);
  }, 1000000);
  bench::report("copy + destroy, 32 characters", copyOurs, "std::wstring", copyPeer);
}

void benchCachedWide() {
  const std::wstring text(32, L'x');
  const KrString ours(text.c_str());
  double readOurs = bench::nsPerCall([&](long long) { bench::keep(ours.kwszPtr()); }, 10000000);
  double readPeer = bench::nsPerCall([&](long long) { bench::keep(text.c_str()); }, 10000000);
  bench::report("kwszPtr, cached wide form", readOurs, "std::wstring::c_str", readPeer);
}

void benchFirstNarrow() {
  std::wstring text;
  for (int i = 0; i < 1000; ++i) text += static_cast<wchar_t>(L'a' + i % 26);
  const KrString wideOnly(text.c_str());
  char narrow[1001];
  double convertOurs = bench::nsPerCall([&](long long) {
    KrString copy(wideOnly);  // shares the wide form only, so kszPtr converts
    bench::keep(copy.kszPtr());
  }, 20000);
  double convertPeer = bench::nsPerCall([&](long long) {
    bench::keep(WideCharToMultiByte(CP_ACP, 0, text.c_str(), 1000, narrow, 1000, nullptr, nullptr));
  }, 20000);
  bench::report("first kszPtr, 1,000 characters", convertOurs, "bare WideCharToMultiByte", convertPeer);
}

void benchIntern() {
  const wchar_t* name = L"AcDbBlockTableRecord";
  KrUniqueString::Intern(name);
  std::unordered_map<std::wstring, uintptr_t> peer{{L"acdbblocktablerecord", 0x110000}};
  double internOurs = bench::nsPerCall([&](long long) { bench::keep(KrUniqueString::Intern(name)); }, 1000000);
  double internPeer = bench::nsPerCall([&](long long) {
    std::wstring key(name);
    for (wchar_t& c : key) c = towlower(c);
    bench::keep(peer.find(key)->second);
  }, 1000000);
  bench::report("Intern of a known name", internOurs, "lower-case + unordered_map::find", internPeer);
}

}  // namespace

int main() {
  benchCopy();
  benchCachedWide();
  benchFirstNarrow();
  benchIntern();
  return 0;
}
