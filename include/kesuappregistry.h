#pragma once
/// @file
/// The application registry: applications that the host may load on demand,
/// one Windows registry key per application below the product key:
///
/// @code
///   <product key>\Applications\<application name>
///       "DESCRIPTION"  REG_SZ     free description text
///       "LOADER"       REG_SZ     the module file to load (path or name)
///       "LOADCTRLS"    REG_DWORD  load-control flags
///       "PRODCODE"     REG_SZ     the application's product code
///       Triggers\      one value per application or command that triggers loading this one
///
/// @endcode
/// An application is loaded for a reason only when its load-control flags
/// share a bit with the reason and bit 0x10 (KesuApp::kLoadDisabled) is clear;
/// a missing or malformed "LOADCTRLS" reads as 0x10, so such an application is
/// never loaded on demand.
///
/// Reading, trigger and product-code queries and enumeration search these
/// product keys in order: the host's product key (when there is one), the
/// settable key, and then, for each minor release 20.4 down to 20.0, each of
/// those two keys that contains "20.5" with that text replaced. Each key is
/// tried in HKEY_CURRENT_USER before HKEY_LOCAL_MACHINE, and the first one
/// that opens answers. Registry failures never throw: they become statuses.

#include <vector>

#include "krexport.h"
#include "krrxmodulemessages.h"
#include "krrxobject.h"
#include "krstring.h"

namespace KesuApp {

/// The result of an application registry operation.
enum ErrorStatus : int {
  eOk = 0,
  eAppNotFound = 1,         ///< the application key is under no key of the search order
  eKeyPathNotFound = 3,     ///< the key path is missing on create or delete
  eNoAppName = 5,           ///< the record's application name is empty
  eIncompleteRecord = 6,    ///< "LOADCTRLS" missing or not a 4-byte REG_DWORD, or "LOADER" missing
  eAccessDenied = 8,
  eNotSupported = 9,        ///< group and command names are not kept in the registry
  eNotDone = 10,            ///< before an operation, and after one that failed otherwise
};

}  // namespace KesuApp

/// The names of an application key's values.
extern "C" {
/// The names of an application key's values: loader module, load-control flags, description, product code.
///@{
KR1ST_API extern const wchar_t* const LOADER;
KR1ST_API extern const wchar_t* const LOADCTRLS;
KR1ST_API extern const wchar_t* const DESCRIPTION;
KR1ST_API extern const wchar_t* const PRODCODE;
///@}
}

class KesuAppInfo;

/// Loads the application a record describes, on the host's behalf; true on success.
typedef bool (*KesuAppLoader)(const KesuAppInfo& app);

/// The registry record of one application: built, filled, read or written,
/// destroyed. status() keeps the result of the last registry operation.
class KR1ST_API KesuAppInfo : public KrRxObject {
  KRRX_DECLARE_MEMBERS(KesuAppInfo);

 public:
  KesuAppInfo() = default;
  /// A record of appName with the load-control flags given; copies are independent.
  ///@{
  explicit KesuAppInfo(const wchar_t* appName, unsigned int loadCtrls = KesuApp::kLoadDisabled);
  KesuAppInfo(const KesuAppInfo& other) = default;
  KesuAppInfo& operator=(const KesuAppInfo& other) = default;
  ///@}
  ~KesuAppInfo() override;

  /// The texts are never null.
  ///@{
  const wchar_t* appName() const { return mAppName.kwszPtr(); }
  void setAppName(const wchar_t* name) { mAppName = name; }
  const wchar_t* appDesc() const { return mDescription.kwszPtr(); }
  void setAppDesc(const wchar_t* description) { mDescription = description; }
  ///@}
  /// The module file that "LOADER" names.
  ///@{
  const wchar_t* moduleName() const { return mModuleName.kwszPtr(); }
  void setModuleName(const wchar_t* moduleName) { mModuleName = moduleName; }
  ///@}
  /// The load-control flags; 0x10 (the default) means never loaded on demand.
  ///@{
  unsigned int loadCtrls() const { return mLoadCtrls; }
  void setLoadCtrls(unsigned int flags) { mLoadCtrls = flags; }
  ///@}
  /// Why the application was loaded, and the result of the last registry operation.
  ///@{
  KesuApp::LoadReasons loadReason() const { return mLoadReason; }
  void setLoadReason(KesuApp::LoadReasons reason) { mLoadReason = reason; }
  KesuApp::ErrorStatus status() const { return mStatus; }
  ///@}

  /// The function that loads the application (see runAppLoader).
  void setAppLoader(KesuAppLoader loader) { mAppLoader = loader; }
  /// Calls the application loader with this record; false when there is none.
  bool runAppLoader() const;

  /// Fixed answers: records are never managed and implement nothing by name.
  ///@{
  bool managed() const { return false; }
  void setManaged(bool) {}
  ///@}
  /// Always false: records implement nothing by name.
  bool appImplements(const wchar_t*) const { return false; }

  /// Fills the record from the first application key of the search order.
  /// eOk; eAppNotFound; eNoAppName; eIncompleteRecord when the key lacks a
  /// well-formed "LOADCTRLS" (the flags then read 0x10) or "LOADER".
  KesuApp::ErrorStatus readFromRegistry();
  /// Writes the record below the settable key, or below the host's product
  /// key when useSettableKey is false: in HKEY_LOCAL_MACHINE, or where that
  /// fails (and always with currentUserOnly) in HKEY_CURRENT_USER. An empty
  /// description or module name deletes that value. Flags 0 leave an earlier
  /// "LOADCTRLS" value as it is. Without a product key (useSettableKey false
  /// and no host key) nothing is written and the status is eNotDone.
  KesuApp::ErrorStatus writeToRegistry(bool useSettableKey, bool currentUserOnly);
  /// Deletes the application key with everything below it, in
  /// HKEY_CURRENT_USER and then in HKEY_LOCAL_MACHINE. The status is that of
  /// the last hive that answered eOk, eKeyPathNotFound or eAccessDenied, so
  /// deleting a per-user-only registration ends with eKeyPathNotFound.
  /// Without a product key nothing is deleted and the status is eNotDone.
  KesuApp::ErrorStatus delFromRegistry(bool useSettableKey);
  /// Reads the record of the index-th registered application in the order of
  /// KesuAppRegistry::enumerate(); eAppNotFound when there is none.
  KesuApp::ErrorStatus enumerateFromRegistry(int index);
  /// Groups and commands are not kept in the registry: both write nothing and
  /// give eNotSupported.
  ///@{
  KesuApp::ErrorStatus writeGroupNameToRegistry(const wchar_t* groupName);
  KesuApp::ErrorStatus writeCommandNameToRegistry(const wchar_t* globalName, const wchar_t* localName);
  ///@}

 private:
  KrString mAppName;
  KrString mDescription;
  KrString mModuleName;
  unsigned int mLoadCtrls = KesuApp::kLoadDisabled;
  KesuApp::ErrorStatus mStatus = KesuApp::eAppNotFound;
  KesuApp::LoadReasons mLoadReason = KesuApp::LoadReasons(0);
  KesuAppLoader mAppLoader = nullptr;
};

/// The names of the registered applications.
class KR1ST_API KesuAppRegistry : public KrRxObject {
  KRRX_DECLARE_MEMBERS(KesuAppRegistry);

 public:
  KesuAppRegistry() = default;
  /// Copies hold their own list of names.
  ///@{
  KesuAppRegistry(const KesuAppRegistry& other) = default;
  KesuAppRegistry& operator=(const KesuAppRegistry& other) = default;
  ///@}
  ~KesuAppRegistry() override;

  /// Replaces the list with the application names found under every key and
  /// hive of the search order, in that order, each name once (names differing
  /// only in case are one name). Returns the count.
  int enumerate();
  /// The number of names enumerate found.
  int keyCount() const { return static_cast<int>(mNames.size()); }
  /// The index-th name, or null when index is out of range.
  const wchar_t* keyName(int index) const;

 private:
  std::vector<KrString> mNames;
};

/// Writes a record of appName with only its load-control flags (so an
/// existing description and loader are deleted), as writeToRegistry(useSettableKey, false).
KR1ST_API KesuApp::ErrorStatus krrxRegisterApp(KesuApp::LoadReasons loadCtrls, const wchar_t* appName,
                                               bool useSettableKey);
/// Deletes appName's key, as delFromRegistry(useSettableKey).
KR1ST_API KesuApp::ErrorStatus krrxUnregisterApp(const wchar_t* appName, bool useSettableKey);
/// True when the first "Triggers" key of appName in search order holds a value named triggerName.
KR1ST_API bool krrxIsAppTriggeredBy(const wchar_t* appName, const wchar_t* triggerName);
/// Reads "PRODCODE" of the first application key of appName in search order.
/// On success prodCode is a block of the runtime heap that the caller frees
/// with __krFree; otherwise it is null.
KR1ST_API bool krrxGetAppProdCode(const wchar_t* appName, wchar_t*& prodCode);

/// The settable key: "SOFTWARE\OrvanCAD\Kestrune\R20.5" until the host sets
/// another. It lives in a process-wide buffer of kKestruneRegistryKeySize
/// characters; krrxSetKestruneRegistryKey copies the text in without checking
/// its length, so a longer text (terminator included) is the caller's fault.
/// A null text leaves the key as it is.
///@{
constexpr unsigned int kKestruneRegistryKeySize = 512;
KR1ST_API const wchar_t* krrxKestruneRegistryKey();
KR1ST_API void krrxSetKestruneRegistryKey(const wchar_t* key);
///@}

/// The host's product key (null without a host that supplies one) and locale
/// (the system default locale without a dynamic linker).
///@{
KR1ST_API const wchar_t* krrxProductKey();
KR1ST_API unsigned int krrxProductLCID();
///@}
