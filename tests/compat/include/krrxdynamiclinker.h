#pragma once
// The dynamic linker: loads, verifies and unloads extension modules, keeps
// the loaded-module table, delivers application messages and tells reactors
// about every load and unload. There is one per process, in the system
// registry under "DynamicLinker".

#include "krrxmodulemessages.h"
#include "krrxobject.h"

class KrRxDictionaryIterator;
class KrRxGenHand;
class KrRxService;

// The module entry protocol. Every loadable module exports
//   extern "C" unsigned int krrxGetApiVersion();   // major << 16 | minor
//   extern "C" KrRx::AppRetCode krrxEntryPoint(KrRx::AppMsgCode message, void* packet);
// A module is accepted when its version lies between KRRX_MIN_API_VERSION
// and KRRX_CUR_API_VERSION.
typedef unsigned int (*KrRxGetApiVersionFunction)();

extern "C" {
KR1ST_API extern const char* const KRRX_ENTRY_POINT;      // "krrxEntryPoint"
KR1ST_API extern const char* const KRRX_GET_API_VERSION;  // "krrxGetApiVersion"
KR1ST_API extern const unsigned int KRRX_CUR_API_VERSION;  // 0x00140005, version 20.5
KR1ST_API extern const unsigned int KRRX_MIN_API_VERSION;  // 0x00140000, version 20.0
// When true, a machine fault inside a module's entry point is caught and the
// call fails with 3 instead of reaching the host. False at start.
KR1ST_API extern bool bCatchSendAppExceptions;
}

// Told about module loads and unloads; every notification does nothing by default.
class KR1ST_API KrRxDLinkerReactor : public KrRxObject {
  KRRX_DECLARE_MEMBERS(KrRxDLinkerReactor);

 public:
  virtual void rxAppWillBeLoaded(const wchar_t* moduleName);
  virtual void rxAppLoaded(const wchar_t* moduleName);
  virtual void rxAppLoadAborted(const wchar_t* moduleName);
  virtual void rxAppWillBeUnloaded(const wchar_t* moduleName);
  virtual void rxAppUnloaded(const wchar_t* moduleName);
  virtual void rxAppUnloadAborted(const wchar_t* moduleName);
};

// A reactor that is offered each module before it is loaded and may veto it.
class KR1ST_API KrRxDLinkerReactor2 : public KrRxDLinkerReactor {
  KRRX_DECLARE_MEMBERS(KrRxDLinkerReactor2);

 public:
  virtual void rxAppCouldBeLoaded(void* moduleHandle);
  // Refuses the module being offered; an empty reason gives the standard message.
  void veto(const wchar_t* reason);
};

class KR1ST_API KrRxDynamicLinker : public KrRxObject {
  KRRX_DECLARE_MEMBERS(KrRxDynamicLinker);

 public:
  virtual void* getSymbolAddress(const wchar_t* module, const wchar_t* symbol) const = 0;
  virtual void* getSymbolAddress(const wchar_t* module, const char* symbol) const = 0;
  virtual bool initListedModules(const wchar_t* listFile) = 0;
  virtual bool loadModule(const wchar_t* moduleName, bool printMessages, bool asCommand) = 0;
  virtual bool loadApp(const wchar_t* appName, KesuApp::LoadReasons reason, bool printMessages,
                       bool asCommand) = 0;
  // Enters service under serviceName in the service dictionary, owned by the
  // current module when one is current.
  virtual KrRxObject* registerService(const wchar_t* serviceName, KrRxService* service) = 0;
  virtual bool unloadModule(const wchar_t* moduleName, bool asCommand) = 0;
  virtual bool unloadApp(const wchar_t* appName, bool asCommand) = 0;
  virtual void addReactor(KrRxDLinkerReactor* reactor) = 0;
  virtual void removeReactor(KrRxDLinkerReactor* reactor) = 0;
  virtual bool isApplicationLocked(const wchar_t* moduleName) const = 0;
  virtual bool lockApplication(void* appId) const = 0;
  virtual bool unlockApplication(void* appId) const = 0;
  virtual bool isAppMDIAware(const wchar_t* moduleName) const = 0;
  virtual bool registerAppMDIAware(void* appId) const = 0;
  virtual bool registerAppNotMDIAware(void* appId) const = 0;
  virtual bool isAppBusy(const wchar_t* moduleName) const = 0;
  virtual void setAppBusy(const wchar_t* moduleName, bool busy) const = 0;
  virtual const wchar_t* ProductKey() const = 0;
  virtual unsigned int ProductLcid() const = 0;
  virtual bool loadApp(void* moduleHandle, KesuApp::LoadReasons reason, bool printMessages, bool asCommand) = 0;
  virtual KrRxDictionaryIterator* loadedModulesIterator() = 0;
  virtual bool loadApps(const wchar_t* triggerName) = 0;
  virtual bool loadApps(KesuApp::LoadReasons reason) = 0;
  virtual void* moduleHandlePtr(const wchar_t* moduleName) = 0;
  virtual bool sendAppMessage(const wchar_t* moduleName, KrRx::AppMsgCode code, void* packet,
                              KrRxGenHand* sender) = 0;
};

// The linker's operations for hosts and modules. Each finds the linker in the
// system registry and does nothing (false, null) when there is none.
KR1ST_API bool krrxLoadModule(const wchar_t* name, bool printMessages, bool asCommand);
// Loads a registered application by name (load reason 8, no messages).
KR1ST_API bool krrxLoadApp(const wchar_t* appName, bool asCommand);
KR1ST_API bool krrxUnloadModule(const wchar_t* name, bool asCommand);
KR1ST_API bool krrxUnloadApp(const wchar_t* appName, bool asCommand);
// True when the application's registered loader module is loaded, or a
// loaded module carries appName as a logical application name (any case).
KR1ST_API bool krrxAppIsLoaded(const wchar_t* appName);
// Sends code and packet to the module name on behalf of the current module.
KR1ST_API bool krrxSendAppMessage(const wchar_t* name, KrRx::AppMsgCode code, void* packet);
// appId is the module's own KrRxGenHand, the packet of its kAppMsgInit.
KR1ST_API bool krrxLockApplication(void* appId);
KR1ST_API bool krrxUnlockApplication(void* appId);
KR1ST_API bool krrxApplicationIsLocked(const wchar_t* name);
KR1ST_API bool krrxRegisterAppMDIAware(void* appId);
KR1ST_API bool krrxRegisterAppNotMDIAware(void* appId);
KR1ST_API bool krrxIsAppMDIAware(const wchar_t* name);
// Monitors hear about loads before the other reactors; true when the linker exists.
KR1ST_API bool krrxAddDbAppMonitor(KrRxDLinkerReactor* monitor);
KR1ST_API bool krrxRemoveDbAppMonitor(KrRxDLinkerReactor* monitor);
// Loads the modules listed in the start-up list file: the host's base name
// (default "krrx") with ".rx" appended, relative to the current directory.
KR1ST_API bool krrxProcessInitFile();
