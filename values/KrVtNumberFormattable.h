#pragma once
// The text forms of the plain numbers: yes/no, the eight integer kinds and
// Float64. Texts are printed and scanned with the C99 wide formats.

#include "krrxformattable.h"

// "Yes" / "No"; reads either without regard to case.
class KrVtBoolFormattable : public KrRxFormattablePE {
 public:
  Kesu::ErrorStatus toText(const KrRxObject* object, wchar_t*& text, const KrRxFormatContext* context) override;
  Kesu::ErrorStatus fromText(KrRxObject* object, const wchar_t* text, const KrRxFormatContext* context) override;
};

// "%.03f" below 1e10 in magnitude, "%.03E" from there; "*", "∞" and "-∞"
// for unset and infinite values.
class KrVtFloat64Formattable : public KrRxFormattablePE {
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

typedef KrVtIntegerFormattable<signed char> KrVtInt8Formattable;
typedef KrVtIntegerFormattable<unsigned char> KrVtUInt8Formattable;
typedef KrVtIntegerFormattable<short> KrVtInt16Formattable;
typedef KrVtIntegerFormattable<unsigned short> KrVtUInt16Formattable;
typedef KrVtIntegerFormattable<int> KrVtInt32Formattable;
typedef KrVtIntegerFormattable<unsigned int> KrVtUInt32Formattable;
typedef KrVtIntegerFormattable<__int64> KrVtInt64Formattable;
typedef KrVtIntegerFormattable<unsigned __int64> KrVtUInt64Formattable;
