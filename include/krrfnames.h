#pragma once
/// @file
/// Name conversion: turns a display text into a valid symbol name (lower-case
/// initial, then letters, digits and underscores only), transliterating
/// accented Latin letters to plain ASCII first.
///
/// @code
///   wchar_t* name = nullptr;
///   if (krrfToCamelCase(L"Größte Breite", name) == Kesu::eOk)   // "grosteBreite"
///     pe->addSymbol(new MyProperty(name, L"Größte Breite"));
///   free(name);
/// @endcode

#include "krerrorstatus.h"
#include "krexport.h"

/// Writes the symbol name for text into result: frees the text result held
/// before (null or a heap block), stores a new heap block that the caller
/// frees with free(). Separator runs (blanks, punctuation, other letters)
/// capitalise the next letter; letters inside a word are lowered; a leading
/// digit gets an underscore before it. 3 for a null text; 6 when memory
/// runs out (result then stays as it was).
KR1ST_API Kesu::ErrorStatus krrfToCamelCase(const wchar_t* text, wchar_t*& result);
