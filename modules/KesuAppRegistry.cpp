// The list of registered applications, and the queries that follow the
// search order for one application: triggers and product code.

#include "kesuappregistry.h"

#include <windows.h>

#include <algorithm>

#include "modules/KesuAppKeyList.h"
#include "runtime/KrRxCoreClass.h"

KRRX_CORE_CONS_DEFINE_MEMBERS(KesuAppRegistry, KrRxObject)

namespace {

bool isEmpty(const wchar_t* text) { return !text || !*text; }

// The names of the subkeys of key, appended to names unless already there.
void addSubKeyNames(HKEY key, std::vector<KrString>& names) {
  DWORD count = 0;
  DWORD longestName = 0;
  if (RegQueryInfoKeyW(key, nullptr, nullptr, nullptr, &count, &longestName, nullptr, nullptr, nullptr, nullptr,
                       nullptr, nullptr) != ERROR_SUCCESS)
    return;
  std::vector<wchar_t> name(longestName + 1);
  for (DWORD index = 0; index < count; ++index) {
    DWORD length = static_cast<DWORD>(name.size());
    if (RegEnumKeyExW(key, index, name.data(), &length, nullptr, nullptr, nullptr, nullptr) != ERROR_SUCCESS) continue;
    auto sameName = [&name](const KrString& known) { return known.compareNoCase(name.data()) == 0; };
    if (std::none_of(names.begin(), names.end(), sameName)) names.emplace_back(name.data());
  }
}

}  // namespace

KesuAppRegistry::~KesuAppRegistry() = default;

int KesuAppRegistry::enumerate() {
  mNames.clear();
  KesuAppKeyList().search(L"\\Applications", KEY_QUERY_VALUE | KEY_ENUMERATE_SUB_KEYS, [this](HKEY key) {
    addSubKeyNames(key, mNames);
    return false;
  });
  return keyCount();
}

const wchar_t* KesuAppRegistry::keyName(int index) const {
  return index >= 0 && index < keyCount() ? mNames[index].kwszPtr() : nullptr;
}

bool krrxIsAppTriggeredBy(const wchar_t* appName, const wchar_t* triggerName) {
  if (isEmpty(appName) || !triggerName) return false;
  bool triggered = false;
  KesuAppKeyList().useFirst(krrxApplicationSubKey(appName, L"\\Triggers"), KEY_QUERY_VALUE, [&](HKEY key) {
    triggered = RegQueryValueExW(key, triggerName, nullptr, nullptr, nullptr, nullptr) == ERROR_SUCCESS;
  });
  return triggered;
}

bool krrxGetAppProdCode(const wchar_t* appName, wchar_t*& prodCode) {
  prodCode = nullptr;
  if (isEmpty(appName)) return false;
  KesuAppKeyList().useFirst(krrxApplicationSubKey(appName), KEY_QUERY_VALUE, [&](HKEY key) {
    KrString code;
    if (krrxQueryRegText(key, PRODCODE, code)) prodCode = __krStrdup(code.kwszPtr());
  });
  return prodCode != nullptr;
}
