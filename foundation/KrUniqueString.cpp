// The process-wide table of interned names.

#include "kruniquestring.h"

#include <cstdint>
#include <locale>
#include <mutex>
#include <string>
#include <unordered_map>

namespace {

// Keys are names lower-cased with the classic locale; values their serial
// numbers. The table lives until the process ends. A lock lets several
// threads intern at once.
class InternTable {
 public:
  uintptr_t numberOf(const wchar_t* name) {
    std::lock_guard<std::mutex> hold(mLock);
    mKey.assign(name);
    for (wchar_t& c : mKey) c = lowerCase(c);
    auto inserted = mNumbers.try_emplace(mKey, mNext);
    if (inserted.second) ++mNext;
    return inserted.first->second;
  }

 private:
  // The classic locale's lower case. It maps ASCII by A-Z alone, so that
  // range, the usual one for names, is mapped here without a call.
  wchar_t lowerCase(wchar_t c) const {
    if (c >= 0x80) return mCase.tolower(c);
    return c >= L'A' && c <= L'Z' ? static_cast<wchar_t>(c + (L'a' - L'A')) : c;
  }

  static constexpr uintptr_t kFirstNumber = 0x110000;  // one past the highest code point
  static constexpr size_t kInitialBuckets = 8;

  std::mutex mLock;
  const std::ctype<wchar_t>& mCase = std::use_facet<std::ctype<wchar_t>>(std::locale::classic());
  std::unordered_map<std::wstring, uintptr_t> mNumbers{kInitialBuckets};
  uintptr_t mNext = kFirstNumber;
  std::wstring mKey;  // reused for every lookup, so that finding a known name allocates nothing
};

}  // namespace

const KrUniqueString* KrUniqueString::Intern(const wchar_t* name) {
  if (!name || !*name) return nullptr;
  static InternTable table;
  return reinterpret_cast<const KrUniqueString*>(table.numberOf(name));
}
