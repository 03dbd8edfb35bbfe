#pragma once
/// @file
/// The dynamic linker: loads, verifies and unloads extension modules, keeps
/// the loaded-module table, delivers application messages and tells reactors
/// about every load and unload. There is one per process, in the system
/// registry under "DynamicLinker".

#include "krrxmodulemessages.h"
#include "krrxobject.h"

class KrRxDictionaryIterator;
class KrRxGenHand;
class KrRxService;

/// The module entry protocol. Every loadable module exports
///   extern "C" unsigned int krrxGetApiVersion();   // major << 16 | minor
///   extern "C" KrRx::AppRetCode krrxEntryPoint(KrRx::AppMsgCode message, void* packet);
/// A module is accepted when its version lies between KRRX_MIN_API_VERSION
/// and KRRX_CUR_API_VERSION.
///
/// The linker calls krrxGetApiVersion while the module is only mapped, its
/// imports not yet resolved: the function must return a constant and touch
/// nothing imported (KRRX_CUR_API_VERSION is imported data). A version
/// function that faults there makes the linker refuse the module. Write
///   KRRX_DEFINE_API_VERSION()
/// at file scope in one source of the module, or let kestrune_add_module()
/// add it.
typedef unsigned int (*KrRxGetApiVersionFunction)();

/// The API version of these headers, 20.5, as a compile-time constant.
#define KRRX_SDK_API_VERSION 0x00140005u

/// Defines and exports krrxGetApiVersion, returning KRRX_SDK_API_VERSION.
#define KRRX_DEFINE_API_VERSION() \
  extern "C" __declspec(dllexport) unsigned int krrxGetApiVersion() { return KRRX_SDK_API_VERSION; }

extern "C" {
KR1ST_API extern const char* const KRRX_ENTRY_POINT;      ///< "krrxEntryPoint"
KR1ST_API extern const char* const KRRX_GET_API_VERSION;  ///< "krrxGetApiVersion"
KR1ST_API extern const unsigned int KRRX_CUR_API_VERSION;  ///< 0x00140005, version 20.5
KR1ST_API extern const unsigned int KRRX_MIN_API_VERSION;  ///< 0x00140000, version 20.0
/// When true, a machine fault inside a module's entry point is caught and the
/// call fails with 3 instead of reaching the host. False at start.
KR1ST_API extern bool bCatchSendAppExceptions;
}

/// Told about module loads and unloads; every notification does nothing by default.
class KR1ST_API KrRxDLinkerReactor : public KrRxObject {
  KRRX_DECLARE_MEMBERS(KrRxDLinkerReactor);

 public:
  /// Before a module loads, once it has loaded, and when its load failed; the same for unloading.
  ///@{
  virtual void rxAppWillBeLoaded(const wchar_t* moduleName);
  virtual void rxAppLoaded(const wchar_t* moduleName);
  virtual void rxAppLoadAborted(const wchar_t* moduleName);
  virtual void rxAppWillBeUnloaded(const wchar_t* moduleName);
  virtual void rxAppUnloaded(const wchar_t* moduleName);
  virtual void rxAppUnloadAborted(const wchar_t* moduleName);
  ///@}
};

/// A reactor that is offered each module before it is loaded and may veto it.
class KR1ST_API KrRxDLinkerReactor2 : public KrRxDLinkerReactor {
  KRRX_DECLARE_MEMBERS(KrRxDLinkerReactor2);

 public:
  /// Offered the mapped module before its real load; call veto() to refuse it.
  virtual void rxAppCouldBeLoaded(void* moduleHandle);
  /// Refuses the module being offered; an empty reason gives the standard message.
  void veto(const wchar_t* reason);
};

/// Loads and unloads modules, keeps the loaded-module table and tells its reactors.
class KR1ST_API KrRxDynamicLinker : public KrRxObject {
  KRRX_DECLARE_MEMBERS(KrRxDynamicLinker);

 public:
  /// The address of an exported symbol of a loaded module, or null.
  ///@{
  virtual void* getSymbolAddress(const wchar_t* module, const wchar_t* symbol) const = 0;
  virtual void* getSymbolAddress(const wchar_t* module, const char* symbol) const = 0;
  ///@}
  /// Loads every module named in the start-up list file (the host's default when null); false when one failed.
  virtual bool initListedModules(const wchar_t* listFile) = 0;
  /// Loads a module by name (trying .kra, .krx and .dll), or counts a reference when it is loaded; false on failure.
  virtual bool loadModule(const wchar_t* moduleName, bool printMessages, bool asCommand) = 0;
  /// Loads the module of a registered application for reason.
  virtual bool loadApp(const wchar_t* appName, KesuApp::LoadReasons reason, bool printMessages,
                       bool asCommand) = 0;
  /// Enters service under serviceName in the service dictionary, owned by the
  /// current module when one is current.
  virtual KrRxObject* registerService(const wchar_t* serviceName, KrRxService* service) = 0;
  /// Unloads a module, or a registered application's module; false when it stays (locked, vetoed, in use).
  ///@{
  virtual bool unloadModule(const wchar_t* moduleName, bool asCommand) = 0;
  virtual bool unloadApp(const wchar_t* appName, bool asCommand) = 0;
  ///@}
  /// Adds or removes a reactor told about loads and unloads; the linker never owns it.
  ///@{
  virtual void addReactor(KrRxDLinkerReactor* reactor) = 0;
  virtual void removeReactor(KrRxDLinkerReactor* reactor) = 0;
  ///@}
  /// A module's lock, MDI flag and busy flag, by file name or by its handle appId; false for unknown modules.
  ///@{
  virtual bool isApplicationLocked(const wchar_t* moduleName) const = 0;
  virtual bool lockApplication(void* appId) const = 0;
  virtual bool unlockApplication(void* appId) const = 0;
  virtual bool isAppMDIAware(const wchar_t* moduleName) const = 0;
  virtual bool registerAppMDIAware(void* appId) const = 0;
  virtual bool registerAppNotMDIAware(void* appId) const = 0;
  virtual bool isAppBusy(const wchar_t* moduleName) const = 0;
  virtual void setAppBusy(const wchar_t* moduleName, bool busy) const = 0;
  ///@}
  /// The host's product key and locale, as the host services give them.
  ///@{
  virtual const wchar_t* ProductKey() const = 0;
  virtual unsigned int ProductLcid() const = 0;
  ///@}
  /// Registers a module the host has already loaded (its handle) as if the linker had loaded it.
  virtual bool loadApp(void* moduleHandle, KesuApp::LoadReasons reason, bool printMessages, bool asCommand) = 0;
  /// A new iterator over the loaded-module table (key: file name, object: its KrRxGenHand) that the caller deletes.
  virtual KrRxDictionaryIterator* loadedModulesIterator() = 0;
  /// Loads every registered application that triggerName triggers, or that loads for reason.
  ///@{
  virtual bool loadApps(const wchar_t* triggerName) = 0;
  virtual bool loadApps(KesuApp::LoadReasons reason) = 0;
  ///@}
  /// The KrRxGenHand of a loaded module by file name, or null.
  virtual void* moduleHandlePtr(const wchar_t* moduleName) = 0;
  /// Sends code and packet to the loaded module moduleName on behalf of sender; false when it fails or is not loaded.
  virtual bool sendAppMessage(const wchar_t* moduleName, KrRx::AppMsgCode code, void* packet,
                              KrRxGenHand* sender) = 0;
};

/// The linker's operations for hosts and modules. Each finds the linker in the
/// system registry and does nothing (false, null) when there is none.
KR1ST_API bool krrxLoadModule(const wchar_t* name, bool printMessages, bool asCommand);
/// Loads a registered application by name (load reason 8, no messages).
KR1ST_API bool krrxLoadApp(const wchar_t* appName, bool asCommand);
/// Unloads a module, or a registered application's module, as a command or not; false when it stays.
///@{
KR1ST_API bool krrxUnloadModule(const wchar_t* name, bool asCommand);
KR1ST_API bool krrxUnloadApp(const wchar_t* appName, bool asCommand);
///@}
/// True when the application's registered loader module is loaded, or a
/// loaded module carries appName as a logical application name (any case).
KR1ST_API bool krrxAppIsLoaded(const wchar_t* appName);
/// Sends code and packet to the module name on behalf of the current module.
KR1ST_API bool krrxSendAppMessage(const wchar_t* name, KrRx::AppMsgCode code, void* packet);
/// appId is the module's own KrRxGenHand, the packet of its kAppMsgInit.
KR1ST_API bool krrxLockApplication(void* appId);
/// Lets the module appId be unloaded by command; false for an unknown module.
KR1ST_API bool krrxUnlockApplication(void* appId);
/// Whether the loaded module name is locked; false when it is not loaded.
KR1ST_API bool krrxApplicationIsLocked(const wchar_t* name);
/// Declares the module appId able, or not able, to work with several documents.
///@{
KR1ST_API bool krrxRegisterAppMDIAware(void* appId);
KR1ST_API bool krrxRegisterAppNotMDIAware(void* appId);
///@}
/// Whether the loaded module name declared itself MDI-aware.
KR1ST_API bool krrxIsAppMDIAware(const wchar_t* name);
/// Monitors hear about loads before the other reactors; true when the linker exists.
///@{
KR1ST_API bool krrxAddDbAppMonitor(KrRxDLinkerReactor* monitor);
KR1ST_API bool krrxRemoveDbAppMonitor(KrRxDLinkerReactor* monitor);
///@}
/// Loads the modules listed in the start-up list file: the host's base name
/// (default "krrx") with ".rx" appended, relative to the current directory.
KR1ST_API bool krrxProcessInitFile();
