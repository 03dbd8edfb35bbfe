// Services: owning module, dependency counting, and the service free functions.

#include <memory>

#include "krrxservice.h"

#include <cstdint>
#include <stdexcept>

#include "krrxdictionary.h"
#include "krrxdynamiclinker.h"
#include "krrxgenhand.h"
#include "modules/KrRxImpDynamicLinker.h"
#include "runtime/KrRxCoreClass.h"
#include "system/KrRxServiceDictionary.h"

// The private record of a service.
struct KrRxServiceData {
  KrRxObject* sysInfo;
  KrRxAppEntryPoint dependencyFunction;
  uint32_t dependencyCount;
};
static_assert(sizeof(KrRxServiceData) == 3 * sizeof(void*), "a service record is three words");
static_assert(sizeof(KrRxService) == 2 * sizeof(void*), "a service holds only its record pointer");

KRRX_CORE_CONS_DEFINE_MEMBERS(KrRxService, KrRxObject)

KrRxService::KrRxService() : mpData(new KrRxServiceData{KrRxGenHand::curModule(), nullptr, 0}) {}

KrRxService::~KrRxService() {
  mpData->sysInfo = nullptr;
  delete mpData;
}

KrRxObject* KrRxService::getSysInfo() const { return mpData->sysInfo; }
void KrRxService::setSysInfo(KrRxObject* sysInfo) { mpData->sysInfo = sysInfo; }

void KrRxService::addDependency() {
  if (mpData->dependencyCount == UINT32_MAX) throw std::overflow_error("KrRxService dependency counter overflowed");
  if (mpData->dependencyCount == 0)
    if (KrRxGenHand* module = KrRxGenHand::cast(mpData->sysInfo)) module->sendAppMessage(KrRx::kDependencyMsg, this);
  ++mpData->dependencyCount;
}

void KrRxService::removeDependency() {
  if (mpData->dependencyCount == 0) throw std::underflow_error("KrRxService dependency counter underflowed");
  if (--mpData->dependencyCount == 0)
    if (KrRxGenHand* module = KrRxGenHand::cast(mpData->sysInfo))
      module->sendAppMessage(KrRx::kNoDependencyMsg, this);
}

bool KrRxService::unloadable() const { return mpData->dependencyCount == 0; }
KrRxAppEntryPoint KrRxService::dependencyFunctionPtr() const { return mpData->dependencyFunction; }
void KrRxService::setDependencyFunctionPtr(KrRxAppEntryPoint fn) { mpData->dependencyFunction = fn; }

KrRxObject* krrxRegisterService(const wchar_t* name) {
  KrRxDynamicLinker* linker = KrRxImpDynamicLinker::registered();
  if (!linker) return nullptr;
  std::unique_ptr<KrRxService> service(new KrRxService());
  KrRxObject* registered = linker->registerService(name, service.get());
  service.release();
  return registered;
}

bool krrxServiceIsRegistered(const wchar_t* name) {
  KrRxDictionary* services = krrxServiceDictionary();
  return services && services->at(name);
}

void* krrxGetServiceSymbolAddr(wchar_t* serviceName, char* symbolName) {
  KrRxDynamicLinker* linker = KrRxImpDynamicLinker::registered();
  return linker ? linker->getSymbolAddress(serviceName, symbolName) : nullptr;
}
