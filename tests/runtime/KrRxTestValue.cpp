#include "KrRxTestValue.h"

KRRX_CONS_DEFINE_MEMBERS(KrRxTestValue, KrRxObject)

int KrRxTestValue::gDestroyed = 0;

void KrRxTestValue::registerClass() {
  static const bool registered = [] {
    rxInit();
    krrxBuildClassHierarchy();
    return true;
  }();
  (void)registered;
}

Kesu::ErrorStatus KrRxTestValue::copyFrom(const KrRxObject* other) {
  const KrRxTestValue* source = cast(other);
  if (!source) return Kesu::eWrongObjectType;
  mValue = source->mValue;
  return Kesu::eOk;
}

bool KrRxTestValue::isEqualTo(const KrRxObject* other) const {
  const KrRxTestValue* value = cast(other);
  return value && value->mValue == mValue;
}

KrRx::Ordering KrRxTestValue::comparedTo(const KrRxObject* other) const {
  const KrRxTestValue* value = cast(other);
  if (!value) return KrRx::kNotOrderable;
  if (mValue < value->mValue) return KrRx::kLessThan;
  return mValue == value->mValue ? KrRx::kEqual : KrRx::kGreaterThan;
}
