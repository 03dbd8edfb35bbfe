// Loading and initialising, the heart of the load road: the probe and trust
// steps pass, the module is mapped in its own directory, its dependencies
// load, it is initialised and the reactors are told; and the way back out.

#include "modules/KrRxImpDynamicLinker.h"

#include <windows.h>
#include <cstring>
#include <cwchar>
#include <string>
#include <vector>

#include "krrxdictionary.h"
#include "krrxgenhand.h"
#include "modules/KrRxImportBinding.h"
#include "modules/KrRxLinkerSteps.h"
#include "runtime/KrRxImpClass.h"
#include "runtime/KrRxImpDictionary.h"
#include "runtime/KrRxImpSet.h"

namespace {

constexpr size_t kReasonBufferSize = 2048;
constexpr DWORD kLongPathCapacity = 32767;

std::wstring modulePath(HMODULE module) {
  std::wstring path(kLongPathCapacity, L'\0');
  DWORD length = GetModuleFileNameW(module, &path[0], kLongPathCapacity);
  path.resize(length < kLongPathCapacity ? length : 0);
  return path;
}

std::wstring currentDirectory() {
  DWORD size = GetCurrentDirectoryW(0, nullptr);
  std::wstring text(size, L'\0');
  text.resize(size ? GetCurrentDirectoryW(size, &text[0]) : 0);
  return text;
}

std::wstring dllDirectory() {
  DWORD size = GetDllDirectoryW(0, nullptr);
  std::wstring text(size + 1, L'\0');
  text.resize(GetDllDirectoryW(size + 1, &text[0]) <= size ? wcslen(text.c_str()) : 0);
  return text;
}

// Maps the module at path (a full path) for real. While it loads, its
// directory is the current and the DLL directory, so that the module's own
// dependencies are found beside it.
HMODULE loadInItsDirectory(const std::wstring& path, DWORD& error) {
  std::wstring savedCurrent = currentDirectory();
  std::wstring savedDll = dllDirectory();
  const wchar_t* name = KrRxImpDynamicLinker::findFileName(path.c_str());
  if (name != path.c_str()) {
    std::wstring directory(path.c_str(), name);
    SetCurrentDirectoryW(directory.c_str());
    SetDllDirectoryW(directory.c_str());
  }
  HMODULE module = LoadLibraryW(path.c_str());
  error = GetLastError();
  SetDllDirectoryW(savedDll.c_str());
  SetCurrentDirectoryW(savedCurrent.c_str());
  return module;
}

}  // namespace

void* KrRxImpDynamicLinker::loadModuleEx(const wchar_t* fileName, bool printMessages, char* reasonBuffer) {
  if (!fileName) return nullptr;
  HMODULE probe = LoadLibraryExW(fileName, nullptr, DONT_RESOLVE_DLL_REFERENCES);
  if (!probe) {
    if (printMessages) krrxReportSystemError(GetLastError());
    return nullptr;
  }
  std::string unbound;
  bool bindable = krrxImportsBind(probe, unbound);
  if (!krrxAcceptsEntryProtocol(probe, fileName, printMessages) || !bindable) {
    if (!bindable && printMessages) krrxReportSystemError(ERROR_PROC_NOT_FOUND);
    FreeLibrary(probe);
    return nullptr;
  }
  if (reasonBuffer) memset(reasonBuffer, 0, kReasonBufferSize);
  // The file verified, offered and then loaded is the one the probe found,
  // by its full path: a relative name would resolve differently once the
  // module's directory is current.
  std::wstring path = modulePath(probe);
  if (!mLoadModuleFailReason && signatureRejected(path.c_str())) krrxSetLoadFailReason(L"");
  if (!mLoadModuleFailReason) offerToReactors(probe);
  FreeLibrary(probe);
  if (mLoadModuleFailReason) {
    krrxReportLoadRefusal(fileName, printMessages);
    return nullptr;
  }
  DWORD error;
  HMODULE module = loadInItsDirectory(path, error);
  if (!module && printMessages) krrxReportSystemError(error);
  return module;
}

bool KrRxImpDynamicLinker::loadModule(const wchar_t* moduleName, bool printMessages, bool asCommand) {
  return moduleName && registerLoadedModule(moduleName, printMessages, asCommand, false);
}

bool KrRxImpDynamicLinker::loadApp(void* moduleHandle, KesuApp::LoadReasons, bool printMessages, bool asCommand) {
  std::wstring path = modulePath(static_cast<HMODULE>(moduleHandle));
  return !path.empty() && registerLoadedModule(path.c_str(), printMessages, asCommand, true);
}

bool KrRxImpDynamicLinker::registerLoadedModule(const wchar_t* name, bool printMessages, bool asCommand,
                                                bool reactorsFirst) {
  if (KrRxGenHand* loaded = findModule(name)) {
    if (!asCommand) {
      loaded->apiAddRef();
      return true;
    }
    loaded->uiAddRef();
    if (printMessages) hostMessage(L"Runtime Extension '%ls' is already loaded.\n", name);
    return false;
  }
  krrxNotifyReactors(reactorsFirst ? mpReactors : mpDbAppMonitors, &KrRxDLinkerReactor::rxAppWillBeLoaded, name);
  krrxNotifyReactors(reactorsFirst ? mpDbAppMonitors : mpReactors, &KrRxDLinkerReactor::rxAppWillBeLoaded, name);
  const wchar_t* key = findFileName(name);
  auto* module = new KrRxGenHand();
  module->setfileName(key);
  mpLoadedModules->atPut(key, module);
  char reason[kReasonBufferSize];
  void* handle = loadModuleEx(name, printMessages, reason);
  if (!handle) return failLoad(name, key, printMessages);
  module->setVal(handle);
  if (!module->loadDependencies(this, printMessages)) {
    module->unloadDependencies(this);
    FreeLibrary(static_cast<HMODULE>(handle));
    module->setVal(nullptr);
    return failLoad(name, key, printMessages);
  }
  return initialiseModule(module, name, asCommand) || failLoad(name, key, printMessages);
}

// Counts the loader's reference, sends kAppMsgInit and lets the monitors
// veto; false after unloading the module again (forced).
bool KrRxImpDynamicLinker::initialiseModule(KrRxGenHand* module, const wchar_t* name, bool asCommand) {
  if (asCommand)
    module->uiAddRef();
  else
    module->apiAddRef();
  if (!module->sendAppMessage(KrRx::kAppMsgInit, module)) {
    unloadModuleEx(name, asCommand, true, false);
    return false;
  }
  krrxNotifyReactors(mpDbAppMonitors, &KrRxDLinkerReactor::rxAppLoaded, name);
  if (module->appStatusFlags() & KrRxGenHand::kVetoed) {
    unloadModuleEx(name, asCommand, true, false);
    return false;
  }
  krrxNotifyReactors(mpReactors, &KrRxDLinkerReactor::rxAppLoaded, name);
  return true;
}

bool KrRxImpDynamicLinker::failLoad(const wchar_t* name, const wchar_t* key, bool printMessages) {
  mpLoadedModules->remove(key);
  if (printMessages) hostMessage(L"Failed to load '%ls'\n", name);
  krrxNotifyReactors(mpDbAppMonitors, &KrRxDLinkerReactor::rxAppLoadAborted, name);
  krrxNotifyReactors(mpReactors, &KrRxDLinkerReactor::rxAppLoadAborted, name);
  return false;
}

// ---- Unloading ----

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
  const std::wstring fileName = module->FileName();
  krrxNotifyReactors(mpReactors, &KrRxDLinkerReactor::rxAppWillBeUnloaded, fileName.c_str());
  krrxNotifyReactors(mpDbAppMonitors, &KrRxDLinkerReactor::rxAppWillBeUnloaded, fileName.c_str());
  if (!releaseModule(module, fileName.c_str(), force)) {
    module->clrVetoFlag();
    krrxNotifyReactors(mpDbAppMonitors, &KrRxDLinkerReactor::rxAppUnloadAborted, fileName.c_str());
    krrxNotifyReactors(mpReactors, &KrRxDLinkerReactor::rxAppUnloadAborted, fileName.c_str());
    return false;
  }
  krrxNotifyReactors(mpDbAppMonitors, &KrRxDLinkerReactor::rxAppUnloaded, fileName.c_str());
  krrxNotifyReactors(mpReactors, &KrRxDLinkerReactor::rxAppUnloaded, fileName.c_str());
  if (printMessages) hostMessage(L"\n'%ls' succefuly unloaded.\n", fileName.c_str());
  return true;
}

// Sends kAppMsgUnload (its answer decides unless forced) and, when the
// module goes, releases it and drops its table entry.
bool KrRxImpDynamicLinker::releaseModule(KrRxGenHand* module, const wchar_t* fileName, bool force) {
  bool vetoed = module->appStatusFlags() & KrRxGenHand::kVetoed;
  bool accepted = (force || !vetoed) && module->sendAppMessage(KrRx::kAppMsgUnload, module);
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
