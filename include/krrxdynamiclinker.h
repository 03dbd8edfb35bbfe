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
