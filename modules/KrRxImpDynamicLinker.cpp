// The dynamic linker's loaded-module table: construction, looking modules
// up, reactors and module flags, messages to modules and to the host, and
// the host's product facts. The load road itself is in KrRxLinkerProbe.cpp
// (version and entry point), KrRxLinkerTrust.cpp (signature and reactors'
// consent), KrRxLinkerLoading.cpp (loading, initialising, unloading) and
// KrRxLinkerListFiles.cpp (list files and registered applications).

#include "modules/KrRxImpDynamicLinker.h"

#include <windows.h>
#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <cwchar>
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
#include "modules/KrRxLinkerSteps.h"
#include "runtime/KrRxCoreClass.h"
#include "runtime/KrRxImpDictionary.h"
#include "runtime/KrRxImpSet.h"
#include "system/KrRxServiceDictionary.h"

KRRX_CORE_CONS_DEFINE_MEMBERS(KrRxImpDynamicLinker, KrRxDynamicLinker)

namespace {

constexpr int kMessageWritten = 5100;
constexpr int kNoHostServices = -5001;
constexpr int kNullFormat = -5003;
constexpr int kFormatFailed = -5004;

// A module's file name is one path component: at most 255 characters.
constexpr size_t kFileNameCapacity = 255;

}  // namespace

void krrxNotifyReactors(const KrRxSet* set, KrRxLinkerNotification notification, const wchar_t* moduleName) {
  KrRxIterator* it = set->newIterator(true);
  for (; !it->done(); it->next()) (static_cast<KrRxDLinkerReactor*>(it->object())->*notification)(moduleName);
  delete it;
}

KrRxImpDynamicLinker::KrRxImpDynamicLinker()
    : mpLoadedModules(new KrRxImpDictionary(0, true, true, true, KrRxGenHand::desc())),
      mpReactors(new KrRxGenTypedSet(false, KrRxDLinkerReactor::desc())),
      mpDbAppMonitors(new KrRxGenTypedSet(false, KrRxDLinkerReactor::desc())),
      mpRegistry(new KesuAppRegistry()),
      mpTrustLibrary(krrxLoadTrustLibrary()) {}

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
  if (services->atPut(serviceName, service)) krrx_abort(L"ERROR: %ls service already registered", serviceName);
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
  auto* text = length >= 0 ? static_cast<wchar_t*>(malloc((size_t(length) + 1) * sizeof(wchar_t))) : nullptr;
  int written = text ? __mingw_vsnwprintf(text, size_t(length) + 1, format, args) : -1;
  va_end(args);
  if (written >= 0) host->writeMessage(text, written);
  free(text);
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

