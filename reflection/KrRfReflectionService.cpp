#include "reflection/KrRfReflectionService.h"

#include <cstddef>

#include "krrxclass.h"
#include "krrxdictionary.h"
#include "krrxsystem.h"
#include "reflection/KrRfImpReflectionPE.h"
#include "reflection/KrRfProtocolReactors.h"
#include "runtime/KrRxCoreClass.h"

KRRX_CORE_NO_CONS_DEFINE_MEMBERS(KrRfReflectionService, KrRxService)
KRRX_CORE_CONS_DEFINE_MEMBERS(KrRfImpReflectionService, KrRfReflectionService)
KRRX_CORE_NO_CONS_DEFINE_MEMBERS(KrRfReflectionReactor, KrRxObject)

#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Winvalid-offsetof"
struct KrRfImpReflectionServiceLayout {
  static_assert(offsetof(KrRfImpReflectionService, mReactors) == sizeof(KrRxService), "the reactors follow the service");
  static_assert(sizeof(KrRfImpReflectionService) == sizeof(KrRxService) + 24, "no further fields");
};
#pragma GCC diagnostic pop

KrRxObject* krrfFindService(const wchar_t* name) {
  KrRxDictionary* registry = krrxSysRegistry();
  KrRxDictionary* services = registry ? KrRxDictionary::cast(registry->at(L"ServiceDictionary")) : nullptr;
  return services ? services->at(name) : nullptr;
}

KrRfReflectionService* krrfReflectionService() {
  return KrRfReflectionService::cast(krrfFindService(L"ReflectionServices"));
}

KrRfImpReflectionService* krrfImpReflectionService() {
  return KrRfImpReflectionService::cast(krrfReflectionService());
}

KrRfImpReflectionService::~KrRfImpReflectionService() { mReactors.release(); }

KrRfReflectionPE* KrRfImpReflectionService::reflectionPE(KrRxClass* cls, bool create) {
  if (!cls) return nullptr;
  KrRfReflectionPE* own = KrRfImpReflectionPE::ownExtensionOf(cls);
  if (own || !create) return own;
  KrRfImpReflectionPE* made = new KrRfImpReflectionPE(cls);
  cls->addX(KrRfReflectionPE::desc(), made);
  return made;
}

KrRfReflectionPE* KrRfImpReflectionService::requestReflectionPE(KrRxClass* cls) {
  KrRfReflectionPE* own = reflectionPE(cls, false);
  if (own || !cls) return own;
  KrRxProtocolReactorManager* manager = krrfReactorManagerOf(cls);
  KrRxProtocolReactorList* providers =
      manager ? krrfFindReactorList(manager, KrRfReflectionProviderPR::desc()) : nullptr;
  if (!providers) return nullptr;
  KrRxProtocolReactorIterator* it = providers->newIterator();
  for (; !it->done() && !own; it->next()) {
    static_cast<KrRfReflectionProviderPR*>(it->object())->provideSymbols(cls, this);
    own = reflectionPE(cls, false);
  }
  delete it;
  return own;
}

void KrRfImpReflectionService::addReactor(KrRfReflectionReactor* reactor) { mReactors.append(reactor); }

void KrRfImpReflectionService::removeReactor(KrRfReflectionReactor* reactor) {
  for (int32_t i = 0; i < mReactors.count; ++i) {
    if (mReactors.data[i] == reactor) {
      mReactors.removeAt(i);
      return;
    }
  }
}

void KrRfImpReflectionService::notifyAdded(KrRfSymbol* symbol) const {
  for (int32_t i = 0; i < mReactors.count; ++i) mReactors.data[i]->symbolAdded(symbol);
}

void KrRfImpReflectionService::notifyRemoved(KrRfSymbol* symbol) const {
  for (int32_t i = mReactors.count - 1; i >= 0; --i) mReactors.data[i]->symbolRemoved(symbol);
}
