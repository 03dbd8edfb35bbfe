#include "reflection/KrRfEvaluateString.h"

#include <cwchar>
#include <new>

#include "krrfformat.h"
#include "krrfproxy.h"
#include "krrfvalue.h"
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
// holder makes; the value is disposed of again when the reading fails.
Kesu::ErrorStatus readStep(const wchar_t* name, const KrRxObject* object, bool effective, KrRfPathValue& holder,
                           KrRxObject*& value) {
  if (!*name) return Kesu::eInvalidInput;
  const KrRfProperty* property = propertyFor(object->isA(), name);
  if (!property) return Kesu::eKeyNotFound;
  KrRxClass* valueType = property->valueType();
  KrRxObject* made = valueType ? holder.make(valueType) : nullptr;
  if (!made) return Kesu::eNotSupported;
  Kesu::ErrorStatus status = effective ? krrfGetEffectiveValueForObject(property, object, made)
                                       : property->getValue(object, made);
  if (status != Kesu::eOk) {
    holder.dispose(made);
    return status;
  }
  value = made;
  return Kesu::eOk;
}

// Walks the steps of path (split in place at the dots), keeping the proxies
// of the earlier steps alive until the end since later objects may be theirs.
Kesu::ErrorStatus walk(wchar_t* path, const KrRxObject* object, bool effective, KrRfPathValue& last,
                       KrRxObject*& result, KrRxGrowArray<KrRxObject*>& proxies) {
  KrRfPathValue heap(KrRfPathValue::kHeap);
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

template <typename T>
bool KrRfPathValue::makeInPlace(const KrRxClass* valueType, KrRxObject*& value) {
  static_assert(sizeof(KrRfValueT<T>) <= sizeof mStorage && alignof(KrRfValueT<T>) <= 8, "room for every kind");
  if (valueType != KrRfValueT<T>::desc()) return false;
  value = ::new (mStorage) KrRfValueT<T>();
  return true;
}

KrRxObject* KrRfPathValue::make(const KrRxClass* valueType) {
  KrRxObject* value = nullptr;
  if (mPlace == kNumbersInPlace &&
      (makeInPlace<double>(valueType, value) || makeInPlace<int>(valueType, value) ||
       makeInPlace<unsigned int>(valueType, value) || makeInPlace<__int64>(valueType, value) ||
       makeInPlace<unsigned __int64>(valueType, value) || makeInPlace<short>(valueType, value) ||
       makeInPlace<unsigned short>(valueType, value) || makeInPlace<signed char>(valueType, value) ||
       makeInPlace<unsigned char>(valueType, value)))
    return value;
  return valueType->create();
}

void KrRfPathValue::dispose(KrRxObject* value) {
  if (static_cast<void*>(value) == mStorage) value->~KrRxObject();
  else delete value;
}

Kesu::ErrorStatus krrfEvaluatePath(wchar_t* path, const KrRxObject* object, bool effective, KrRfPathValue& holder,
                                   KrRxObject*& value) {
  KrRxGrowArray<KrRxObject*> proxies;
  Kesu::ErrorStatus status = walk(path, object, effective, holder, value, proxies);
  for (int32_t i = proxies.count - 1; i >= 0; --i) delete proxies.data[i];
  proxies.release();
  return status;
}

Kesu::ErrorStatus krrfEvaluateString(const wchar_t* expression, const KrRxObject* object, KrRxObject*& result,
                                     bool effective) {
  if (!expression || !object) return Kesu::eInvalidInput;
  KrRfTextCopy path(expression, wcslen(expression));
  if (!path.text()) return Kesu::eOutOfMemory;
  KrRfPathValue heap(KrRfPathValue::kHeap);
  return krrfEvaluatePath(path.text(), object, effective, heap, result);
}

Kesu::ErrorStatus krrfEvaluateString(const wchar_t* expression, const KrRxObject* object, KrRxObject*& result) {
  return krrfEvaluateString(expression, object, result, true);
}
