#pragma once
// The text forms of the plain numbers: yes/no, the eight integer kinds and
// Float64, in the digits of their C formats.

#include "krrxformattable.h"
#include "values/KrVtText.h"

// "Yes" / "No"; reads either without regard to case.
class KrVtBoolFormattable : public KrRxFormattablePE {
  KRRX_DECLARE_MEMBERS(KrVtBoolFormattable);

 public:
  Kesu::ErrorStatus toText(const KrRxObject* object, wchar_t*& text, const KrRxFormatContext* context) override;
  Kesu::ErrorStatus fromText(KrRxObject* object, const wchar_t* text, const KrRxFormatContext* context) override;
};

// "%.03f" below 1e10 in magnitude, "%.03E" from there; "*", "∞" and "-∞"
// for unset and infinite values.
class KrVtFloat64Formattable : public KrRxFormattablePE {
  KRRX_DECLARE_MEMBERS(KrVtFloat64Formattable);

 public:
  Kesu::ErrorStatus toText(const KrRxObject* object, wchar_t*& text, const KrRxFormatContext* context) override;
  Kesu::ErrorStatus fromText(KrRxObject* object, const wchar_t* text, const KrRxFormatContext* context) override;
};

// An integer kind written and read with its C format ("%hhd" ... "%llu").
template <typename T>
class KrVtIntegerFormattable : public KrRxFormattablePE_T<T> {
 public:
  Kesu::ErrorStatus toText(const KrRxObject* object, wchar_t*& text, const KrRxFormatContext* context) override;
  Kesu::ErrorStatus fromText(KrRxObject* object, const wchar_t* text, const KrRxFormatContext* context) override;
};

// The named integer formattables, one registered class each.
#define KRVT_INTEGER_FORMATTABLE(CLASS, T)          \
  class CLASS : public KrVtIntegerFormattable<T> { \
    KRRX_DECLARE_MEMBERS(CLASS);                    \
  }

KRVT_INTEGER_FORMATTABLE(KrVtInt8Formattable, signed char);
KRVT_INTEGER_FORMATTABLE(KrVtUInt8Formattable, unsigned char);
KRVT_INTEGER_FORMATTABLE(KrVtInt16Formattable, short);
KRVT_INTEGER_FORMATTABLE(KrVtUInt16Formattable, unsigned short);
KRVT_INTEGER_FORMATTABLE(KrVtInt32Formattable, int);
KRVT_INTEGER_FORMATTABLE(KrVtUInt32Formattable, unsigned int);
KRVT_INTEGER_FORMATTABLE(KrVtInt64Formattable, __int64);
KRVT_INTEGER_FORMATTABLE(KrVtUInt64Formattable, unsigned __int64);

#undef KRVT_INTEGER_FORMATTABLE

// Adds to composer the text that formattable's toText would write for object,
// without a heap text, when formattable is exactly one of the Float64 and
// integer formattables above and object is of its class; false otherwise
// (composer then unchanged), and the caller asks toText.
bool krvtComposeNumberText(const KrRxFormattablePE* formattable, const KrRxObject* object,
                           KrVtText::Composer& composer);
