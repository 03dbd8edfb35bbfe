#include "reflection/KrRfEvaluateString.h"

#include <cwchar>

#include "krrfformat.h"
#include "krrfproxy.h"
#include "krrxclass.h"
#include "reflection/KrRfImpReflectionPE.h"
#include "reflection/KrRfTextCopy.h"
#include "runtime/KrRxGrowArray.h"

namespace {

// The property of that name on cls or its nearest ancestor that has one.
const KrRfProperty* propertyFor(const KrRxClass* cls, const wchar_t* name) {
  KrRfReflectionPE* pe = KrRfImpReflectionPE::extensionOf(cls);
  return pe ? KrRfProperty::cast(pe->findSymbol(name)) : nullptr;
}

// Reads the property name on object into a value of its value class that
// make gives; the value is disposed of again when the reading fails.
Kesu::ErrorStatus readStep(const wchar_t* name, const KrRxObject* object, bool effective, KrRfValueMaker& maker,
                           KrRxObject*& value) {
  if (!*name) return Kesu::eInvalidInput;
  const KrRfProperty* property = propertyFor(object->isA(), name);
  if (!property) return Kesu::eKeyNotFound;
  KrRxClass* valueType = property->valueType();
  KrRxObject* made = valueType ? maker.make(valueType) : nullptr;
  if (!made) return Kesu::eNotSupported;
  Kesu::ErrorStatus status = effective ? krrfGetEffectiveValueForObject(property, object, made)
                                       : property->getValue(object, made);
  if (status != Kesu::eOk) {
    maker.dispose(made);
    return status;
  }
  value = made;
  return Kesu::eOk;
}

// Walks the steps of path (split in place at the dots), keeping the proxies
// of the earlier steps alive until the end since later objects may be theirs.
Kesu::ErrorStatus walk(wchar_t* path, const KrRxObject* object, bool effective, KrRfValueMaker& last,
                       KrRxObject*& result, KrRxGrowArray<KrRxObject*>& proxies) {
  KrRfValueMaker heap;
  wchar_t* step = path;
  for (wchar_t* dot = wcschr(step, L'.'); dot; dot = wcschr(step, L'.')) {
    *dot = 0;
    KrRxObject* value = nullptr;
    Kesu::ErrorStatus status = readStep(step, object, effective, heap, value);
    if (status != Kesu::eOk) return status;
    proxies.append(value);
    const KrRfProxy* proxy = KrRfProxy::cast(value);
    object = proxy ? proxy->object() : nullptr;
    if (!object) return Kesu::eInvalidInput;
    step = dot + 1;
  }
  return readStep(step, object, effective, last, result);
}

}  // namespace

KrRxObject* KrRfValueMaker::make(const KrRxClass* valueType) { return valueType->create(); }

void KrRfValueMaker::dispose(KrRxObject* value) { delete value; }

Kesu::ErrorStatus krrfEvaluatePath(wchar_t* path, const KrRxObject* object, bool effective, KrRfValueMaker& maker,
                                   KrRxObject*& value) {
  KrRxGrowArray<KrRxObject*> proxies;
  Kesu::ErrorStatus status = walk(path, object, effective, maker, value, proxies);
  for (int32_t i = proxies.count - 1; i >= 0; --i) delete proxies.data[i];
  proxies.release();
  return status;
}

Kesu::ErrorStatus krrfEvaluateString(const wchar_t* expression, const KrRxObject* object, KrRxObject*& result,
                                     bool effective) {
  if (!expression || !object) return Kesu::eInvalidInput;
  KrRfTextCopy path(expression, wcslen(expression));
  if (!path.text()) return Kesu::eOutOfMemory;
  KrRfValueMaker heap;
  return krrfEvaluatePath(path.text(), object, effective, heap, result);
}

Kesu::ErrorStatus krrfEvaluateString(const wchar_t* expression, const KrRxObject* object, KrRxObject*& result) {
  return krrfEvaluateString(expression, object, result, true);
}
