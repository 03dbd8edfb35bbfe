// Reactor managers, made on first request and kept in the class descriptor.

#include "extensions/KrRxProtocolReactorManagerFactory.h"

#include <new>

#include "runtime/KrRxClassAttachments.h"
#include "runtime/KrRxCoreClass.h"
#include "runtime/KrRxImpClass.h"

KRRX_CORE_NO_CONS_DEFINE_MEMBERS(KrRxProtocolReactorListIterator, KrRxIterator)
KRRX_CORE_NO_CONS_DEFINE_MEMBERS(KrRxImpProtocolReactorListIterator, KrRxProtocolReactorListIterator)
KRRX_CORE_NO_CONS_DEFINE_MEMBERS(KrRxProtocolReactorManager, KrRxObject)
KRRX_CORE_CONS_DEFINE_MEMBERS(KrRxImpProtocolReactorManager, KrRxProtocolReactorManager)
KRRX_CORE_NO_CONS_DEFINE_MEMBERS(KrRxProtocolReactorManagerFactory, KrRxService)
KRRX_CORE_CONS_DEFINE_MEMBERS(KrRxImpProtocolReactorManagerFactory, KrRxProtocolReactorManagerFactory)

KrRxImpProtocolReactorManager::~KrRxImpProtocolReactorManager() {
  for (int32_t i = 0; i < mLists.count; ++i) delete mLists.data[i];
  mLists.release();
}

KrRxProtocolReactorList* KrRxImpProtocolReactorManager::createReactorList(KrRxClass* reactorClass) {
  if (!reactorClass) return nullptr;
  for (int32_t i = 0; i < mLists.count; ++i)
    if (mLists.data[i]->reactorClass() == reactorClass) return mLists.data[i];
  auto* list = new KrRxImpProtocolReactorList(reactorClass);
  if (mLists.append(list)) return list;
  delete list;
  throw std::bad_alloc();
}

KrRxProtocolReactorListIterator* KrRxImpProtocolReactorManager::newIterator() const {
  return new KrRxImpProtocolReactorListIterator(this);
}

namespace {

// A class's reactor manager goes with the class.
void releaseReactorManager(KrRxImpClass* cls) { delete cls->mpReactorManager; }
[[maybe_unused]] const bool reactorManagerReleaseInstalled = krrxAddClassAttachmentRelease(releaseReactorManager);

}  // namespace

KrRxProtocolReactorManager* KrRxImpProtocolReactorManagerFactory::createReactorManager(KrRxClass* cls) const {
  KrRxImpClass* imp = cls ? cls->impObj() : nullptr;
  if (!imp) return nullptr;
  if (!imp->mpReactorManager) imp->mpReactorManager = new KrRxImpProtocolReactorManager();
  return imp->mpReactorManager;
}
