#pragma once
// The text form of a text string: the text as it is.

#include "krrxformattable.h"

class KrRxTextStringFormattable : public KrRxFormattablePE {
  KRRX_DECLARE_MEMBERS(KrRxTextStringFormattable);

 public:
  // A copy of the text; eInvalidInput unless object is a KrRxTextString.
  Kesu::ErrorStatus toText(const KrRxObject* object, wchar_t*& text, const KrRxFormatContext* context) override;
  // Takes text as the new text; eInvalidInput for a null text or another kind of object.
  Kesu::ErrorStatus fromText(KrRxObject* object, const wchar_t* text, const KrRxFormatContext* context) override;
};
