#pragma once
// Text helpers shared by the value types' text forms: the special texts of
// the floating kinds, and printing into new CRT heap blocks that the caller
// frees with free().
//
// Which wide printf and scanf: the formats are written for the Windows C
// runtime's current rules. MinGW's C99 printing (__mingw_*) follows them for
// two-digit exponents, so printing uses it. Numbers are read by the scans
// below, as MinGW's C99 scanf reads them but without its heap block, whose
// failure that scanf does not survive. The date and time scans, whose
// scansets must store wide characters as Windows' wide scanf does, use
// msvcrt's own __ms_swscanf.

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

// The number scans: each skips leading white space, reads one number as the
// scanf conversion named, moves text past it and returns true; false (text
// unchanged) when no number is there. None of them allocates.
// "%lld" and "%llu": 64-bit, clamped to the type's range.
bool scanInteger(const wchar_t*& text, long long& value);
bool scanUnsigned(const wchar_t*& text, unsigned long long& value);
// "%ld" and "%lu" (and the shorter kinds, which keep the low bits): 32-bit.
bool scanLong(const wchar_t*& text, long& value);
bool scanUnsignedLong(const wchar_t*& text, unsigned long& value);
// "%lf".
bool scanDouble(const wchar_t*& text, double& value);

// A double with all three special texts, else printed with finiteFormat.
Kesu::ErrorStatus doubleToText(double v, const wchar_t* finiteFormat, wchar_t*& text);
// A double read from one of the three special texts, else "%lf" must convert
// one field; eInvalidInput otherwise and for a null text (v unchanged).
Kesu::ErrorStatus doubleFromText(double& v, const wchar_t* text);

}  // namespace KrVtText
