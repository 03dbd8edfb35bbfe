#pragma once
// Text helpers shared by the value types' text forms: the special texts of
// the floating kinds and printing into a new CRT heap block with the C
// runtime's own wide printf, whose rules the formats are written for.

#include "krerrorstatus.h"

namespace KrVtText {

// Which special texts a kind knows: "*" (unset, NaN) and U+221E (+infinity)
// always, "-∞" (-infinity) only where asked for.
enum Specials { kUnsetAndInfinity, kWithNegativeInfinity };

// The special text of v, or null when v is an ordinary number for the kind.
const wchar_t* specialTextOf(double v, Specials specials);
// True when text is exactly one of the special texts; v then holds its value.
bool readSpecialText(const wchar_t* text, Specials specials, double& v);

// A malloc'ed copy of source in text; eOutOfMemory when none can be had.
Kesu::ErrorStatus copyText(const wchar_t* source, wchar_t*& text);
// Prints format into a new malloc'ed block sized by a counting print first;
// eInvalidInput when the print yields no characters, eOutOfMemory when no
// block can be had.
Kesu::ErrorStatus printText(wchar_t*& text, const wchar_t* format, ...);

}  // namespace KrVtText
