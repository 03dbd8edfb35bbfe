#pragma once
// Printing a value type's text with the C runtime's own wide printf, whose
// rules the formats are written for, into a new CRT heap block.

#include "krerrorstatus.h"

namespace KrVtText {

// Prints format into a new malloc'ed block sized by a counting print first;
// eInvalidInput when the print yields no characters, eOutOfMemory when no
// block can be had.
Kesu::ErrorStatus printText(wchar_t*& text, const wchar_t* format, ...);

}  // namespace KrVtText
