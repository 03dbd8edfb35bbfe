// Unloading a module: its reference, its lock, kAppMsgUnload and the
// reactors' notifications; and unloading every module at the end.

#include "modules/KrRxImpDynamicLinker.h"

#include <windows.h>

#include <cwchar>
#include <new>
#include <string>
#include <vector>

#include "krrxgenhand.h"
#include "krrxiterator.h"
#include "modules/KrRxLinkerSteps.h"
#include "runtime/KrRxImpClass.h"
#include "runtime/KrRxImpDictionary.h"
#include "runtime/KrRxImpSet.h"

using namespace krrxLinker;

bool KrRxImpDynamicLinker::unloadModule(const wchar_t* moduleName, bool asCommand) {
  return unloadModuleEx(moduleName, asCommand, false, asCommand);
}

bool KrRxImpDynamicLinker::unloadModuleEx(const wchar_t* name, bool asCommand, bool force, bool printMessages) {
  KrRxGenHand* module = findModule(name);
  if (!module) {
    if (printMessages) hostMessage(L"\nUnable to unload application '%ls' because it's not loaded.\n", name);
    return false;
  }
  bool vetoed = module->appStatusFlags() & KrRxGenHand::kVetoed;
  if (asCommand) {
    if ((module->appStatusFlags() & KrRxGenHand::kLocked) && !vetoed && !force) {
      if (printMessages) hostMessage(L"\nApplication '%ls' is locked and could not be unloaded.\n", module->FileName());
      return false;
    }
    module->uiRelease();
  } else {
    module->apiRelease();
  }
  if (!vetoed && !module->safeToUnload()) return true;
  // The record goes with its table entry; the name stays for the reactors.
  // From here on nothing needs the heap, so that a forced unload always
  // completes: a module is never left mapped without its table entry.
  wchar_t fileName[kFileNameCapacity + 1];
  wcsncpy(fileName, module->FileName(), kFileNameCapacity);
  fileName[kFileNameCapacity] = L'\0';
  notify(mpReactors, &KrRxDLinkerReactor::rxAppWillBeUnloaded, fileName);
  notify(mpDbAppMonitors, &KrRxDLinkerReactor::rxAppWillBeUnloaded, fileName);
  if (!releaseModule(module, fileName, force)) {
    module->clrVetoFlag();
    notify(mpDbAppMonitors, &KrRxDLinkerReactor::rxAppUnloadAborted, fileName);
    notify(mpReactors, &KrRxDLinkerReactor::rxAppUnloadAborted, fileName);
    return false;
  }
  notify(mpDbAppMonitors, &KrRxDLinkerReactor::rxAppUnloaded, fileName);
  notify(mpReactors, &KrRxDLinkerReactor::rxAppUnloaded, fileName);
  if (printMessages) hostMessage(L"\n'%ls' succefuly unloaded.\n", fileName);
  return true;
}

// Sends kAppMsgUnload (its answer decides unless forced) and, when the
// module goes, releases it and drops its table entry.
bool KrRxImpDynamicLinker::releaseModule(KrRxGenHand* module, const wchar_t* fileName, bool force) {
  bool vetoed = module->appStatusFlags() & KrRxGenHand::kVetoed;
  bool accepted = false;
  // A module that runs out of memory while it takes its things back refuses.
  try {
    accepted = (force || !vetoed) && module->sendAppMessage(KrRx::kAppMsgUnload, module);
  } catch (const std::bad_alloc&) {
  }
  if (!force && !accepted) return false;
  KrRxImpClass::clearDeletedClassesArray();
  module->unloadDependencies(this);
  if (module->getVal()) FreeLibrary(static_cast<HMODULE>(module->getVal()));
  module->setVal(nullptr);
  mpLoadedModules->remove(fileName);
  return true;
}

void KrRxImpDynamicLinker::unloadAllModules(bool force) {
  for (bool progress = true; progress;) {
    progress = false;
    std::vector<std::wstring> names;
    KrRxDictionaryIterator* it = mpLoadedModules->newIterator(KrRx::kDictById);
    for (; !it->done(); it->next()) names.push_back(it->key());
    delete it;
    for (auto name = names.rbegin(); name != names.rend(); ++name)
      if (findModule(name->c_str()) && unloadModuleEx(name->c_str(), true, force, false))
        progress = progress || !findModule(name->c_str());
  }
}
