#include "reflection/KrRfProtocolReactors.h"

#include "krrxclass.h"
#include "reflection/KrRfReflectionService.h"
#include "runtime/KrRxCoreClass.h"

KRRX_CORE_NO_CONS_DEFINE_MEMBERS(KrRxSymbolFilterPR, KrRxProtocolReactor)
KRRX_CORE_NO_CONS_DEFINE_MEMBERS(KrRfReflectionProviderPR, KrRxProtocolReactor)

KrRxProtocolReactorManager* krrfReactorManagerOf(KrRxClass* cls) {
  auto* factory = KrRxProtocolReactorManagerFactory::cast(krrfFindService(L"ProtocolReactorManager"));
  return factory ? factory->createReactorManager(cls) : nullptr;
}

KrRxProtocolReactorList* krrfFindReactorList(const KrRxProtocolReactorManager* manager,
                                             const KrRxClass* reactorClass) {
  KrRxProtocolReactorList* found = nullptr;
  KrRxProtocolReactorListIterator* lists = manager->newIterator();
  for (; !lists->done() && !found; lists->next()) {
    auto* list = static_cast<KrRxProtocolReactorList*>(lists->object());
    if (list->reactorClass() == reactorClass) found = list;
  }
  delete lists;
  return found;
}

namespace {

// The verdict of cls's first symbol filter; true when it has none.
bool firstFilterAllows(KrRxClass* cls, const KrRxObject* object, const KrRfSymbol* symbol,
                       const KrRxReflectionContext* context) {
  KrRxProtocolReactorManager* manager = krrfReactorManagerOf(cls);
  KrRxProtocolReactorList* filters = manager ? krrfFindReactorList(manager, KrRxSymbolFilterPR::desc()) : nullptr;
  if (!filters) return true;
  KrRxProtocolReactorIterator* it = filters->newIterator();
  auto* filter = static_cast<KrRxSymbolFilterPR*>(it->object());
  delete it;
  return !filter || filter->isSymbolApplicable(object, symbol, context);
}

}  // namespace

bool krrxSymbolIsApplicable(const KrRxObject* object, const KrRfSymbol* symbol,
                            const KrRxReflectionContext* context) {
  if (!object) return false;
  for (KrRxClass* cls = object->isA(); cls; cls = cls->myParent()) {
    if (!firstFilterAllows(cls, object, symbol, context)) return false;
  }
  return true;
}
