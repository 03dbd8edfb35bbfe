// Loading and initialising a module: probe, trust, the real mapping in
// its own directory, its table entry, dependencies and kAppMsgInit.

#include "modules/KrRxImpDynamicLinker.h"

#include <windows.h>

#include <cstring>
#include <cwchar>
#include <memory>
#include <new>
#include <string>

#include "krrxgenhand.h"
#include "modules/KrRxImportBinding.h"
#include "modules/KrRxLinkerSteps.h"
#include "runtime/KrRxImpDictionary.h"
#include "runtime/KrRxImpSet.h"

using namespace krrxLinker;

namespace {

constexpr size_t kReasonBufferSize = 2048;

// Frees a probe mapping however its inspection ends.
struct ProbeMapping {
  HMODULE module;
  ~ProbeMapping() {
    if (module) FreeLibrary(module);
  }
};

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

// The table entry of a module about to load, or null when memory is short
// (then nothing was added).
KrRxGenHand* addTableEntry(KrRxImpDictionary* table, const wchar_t* key) {
  try {
    std::unique_ptr<KrRxGenHand> module(new KrRxGenHand());
    module->setfileName(key);
    bool added = wcscmp(module->FileName(), key) == 0 && table->putNew(key, module.get());
    return added ? module.release() : nullptr;
  } catch (const std::bad_alloc&) {
    return nullptr;
  }
}

}  // namespace

void* KrRxImpDynamicLinker::loadModuleEx(const wchar_t* fileName, bool printMessages, char* reasonBuffer) {
  if (!fileName) return nullptr;
  ProbeMapping probe = {LoadLibraryExW(fileName, nullptr, DONT_RESOLVE_DLL_REFERENCES)};
  if (!probe.module) {
    if (printMessages) reportSystemError(GetLastError());
    return nullptr;
  }
  std::string unbound;
  bool bindable = krrxImportsBind(probe.module, unbound);
  if (!acceptsEntryProtocol(probe.module, fileName, printMessages) || !bindable) {
    if (!bindable && printMessages) reportSystemError(ERROR_PROC_NOT_FOUND);
    return nullptr;
  }
  if (reasonBuffer) memset(reasonBuffer, 0, kReasonBufferSize);
  // The file verified, offered and then loaded is the one the probe found,
  // by its full path: a relative name would resolve differently once the
  // module's directory is current.
  std::wstring path = modulePath(probe.module);
  // A refused signature holds even when its (empty) reason cannot be copied.
  bool signatureRefused = !mLoadModuleFailReason && signatureRejected(path.c_str());
  if (signatureRefused) setFailReason(L"");
  if (!mLoadModuleFailReason && !signatureRefused) offerToReactors(probe.module);
  FreeLibrary(probe.module);
  probe.module = nullptr;
  if (mLoadModuleFailReason || signatureRefused) {
    reportRefusal(fileName, printMessages);
    return nullptr;
  }
  DWORD error;
  HMODULE module = loadInItsDirectory(path, error);
  if (!module && printMessages) reportSystemError(error);
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
  notify(reactorsFirst ? mpReactors : mpDbAppMonitors, &KrRxDLinkerReactor::rxAppWillBeLoaded, name);
  notify(reactorsFirst ? mpDbAppMonitors : mpReactors, &KrRxDLinkerReactor::rxAppWillBeLoaded, name);
  const wchar_t* key = findFileName(name);
  KrRxGenHand* module = addTableEntry(mpLoadedModules, key);
  if (!module) return failLoad(name, nullptr, printMessages);
  char reason[kReasonBufferSize];
  void* handle = nullptr;
  try {
    handle = loadModuleEx(name, printMessages, reason);
  } catch (const std::bad_alloc&) {
  }
  if (!handle) return failLoad(name, key, printMessages);
  module->setVal(handle);
  bool dependenciesLoaded = false;
  try {
    dependenciesLoaded = module->loadDependencies(this, printMessages);
  } catch (const std::bad_alloc&) {
  }
  if (!dependenciesLoaded) {
    module->unloadDependencies(this);
    FreeLibrary(static_cast<HMODULE>(handle));
    module->setVal(nullptr);
    return failLoad(name, key, printMessages);
  }
  return initialiseModule(module, name, asCommand) || failLoad(name, key, printMessages);
}

// Counts the loader's reference, sends kAppMsgInit and lets the monitors
// veto; false after unloading the module again (forced). A module whose
// initialisation runs out of memory is unloaded the same way.
bool KrRxImpDynamicLinker::initialiseModule(KrRxGenHand* module, const wchar_t* name, bool asCommand) {
  if (asCommand)
    module->uiAddRef();
  else
    module->apiAddRef();
  bool initialised = false;
  try {
    initialised = module->sendAppMessage(KrRx::kAppMsgInit, module);
  } catch (const std::bad_alloc&) {
  }
  if (!initialised) {
    unloadModuleEx(name, asCommand, true, false);
    return false;
  }
  notify(mpDbAppMonitors, &KrRxDLinkerReactor::rxAppLoaded, name);
  if (module->appStatusFlags() & KrRxGenHand::kVetoed) {
    unloadModuleEx(name, asCommand, true, false);
    return false;
  }
  notify(mpReactors, &KrRxDLinkerReactor::rxAppLoaded, name);
  return true;
}

bool KrRxImpDynamicLinker::failLoad(const wchar_t* name, const wchar_t* key, bool printMessages) {
  if (key) mpLoadedModules->remove(key);
  if (printMessages) hostMessage(L"Failed to load '%ls'\n", name);
  notify(mpDbAppMonitors, &KrRxDLinkerReactor::rxAppLoadAborted, name);
  notify(mpReactors, &KrRxDLinkerReactor::rxAppLoadAborted, name);
  return false;
}
