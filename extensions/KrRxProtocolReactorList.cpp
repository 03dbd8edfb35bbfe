// Reactor lists: the reactors of one reactor class, in insertion order.

#include "extensions/KrRxProtocolReactorList.h"

#include <algorithm>

#include "runtime/KrRxCoreClass.h"

KRRX_CORE_NO_CONS_DEFINE_MEMBERS(KrRxProtocolReactor, KrRxObject)
KRRX_CORE_NO_CONS_DEFINE_MEMBERS(KrRxProtocolReactorIterator, KrRxIterator)
KRRX_CORE_NO_CONS_DEFINE_MEMBERS(KrRxImpProtocolReactorIterator, KrRxProtocolReactorIterator)
KRRX_CORE_NO_CONS_DEFINE_MEMBERS(KrRxProtocolReactorList, KrRxObject)
KRRX_CORE_NO_CONS_DEFINE_MEMBERS(KrRxImpProtocolReactorList, KrRxProtocolReactorList)

KrRxImpProtocolReactorList::~KrRxImpProtocolReactorList() { mReactors.release(); }

int32_t KrRxImpProtocolReactorList::indexOf(const KrRxProtocolReactor* reactor) const {
  const KrRxProtocolReactor* const* begin = mReactors.data;
  const KrRxProtocolReactor* const* end = begin + mReactors.count;
  const KrRxProtocolReactor* const* found = std::find(begin, end, reactor);
  return found == end ? -1 : static_cast<int32_t>(found - begin);
}

Kesu::ErrorStatus KrRxImpProtocolReactorList::addReactor(KrRxProtocolReactor* reactor) {
  if (!reactor->isKindOf(mpReactorClass)) return Kesu::eWrongObjectType;
  if (indexOf(reactor) >= 0) return Kesu::eDuplicateKey;
  return mReactors.append(reactor) ? Kesu::eOk : Kesu::eOutOfMemory;
}

void KrRxImpProtocolReactorList::removeReactor(KrRxProtocolReactor* reactor) {
  int32_t index = indexOf(reactor);
  if (index >= 0) mReactors.removeAt(index);
}

KrRxProtocolReactorIterator* KrRxImpProtocolReactorList::newIterator() const {
  return new KrRxImpProtocolReactorIterator(this);
}
