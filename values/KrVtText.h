#pragma once
// Text helpers shared by the value types' text forms: the special texts of
// the floating kinds, and printing and scanning with the C runtime's own
// wide printf and scanf, whose rules the formats are written for. Texts are
// written into new CRT heap blocks that the caller frees with free().

#include "krerrorstatus.h"

namespace KrVtText {

// Which special texts a kind knows: "*" (unset, NaN) and U+221E (+infinity)
// always, "-\u221E" (-infinity) where asked for.
enum Specials { kUnsetAndInfinity, kWithNegativeInfinity };

// The special text of v, or null when v is an ordinary number for the kind.
const wchar_t* specialTextOf(double v, Specials specials);
// True when text is exactly one of the kind's special texts; v then holds its
// value (the unset value as the bit pattern 0xFFF8000000000000).
bool readSpecialText(const wchar_t* text, Specials specials, double& v);

// Prints format into a new block sized by a counting print first;
// eInvalidInput when the print yields no characters, eOutOfMemory when no
// block can be had.
Kesu::ErrorStatus printText(wchar_t*& text, const wchar_t* format, ...);

// A double with all three special texts, else printed with finiteFormat.
Kesu::ErrorStatus doubleToText(double v, const wchar_t* finiteFormat, wchar_t*& text);
// A double read from one of the three special texts, else "%lf" must convert
// one field; eInvalidInput otherwise and for a null text (v unchanged).
Kesu::ErrorStatus doubleFromText(double& v, const wchar_t* text);

}  // namespace KrVtText
