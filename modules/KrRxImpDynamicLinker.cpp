// The dynamic linker: module table, services, reactors and module flags.

#include "modules/KrRxImpDynamicLinker.h"

#include <windows.h>

#include "foundation/KrHostServices.h"
#include "krdiagnostics.h"
#include "krhostservices.h"
#include "krrxgenhand.h"
#include "krrxservice.h"
#include "krrxsystem.h"
#include "runtime/KrRxCoreClass.h"
#include "runtime/KrRxImpDictionary.h"
#include "runtime/KrRxImpSet.h"

KRRX_CORE_CONS_DEFINE_MEMBERS(KrRxImpDynamicLinker, KrRxDynamicLinker)

KrRxImpDynamicLinker::KrRxImpDynamicLinker()
    : mpLoadedModules(new KrRxImpDictionary(0, true, false, false, KrRxGenHand::desc())),
      mpReactors(new KrRxGenTypedSet(false, KrRxDLinkerReactor::desc())),
      mpDbAppMonitors(new KrRxGenTypedSet(false, KrRxDLinkerReactor::desc())) {}

KrRxImpDynamicLinker::~KrRxImpDynamicLinker() {
  delete mpDbAppMonitors;
  delete mpReactors;
  delete mpLoadedModules;
}

KrRxObject* KrRxImpDynamicLinker::registerService(const wchar_t* serviceName, KrRxService* service) {
  if (KrRxGenHand* module = KrRxGenHand::curModule()) service->setSysInfo(module);
  KrRxDictionary* services = static_cast<KrRxDictionary*>(sysRegistry->at(L"ServiceDictionary"));
  if (services->atPut(serviceName, service)) krrx_abort(L"ERROR: %ls service already registered", serviceName);
  return service;
}

void* KrRxImpDynamicLinker::getSymbolAddress(const wchar_t* module, const wchar_t* symbol) const {
  if (!symbol) return nullptr;
  char narrow[MAX_PATH];
  size_t length = wcslen(symbol);
  if (length >= sizeof narrow) return nullptr;
  for (size_t i = 0; i <= length; ++i) {
    if (symbol[i] > 127) return nullptr;
    narrow[i] = static_cast<char>(symbol[i]);
  }
  return getSymbolAddress(module, narrow);
}

void* KrRxImpDynamicLinker::getSymbolAddress(const wchar_t* module, const char* symbol) const {
  auto* handle = static_cast<KrRxGenHand*>(const_cast<KrRxImpDynamicLinker*>(this)->moduleHandlePtr(module));
  if (!handle || !handle->getVal() || !symbol) return nullptr;
  return reinterpret_cast<void*>(GetProcAddress(static_cast<HMODULE>(handle->getVal()), symbol));
}

// ---- Module loading (completed with the module loader) ----

bool KrRxImpDynamicLinker::initListedModules(const wchar_t*) { return false; }
bool KrRxImpDynamicLinker::loadModule(const wchar_t*, bool, bool) { return false; }
bool KrRxImpDynamicLinker::loadApp(const wchar_t*, KesuApp::LoadReasons, bool, bool) { return false; }
bool KrRxImpDynamicLinker::unloadModule(const wchar_t*, bool) { return false; }
bool KrRxImpDynamicLinker::unloadApp(const wchar_t*, bool) { return false; }
bool KrRxImpDynamicLinker::loadApp(void*, KesuApp::LoadReasons, bool, bool) { return false; }
bool KrRxImpDynamicLinker::loadApps(const wchar_t*) { return false; }
bool KrRxImpDynamicLinker::loadApps(KesuApp::LoadReasons) { return false; }
bool KrRxImpDynamicLinker::isApplicationLocked(const wchar_t*) const { return false; }
bool KrRxImpDynamicLinker::lockApplication(void*) const { return false; }
bool KrRxImpDynamicLinker::unlockApplication(void*) const { return false; }
bool KrRxImpDynamicLinker::isAppMDIAware(const wchar_t*) const { return false; }
bool KrRxImpDynamicLinker::registerAppMDIAware(void*) const { return false; }
bool KrRxImpDynamicLinker::registerAppNotMDIAware(void*) const { return false; }
bool KrRxImpDynamicLinker::isAppBusy(const wchar_t*) const { return false; }
void KrRxImpDynamicLinker::setAppBusy(const wchar_t*, bool) const {}

void KrRxImpDynamicLinker::addReactor(KrRxDLinkerReactor* reactor) { mpReactors->add(reactor); }
void KrRxImpDynamicLinker::removeReactor(KrRxDLinkerReactor* reactor) { mpReactors->remove(reactor); }

const wchar_t* KrRxImpDynamicLinker::ProductKey() const {
  KrDbHostApplicationServices* host = krHostServices();
  return host ? host->productKey() : nullptr;
}

unsigned int KrRxImpDynamicLinker::ProductLcid() const {
  KrDbHostApplicationServices* host = krHostServices();
  return host ? host->productLcid() : GetSystemDefaultLCID();
}

KrRxDictionaryIterator* KrRxImpDynamicLinker::loadedModulesIterator() {
  return mpLoadedModules->newIterator(KrRx::kDictById);
}

void* KrRxImpDynamicLinker::moduleHandlePtr(const wchar_t* moduleName) {
  return moduleName ? mpLoadedModules->at(moduleName) : nullptr;
}

bool KrRxImpDynamicLinker::sendAppMessage(const wchar_t* moduleName, KrRx::AppMsgCode code, void* packet,
                                          KrRxGenHand* sender) {
  auto* module = static_cast<KrRxGenHand*>(moduleHandlePtr(moduleName));
  return module && module != sender && module->sendAppMessage(code, packet);
}
