#include "runtime/KrRxImpSet.h"

#include "runtime/KrRxCoreClass.h"

KRRX_CORE_NO_CONS_DEFINE_MEMBERS(KrRxSet, KrRxObject)
KRRX_CORE_CONS_DEFINE_MEMBERS(KrRxImpSet, KrRxSet)
KRRX_CORE_CONS_DEFINE_MEMBERS(KrRxGenTypedSet, KrRxImpSet)

KrRxImpSet::KrRxImpSet(bool deleteObjects) : mDeleteObjects(deleteObjects) {}

KrRxImpSet::~KrRxImpSet() { removeAll(); }

// Bisection over the n nodes from position: the middle member's comparedTo
// tells which half holds the object. Once a member cannot be ordered, the
// remaining n nodes are scanned for an equal one.
KrRxImpSet::Position KrRxImpSet::search(const KrRxObject* object) const {
  Node* position = mList.first();
  unsigned int n = mList.numEntries();
  while (n) {
    Node* middle = position;
    for (unsigned int i = 0; i < n / 2; ++i) middle = middle->next;
    switch (middle->object->comparedTo(object)) {
      case KrRx::kEqual:
        return {middle, true};
      case KrRx::kLessThan:
        position = middle->next;
        n -= n / 2 + 1;
        break;
      case KrRx::kGreaterThan:
        n /= 2;
        break;
      case KrRx::kNotOrderable:
      default:
        for (Node* node = position; n; --n, node = node->next)
          if (node->object->isEqualTo(object)) return {node, true};
        return {position, false};
    }
  }
  return {position, false};
}

bool KrRxImpSet::add(KrRxObject* object) {
  if (!object) return false;
  Position where = search(object);
  if (where.found) return false;
  if (where.node)
    mList.insertBefore(where.node, object);
  else
    mList.addNewLastEntry(object);
  return true;
}

bool KrRxImpSet::remove(KrRxObject* object) {
  if (!object) return false;
  Position where = search(object);
  if (!where.found) return false;
  if (mDeleteObjects) delete where.node->object;
  mList.unlink(where.node);
  return true;
}

bool KrRxImpSet::isMember(KrRxObject* object) const { return object && search(object).found; }

void KrRxImpSet::removeAll() {
  while (mList.numEntries()) {
    if (mDeleteObjects) delete mList.getLastEntry();
    mList.removeLastEntry();
  }
}

unsigned int KrRxImpSet::numEntries() const { return mList.numEntries(); }

KrRxIterator* KrRxImpSet::newIterator(bool forward) const { return mList.newIterator(forward); }

bool KrRxImpSet::deletesObjects() const { return mDeleteObjects; }

KrRxGenTypedSet::KrRxGenTypedSet(bool deleteObjects, const KrRxClass* requiredClass)
    : KrRxImpSet(deleteObjects), mpRequiredClass(requiredClass) {}

bool KrRxGenTypedSet::add(KrRxObject* object) {
  if (mpRequiredClass && !(object && object->isKindOf(mpRequiredClass))) return false;
  return KrRxImpSet::add(object);
}
