// The root object: run-time type tests, cloning and protocol lookup.

#include "krrxobject.h"

#include "krdiagnostics.h"
#include "krrxclass.h"
#include "krrxdictionary.h"
#include "runtime/KrRxClassDictionary.h"
#include "runtime/KrRxImpClass.h"

KrRxObject::~KrRxObject() = default;

KrRxClass* KrRxObject::desc() {
  static KrRxClass* const descriptor = new KrRxClass(L"KrRxObject", nullptr, nullptr);
  return descriptor;
}

KrRxClass* KrRxObject::isA() const { return desc(); }

KrRxObject* KrRxObject::clone() const {
  KrRxPseudoConstructor make = isA()->impObj()->mpPseudoConstructor;
  KrRxObject* copy = make ? make() : nullptr;
  if (!copy) return nullptr;
  if (copy->copyFrom(this) == Kesu::eOk) return copy;
  delete copy;
  return nullptr;
}

Kesu::ErrorStatus KrRxObject::copyFrom(const KrRxObject*) {
  krrx_abort(L"Unimplemented KrRxObject::copyFrom() function invoked.");
}

bool KrRxObject::isEqualTo(const KrRxObject* other) const { return other == this; }

KrRx::Ordering KrRxObject::comparedTo(const KrRxObject*) const { return KrRx::kNotOrderable; }

KrRxObject* KrRxObject::subQueryX(const KrRxClass* protocolClass) const {
  return KrRxProtocolLookup::entry(isA(), protocolClass);
}

bool KrRxObject::isKindOf(const KrRxClass* cls) const {
  if (!this) return false;
  for (const KrRxClass* walk = isA(); walk; walk = walk->impObj()->mpParent)
    if (walk == cls) return true;
  return false;
}

KrRxObject* KrRxObject::x(const KrRxClass* protocolClass) const {
  KrRxObject* object = subQueryX(protocolClass);
  if (!object) krrx_abort(L"KrRxClass::getX() failed!!");
  return object;
}

KrRxObject* KrRxObject::overruledQueryX(const KrRxClass* protocolClass) const {
  const KrRxOverrule* chosen = KrRxOverruleInternals::queryOverrule(this, KrRxQueryXOverrule::desc());
  return chosen ? static_cast<const KrRxQueryXOverrule*>(chosen)->queryX(this, protocolClass)
                : subQueryX(protocolClass);
}

// The out-of-line queryX that modules built against the first 20.x headers
// import. It carries queryX's mangled name (a member's this pointer is passed
// as the first argument) and its body is the inline queryX itself.
KR1ST_API KrRxObject* krrxExportedQueryX(const KrRxObject* object, const KrRxClass* protocolClass) __asm__(
    "_ZNK10KrRxObject6queryXEPK9KrRxClass");
KrRxObject* krrxExportedQueryX(const KrRxObject* object, const KrRxClass* protocolClass) {
  return object->queryX(protocolClass);
}

KrRxDictionary* sysClasses = nullptr;

KrRxClass* krrxFindKrRxClass(const wchar_t* name) {
  return sysClasses ? static_cast<KrRxClass*>(sysClasses->at(name)) : nullptr;
}
