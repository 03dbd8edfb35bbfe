#pragma once
// Text helpers shared by the value types' text forms: the special texts of
// the floating kinds, and number texts in new CRT heap blocks that the caller
// frees with free().
//
// The texts are those of the Windows C runtime's formats ("%.03f", "%hu" ...)
// under its current rules: two-digit exponents, and "%hhd" scanning one byte,
// which MinGW's C99 functions (__mingw_*) follow. Digits are written with
// std::to_chars, and plain decimal texts read by a digit loop of our own that
// rounds as that scan does (to long double, then to double); the texts it
// leaves aside go to __mingw_swscanf itself. The date and time
// scans, whose scansets must store wide characters as Windows' wide scanf
// does, use msvcrt's own __ms_swscanf; none of their formats has "%hh".

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

// A number text composed on the stack from the digits the C formats would
// print, then copied into one new CRT heap block. Holds one number of any
// size with a few short literals (352 characters in all).
class Composer {
 public:
  Composer() : mLength(0) {}
  // "%lld" / "%llu"; the narrower integer formats print the same digits.
  Composer& integer(long long v);
  Composer& integer(unsigned long long v);
  // "%0<width>lld": zero-padded after the sign to at least width characters.
  Composer& padded(long long v, int width);
  // "%.<decimals>f", ties and all: the exact binary value correctly rounded.
  Composer& fixed(double v, int decimals);
  // "%.<decimals>E": upper-case E and an exponent of at least two digits.
  Composer& exponent(double v, int decimals);
  // Appends a wide literal unchanged.
  Composer& literal(const wchar_t* text);
  // The text so far, not terminated, and its length.
  const wchar_t* text() const { return mText; }
  unsigned length() const { return mLength; }
  // Stores a new block holding the text; eInvalidInput when it is empty,
  // eOutOfMemory when no block can be had (text then unchanged).
  Kesu::ErrorStatus copyTo(wchar_t*& text) const;

 private:
  Composer& ascii(const char* first, const char* last);

  // Room for the longest fixed text of a double, 309 digits and 6 decimals.
  wchar_t mText[352];
  unsigned mLength;
};

// Reads a number the way the C scan formats do ("%lf", "%lld", "%hu" ...):
// white space, sign and the longest number that starts the text. Plain
// decimal texts are read here; the rest (hexadecimal, infinities, NaNs, long
// or out-of-range digits, unusual white space) go to the C scan itself.
// True when one field was converted; v is then set.
bool scanDouble(const wchar_t* text, double& v);
template <typename T>
bool scanInteger(const wchar_t* text, T& v);

// Whether a double's text switches to the exponent form at a magnitude of 1e10.
enum DoubleForm { kFixed, kExponentFrom1e10 };
// A double with all three special texts, else "%.<decimals>f", or
// "%.<decimals>E" from 1e10 on where form asks for it.
Composer& composeDouble(Composer& composer, double v, int decimals, DoubleForm form);
// The same in a new block (see Composer::copyTo).
Kesu::ErrorStatus doubleToText(double v, int decimals, DoubleForm form, wchar_t*& text);
// A double read from one of the three special texts, else "%lf" must convert
// one field; eInvalidInput otherwise and for a null text (v unchanged).
Kesu::ErrorStatus doubleFromText(double& v, const wchar_t* text);

}  // namespace KrVtText
