#pragma once
// The text forms of the numbers that count units of a whole (percentage,
// permille) and of currency amounts, on the double itself. Texts are wide and
// written into new CRT heap blocks that the caller frees with free().

#include "krerrorstatus.h"
#include "krexport.h"

namespace KrVtNumberText {

// The count of units per whole in a text and back: format is "%ld%%" with
// 100 units (percentage) or "%ld\u2030" with 1000 (permille). Writing rounds
// v x units half away from zero; reading needs the count, the unit sign
// itself is optional. No special texts.
KR1ST_API Kesu::ErrorStatus unitsToText(double v, long units, const wchar_t* format, wchar_t*& text);
KR1ST_API Kesu::ErrorStatus unitsFromText(double& v, long units, const wchar_t* format, const wchar_t* text);

// A double in text and back: the special texts "*", U+221E and "-\u221E",
// else format ("%.02f" for currency) for writing and "%lf" for reading.
KR1ST_API Kesu::ErrorStatus floatToText(double v, const wchar_t* format, wchar_t*& text);
KR1ST_API Kesu::ErrorStatus floatFromText(double& v, const wchar_t* text);

}  // namespace KrVtNumberText
