// The formattable protocol and the two functions through which every
// object is written and read.

#include "values/KrRxFormattable.h"

#include "runtime/KrRxCoreClass.h"

KRRX_CORE_NO_CONS_DEFINE_MEMBERS(KrRxFormattablePE, KrRxObject)

KrRxFormattablePE::~KrRxFormattablePE() = default;

KrRxFormattablePE* krrxFormattableOf(const KrRxObject* object) {
  return static_cast<KrRxFormattablePE*>(object->queryX(KrRxFormattablePE::desc()));
}

Kesu::ErrorStatus krrxFormatObject(const KrRxObject* object, wchar_t*& text, const KrRxFormatContext* context) {
  if (!object) return Kesu::eInvalidInput;
  KrRxFormattablePE* formattable = krrxFormattableOf(object);
  return formattable ? formattable->toText(object, text, context) : Kesu::eNotSupported;
}

Kesu::ErrorStatus krrxParseObject(KrRxObject* object, const wchar_t* text, const KrRxFormatContext* context) {
  if (!object) return Kesu::eInvalidInput;
  KrRxFormattablePE* formattable = krrxFormattableOf(object);
  return formattable ? formattable->fromText(object, text, context) : Kesu::eNotSupported;
}
