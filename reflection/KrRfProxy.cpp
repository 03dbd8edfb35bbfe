// Proxies: pointers and references to other objects, owning them or not.

#include "krrfproxy.h"

#include "runtime/KrRxCoreClass.h"

KRRX_CORE_NO_CONS_DEFINE_MEMBERS(KrRfProxy, KrRxObject)
KRRX_CORE_NO_CONS_DEFINE_MEMBERS(KrRfProxyInterfacePE, KrRxObject)
KRRX_CORE_NO_CONS_DEFINE_MEMBERS(KrRfPointer, KrRfProxy)
KRRX_CORE_NO_CONS_DEFINE_MEMBERS(KrRfReference, KrRfProxy)

KrRfProxy::~KrRfProxy() = default;

bool KrRfProxy::isEqualTo(const KrRxObject* other) const {
  const KrRfProxy* proxy = cast(other);
  return proxy && proxy->object() == object();
}

KrRx::Ordering KrRfProxy::comparedTo(const KrRxObject* other) const {
  const KrRfProxy* proxy = cast(other);
  if (!proxy) return KrRx::kNotOrderable;
  if (object() == proxy->object()) return KrRx::kEqual;
  return object() < proxy->object() ? KrRx::kLessThan : KrRx::kGreaterThan;
}

// KrRfProxyObject

namespace {

unsigned int ownedBit(bool own) { return own ? static_cast<unsigned int>(KrRfProxy::kOwnsObject) : 0u; }

}  // namespace

KrRfProxyObject::KrRfProxyObject(KrRxObject* object, bool own) : mpObject(object), mFlags(ownedBit(own)) {}

KrRfProxyObject::~KrRfProxyObject() {
  if (mFlags & kOwnsObject) delete mpObject;
}

KrRxObject* KrRfProxyObject::object() const { return mpObject; }

unsigned int KrRfProxyObject::flags() const { return mFlags; }

Kesu::ErrorStatus KrRfProxyObject::setObject(KrRxObject* object, bool own) {
  if (object && !object->isKindOf(objectType())) return Kesu::eWrongObjectType;
  if ((mFlags & kOwnsObject) && mpObject != object) delete mpObject;
  mpObject = object;
  setFlags(ownedBit(own), kOwnsObject);
  return Kesu::eOk;
}

void KrRfProxyObject::setFlags(unsigned int value, unsigned int mask) { mFlags = (mFlags & ~mask) | (value & mask); }

// KrRfPointer

KrRfPointer::KrRfPointer(KrRxObject* object, bool own) : KrRfProxyObject(object, own) {}

Kesu::ErrorStatus KrRfPointer::copyFrom(const KrRxObject* other) {
  const KrRfPointer* pointer = cast(other);
  if (!pointer) return Kesu::eNotSupported;
  KrRxObject* theirs = pointer->object();
  if ((pointer->flags() & kCloneOnCopy) && theirs) {
    mpObject = theirs->clone();
    if (mpObject) setFlags(kCloneOnCopy | kOwnsObject, kCloneOnCopy | kOwnsObject);
  } else {
    mpObject = theirs;
    setFlags(0, kCloneOnCopy | kOwnsObject);
  }
  return Kesu::eOk;
}

KrRxClass* KrRfPointer::objectType() const { return KrRxObject::desc(); }

// KrRfReference

KrRfReference::KrRfReference(KrRxObject* object, bool own) : KrRfProxyObject(object, own) {}

Kesu::ErrorStatus KrRfReference::setObject(KrRxObject* object, bool own) {
  if (!object) return Kesu::eInvalidInput;
  return KrRfProxyObject::setObject(object, own);
}

Kesu::ErrorStatus KrRfReference::copyFrom(const KrRxObject* other) {
  const KrRfReference* reference = cast(other);
  if (!reference) return Kesu::eNotSupported;
  mpObject = reference->object();
  return Kesu::eOk;
}

KrRxClass* KrRfReference::objectType() const { return KrRxObject::desc(); }

// KrRfPointerT: registered as KrRxObjectPointer, KrRxClassPointer and KrRfValuePointer.

namespace {

template <typename O> struct PointerClass;
template <> struct PointerClass<KrRxObject> {
  static constexpr const wchar_t* name = L"KrRxObjectPointer";
  static constexpr const wchar_t* parent = L"KrRfPointer";
};
// A class pointer is a kind of object pointer in the class tree.
template <> struct PointerClass<KrRxClass> {
  static constexpr const wchar_t* name = L"KrRxClassPointer";
  static constexpr const wchar_t* parent = L"KrRxObjectPointer";
};
template <> struct PointerClass<KrRfValue> {
  static constexpr const wchar_t* name = L"KrRfValuePointer";
  static constexpr const wchar_t* parent = L"KrRfPointer";
};

}  // namespace

template <typename O>
KrRxClass* KrRfPointerT<O>::gpDesc = nullptr;

template <typename O>
KrRxClass* KrRfPointerT<O>::desc() {
  if (!gpDesc) gpDesc = krrxFindKrRxClass(PointerClass<O>::name);
  return gpDesc;
}

template <typename O>
KrRxClass* KrRfPointerT<O>::isA() const {
  return gpDesc ? gpDesc : desc();
}

template <typename O>
void KrRfPointerT<O>::rxInit() {
  gpDesc = krrfNewValueClass(PointerClass<O>::name, PointerClass<O>::parent,
                             [] { return static_cast<KrRxObject*>(new KrRfPointerT()); });
}

template <typename O>
KrRxClass* KrRfPointerT<O>::objectType() const {
  return O::desc();
}

template class KrRfPointerT<KrRxObject>;
template class KrRfPointerT<KrRxClass>;
template class KrRfPointerT<KrRfValue>;
