#include "krrfnames.h"

#include <cstring>
#include <cwchar>

#include "krheap.h"

namespace {

// ---- The transliteration table ----

// Replacements of one letter each for a row of 16 code points from first
// on; '.' marks a code point without a replacement, '*' one of kPairs.
struct Row {
  wchar_t first;
  const wchar_t* letters;
};

constexpr Row kRows[] = {
    {0x00C0, L"AAAAAA*CEEEEIIII"}, {0x00D0, L"DNOOOOO.OUUUUY*s"}, {0x00E0, L"aaaaaa*ceeeeiiii"},
    {0x00F0, L"dnooooo.ouuuuy*y"}, {0x0100, L"AaAaAaCcCcCcCcDd"}, {0x0110, L"DdEeEeEeEeEeGgGg"},
    {0x0120, L"GgGgHhHhIiIiIiIi"}, {0x0130, L"Ii..JjKkkLlLlLlL"}, {0x0140, L"lLlNnNnNn***OoOo"},
    {0x0150, L"Oo**RrRrRrSsSsSs"}, {0x0160, L"SsTtTtTtUuUuUuUu"}, {0x0170, L"UuUuWwYyYZzZzZzs"},
    {0x0180, L"bBBb66OCcDDDd.EE"}, {0x0190, L"EFfGG*IIKkl.MNnO"}, {0x01A0, L"Oo**Pp*22..tTtTU"},
    {0x01B0, L"uUVYyZz.....55.."}, {0x01C0, L"...!*********AaI"}, {0x01D0, L"iOoUuUuUuUuUueAa"},
    {0x01E0, L"Aa**GgGgKkOoOo.."}, {0x01F0, L"j***Gg..NnAa**Oo"}, {0x0200, L"AaAaEeEeIiIiOoOo"},
    {0x0210, L"RrRrUuUuSsTt..Hh"}, {0x0220, L"Nd**AaEeOoOoOoOo"}, {0x0230, L"OoYy"},
};

// Ligatures and special letters: more than one letter, or not a letter.
struct Pair {
  wchar_t code;
  const wchar_t* text;
};

constexpr Pair kPairs[] = {
    {0x00C6, L"AE"}, {0x00DE, L"Th"}, {0x00E6, L"ae"}, {0x00FE, L"th"}, {0x0149, L"'n"}, {0x014A, L"NG"},
    {0x014B, L"ng"}, {0x0152, L"OE"}, {0x0153, L"oe"}, {0x0195, L"hv"}, {0x01A2, L"OI"}, {0x01A3, L"oi"},
    {0x01A6, L"YR"}, {0x01C4, L"DZ"}, {0x01C5, L"DZ"}, {0x01C6, L"dz"}, {0x01C7, L"Lj"}, {0x01C8, L"Lj"},
    {0x01C9, L"lj"}, {0x01CA, L"NJ"}, {0x01CB, L"NJ"}, {0x01CC, L"nj"},
    {0x01E2, L"AE"}, {0x01E3, L"ae"}, {0x01F1, L"DZ"}, {0x01F2, L"DZ"}, {0x01F3, L"dz"},
    {0x01FC, L"AE"}, {0x01FD, L"ae"}, {0x0222, L"OU"}, {0x0223, L"ou"}, {0x02B9, L"\u00B4"},
    {0x02CA, L"\u00B4"},
};

// Zero-terminated one-character texts for the ASCII range.
struct AsciiTexts {
  wchar_t text[128][2];
  constexpr AsciiTexts() : text() {
    for (int c = 0; c < 128; ++c) text[c][0] = wchar_t(c);
  }
};
constexpr AsciiTexts kAscii;

// The replacement texts by code unit, made once at compile time. Every code
// unit with a replacement lies below kCodeUnits; the rest have none.
constexpr unsigned kCodeUnits = 0x300;

struct Transliteration {
  const wchar_t* replacement[kCodeUnits];

  constexpr Transliteration() : replacement() {
    for (int c = L'A'; c <= L'Z'; ++c) {
      replacement[c] = kAscii.text[c];
      replacement[c + 32] = kAscii.text[c + 32];
    }
    for (const Row& row : kRows) {
      for (int i = 0; row.letters[i]; ++i) {
        wchar_t letter = row.letters[i];
        if (letter != L'.' && letter != L'*') replacement[row.first + i] = kAscii.text[letter];
      }
    }
    for (const Pair& pair : kPairs) replacement[pair.code] = pair.text;
  }

  // The replacement of c, or null.
  const wchar_t* at(wchar_t c) const { return c < kCodeUnits ? replacement[c] : nullptr; }
};
constexpr Transliteration kTransliteration;

// ---- Conversion ----

bool isDigit(wchar_t c) { return c >= L'0' && c <= L'9'; }
bool isUpper(wchar_t c) { return c >= L'A' && c <= L'Z'; }
bool isLower(wchar_t c) { return c >= L'a' && c <= L'z'; }

// Writes the camel-case form of plain ASCII characters, one at a time.
class CamelCaseWriter {
 public:
  explicit CamelCaseWriter(wchar_t* out) : mOut(out), mEnd(out), mAfterSeparator(false) {}

  void put(wchar_t c) {
    if (isDigit(c)) {
      if (mEnd == mOut) *mEnd++ = L'_';
      *mEnd++ = c;
    } else if (isUpper(c)) {
      *mEnd++ = mAfterSeparator ? c : wchar_t(c + 32);
    } else if (isLower(c)) {
      *mEnd++ = mAfterSeparator ? wchar_t(c - 32) : c;
    } else if (c == L'_') {
      *mEnd++ = c;
    } else {
      mAfterSeparator = true;
      return;
    }
    mAfterSeparator = false;
  }
  void finish() { *mEnd = 0; }

 private:
  wchar_t* mOut;
  wchar_t* mEnd;
  bool mAfterSeparator;
};

// Writes the camel-case form of text's transliteration into out, which holds
// at least twice text's length plus two characters (the longest replacement
// is two letters; a leading digit adds an underscore).
void camelCase(const wchar_t* text, wchar_t* out) {
  CamelCaseWriter writer(out);
  for (const wchar_t* p = text; *p; ++p) {
    const wchar_t* replacement = kTransliteration.at(*p);
    if (!replacement) {
      writer.put(*p);
      continue;
    }
    while (*replacement) writer.put(*replacement++);
  }
  writer.finish();
}

// Replaces the caller's text by a heap copy of text; 6 when memory is short.
Kesu::ErrorStatus updateString(wchar_t*& target, const wchar_t* text) {
  wchar_t* copy = __krStrdup(text);
  if (!copy) return Kesu::eOutOfMemory;
  __krFree(target);
  target = copy;
  return Kesu::eOk;
}

// Names of ordinary length are composed on the stack.
constexpr size_t kStackName = 256;

}  // namespace

Kesu::ErrorStatus krrfToCamelCase(const wchar_t* text, wchar_t*& result) {
  if (!text) return Kesu::eInvalidInput;
  size_t capacity = 2 * wcslen(text) + 2;
  wchar_t onStack[kStackName];
  wchar_t* out = capacity <= kStackName ? onStack : static_cast<wchar_t*>(__krMalloc(capacity * sizeof(wchar_t)));
  if (!out) return Kesu::eOutOfMemory;
  camelCase(text, out);
  Kesu::ErrorStatus status = updateString(result, out);
  if (out != onStack) __krFree(out);
  return status;
}
