#include "krvtcurrency.h"

#include "runtime/KrRxCoreClass.h"
#include "values/KrVtText.h"
#include "values/KrVtValueMembers.h"

KRVT_DEFINE_VALUE_MEMBERS(KrVtCurrency, KrVtFloat64)

Kesu::ErrorStatus KrVtCurrencyFormattable::toText(const KrRxObject* object, wchar_t*& text,
                                                  const KrRxFormatContext*) {
  const KrVtCurrency* amount = KrVtCurrency::cast(object);
  if (!amount) return Kesu::eInvalidInput;
  return KrVtText::doubleToText(amount->value(), 2, KrVtText::kFixed, text);
}

Kesu::ErrorStatus KrVtCurrencyFormattable::fromText(KrRxObject* object, const wchar_t* text,
                                                    const KrRxFormatContext*) {
  KrVtCurrency* amount = KrVtCurrency::cast(object);
  if (!amount) return Kesu::eInvalidInput;
  return KrVtText::doubleFromText(amount->value(), text);
}

KRRX_CORE_CONS_DEFINE_MEMBERS(KrVtCurrencyFormattable, KrRxFormattablePE)
