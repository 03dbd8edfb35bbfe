// The dynamic linker: the loaded-module table with its reactors, module
// flags, messages and host services. The load road itself is in the
// KrRxLinker*.cpp files (see KrRxLinkerSteps.h).

#include "modules/KrRxImpDynamicLinker.h"

#include <windows.h>

#include <cstdarg>
#include <cstdlib>
#include <new>
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

wchar_t* KrRxImpDynamicLinker::mLoadModuleFailReason = nullptr;

namespace {

constexpr int kMessageWritten = 5100;
constexpr int kNoHostServices = -5001;
constexpr int kNullFormat = -5003;
constexpr int kFormatFailed = -5004;
constexpr size_t kShortMessageCapacity = 512;

}  // namespace

namespace krrxLinker {

void notify(const KrRxImpSet* set, Notification notification, const wchar_t* moduleName) {
  set->forEachMember([&](KrRxObject* reactor) {
    (static_cast<KrRxDLinkerReactor*>(reactor)->*notification)(moduleName);
    return true;
  });
}

}  // namespace krrxLinker

using namespace krrxLinker;

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

