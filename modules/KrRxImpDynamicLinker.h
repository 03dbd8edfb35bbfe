#pragma once
// The one dynamic linker of the process.

#include "krrxdynamiclinker.h"

class KrRxImpDictionary;
class KrRxGenTypedSet;

class KR1ST_API KrRxImpDynamicLinker : public KrRxDynamicLinker {
  KRRX_DECLARE_MEMBERS(KrRxImpDynamicLinker);

 public:
  KrRxImpDynamicLinker();
  ~KrRxImpDynamicLinker() override;

  void* getSymbolAddress(const wchar_t* module, const wchar_t* symbol) const override;
  void* getSymbolAddress(const wchar_t* module, const char* symbol) const override;
  bool initListedModules(const wchar_t* listFile) override;
  bool loadModule(const wchar_t* moduleName, bool printMessages, bool asCommand) override;
  bool loadApp(const wchar_t* appName, KesuApp::LoadReasons reason, bool printMessages, bool asCommand) override;
  KrRxObject* registerService(const wchar_t* serviceName, KrRxService* service) override;
  bool unloadModule(const wchar_t* moduleName, bool asCommand) override;
  bool unloadApp(const wchar_t* appName, bool asCommand) override;
  void addReactor(KrRxDLinkerReactor* reactor) override;
  void removeReactor(KrRxDLinkerReactor* reactor) override;
  bool isApplicationLocked(const wchar_t* moduleName) const override;
  bool lockApplication(void* appId) const override;
  bool unlockApplication(void* appId) const override;
  bool isAppMDIAware(const wchar_t* moduleName) const override;
  bool registerAppMDIAware(void* appId) const override;
  bool registerAppNotMDIAware(void* appId) const override;
  bool isAppBusy(const wchar_t* moduleName) const override;
  void setAppBusy(const wchar_t* moduleName, bool busy) const override;
  const wchar_t* ProductKey() const override;
  unsigned int ProductLcid() const override;
  bool loadApp(void* moduleHandle, KesuApp::LoadReasons reason, bool printMessages, bool asCommand) override;
  KrRxDictionaryIterator* loadedModulesIterator() override;
  bool loadApps(const wchar_t* triggerName) override;
  bool loadApps(KesuApp::LoadReasons reason) override;
  void* moduleHandlePtr(const wchar_t* moduleName) override;
  bool sendAppMessage(const wchar_t* moduleName, KrRx::AppMsgCode code, void* packet,
                      KrRxGenHand* sender) override;

 private:
  KrRxImpDictionary* mpLoadedModules;
  KrRxGenTypedSet* mpReactors;
  KrRxGenTypedSet* mpDbAppMonitors;
};
