// The registry record of one application: reading, writing and deleting its key.

#include "kesuappregistry.h"

#include <windows.h>

#include "modules/KesuAppKeyList.h"
#include "runtime/KrRxCoreClass.h"

KRRX_CORE_CONS_DEFINE_MEMBERS(KesuAppInfo, KrRxObject)

extern "C" {
const wchar_t* const LOADER = L"LOADER";
const wchar_t* const LOADCTRLS = L"LOADCTRLS";
const wchar_t* const DESCRIPTION = L"DESCRIPTION";
const wchar_t* const PRODCODE = L"PRODCODE";
}

namespace {

// The status that a Windows error of a create or delete sets; others leave it.
void setStatusFrom(LSTATUS error, KesuApp::ErrorStatus& status) {
  switch (error) {
    case ERROR_SUCCESS: status = KesuApp::eOk; break;
    case ERROR_FILE_NOT_FOUND: status = KesuApp::eKeyPathNotFound; break;
    case ERROR_ACCESS_DENIED: status = KesuApp::eAccessDenied; break;
    default: break;
  }
}

// Creates (or opens) the application key for writing in HKEY_LOCAL_MACHINE,
// else in HKEY_CURRENT_USER; only in the latter with currentUserOnly. Null
// when neither hive allows it.
HKEY createKey(const KrString& path, bool currentUserOnly, KesuApp::ErrorStatus& status) {
  for (HKEY hive : {HKEY_LOCAL_MACHINE, HKEY_CURRENT_USER}) {
    if (currentUserOnly && hive != HKEY_CURRENT_USER) continue;
    HKEY key;
    LSTATUS error = RegCreateKeyExW(hive, path, 0, nullptr, 0, KEY_SET_VALUE, nullptr, &key, nullptr);
    setStatusFrom(error, status);
    if (error == ERROR_SUCCESS) return key;
  }
  return nullptr;
}

// The application key below the settable key or the host's product key;
// empty when the host supplies no product key.
KrString applicationKey(bool useSettableKey, const wchar_t* appName) {
  const wchar_t* productKey = useSettableKey ? krrxKestruneRegistryKey() : krrxProductKey();
  return productKey ? krrxKeyPath({productKey, krrxApplicationSubKey(appName).kwszPtr()}) : KrString();
}

// Writes text as REG_SZ with its terminator; an empty text deletes the value.
void writeText(HKEY key, const wchar_t* name, const KrString& text) {
  if (text.isEmpty()) {
    RegDeleteValueW(key, name);
    return;
  }
  DWORD size = static_cast<DWORD>((text.lengthW() + 1) * sizeof(wchar_t));
  RegSetValueExW(key, name, 0, REG_SZ, reinterpret_cast<const BYTE*>(text.kwszPtr()), size);
}

// Reads the load-control flags of key; false when "LOADCTRLS" is missing or not a 4-byte REG_DWORD.
bool readLoadCtrls(HKEY key, unsigned int& flags) {
  DWORD type = REG_NONE;
  DWORD value = 0;
  DWORD size = sizeof value;
  if (RegQueryValueExW(key, LOADCTRLS, nullptr, &type, reinterpret_cast<BYTE*>(&value), &size) != ERROR_SUCCESS ||
      type != REG_DWORD || size != sizeof value)
    return false;
  flags = value;
  return true;
}

}  // namespace

KesuAppInfo::KesuAppInfo(const wchar_t* appName, unsigned int loadCtrls) : mAppName(appName), mLoadCtrls(loadCtrls) {}

KesuAppInfo::~KesuAppInfo() = default;

bool KesuAppInfo::runAppLoader() const { return mAppLoader && mAppLoader(*this); }

KesuApp::ErrorStatus KesuAppInfo::readFromRegistry() {
  if (mAppName.isEmpty()) return mStatus = KesuApp::eNoAppName;
  bool found = KesuAppKeyList().useFirst(krrxApplicationSubKey(appName()), KEY_QUERY_VALUE, [this](HKEY key) {
    mStatus = KesuApp::eOk;
    mDescription.clearAll();
    krrxQueryRegText(key, DESCRIPTION, mDescription);
    if (!readLoadCtrls(key, mLoadCtrls)) {
      mLoadCtrls = KesuApp::kLoadDisabled;
      mStatus = KesuApp::eIncompleteRecord;
    }
    mModuleName.clearAll();
    if (!krrxQueryRegText(key, LOADER, mModuleName)) mStatus = KesuApp::eIncompleteRecord;
  });
  if (!found) mStatus = KesuApp::eAppNotFound;
  return mStatus;
}

KesuApp::ErrorStatus KesuAppInfo::writeToRegistry(bool useSettableKey, bool currentUserOnly) {
  if (mAppName.isEmpty()) return mStatus = KesuApp::eNoAppName;
  mStatus = KesuApp::eNotDone;
  KrString path = applicationKey(useSettableKey, appName());
  if (path.isEmpty()) return mStatus;
  HKEY key = createKey(path, currentUserOnly, mStatus);
  if (!key) return mStatus;
  writeText(key, DESCRIPTION, mDescription);
  writeText(key, LOADER, mModuleName);
  if (mLoadCtrls) {
    DWORD flags = mLoadCtrls;
    RegSetValueExW(key, LOADCTRLS, 0, REG_DWORD, reinterpret_cast<const BYTE*>(&flags), sizeof flags);
  } else {
    // Deletes a subkey of that name, not the value: flags 0 keep an earlier value.
    RegDeleteKeyW(key, LOADCTRLS);
  }
  RegCloseKey(key);
  return mStatus;
}

KesuApp::ErrorStatus KesuAppInfo::delFromRegistry(bool useSettableKey) {
  if (mAppName.isEmpty()) return mStatus = KesuApp::eNoAppName;
  mStatus = KesuApp::eNotDone;
  KrString path = applicationKey(useSettableKey, appName());
  if (path.isEmpty()) return mStatus;
  for (HKEY hive : {HKEY_CURRENT_USER, HKEY_LOCAL_MACHINE}) setStatusFrom(RegDeleteTreeW(hive, path), mStatus);
  return mStatus;
}

KesuApp::ErrorStatus KesuAppInfo::enumerateFromRegistry(int index) {
  KesuAppRegistry registry;
  registry.enumerate();
  const wchar_t* name = registry.keyName(index);
  if (!name) return mStatus = KesuApp::eAppNotFound;
  setAppName(name);
  return readFromRegistry();
}

KesuApp::ErrorStatus KesuAppInfo::writeGroupNameToRegistry(const wchar_t*) { return mStatus = KesuApp::eNotSupported; }

KesuApp::ErrorStatus KesuAppInfo::writeCommandNameToRegistry(const wchar_t*, const wchar_t*) {
  return mStatus = KesuApp::eNotSupported;
}

KesuApp::ErrorStatus krrxRegisterApp(KesuApp::LoadReasons loadCtrls, const wchar_t* appName, bool useSettableKey) {
  return KesuAppInfo(appName, loadCtrls).writeToRegistry(useSettableKey, false);
}

KesuApp::ErrorStatus krrxUnregisterApp(const wchar_t* appName, bool useSettableKey) {
  return KesuAppInfo(appName).delFromRegistry(useSettableKey);
}
