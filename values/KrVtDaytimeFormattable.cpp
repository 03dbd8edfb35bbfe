#include "krvtdaytime.h"

#include "runtime/KrRxCoreClass.h"
#include "values/KrVtDaytimeText.h"

namespace {

// Writes a value of class V with write; eInvalidInput for any other object.
template <typename V>
Kesu::ErrorStatus writeAs(const KrRxObject* object, wchar_t*& text,
                          Kesu::ErrorStatus (*write)(double, wchar_t*&)) {
  const V* value = V::cast(object);
  return value ? write(value->value(), text) : Kesu::eInvalidInput;
}

template <typename V>
Kesu::ErrorStatus readAs(KrRxObject* object, const wchar_t* text,
                         Kesu::ErrorStatus (*read)(double&, const wchar_t*)) {
  V* value = V::cast(object);
  return value && text ? read(value->value(), text) : Kesu::eInvalidInput;
}

}  // namespace

Kesu::ErrorStatus KrVtDateFormattable::toText(const KrRxObject* object, wchar_t*& text, const KrRxFormatContext*) {
  return writeAs<KrVtDate>(object, text, KrVtDaytimeText::dateToText);
}

Kesu::ErrorStatus KrVtDateFormattable::fromText(KrRxObject* object, const wchar_t* text, const KrRxFormatContext*) {
  return readAs<KrVtDate>(object, text, KrVtDaytimeText::dateFromText);
}

Kesu::ErrorStatus KrVtTimeFormattable::toText(const KrRxObject* object, wchar_t*& text, const KrRxFormatContext*) {
  return writeAs<KrVtTime>(object, text, KrVtDaytimeText::timeToText);
}

Kesu::ErrorStatus KrVtTimeFormattable::fromText(KrRxObject* object, const wchar_t* text, const KrRxFormatContext*) {
  return readAs<KrVtTime>(object, text, KrVtDaytimeText::timeFromText);
}

Kesu::ErrorStatus KrVtDateTimeFormattable::toText(const KrRxObject* object, wchar_t*& text,
                                                  const KrRxFormatContext*) {
  return writeAs<KrVtDateTime>(object, text, KrVtDaytimeText::dateTimeToText);
}

Kesu::ErrorStatus KrVtDateTimeFormattable::fromText(KrRxObject* object, const wchar_t* text,
                                                    const KrRxFormatContext*) {
  return readAs<KrVtDateTime>(object, text, KrVtDaytimeText::dateTimeFromText);
}

KRRX_CORE_CONS_DEFINE_MEMBERS(KrVtDateFormattable, KrRxFormattablePE)
KRRX_CORE_CONS_DEFINE_MEMBERS(KrVtTimeFormattable, KrRxFormattablePE)
KRRX_CORE_CONS_DEFINE_MEMBERS(KrVtDateTimeFormattable, KrRxFormattablePE)
