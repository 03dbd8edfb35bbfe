#pragma once
// The one dynamic linker of the process: the loaded-module table, the
// reactors, the application registry and the trust library that checks
// module signatures.

#include <string>
#include <vector>

#include "krrxdynamiclinker.h"

class KesuAppRegistry;
class KrRxImpDictionary;
class KrRxGenTypedSet;

class KR1ST_API KrRxImpDynamicLinker : public KrRxDynamicLinker {
  KRRX_DECLARE_MEMBERS(KrRxImpDynamicLinker);

 public:
  // Loads "WINTRUST.DLL" for signature checks when KERNEL32 exports GetLocaleInfoEx.
  KrRxImpDynamicLinker();
  KrRxImpDynamicLinker(const KrRxImpDynamicLinker&) = delete;
  KrRxImpDynamicLinker& operator=(const KrRxImpDynamicLinker&) = delete;
  // Unloads every module still loaded (forced), then frees what it holds.
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

  // Probes the module file (API version, entry point, signature, the
  // KrRxDLinkerReactor2 offers) and then maps it for real, with its own
  // directory as current and DLL directory meanwhile. The module handle, or null.
  void* loadModuleEx(const wchar_t* fileName, bool printMessages, char* reasonBuffer);
  bool unloadModuleEx(const wchar_t* name, bool asCommand, bool force, bool printMessages);
  // Tries to unload every loaded module by command, newest first, pass
  // after pass while any goes; the rest stay.
  void unloadAllModules(bool force);
  // Sends code to each loaded module named in names (in that order), or to
  // every loaded module when names is null; each receives its own handle.
  void sendAllAppsMessage(KrRx::AppMsgCode code, const std::vector<const wchar_t*>* names);
  unsigned int numberOfAppsLoaded() const;
  // True when the application's registered loader module is loaded, or a
  // loaded module carries appName among its logical application names.
  bool appIsLoaded(const wchar_t* appName) const;
  KesuAppRegistry* registry() { return mpRegistry; }
  // The loaded-module table, keyed by file name.
  const KrRxImpDictionary* loadedModules() const { return mpLoadedModules; }
  void addDbAppMonitor(KrRxDLinkerReactor* monitor);
  void removeDbAppMonitor(KrRxDLinkerReactor* monitor);

  // The linker entered in the system registry under "DynamicLinker", or null.
  static KrRxImpDynamicLinker* registered();
  // The text after the later of the last '\' and the last '/', or path itself.
  static const wchar_t* findFileName(const wchar_t* path);
  // Formats a message and hands it to the host's message output: 5100 on
  // success, -5001 without host services, -5003 for a null format, -5004
  // when formatting fails.
  static int hostMessage(const wchar_t* format, ...);

  // A pending refusal of the module being loaded (a malloc'd text, possibly
  // empty), or null; set by KrRxDLinkerReactor2::veto.
  static wchar_t* mLoadModuleFailReason;

 private:
  KrRxGenHand* findModule(const wchar_t* moduleName) const;
  KrRxGenHand* findModule(const void* appId) const;
  bool setModuleFlag(const void* appId, unsigned int flag, bool on) const;
  bool signatureRejected(const wchar_t* fileName) const;
  // Offers a probed module to the monitors, then to the reactors, until one refuses it.
  void offerToReactors(void* probe) const;
  bool registerLoadedModule(const wchar_t* name, bool printMessages, bool asCommand, bool reactorsFirst);
  bool initialiseModule(KrRxGenHand* module, const wchar_t* name, bool asCommand);
  bool failLoad(const wchar_t* name, const wchar_t* key, bool printMessages);
  // The names of the registered applications, in the registry's list order.
  std::vector<std::wstring> registeredAppNames();
  bool releaseModule(KrRxGenHand* module, const wchar_t* fileName, bool force);

  KrRxImpDictionary* mpLoadedModules;
  KrRxGenTypedSet* mpReactors;
  KrRxGenTypedSet* mpDbAppMonitors;
  KesuAppRegistry* mpRegistry;
  void* mpTrustLibrary;
};
