// Applications: modules loaded by their registered application name, for
// a load reason or because another application triggers them.

#include "modules/KrRxImpDynamicLinker.h"

#include <new>
#include <string>
#include <vector>

#include "kesuappregistry.h"
#include "krrxgenhand.h"
#include "krrxiterator.h"
#include "runtime/KrRxImpDictionary.h"

bool KrRxImpDynamicLinker::loadApp(const wchar_t* appName, KesuApp::LoadReasons reason, bool printMessages,
                                   bool asCommand) {
  if (!appName) return false;
  std::wstring loader;
  try {
    KesuAppInfo app(appName);
    if (app.readFromRegistry() != KesuApp::eOk) return false;
    if ((app.loadCtrls() & KesuApp::kLoadDisabled) || !(app.loadCtrls() & unsigned(reason))) return false;
    loader = app.moduleName();
  } catch (const std::bad_alloc&) {
    return false;
  }
  if (!loadModule(loader.c_str(), printMessages, asCommand)) return false;
  if (KrRxGenHand* module = findModule(loader.c_str())) {
    module->addLogicalAppName(appName);
    // A load whose module cannot be found by the application's name is
    // taken back: the reference it took is dropped again.
    if (!module->hasLogicalAppName(appName)) {
      unloadModuleEx(loader.c_str(), asCommand, false, false);
      return false;
    }
    module->setLoadReason(reason);
  }
  // The applications this one triggers are loads of their own: when memory
  // runs short for them, this one stays loaded.
  try {
    loadApps(appName);
  } catch (const std::bad_alloc&) {
  }
  return true;
}

std::vector<std::wstring> KrRxImpDynamicLinker::registeredAppNames() {
  std::vector<std::wstring> names;
  int count = mpRegistry->enumerate();
  for (int i = 0; i < count; ++i) names.push_back(mpRegistry->keyName(i));
  return names;
}

bool KrRxImpDynamicLinker::loadApps(const wchar_t* triggerName) {
  bool anyLoaded = false;
  for (const std::wstring& name : registeredAppNames())
    if (krrxIsAppTriggeredBy(name.c_str(), triggerName))
      anyLoaded = loadApp(name.c_str(), KesuApp::kLoadByName, false, true) || anyLoaded;
  return anyLoaded;
}

bool KrRxImpDynamicLinker::loadApps(KesuApp::LoadReasons reason) {
  bool anyLoaded = false;
  for (const std::wstring& name : registeredAppNames()) anyLoaded = loadApp(name.c_str(), reason, false, true) || anyLoaded;
  return anyLoaded;
}

bool KrRxImpDynamicLinker::unloadApp(const wchar_t* appName, bool asCommand) {
  KrRxGenHand* found = nullptr;
  KrRxDictionaryIterator* it = mpLoadedModules->newIterator(KrRx::kDictById);
  for (; !it->done() && !found; it->next()) {
    auto* module = static_cast<KrRxGenHand*>(it->object());
    if (module->hasLogicalAppName(appName)) found = module;
  }
  delete it;
  if (!found) return false;
  const std::wstring fileName = found->FileName();
  return unloadModuleEx(fileName.c_str(), asCommand, false, false);
}

bool KrRxImpDynamicLinker::appIsLoaded(const wchar_t* appName) const {
  if (!appName) return false;
  KesuAppInfo app(appName);
  app.readFromRegistry();
  if (*app.moduleName() && findModule(app.moduleName())) return true;
  bool found = false;
  KrRxDictionaryIterator* it = mpLoadedModules->newIterator(KrRx::kDictById);
  for (; !it->done() && !found; it->next()) found = static_cast<KrRxGenHand*>(it->object())->hasLogicalAppName(appName);
  delete it;
  return found;
}
