// The search order of the application registry.

#include "modules/KesuAppKeyList.h"

#include <cwchar>
#include <new>

#include "kesuappregistry.h"

namespace {

const wchar_t kCurrentRelease[] = L"20.5";
const wchar_t* const kEarlierReleases[] = {L"20.4", L"20.3", L"20.2", L"20.1", L"20.0"};
const HKEY kHives[] = {HKEY_CURRENT_USER, HKEY_LOCAL_MACHINE};

}  // namespace

KesuAppKeyList::KesuAppKeyList() {
  std::vector<KrString> current;
  if (const wchar_t* productKey = krrxProductKey()) current.emplace_back(productKey);
  current.emplace_back(krrxKestruneRegistryKey());
  mProductKeys = current;
  for (const wchar_t* release : kEarlierReleases) {
    for (const KrString& key : current) {
      if (key.find(kCurrentRelease) < 0) continue;
      KrString earlier(key);
      earlier.replace(kCurrentRelease, release);
      mProductKeys.push_back(earlier);
    }
  }
}

bool KesuAppKeyList::search(const wchar_t* subKey, REGSAM access, const std::function<bool(HKEY)>& use) const {
  for (const KrString& productKey : mProductKeys) {
    KrString path = krrxKeyPath({productKey.kwszPtr(), subKey});
    for (HKEY hive : kHives) {
      HKEY key;
      if (RegOpenKeyExW(hive, path, 0, access, &key) != ERROR_SUCCESS) continue;
      bool done = use(key);
      RegCloseKey(key);
      if (done) return true;
    }
  }
  return false;
}

bool KesuAppKeyList::useFirst(const wchar_t* subKey, REGSAM access, const std::function<void(HKEY)>& use) const {
  return search(subKey, access, [&use](HKEY key) {
    use(key);
    return true;
  });
}

KrString krrxKeyPath(std::initializer_list<const wchar_t*> parts) {
  KrString path;
  size_t length = 0;
  for (const wchar_t* part : parts) {
    if (!part) continue;
    path += part;
    length += wcslen(part);
  }
  if (size_t(path.lengthW()) != length) throw std::bad_alloc();
  return path;
}

KrString krrxApplicationSubKey(const wchar_t* appName, const wchar_t* tail) {
  return krrxKeyPath({L"\\Applications\\", appName, tail});
}

bool krrxQueryRegText(HKEY key, const wchar_t* name, KrString& text) {
  DWORD type = REG_NONE;
  DWORD size = 0;
  if (RegQueryValueExW(key, name, nullptr, &type, nullptr, &size) != ERROR_SUCCESS || type != REG_SZ) return false;
  // One spare unit terminates a value stored without its terminator.
  std::vector<wchar_t> buffer(size / sizeof(wchar_t) + 1, L'\0');
  if (RegQueryValueExW(key, name, nullptr, &type, reinterpret_cast<BYTE*>(buffer.data()), &size) != ERROR_SUCCESS ||
      type != REG_SZ)
    return false;
  text = buffer.data();
  return true;
}
