// KrRxTextStringFormattable: a text string's text form is its text as it is.

#include "values/KrRxTextStringFormattable.h"

#include "krrxtextstring.h"
#include "runtime/KrRxCoreClass.h"

Kesu::ErrorStatus KrRxTextStringFormattable::toText(const KrRxObject* object, wchar_t*& text,
                                                    const KrRxFormatContext*) {
  const KrRxTextString* string = KrRxTextString::cast(object);
  if (!string) return Kesu::eInvalidInput;
  wchar_t* copy = string->cpyToAscii();
  if (!copy) return Kesu::eOutOfMemory;
  text = copy;
  return Kesu::eOk;
}

Kesu::ErrorStatus KrRxTextStringFormattable::fromText(KrRxObject* object, const wchar_t* text,
                                                      const KrRxFormatContext*) {
  KrRxTextString* string = KrRxTextString::cast(object);
  if (!string || !text) return Kesu::eInvalidInput;
  string->cpyFromAscii(text);
  return Kesu::eOk;
}

KRRX_CORE_CONS_DEFINE_MEMBERS(KrRxTextStringFormattable, KrRxFormattablePE)
