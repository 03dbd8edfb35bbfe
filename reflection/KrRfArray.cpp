// The abstract array of reflection and the search over its elements.

#include "krrfarray.h"

#include "runtime/KrRxCoreClass.h"

KRRX_CORE_NO_CONS_DEFINE_MEMBERS(KrRfArray, KrRxObject)

KrRfArray::~KrRfArray() = default;

int KrRfArray::find(const KrRxObject* value, int start) const {
  KrRxClass* type = elementType();
  KrRxObject* made = type ? type->create() : nullptr;
  KrRfValue* element = KrRfValue::cast(made);
  if (!element) {
    delete made;
    return -1;
  }
  int found = -1;
  for (int i = start; i < length() && found < 0; ++i)
    if (getAt(i, element) == Kesu::eOk && element->isEqualTo(value)) found = i;
  delete element;
  return found;
}
