// KrString: text in two cached forms, each in a shared, reference-counted
// buffer (see KrStringBuffer.h).

#include "krstring.h"

#include <windows.h>

#include <algorithm>
#include <cctype>
#include <cstdio>
#include <cwchar>
#include <cwctype>
#include <type_traits>
#include <utility>

#include "foundation/KrStringBuffer.h"

// The two forms of a string, chosen by character type.
struct KrStringForms {
  template <typename Char>
  static Char*& slot(const KrString& s);

  // The form made when missing (never null).
  static const char* text(const KrString& s, char) { return s.kszPtr(); }
  static const wchar_t* text(const KrString& s, wchar_t) { return s.kwszPtr(); }
  template <typename Char>
  static const Char* text(const KrString& s) { return text(s, Char()); }

  // The form in which two strings meet (comparison, matching, appending):
  // wide when both have one, else narrow when both have one, else wide.
  static bool meetNarrow(const KrString& a, const KrString& b) {
    return !(a.mWide && b.mWide) && a.mNarrow && b.mNarrow;
  }

  template <typename Char>
  static void drop(const KrString& s) {
    KrStringBuffer<Char>::release(slot<Char>(s));
    slot<Char>(s) = nullptr;
  }

  // Makes buffer the string's only form.
  template <typename Char>
  static KrString& holdOnly(KrString& s, Char* buffer) {
    s.clearAll();
    slot<Char>(s) = buffer;
    return s;
  }
};

template <>
char*& KrStringForms::slot<char>(const KrString& s) {
  return s.mNarrow;
}
template <>
wchar_t*& KrStringForms::slot<wchar_t>(const KrString& s) {
  return s.mWide;
}

namespace {

using Forms = KrStringForms;
using NarrowBuffer = KrStringBuffer<char>;
using WideBuffer = KrStringBuffer<wchar_t>;

const char* emptyText(char) { return ""; }
const wchar_t* emptyText(wchar_t) { return L""; }

size_t textLength(const char* text) { return strlen(text); }
size_t textLength(const wchar_t* text) { return wcslen(text); }

template <typename Char>
bool hasText(const Char* text) {
  return text && *text;
}

// Conversion between the forms in the system's ANSI code page; without a
// destination it only measures.
int convert(const wchar_t* from, int length, char* to, int room) {
  return WideCharToMultiByte(CP_ACP, 0, from, length, to, room, nullptr, nullptr);
}
int convert(const char* from, int length, wchar_t* to, int room) {
  return MultiByteToWideChar(CP_ACP, 0, from, length, to, room);
}

// Units of form To that the text would convert to.
template <typename To, typename From>
unsigned int convertedLength(const From* text) {
  return hasText(text) ? convert(text, static_cast<int>(textLength(text)), static_cast<To*>(nullptr), 0) : 0;
}

// Makes and keeps the missing form To of s from its form From.
template <typename To, typename From>
const To* madeForm(const KrString& s) {
  const From* source = Forms::slot<From>(s);
  if (!hasText(source)) return emptyText(To());
  int sourceLength = static_cast<int>(textLength(source));
  int length = convert(source, sourceLength, static_cast<To*>(nullptr), 0);
  To* text = length > 0 ? KrStringBuffer<To>::allocate(length) : nullptr;
  if (!text) return emptyText(To());
  convert(source, sourceLength, text, length);
  text[length] = 0;
  Forms::slot<To>(s) = text;
  return text;
}

// One or two characters as a terminated text.
template <typename Char>
struct ShortText {
  Char text[3];
  explicit ShortText(Char c1, Char c2 = 0) : text{c1, c2, 0} {}
  operator const Char*() const { return text; }
};

template <typename Char>
bool isPrintableAscii(const Char* text) {
  for (; *text; ++text) {
    auto unit = static_cast<std::make_unsigned_t<Char>>(*text);
    if (unit < 32 || unit > 127) return false;
  }
  return true;
}

struct AsIs {
  template <typename Char>
  Char operator()(Char c) const {
    return c;
  }
};
struct ToLower {
  char operator()(char c) const { return static_cast<char>(tolower(static_cast<unsigned char>(c))); }
  wchar_t operator()(wchar_t c) const { return towlower(c); }
};
struct ToUpper {
  char operator()(char c) const { return static_cast<char>(toupper(static_cast<unsigned char>(c))); }
  wchar_t operator()(wchar_t c) const { return towupper(c); }
};

int sign(int value) { return (value > 0) - (value < 0); }

// Byte- or unit-wise, unsigned.
int compareTexts(const char* a, const char* b) { return sign(strcmp(a, b)); }
int compareTexts(const wchar_t* a, const wchar_t* b) { return sign(wcscmp(a, b)); }
int compareTextsNoCase(const char* a, const char* b) { return _stricmp(a, b); }
int compareTextsNoCase(const wchar_t* a, const wchar_t* b) { return _wcsicmp(a, b); }

template <typename Char, typename Fold>
int commonPrefix(const Char* a, const Char* b, Fold fold) {
  int n = 0;
  while (a[n] && b[n] && fold(a[n]) == fold(b[n])) ++n;
  return n;
}

template <typename Fold>
int matchIn(const KrString& a, const KrString& b, Fold fold) {
  if (Forms::meetNarrow(a, b)) return commonPrefix(Forms::slot<char>(a), Forms::slot<char>(b), fold);
  return commonPrefix(a.kwszPtr(), b.kwszPtr(), fold);
}

// Replaces the text of s by its form Char followed by tail, in that form only.
template <typename Char>
KrString& appendText(KrString& s, const Char* tail) {
  const Char* head = Forms::text<Char>(s);
  if (!tail) tail = emptyText(Char());
  size_t headLength = textLength(head);
  size_t tailLength = textLength(tail);
  Char* joined = KrStringBuffer<Char>::allocate(headLength + tailLength);
  if (joined) {
    memcpy(joined, head, headLength * sizeof(Char));
    memcpy(joined + headLength, tail, (tailLength + 1) * sizeof(Char));
  }
  return Forms::holdOnly(s, joined);
}

template <typename... Tail>
KrString concatOf(const KrString& s, const Tail&... tail) {
  KrString joined(s);
  joined.append(tail...);
  return joined;
}

// head followed by the form Char of s.
template <typename Char>
KrString precatOf(KrString head, const KrString& s) {
  head.append(Forms::text<Char>(s));
  return head;
}

// The part of one form: chars characters from start, as far as the
// buffer's capacity (not the text's length) allows.
template <typename Char>
Char* partOf(const Char* text, int start, int count) {
  if (!text) return nullptr;
  size_t capacity = KrStringBuffer<Char>::capacity(text);
  size_t chars = static_cast<size_t>(start) < capacity && count > 0
                     ? std::min(static_cast<size_t>(count), capacity - start)
                     : 0;
  Char* part = KrStringBuffer<Char>::allocate(chars);
  if (part && chars) {
    if constexpr (std::is_same_v<Char, char>)
      strncpy(part, text + start, chars);
    else
      wcsncpy(part, text + start, chars);
    part[chars] = 0;
  }
  return part;
}

// Makes form Char of s unshared and hands its text to edit.
template <typename Char, typename Edit>
void editForm(const KrString& s, Edit edit) {
  Char*& text = Forms::slot<Char>(s);
  KrStringBuffer<Char>::makeUnshared(text);
  if (text) edit(text);
}

// Edits the wide form when there is one (the narrow form is released), else the narrow form.
template <typename Edit>
KrString& editPreferringWide(KrString& s, Edit edit) {
  if (Forms::slot<wchar_t>(s)) {
    Forms::drop<char>(s);
    editForm<wchar_t>(s, edit);
  } else {
    editForm<char>(s, edit);
  }
  return s;
}

template <typename Map>
KrString& mapUnits(KrString& s, Map map) {
  return editPreferringWide(s, [map](auto* text) {
    for (; *text; ++text) *text = map(*text);
  });
}

// The failure result of a number conversion, thrown as the integer 0 when asked.
template <typename T>
T conversionFailure(int flags, bool empty) {
  if ((flags & KrString::kThrowOnFailure) && (!empty || (flags & KrString::kThrowOnEmpty))) throw 0;
  return static_cast<T>((flags & KrString::kFailAllBits) ? ~uint64_t(0) : uint64_t(0));
}

// Scans the wide form, or the narrow form when the wide one is empty, with
// the C runtime's own scanf; one converted field is success.
template <typename T>
T scanNumber(const KrString& s, const wchar_t* wideFormat, const char* narrowFormat, int flags) {
  T value = 0;
  const wchar_t* wide = Forms::slot<wchar_t>(s);
  const char* narrow = Forms::slot<char>(s);
  if (hasText(wide)) {
    if (__ms_swscanf(wide, wideFormat, &value) == 1) return value;
  } else if (hasText(narrow)) {
    if (__ms_sscanf(narrow, narrowFormat, &value) == 1) return value;
  }
  return conversionFailure<T>(flags, s.isEmpty());
}

int hexDigitValue(unsigned int c) {
  if (c >= '0' && c <= '9') return static_cast<int>(c - '0');
  if (c >= 'A' && c <= 'F') return static_cast<int>(c - 'A' + 10);
  if (c >= 'a' && c <= 'f') return static_cast<int>(c - 'a' + 10);
  return -1;
}

// Shifts up to 16 hexadecimal digits into value; false when the text holds
// anything else before the 16th digit.
template <typename Char>
bool readHex(const Char* text, uint64_t& value) {
  bool valid = true;
  for (int digits = 0; *text && digits < 16; ++text) {
    int digit = hexDigitValue(static_cast<std::make_unsigned_t<Char>>(*text));
    if (digit < 0) {
      valid = false;
    } else {
      value = value << 4 | static_cast<unsigned int>(digit);
      ++digits;
    }
  }
  return valid;
}

// The empty wide text that every emptied string shares. This static holds
// one reference for good, so the buffer is never freed.
wchar_t* sharedEmptyText() {
  static wchar_t* const text = WideBuffer::allocate(0);
  return text;
}

}  // namespace

KrString::KrString(char c) : mNarrow(NarrowBuffer::copyOf(&c, 1)) {}

KrString::KrString(char c1, char c2) : mNarrow(NarrowBuffer::copyOf(ShortText<char>(c1, c2), 2)) {}

KrString::KrString(wchar_t c) : mWide(WideBuffer::copyOf(&c, 1)) {}

KrString::KrString(const char* text) : mNarrow(text ? NarrowBuffer::copyOf(text, strlen(text)) : nullptr) {}

KrString::KrString(const wchar_t* text) : mWide(text ? WideBuffer::copyOf(text, wcslen(text)) : nullptr) {}

KrString::KrString(const KrString& other) : mNarrow(other.mNarrow), mWide(other.mWide) {
  NarrowBuffer::retain(mNarrow);
  WideBuffer::retain(mWide);
}

KrString::KrString(int kind, unsigned int value) {
  if (kind == kResource) {
    loadString(value);
    return;
  }
  const wchar_t* pattern = kind == kDecimal ? L"%d" : kind == kUnsigned ? L"%u" : kind == kHex ? L"%x" : nullptr;
  if (!pattern) return;
  wchar_t text[256];
  int length = _snwprintf(text, 256, pattern, value);
  if (length > 0) mWide = WideBuffer::copyOf(text, length);
}

KrString::KrString(const KrDbHandle& handle) {
  static const wchar_t kDigits[] = L"0123456789ABCDEF";
  wchar_t digits[16];
  wchar_t* first = digits + 16;
  uint64_t value = handle;
  do {
    *--first = kDigits[value & 0xF];
    value >>= 4;
  } while (value);
  mWide = WideBuffer::copyOf(first, digits + 16 - first);
}

KrString::KrString(HINSTANCE__* module, unsigned int id) { loadString(module, id); }

KrString::~KrString() { clearAll(); }

const char* KrString::narrowFromWide() const { return madeForm<char, wchar_t>(*this); }

const wchar_t* KrString::wideFromNarrow() const { return madeForm<wchar_t, char>(*this); }

bool KrString::isEmpty() const { return !hasText(mWide) && !hasText(mNarrow); }

unsigned int KrString::length() const {
  if (mWide) return static_cast<unsigned int>(wcslen(mWide));
  unsigned int characters = 0;
  if (mNarrow)
    for (const char* p = mNarrow; *p; p = CharNextA(p)) ++characters;
  return characters;
}

unsigned int KrString::tcharLength() const {
  return mWide ? static_cast<unsigned int>(wcslen(mWide)) : convertedLength<wchar_t>(mNarrow);
}

unsigned int KrString::lengthW() const { return tcharLength(); }

unsigned int KrString::lengthA() const {
  return mNarrow ? static_cast<unsigned int>(strlen(mNarrow)) : convertedLength<char>(mWide);
}

bool KrString::isAscii() const {
  if (mWide) return isPrintableAscii(mWide);
  return !mNarrow || isPrintableAscii(mNarrow);
}

void swap(KrString& a, KrString& b) {
  std::swap(Forms::slot<char>(a), Forms::slot<char>(b));
  std::swap(Forms::slot<wchar_t>(a), Forms::slot<wchar_t>(b));
}

KrString& KrString::assign(char c) { return assign(KrString(c)); }
KrString& KrString::assign(char c1, char c2) { return assign(KrString(c1, c2)); }
KrString& KrString::assign(wchar_t c) { return assign(KrString(c)); }
KrString& KrString::assign(const char* text) { return assign(KrString(text)); }
KrString& KrString::assign(const wchar_t* text) { return assign(KrString(text)); }
KrString& KrString::assign(const KrDbHandle& handle) { return assign(KrString(handle)); }

KrString& KrString::assign(const KrString& other) {
  KrString copy(other);
  swap(*this, copy);
  return *this;
}

KrString& KrString::setEmpty() {
  wchar_t* empty = sharedEmptyText();
  WideBuffer::retain(empty);
  return Forms::holdOnly(*this, empty);
}

void KrString::clearAll() {
  Forms::drop<char>(*this);
  Forms::drop<wchar_t>(*this);
}

KrString& KrString::append(char c) { return appendText(*this, static_cast<const char*>(ShortText<char>(c))); }
KrString& KrString::append(char c1, char c2) {
  return appendText(*this, static_cast<const char*>(ShortText<char>(c1, c2)));
}
KrString& KrString::append(const char* text) { return appendText(*this, text); }
KrString& KrString::append(wchar_t c) { return appendText(*this, static_cast<const wchar_t*>(ShortText<wchar_t>(c))); }
KrString& KrString::append(const wchar_t* text) { return appendText(*this, text); }

KrString& KrString::append(const KrString& other) {
  if (Forms::meetNarrow(*this, other)) return appendText(*this, static_cast<const char*>(other.mNarrow));
  return appendText(*this, other.kwszPtr());
}

KrString KrString::concat(char c) const { return concatOf(*this, c); }
KrString KrString::concat(char c1, char c2) const { return concatOf(*this, c1, c2); }
KrString KrString::concat(const char* text) const { return concatOf(*this, text); }
KrString KrString::concat(wchar_t c) const { return concatOf(*this, c); }
KrString KrString::concat(const wchar_t* text) const { return concatOf(*this, text); }
KrString KrString::concat(const KrString& other) const { return concatOf(*this, other); }

KrString KrString::precat(char c) const { return precatOf<char>(KrString(c), *this); }
KrString KrString::precat(char c1, char c2) const { return precatOf<char>(KrString(c1, c2), *this); }
KrString KrString::precat(const char* text) const { return precatOf<char>(KrString(text), *this); }
KrString KrString::precat(wchar_t c) const { return precatOf<wchar_t>(KrString(c), *this); }
KrString KrString::precat(const wchar_t* text) const { return precatOf<wchar_t>(KrString(text), *this); }
KrString KrString::precat(const KrString& other) const { return precatOf<wchar_t>(other, *this); }

KrString& KrString::format(const wchar_t* fmt, ...) {
  va_list args;
  va_start(args, fmt);
  formatV(fmt, args);
  va_end(args);
  return *this;
}

KrString& KrString::formatV(const wchar_t* fmt, va_list args) {
  va_list measuring;
  va_copy(measuring, args);
  int length = fmt ? _vscwprintf(fmt, measuring) : -1;
  va_end(measuring);
  wchar_t* text = length >= 0 ? WideBuffer::allocate(length) : nullptr;
  if (text) _vsnwprintf(text, length + 1, fmt, args);
  return Forms::holdOnly(*this, text);
}

bool KrString::loadString(unsigned int id) { return loadString(GetModuleHandleW(nullptr), id); }

bool KrString::loadString(HINSTANCE__* module, unsigned int id) {
  // With no room given, LoadStringW hands out the resource's own text, which is not terminated.
  const wchar_t* resource = nullptr;
  int length = LoadStringW(module, id, reinterpret_cast<LPWSTR>(&resource), 0);
  if (length <= 0) return false;
  Forms::holdOnly(*this, WideBuffer::copyOf(resource, length));
  return true;
}

int KrString::find(wchar_t c) const {
  if (!mWide) return -1;
  for (const wchar_t* p = mWide; *p; ++p)
    if (*p == c) return static_cast<int>(p - mWide);
  return -1;
}

int KrString::findRev(wchar_t c) const {
  if (!mWide) return -1;
  for (const wchar_t* p = mWide + wcslen(mWide); p > mWide;) {
    p = CharPrevW(mWide, p);
    if (*p == c) return static_cast<int>(p - mWide);
  }
  return -1;
}

int KrString::find(const wchar_t* pattern) const {
  if (!hasText(pattern)) return -1;
  const wchar_t* text = kwszPtr();
  size_t textChars = wcslen(text);
  size_t patternChars = wcslen(pattern);
  for (size_t p = 0; p + patternChars <= textChars; ++p)
    if (wmemcmp(text + p, pattern, patternChars) == 0) return static_cast<int>(p);
  return -1;
}

int KrString::find(const KrString& pattern) const { return find(pattern.kwszPtr()); }

int KrString::findRev(const wchar_t* pattern) const {
  if (!mWide || !hasText(pattern)) return -1;
  const wchar_t* patternEnd = pattern + wcslen(pattern);
  const wchar_t* p = patternEnd;
  for (const wchar_t* t = mWide + wcslen(mWide); t > mWide;) {
    t = CharPrevW(mWide, t);
    if (*t != p[-1]) {
      p = patternEnd;
    } else if (--p == pattern) {
      return static_cast<int>(t - mWide);
    }
  }
  return -1;
}

int KrString::findRev(const KrString& pattern) const { return findRev(pattern.kwszPtr()); }

namespace {

// The position that findOne gives for the first character of set, in set order, that it finds.
int findFirstOfSet(const KrString& s, const wchar_t* set, int (KrString::*findOne)(wchar_t) const) {
  if (!set) return -1;
  for (; *set; ++set) {
    int position = (s.*findOne)(*set);
    if (position >= 0) return position;
  }
  return -1;
}

}  // namespace

int KrString::findOneOf(const wchar_t* set) const { return findFirstOfSet(*this, set, &KrString::find); }

int KrString::findOneOfRev(const wchar_t* set) const { return findFirstOfSet(*this, set, &KrString::findRev); }

int KrString::find(char c1, char c2) const { return findW(c1, c2); }

int KrString::findW(char c1, char c2) const {
  if (!mWide) return -1;
  wchar_t unit = static_cast<wchar_t>(static_cast<unsigned char>(c1) << 8 | static_cast<unsigned char>(c2));
  const wchar_t* p = mWide;
  while (*p && *p != unit) p = CharNextW(p);
  return static_cast<int>(p - mWide);
}

int KrString::findA(char c1, char c2) const {
  if (!mNarrow) return -1;
  const char* p = mNarrow;
  while (*p && !(c1 && p[0] == c2 && p[1] == c1)) p = CharNextA(p);
  return static_cast<int>(p - mNarrow);
}

KrString KrString::substr(int count) const { return substr(0, count); }

KrString KrString::substr(int start, int count) const {
  if (start < 0) start = 0;
  if (count == -1) count = static_cast<int>(lengthW()) - start;
  KrString part;
  part.mNarrow = partOf(mNarrow, start, count);
  part.mWide = partOf(mWide, start, count);
  return part;
}

KrString KrString::substrRev(int count) const { return substr(static_cast<int>(lengthW()) - count, count); }

int KrString::compare(char c) const { return compare(ShortText<char>(c)); }
int KrString::compare(char c1, char c2) const { return compare(ShortText<char>(c1, c2)); }
int KrString::compare(const char* text) const { return compareTexts(kszPtr(), text ? text : ""); }
int KrString::compare(wchar_t c) const { return compare(ShortText<wchar_t>(c)); }
int KrString::compare(const wchar_t* text) const { return compareTexts(kwszPtr(), text ? text : L""); }

int KrString::compare(const KrString& other) const {
  return Forms::meetNarrow(*this, other) ? compare(static_cast<const char*>(other.mNarrow)) : compare(other.kwszPtr());
}

int KrString::compareNoCase(char c) const { return compareNoCase(ShortText<char>(c)); }
int KrString::compareNoCase(char c1, char c2) const { return compareNoCase(ShortText<char>(c1, c2)); }
int KrString::compareNoCase(const char* text) const { return compareTextsNoCase(kszPtr(), text ? text : ""); }
int KrString::compareNoCase(wchar_t c) const { return compareNoCase(ShortText<wchar_t>(c)); }
int KrString::compareNoCase(const wchar_t* text) const {
  return compareTextsNoCase(kwszPtr(), text ? text : L"");
}

int KrString::compareNoCase(const KrString& other) const {
  return Forms::meetNarrow(*this, other) ? compareNoCase(static_cast<const char*>(other.mNarrow))
                                          : compareNoCase(other.kwszPtr());
}

int KrString::match(const KrString& other) const { return matchIn(*this, other, AsIs()); }

int KrString::matchNoCase(const KrString& other) const { return matchIn(*this, other, ToLower()); }

int KrString::asDeci(int flags) const { return scanNumber<int>(*this, L"%d", "%d", flags); }
int KrString::asHex(int flags) const { return scanNumber<int>(*this, L"%x", "%x", flags); }
unsigned int KrString::asUDeci(int flags) const { return scanNumber<unsigned int>(*this, L"%u", "%u", flags); }
unsigned int KrString::asUHex(int flags) const { return scanNumber<unsigned int>(*this, L"%x", "%x", flags); }
int64_t KrString::asDeci64(int flags) const { return scanNumber<int64_t>(*this, L"%I64d", "%I64d", flags); }
int64_t KrString::asHex64(int flags) const { return scanNumber<int64_t>(*this, L"%I64x", "%I64x", flags); }
uint64_t KrString::asUDeci64(int flags) const { return scanNumber<uint64_t>(*this, L"%I64u", "%I64u", flags); }
uint64_t KrString::asUHex64(int flags) const { return scanNumber<uint64_t>(*this, L"%I64x", "%I64x", flags); }

KrDbHandle KrString::asKrDbHandle(int flags) const {
  uint64_t value = 0;
  bool valid = hasText(mWide) ? readHex(mWide, value) : hasText(mNarrow) && readHex(mNarrow, value);
  return valid ? KrDbHandle(value) : conversionFailure<KrDbHandle>(flags, isEmpty());
}

KrString& KrString::makeUpper() { return mapUnits(*this, ToUpper()); }

KrString& KrString::makeLower() { return mapUnits(*this, ToLower()); }

KrString& KrString::makeReverse() {
  return editPreferringWide(*this, [](auto* text) { std::reverse(text, text + textLength(text)); });
}

int KrString::replace(wchar_t a, wchar_t b) {
  kwszPtr();
  Forms::drop<char>(*this);
  int replaced = 0;
  editForm<wchar_t>(*this, [&](wchar_t* text) {
    for (; *text; ++text)
      if (*text == a) {
        *text = b;
        ++replaced;
      }
  });
  return replaced;
}

int KrString::replace(const wchar_t* a, const wchar_t* b) {
  if (!b) b = L"";
  if (!a || wcscmp(a, b) == 0) return 0;
  size_t aChars = wcslen(a);
  size_t bChars = wcslen(b);
  int replaced = 0;
  for (int p; (p = find(a)) >= 0; ++replaced) {
    size_t textChars = wcslen(mWide);
    wchar_t* text = WideBuffer::allocate(textChars - aChars + bChars);
    if (text) {
      wmemcpy(text, mWide, p);
      wmemcpy(text + p, b, bChars);
      wmemcpy(text + p + bChars, mWide + p + aChars, textChars - p - aChars + 1);
    }
    Forms::drop<wchar_t>(*this);
    mWide = text;
    if (!text) break;
  }
  return replaced;
}
