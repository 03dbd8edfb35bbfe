#pragma once
// The text forms of the plain numbers: yes/no, the eight integer kinds and
// Float64; and the pieces of them that the other floating kinds share.

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

// A new text from malloc printed with format; eOutOfMemory when none can be had.
Kesu::ErrorStatus krvtNewText(wchar_t*& text, const wchar_t* format, ...);
// The shared text of an unset ("*") or infinite ("∞", "-∞") double; null for a finite one.
const wchar_t* krvtSpecialText(double value);
// Reads value from one of the shared special texts; false for any other text.
bool krvtReadSpecialText(const wchar_t* text, double& value);
// Writes a double: its special text, else printed with finiteFormat.
Kesu::ErrorStatus krvtDoubleToText(double value, const wchar_t* finiteFormat, wchar_t*& text);
// Reads a double: a special text, else "%lf" must convert; eInvalidInput otherwise.
Kesu::ErrorStatus krvtDoubleFromText(const wchar_t* text, double& value);
