#include "krrfpropertyextensions.h"

#include "runtime/KrRxCoreClass.h"

KRRX_CORE_NO_CONS_DEFINE_MEMBERS(KrRfPropertyEnumPE, KrRxObject)
KRRX_CORE_NO_CONS_DEFINE_MEMBERS(KrRfPropertyRangePE, KrRxObject)
KRRX_CORE_NO_CONS_DEFINE_MEMBERS(KrRfPropertyDerivationPE, KrRxObject)
KRRX_CORE_NO_CONS_DEFINE_MEMBERS(KrRfArrayPropertyDetailsPE, KrRxObject)
KRRX_CORE_NO_CONS_DEFINE_MEMBERS(KrRfArrayPropertyDerivationPE, KrRxObject)

Kesu::ErrorStatus krrfGetEffectiveValueForObject(const KrRfProperty* property, const KrRxObject* object,
                                                 KrRxObject* value) {
  const auto* derivation =
      static_cast<const KrRfPropertyDerivationPE*>(property->queryX(KrRfPropertyDerivationPE::desc()));
  const KrRxObject* source = nullptr;
  if (derivation && derivation->isDerived(property, object, source))
    return derivation->getDerivedValue(property, object, source, value);
  return property->getValue(object, value);
}
