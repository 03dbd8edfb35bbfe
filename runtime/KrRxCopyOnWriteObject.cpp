#include "krrxcopyonwrite.h"

#include <atomic>

#include "runtime/KrRxCoreClass.h"

KRRX_CORE_NO_CONS_DEFINE_MEMBERS(KrRxCopyOnWriteObject, KrRxObject)

struct KrRxCopyOnWriteObject::SharedBlock : KrHeapOperators {
  explicit SharedBlock(KrRxObject* object) : object(object), refCount(1) {}
  KrRxObject* object;
  std::atomic<int32_t> refCount;
};

KrRxCopyOnWriteObject::KrRxCopyOnWriteObject(KrRxObject* object) : mpShared(new SharedBlock(object)) {}

KrRxCopyOnWriteObject::KrRxCopyOnWriteObject(const KrRxCopyOnWriteObject& other)
    : KrRxObject(), mpShared(other.mpShared) {
  mpShared->refCount.fetch_add(1);
}

KrRxCopyOnWriteObject& KrRxCopyOnWriteObject::operator=(const KrRxCopyOnWriteObject& other) {
  other.mpShared->refCount.fetch_add(1);
  release(mpShared);
  mpShared = other.mpShared;
  return *this;
}

KrRxCopyOnWriteObject::~KrRxCopyOnWriteObject() { release(mpShared); }

void KrRxCopyOnWriteObject::release(SharedBlock* block) {
  if (block->refCount.fetch_sub(1) != 1) return;
  delete block->object;
  delete block;
}

void KrRxCopyOnWriteObject::unshare() {
  if (mpShared->refCount.load() <= 1) return;
  KrRxObject* copy = mpShared->object ? mpShared->object->clone() : nullptr;
  SharedBlock* own = new SharedBlock(copy);
  release(mpShared);
  mpShared = own;
}

int32_t KrRxCopyOnWriteObject::shareCount() const { return mpShared->refCount.load(); }

const KrRxObject* KrRxCopyOnWriteObject::read() const { return mpShared->object; }

KrRxObject* KrRxCopyOnWriteObject::write() {
  unshare();
  return mpShared->object;
}
