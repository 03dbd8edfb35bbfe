// List files and registered applications: modules loaded by the lines of a
// list file or by an application's name, reason or trigger.

#include "modules/KrRxImpDynamicLinker.h"

#include <windows.h>
#include <string>
#include <vector>

#include "kesuappregistry.h"
#include "krrxgenhand.h"
#include "krrxiterator.h"
#include "runtime/KrRxImpDictionary.h"
#include "modules/KrRxFileBytes.h"
#include "modules/KrRxListFileReader.h"

bool KrRxImpDynamicLinker::initListedModules(const wchar_t* listFile) {
  static_assert(sizeof(wchar_t) == sizeof(char16_t), "list lines are UTF-16 module names");
  HANDLE file = CreateFileW(listFile, GENERIC_READ, FILE_SHARE_READ, nullptr, OPEN_EXISTING,
                            FILE_FLAG_SEQUENTIAL_SCAN, nullptr);
  if (file == INVALID_HANDLE_VALUE) return false;
  // A read error ends the list where it happened: the lines read so far still load.
  std::string bytes;
  krrxReadFileBytes(file, bytes);
  CloseHandle(file);
  KrRxListFileReader reader(bytes.data(), bytes.size());
  bool allLoaded = true;
  std::u16string line;
  while (reader.nextLine(line))
    if (!line.empty())
      allLoaded = loadModule(reinterpret_cast<const wchar_t*>(line.c_str()), false, true) && allLoaded;
  return allLoaded;
}

// ---- Applications (through the application registry) ----

bool KrRxImpDynamicLinker::loadApp(const wchar_t* appName, KesuApp::LoadReasons reason, bool printMessages,
                                   bool asCommand) {
  if (!appName) return false;
  KesuAppInfo app(appName);
  if (app.readFromRegistry() != KesuApp::eOk) return false;
  if ((app.loadCtrls() & KesuApp::kLoadDisabled) || !(app.loadCtrls() & unsigned(reason))) return false;
  if (!loadModule(app.moduleName(), printMessages, asCommand)) return false;
  if (KrRxGenHand* module = findModule(app.moduleName())) {
    module->addLogicalAppName(appName);
    module->setLoadReason(reason);
  }
  loadApps(appName);
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
