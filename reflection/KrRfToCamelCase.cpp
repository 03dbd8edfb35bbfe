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

const Row kRows[] = {
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

const Pair kPairs[] = {
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

// Two levels: 256 pages of 256 replacement texts, a page made on first use.
class Transliteration {
 public:
  Transliteration() : mPages() {}
  ~Transliteration() {
    for (const wchar_t** page : mPages) __krFree(page);
  }
  Transliteration(const Transliteration&) = delete;
  Transliteration& operator=(const Transliteration&) = delete;

  // False when a page could not be made.
  bool build() {
    for (wchar_t c = L'A'; c <= L'Z'; ++c)
      if (!put(c, kAscii.text[c]) || !put(wchar_t(c + 32), kAscii.text[c + 32])) return false;
    for (const Row& row : kRows) {
      for (int i = 0; row.letters[i]; ++i) {
        wchar_t letter = row.letters[i];
        if (letter != L'.' && letter != L'*' && !put(wchar_t(row.first + i), kAscii.text[letter])) return false;
      }
    }
    for (const Pair& pair : kPairs)
      if (!put(pair.code, pair.text)) return false;
    return true;
  }

  // The replacement of c, or null.
  const wchar_t* at(wchar_t c) const {
    const wchar_t** page = mPages[c >> 8];
    return page ? page[c & 0xFF] : nullptr;
  }

 private:
  bool put(wchar_t c, const wchar_t* text) {
    const wchar_t**& page = mPages[c >> 8];
    if (!page) page = static_cast<const wchar_t**>(__krCalloc(256, sizeof(const wchar_t*)));
    if (!page) return false;
    page[c & 0xFF] = text;
    return true;
  }

  const wchar_t** mPages[256];
};

// ---- Conversion ----

// Plain ASCII for text: at most four characters per input character.
wchar_t* transliterate(const Transliteration& table, const wchar_t* text) {
  size_t length = wcslen(text);
  wchar_t* out = static_cast<wchar_t*>(__krMalloc((4 * length + 1) * sizeof(wchar_t)));
  if (!out) return nullptr;
  wchar_t* end = out;
  for (const wchar_t* p = text; *p; ++p) {
    const wchar_t* replacement = table.at(*p);
    if (!replacement) {
      *end++ = *p;
      continue;
    }
    while (*replacement) *end++ = *replacement++;
  }
  *end = 0;
  return out;
}

bool isDigit(wchar_t c) { return c >= L'0' && c <= L'9'; }
bool isUpper(wchar_t c) { return c >= L'A' && c <= L'Z'; }
bool isLower(wchar_t c) { return c >= L'a' && c <= L'z'; }

// Writes the camel-case form of the ASCII text plain into out.
void camelCase(const wchar_t* plain, wchar_t* out) {
  wchar_t* end = out;
  bool afterSeparator = false;
  for (const wchar_t* p = plain; *p; ++p) {
    wchar_t c = *p;
    if (isDigit(c)) {
      if (end == out) *end++ = L'_';
      *end++ = c;
    } else if (isUpper(c)) {
      *end++ = afterSeparator ? c : wchar_t(c + 32);
    } else if (isLower(c)) {
      *end++ = afterSeparator ? wchar_t(c - 32) : c;
    } else if (c == L'_') {
      *end++ = c;
    } else {
      afterSeparator = true;
      continue;
    }
    afterSeparator = false;
  }
  *end = 0;
}

// Replaces the caller's text by a heap copy of text; 6 when memory is short.
Kesu::ErrorStatus updateString(wchar_t*& target, const wchar_t* text) {
  wchar_t* copy = __krStrdup(text);
  if (!copy) return Kesu::eOutOfMemory;
  __krFree(target);
  target = copy;
  return Kesu::eOk;
}

}  // namespace

Kesu::ErrorStatus krrfToCamelCase(const wchar_t* text, wchar_t*& result) {
  if (!text) return Kesu::eInvalidInput;
  Transliteration table;
  if (!table.build()) return Kesu::eOutOfMemory;
  wchar_t* plain = transliterate(table, text);
  if (!plain) return Kesu::eOutOfMemory;
  size_t length = wcslen(plain) + (isDigit(plain[0]) ? 1 : 0);
  wchar_t* out = static_cast<wchar_t*>(__krMalloc((length + 1) * sizeof(wchar_t)));
  Kesu::ErrorStatus status = Kesu::eOutOfMemory;
  if (out) {
    camelCase(plain, out);
    status = updateString(result, out);
  }
  __krFree(out);
  __krFree(plain);
  return status;
}
