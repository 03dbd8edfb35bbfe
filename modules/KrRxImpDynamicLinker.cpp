// The dynamic linker: probing, verifying, loading and unloading modules, the
// loaded-module table, reactors, module flags, list files and host messages.

#include "modules/KrRxImpDynamicLinker.h"

#include <windows.h>

#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <cwchar>
#include <memory>
#include <new>
#include <string>
#include <vector>

#include "foundation/KrHostServices.h"
#include "kesuappregistry.h"
#include "krdiagnostics.h"
#include "krhostservices.h"
#include "krrxgenhand.h"
#include "krrxiterator.h"
#include "krrxservice.h"
#include "krrxsystem.h"
#include "modules/KrRxFileBytes.h"
#include "modules/KrRxGuardedCall.h"
#include "modules/KrRxImportBinding.h"
#include "modules/KrRxListFileReader.h"
#include "modules/KrRxTrustCheck.h"
#include "runtime/KrRxCoreClass.h"
#include "runtime/KrRxImpClass.h"
#include "runtime/KrRxImpDictionary.h"
#include "runtime/KrRxImpSet.h"
#include "system/KrRxServiceDictionary.h"

KRRX_CORE_CONS_DEFINE_MEMBERS(KrRxImpDynamicLinker, KrRxDynamicLinker)

wchar_t* KrRxImpDynamicLinker::mLoadModuleFailReason = nullptr;

namespace {

constexpr int kMessageWritten = 5100;
constexpr int kNoHostServices = -5001;
constexpr int kNullFormat = -5003;
constexpr int kFormatFailed = -5004;

constexpr size_t kReasonBufferSize = 2048;
constexpr size_t kShortMessageCapacity = 512;
constexpr DWORD kLongPathCapacity = 32767;
// A module's file name is one path component: at most 255 characters.
constexpr size_t kFileNameCapacity = 255;

typedef void (KrRxDLinkerReactor::*Notification)(const wchar_t* moduleName);

// Calls the notification on every reactor of set, in the set's order. It
// allocates nothing, so that the failure paths can always tell the reactors.
void notify(const KrRxImpSet* set, Notification notification, const wchar_t* moduleName) {
  set->forEachMember([&](KrRxObject* reactor) {
    (static_cast<KrRxDLinkerReactor*>(reactor)->*notification)(moduleName);
    return true;
  });
}

// Offers a probed module to the KrRxDLinkerReactor2 members of set until one refuses it.
void offer(const KrRxImpSet* set, void* probe) {
  set->forEachMember([&](KrRxObject* member) {
    if (auto* reactor = KrRxDLinkerReactor2::cast(member)) reactor->rxAppCouldBeLoaded(probe);
    return !KrRxImpDynamicLinker::mLoadModuleFailReason;
  });
}

// Frees a probe mapping however its inspection ends.
struct ProbeMapping {
  HMODULE module;
  ~ProbeMapping() {
    if (module) FreeLibrary(module);
  }
};

// The system's text for error, through the host's message output.
void reportSystemError(DWORD error) {
  wchar_t* text = nullptr;
  FormatMessageW(FORMAT_MESSAGE_ALLOCATE_BUFFER | FORMAT_MESSAGE_FROM_SYSTEM | FORMAT_MESSAGE_IGNORE_INSERTS, nullptr,
                 error, 0x400, reinterpret_cast<wchar_t*>(&text), 0, nullptr);
  if (!text) return;
  KrRxImpDynamicLinker::hostMessage(L"%ls", text);
  LocalFree(text);
}

std::wstring modulePath(HMODULE module) {
  std::wstring path(kLongPathCapacity, L'\0');
  DWORD length = GetModuleFileNameW(module, &path[0], kLongPathCapacity);
  path.resize(length < kLongPathCapacity ? length : 0);
  return path;
}

// Calls a probed module's version function, whose imports are not resolved:
// a fault there (reading imported data, say) is caught and gives false.
bool probeApiVersion(KrRxGetApiVersionFunction getApiVersion, unsigned int& version) {
  struct Call {
    KrRxGetApiVersionFunction function;
    unsigned int version;
  } call = {getApiVersion, 0};
  bool returned = krrxFaultCatchingCall(
      [](void* pending) {
        auto* call = static_cast<Call*>(pending);
        call->version = call->function();
      },
      &call);
  version = call.version;
  return returned;
}

// Checks the probed module's API version and entry point, with the messages for a refusal.
bool acceptsEntryProtocol(HMODULE probe, const wchar_t* fileName, bool printMessages) {
  auto getApiVersion = reinterpret_cast<KrRxGetApiVersionFunction>(
      reinterpret_cast<void*>(GetProcAddress(probe, KRRX_GET_API_VERSION)));
  if (!getApiVersion) {
    if (printMessages)
      KrRxImpDynamicLinker::hostMessage(L"GetApiVersion function not found in %ls\nMake sure the app export the symbol.",
                                        fileName);
    return false;
  }
  unsigned int version;
  if (!probeApiVersion(getApiVersion, version)) {
    if (printMessages)
      KrRxImpDynamicLinker::hostMessage(
          L"krrxGetApiVersion faulted in %ls\nIt must return a constant and read nothing imported: "
          L"define it with KRRX_DEFINE_API_VERSION().\n",
          fileName);
    return false;
  }
  if (version - KRRX_MIN_API_VERSION > KRRX_CUR_API_VERSION - KRRX_MIN_API_VERSION) {
    if (printMessages) {
      KrRxImpDynamicLinker::hostMessage(L"Incompatible API version in %ls\n", fileName);
      KrRxImpDynamicLinker::hostMessage(L" Kestrune version = %d.%d\n", KRRX_CUR_API_VERSION >> 16,
                                        KRRX_CUR_API_VERSION & 0xFFFF);
      KrRxImpDynamicLinker::hostMessage(L" %ls version = %d.%d\n", fileName, version >> 16, version & 0xFFFF);
    }
    return false;
  }
  if (!GetProcAddress(probe, KRRX_ENTRY_POINT)) {
    if (printMessages) KrRxImpDynamicLinker::hostMessage(L"Entry point not found in %ls\n", fileName);
    return false;
  }
  return true;
}

// Resolved once per process, from the first trust library asked.
KrRxWinVerifyTrustEx winVerifyTrustEx(HMODULE trustLibrary) {
  static const KrRxWinVerifyTrustEx function = reinterpret_cast<KrRxWinVerifyTrustEx>(
      reinterpret_cast<void*>(GetProcAddress(trustLibrary, "WinVerifyTrustEx")));
  return function;
}

void setFailReason(const wchar_t* reason) {
  if (wchar_t* copy = _wcsdup(reason)) {
    free(KrRxImpDynamicLinker::mLoadModuleFailReason);
    KrRxImpDynamicLinker::mLoadModuleFailReason = copy;
  }
}

// Takes the pending refusal: prints it (or the standard text) when asked, and clears it.
void reportRefusal(const wchar_t* fileName, bool printMessages) {
  wchar_t*& reason = KrRxImpDynamicLinker::mLoadModuleFailReason;
  if (printMessages) {
    if (reason && *reason)
      KrRxImpDynamicLinker::hostMessage(L"%ls", reason);
    else
      KrRxImpDynamicLinker::hostMessage(L"Runtime Extension '%ls' could not been loaded\n", fileName);
  }
  free(reason);
  reason = nullptr;
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

HMODULE loadTrustLibrary() {
  HMODULE kernel = GetModuleHandleW(L"KERNEL32.DLL");
  return kernel && GetProcAddress(kernel, "GetLocaleInfoEx") ? LoadLibraryW(L"WINTRUST.DLL") : nullptr;
}

}  // namespace

KrRxImpDynamicLinker::KrRxImpDynamicLinker()
    : mpLoadedModules(new KrRxImpDictionary(0, true, true, true, KrRxGenHand::desc())),
      mpReactors(new KrRxGenTypedSet(false, KrRxDLinkerReactor::desc())),
      mpDbAppMonitors(new KrRxGenTypedSet(false, KrRxDLinkerReactor::desc())),
      mpRegistry(new KesuAppRegistry()),
      mpTrustLibrary(loadTrustLibrary()) {}

KrRxImpDynamicLinker::~KrRxImpDynamicLinker() {
  unloadAllModules(true);
  if (mpTrustLibrary) FreeLibrary(static_cast<HMODULE>(mpTrustLibrary));
  delete mpRegistry;
  delete mpDbAppMonitors;
  delete mpReactors;
  delete mpLoadedModules;
}

KrRxObject* KrRxImpDynamicLinker::registerService(const wchar_t* serviceName, KrRxService* service) {
  if (KrRxGenHand* module = KrRxGenHand::curModule()) service->setSysInfo(module);
  KrRxDictionary* services = krrxServiceDictionary();
  unsigned int id;
  if (services->atPut(serviceName, service, id)) krrx_abort(L"ERROR: %ls service already registered", serviceName);
  // A name that could not be copied leaves the service unregistered.
  if (!services->has(id)) throw std::bad_alloc();
  return service;
}

// ---- Looking modules up ----

KrRxImpDynamicLinker* KrRxImpDynamicLinker::registered() {
  return sysRegistry ? KrRxImpDynamicLinker::cast(sysRegistry->at(L"DynamicLinker")) : nullptr;
}

const wchar_t* KrRxImpDynamicLinker::findFileName(const wchar_t* path) {
  if (!path) return nullptr;
  const wchar_t* backslash = wcsrchr(path, L'\\');
  const wchar_t* slash = wcsrchr(path, L'/');
  const wchar_t* separator = backslash > slash ? backslash : slash;
  return separator ? separator + 1 : path;
}

KrRxGenHand* KrRxImpDynamicLinker::findModule(const wchar_t* moduleName) const {
  const wchar_t* name = findFileName(moduleName);
  if (!name) return nullptr;
  if (wcschr(name, L'.')) return static_cast<KrRxGenHand*>(mpLoadedModules->at(name));
  size_t length = wcslen(name);
  if (length > kFileNameCapacity) return nullptr;
  wchar_t candidate[kFileNameCapacity + 5];
  wmemcpy(candidate, name, length);
  for (const wchar_t* extension : {L".kra", L".krx", L".dll"}) {
    wcscpy(candidate + length, extension);
    if (KrRxObject* module = mpLoadedModules->at(candidate)) return static_cast<KrRxGenHand*>(module);
  }
  return nullptr;
}

KrRxGenHand* KrRxImpDynamicLinker::findModule(const void* appId) const {
  if (!appId) return nullptr;
  KrRxGenHand* found = nullptr;
  KrRxDictionaryIterator* it = mpLoadedModules->newIterator(KrRx::kDictById);
  for (; !it->done() && !found; it->next())
    if (it->object() == appId) found = static_cast<KrRxGenHand*>(it->object());
  delete it;
  return found;
}

void* KrRxImpDynamicLinker::moduleHandlePtr(const wchar_t* moduleName) { return findModule(moduleName); }

KrRxDictionaryIterator* KrRxImpDynamicLinker::loadedModulesIterator() {
  return mpLoadedModules->newIterator(KrRx::kDictById);
}

unsigned int KrRxImpDynamicLinker::numberOfAppsLoaded() const { return mpLoadedModules->numEntries(); }

void* KrRxImpDynamicLinker::getSymbolAddress(const wchar_t* module, const wchar_t* symbol) const {
  if (!symbol) return nullptr;
  std::string narrow;
  for (const wchar_t* unit = symbol; *unit; ++unit) {
    if (*unit > 127) return nullptr;
    narrow.push_back(static_cast<char>(*unit));
  }
  return getSymbolAddress(module, narrow.c_str());
}

void* KrRxImpDynamicLinker::getSymbolAddress(const wchar_t* module, const char* symbol) const {
  KrRxGenHand* handle = findModule(module);
  if (!handle || !handle->getVal() || !symbol) return nullptr;
  return reinterpret_cast<void*>(GetProcAddress(static_cast<HMODULE>(handle->getVal()), symbol));
}

// ---- Loading ----

bool KrRxImpDynamicLinker::signatureRejected(const wchar_t* path) const {
  if (!mpTrustLibrary) return false;
  KrRxWinVerifyTrustEx verify = winVerifyTrustEx(static_cast<HMODULE>(mpTrustLibrary));
  return verify && krrxVerifyTrust(verify, path) < 0;
}

void KrRxImpDynamicLinker::offerToReactors(void* probe) const {
  offer(mpDbAppMonitors, probe);
  if (!mLoadModuleFailReason) offer(mpReactors, probe);
}

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

// ---- Messages ----

bool KrRxImpDynamicLinker::sendAppMessage(const wchar_t* moduleName, KrRx::AppMsgCode code, void* packet,
                                          KrRxGenHand* sender) {
  KrRxGenHand* module = findModule(moduleName);
  return module && module != sender && module->sendAppMessage(code, packet);
}

void KrRxImpDynamicLinker::sendAllAppsMessage(KrRx::AppMsgCode code, const std::vector<const wchar_t*>* names) {
  if (names) {
    for (const wchar_t* name : *names) {
      KrRxGenHand* module = findModule(name);
      if (module && module->entryPoint()) module->sendAppMessage(code, module);
    }
    return;
  }
  KrRxDictionaryIterator* it = mpLoadedModules->newIterator(KrRx::kDictById);
  for (; !it->done(); it->next()) {
    auto* module = static_cast<KrRxGenHand*>(it->object());
    module->sendAppMessage(code, module);
  }
  delete it;
}

int KrRxImpDynamicLinker::hostMessage(const wchar_t* format, ...) {
  KrDbHostApplicationServices* host = krHostServices();
  if (!host) return kNoHostServices;
  if (!format) return kNullFormat;
  va_list args, counting;
  va_start(args, format);
  va_copy(counting, args);
  int length = __mingw_vsnwprintf(nullptr, 0, format, counting);
  va_end(counting);
  // Short messages need no heap, so that they get out when memory is short.
  wchar_t onStack[kShortMessageCapacity];
  wchar_t* text = nullptr;
  if (length >= 0)
    text = size_t(length) < kShortMessageCapacity
               ? onStack
               : static_cast<wchar_t*>(malloc((size_t(length) + 1) * sizeof(wchar_t)));
  int written = text ? __mingw_vsnwprintf(text, size_t(length) + 1, format, args) : -1;
  va_end(args);
  if (written >= 0) host->writeMessage(text, written);
  if (text != onStack) free(text);
  return written >= 0 ? kMessageWritten : kFormatFailed;
}

// ---- Reactors and module flags ----

void KrRxImpDynamicLinker::addReactor(KrRxDLinkerReactor* reactor) { mpReactors->add(reactor); }
void KrRxImpDynamicLinker::removeReactor(KrRxDLinkerReactor* reactor) { mpReactors->remove(reactor); }
void KrRxImpDynamicLinker::addDbAppMonitor(KrRxDLinkerReactor* monitor) { mpDbAppMonitors->add(monitor); }
void KrRxImpDynamicLinker::removeDbAppMonitor(KrRxDLinkerReactor* monitor) { mpDbAppMonitors->remove(monitor); }

bool KrRxImpDynamicLinker::setModuleFlag(const void* appId, unsigned int flag, bool on) const {
  KrRxGenHand* module = findModule(appId);
  if (module) module->setStatusFlag(KrRxGenHand::StatusFlags(flag), on);
  return module != nullptr;
}

bool KrRxImpDynamicLinker::lockApplication(void* appId) const { return setModuleFlag(appId, KrRxGenHand::kLocked, true); }

bool KrRxImpDynamicLinker::unlockApplication(void* appId) const {
  return setModuleFlag(appId, KrRxGenHand::kLocked, false);
}

bool KrRxImpDynamicLinker::registerAppMDIAware(void* appId) const {
  return setModuleFlag(appId, KrRxGenHand::kMDIAware, true);
}

bool KrRxImpDynamicLinker::registerAppNotMDIAware(void* appId) const {
  return setModuleFlag(appId, KrRxGenHand::kMDIAware, false);
}

bool KrRxImpDynamicLinker::isApplicationLocked(const wchar_t* moduleName) const {
  KrRxGenHand* module = findModule(moduleName);
  return module && (module->appStatusFlags() & KrRxGenHand::kLocked);
}

bool KrRxImpDynamicLinker::isAppMDIAware(const wchar_t* moduleName) const {
  KrRxGenHand* module = findModule(moduleName);
  return module && (module->appStatusFlags() & KrRxGenHand::kMDIAware);
}

bool KrRxImpDynamicLinker::isAppBusy(const wchar_t* moduleName) const {
  KrRxGenHand* module = findModule(moduleName);
  return module && module->isAppBusy();
}

void KrRxImpDynamicLinker::setAppBusy(const wchar_t* moduleName, bool busy) const {
  if (KrRxGenHand* module = findModule(moduleName)) module->setAppBusy(busy);
}

// ---- Host services ----

const wchar_t* KrRxImpDynamicLinker::ProductKey() const {
  KrDbHostApplicationServices* host = krHostServices();
  return host ? host->productKey() : nullptr;
}

unsigned int KrRxImpDynamicLinker::ProductLcid() const {
  KrDbHostApplicationServices* host = krHostServices();
  return host ? host->productLcid() : GetSystemDefaultLCID();
}

// ---- List files ----

bool KrRxImpDynamicLinker::initListedModules(const wchar_t* listFile) {
  static_assert(sizeof(wchar_t) == sizeof(char16_t), "list lines are UTF-16 module names");
  HANDLE file = CreateFileW(listFile, GENERIC_READ, FILE_SHARE_READ, nullptr, OPEN_EXISTING,
                            FILE_FLAG_SEQUENTIAL_SCAN, nullptr);
  if (file == INVALID_HANDLE_VALUE) return false;
  // A read error ends the list where it happened: the lines read so far
  // still load. Memory running short ends it too, and the result is false.
  std::string bytes;
  bool allLoaded = true;
  try {
    krrxReadFileBytes(file, bytes);
  } catch (const std::bad_alloc&) {
    allLoaded = false;
  }
  CloseHandle(file);
  KrRxListFileReader reader(bytes.data(), bytes.size());
  std::u16string line;
  try {
    while (reader.nextLine(line))
      if (!line.empty())
        allLoaded = loadModule(reinterpret_cast<const wchar_t*>(line.c_str()), false, true) && allLoaded;
  } catch (const std::bad_alloc&) {
    allLoaded = false;
  }
  return allLoaded;
}

// ---- Applications (through the application registry) ----

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
