#pragma once
/// @file
/// KrString: the runtime's text type. A string holds its text in up to two
/// forms at once, a narrow form (multibyte text in the system's ANSI code
/// page) and a wide form (UTF-16). Either form is made from the other on
/// first demand and then kept, so a caller that works in one form never pays
/// for the other. Both forms live in reference-counted buffers that copies
/// share: copying a string raises two counters and copies no text.
///
/// One string must not be used by two threads at once (making a missing form
/// writes the object, even through const access). Distinct strings that share
/// buffers may be used and destroyed on different threads.
///
/// Positions and lengths are in characters of the form named; a search that
/// finds nothing returns -1.

#include <cstdarg>
#include <cstdint>

#include "krexport.h"

struct HINSTANCE__;

/// A database object handle: 64 bits held as two 32-bit halves, low half first.
class KrDbHandle {
 public:
  KrDbHandle() = default;
  /// The handle of a 64-bit value, the value back, its halves, and whether it is 0.
  ///@{
  KrDbHandle(uint64_t value) : mLow(static_cast<uint32_t>(value)), mHigh(static_cast<uint32_t>(value >> 32)) {}

  operator uint64_t() const { return (static_cast<uint64_t>(mHigh) << 32) | mLow; }
  uint32_t low() const { return mLow; }
  uint32_t high() const { return mHigh; }
  bool isNull() const { return mLow == 0 && mHigh == 0; }
  ///@}

 private:
  uint32_t mLow = 0;
  uint32_t mHigh = 0;
};

/// The runtime's text: narrow and wide forms made on demand, buffers shared by copies.
class KR1ST_API KrString {
 public:
  /// Flags of the number conversions (asDeci and its family).
  enum ConversionFlags {
    kFailAllBits = 1,       ///< a failed conversion gives all bits set instead of 0
    kThrowOnFailure = 4,    ///< a text that does not scan throws the integer 0
    kThrowOnEmpty = 8,      ///< with kThrowOnFailure: an empty string throws too
  };

  /// Kinds of the (kind, value) constructor.
  enum ValueKind { kResource = 1, kDecimal = 2, kUnsigned = 3, kHex = 4 };

  KrString() = default;
  KrString(char c);                  ///< narrow form of the one byte c
  KrString(char c1, char c2);        ///< narrow form of the bytes c1 c2 (one double-byte character)
  KrString(wchar_t c);               ///< wide form of one character
  KrString(const char* text);        ///< narrow form; null gives the empty string
  KrString(const wchar_t* text);     ///< wide form; null gives the empty string
  KrString(const KrString& other);   ///< shares both buffers of other
  /// kResource: the main module's string resource value; kDecimal, kUnsigned,
  /// kHex: value printed with "%d", "%u" or "%x"; any other kind: empty.
  KrString(int kind, unsigned int value);
  /// Upper-case hexadecimal digits of the handle without leading zeros ("0" for a null handle).
  KrString(const KrDbHandle& handle);
  /// String resource id of module (see loadString).
  KrString(HINSTANCE__* module, unsigned int id);
  ~KrString();

  /// The narrow form, made from the wide form when missing. Never null: a
  /// string without text gives a static empty text.
  ///@{
  const char* kszPtr() const { return mNarrow ? mNarrow : narrowFromWide(); }
  operator const char*() const { return kszPtr(); }
  ///@}
  /// The wide form, made from the narrow form when missing. Never null.
  ///@{
  const wchar_t* kwszPtr() const { return mWide ? mWide : wideFromNarrow(); }
  const wchar_t* constPtr() const { return kwszPtr(); }
  const wchar_t* kTCharPtr() const { return kwszPtr(); }
  operator const wchar_t*() const { return kwszPtr(); }
  ///@}

  /// True when neither form holds a character.
  bool isEmpty() const;
  /// Characters of the wide form; with only a narrow form, its multibyte characters.
  unsigned int length() const;
  /// UTF-16 units of the wide form, or of what the narrow form would convert
  /// to (the wide form is not made).
  ///@{
  unsigned int tcharLength() const;
  unsigned int lengthW() const;
  ///@}
  /// Bytes of the narrow form, or of what the wide form would convert to.
  unsigned int lengthA() const;
  /// True when every unit of the wide form (else every byte of the narrow
  /// form) lies within 32..127; true for an empty string.
  bool isAscii() const;

  /// Assignment: the contents the matching constructor would build.
  ///@{
  KrString& assign(char c);
  KrString& assign(char c1, char c2);
  KrString& assign(wchar_t c);
  KrString& assign(const char* text);
  KrString& assign(const wchar_t* text);
  KrString& assign(const KrString& other);
  KrString& assign(const KrDbHandle& handle);
  KrString& operator=(char c) { return assign(c); }
  KrString& operator=(wchar_t c) { return assign(c); }
  KrString& operator=(const char* text) { return assign(text); }
  KrString& operator=(const wchar_t* text) { return assign(text); }
  KrString& operator=(const KrString& other) { return assign(other); }
  KrString& operator=(const KrDbHandle& handle) { return assign(handle); }
  ///@}

  /// Makes the string hold the process-wide shared empty wide text.
  KrString& setEmpty();

  /// Narrow arguments leave a narrow form only, wide arguments a wide form
  /// only. A KrString argument is appended wide when both strings have a wide
  /// form, else narrow when both have a narrow form, else wide.
  ///@{
  KrString& append(char c);
  KrString& append(char c1, char c2);
  KrString& append(const char* text);
  KrString& append(wchar_t c);
  KrString& append(const wchar_t* text);
  KrString& append(const KrString& other);
  KrString& operator+=(char c) { return append(c); }
  KrString& operator+=(const char* text) { return append(text); }
  KrString& operator+=(wchar_t c) { return append(c); }
  KrString& operator+=(const wchar_t* text) { return append(text); }
  KrString& operator+=(const KrString& other) { return append(other); }
  ///@}

  /// This followed by the argument, by the rules of append; this is unchanged.
  ///@{
  KrString concat(char c) const;
  KrString concat(char c1, char c2) const;
  KrString concat(const char* text) const;
  KrString concat(wchar_t c) const;
  KrString concat(const wchar_t* text) const;
  KrString concat(const KrString& other) const;
  KrString operator+(char c) const { return concat(c); }
  KrString operator+(const char* text) const { return concat(text); }
  KrString operator+(wchar_t c) const { return concat(c); }
  KrString operator+(const wchar_t* text) const { return concat(text); }
  KrString operator+(const KrString& other) const { return concat(other); }
  ///@}

  /// The argument followed by this; a KrString argument is joined in the wide form.
  ///@{
  KrString precat(char c) const;
  KrString precat(char c1, char c2) const;
  KrString precat(const char* text) const;
  KrString precat(wchar_t c) const;
  KrString precat(const wchar_t* text) const;
  KrString precat(const KrString& other) const;
  ///@}

  /// Replaces the contents with the C runtime's wide printf output (a wide
  /// form only). A format that cannot be printed leaves the string empty.
  ///@{
  KrString& format(const wchar_t* fmt, ...);
  KrString& formatV(const wchar_t* fmt, va_list args);
  ///@}

  /// Reads string resource id of module (of the process's main module when
  /// none is given) into a wide form only. A missing resource gives false and
  /// leaves the string unchanged.
  ///@{
  bool loadString(unsigned int id);
  bool loadString(HINSTANCE__* module, unsigned int id);
  ///@}

  /// Releases both forms.
  void clearAll();

  /// Searches of single characters and character sets look at the wide form
  /// only, and find nothing in a string that has none at the moment.
  ///@{
  int find(wchar_t c) const;
  int findRev(wchar_t c) const;
  ///@}
  /// First position of text (the wide form is made when missing); -1 for a
  /// null or empty text.
  ///@{
  int find(const wchar_t* text) const;
  int find(const KrString& text) const;
  ///@}
  /// Last position of text in a single backward walk that restarts the
  /// pattern at every mismatch, so a match that overlaps a near miss is not
  /// found: "ab" is not found in "abb".
  ///@{
  int findRev(const wchar_t* text) const;
  int findRev(const KrString& text) const;
  ///@}
  /// The first position of the first character of set (in set order) that
  /// occurs at all: on "abc", findOneOf(L"cb") is 2.
  int findOneOf(const wchar_t* set) const;
  /// As findOneOf, with the last position of each set character.
  int findOneOfRev(const wchar_t* set) const;
  /// First position of the wide unit c1 * 256 + c2; the length when there is none.
  ///@{
  int find(char c1, char c2) const;
  int findW(char c1, char c2) const;
  ///@}
  /// First byte position of the narrow form where the byte c2 is followed by
  /// c1 (the reverse of the two-byte constructor's order); the byte length
  /// when there is none; -1 without a narrow form.
  int findA(char c1, char c2) const;

  /// Each existing form is cut on its own, with the same start and count
  /// applied to its buffer (bytes of the narrow form). A start below 0 counts
  /// as 0; a count of -1 runs to the end.
  ///@{
  KrString substr(int count) const;
  KrString substr(int start, int count) const;
  ///@}
  /// The last count characters.
  KrString substrRev(int count) const;

  /// -1, 0 or 1, units compared unsigned: narrow arguments against the narrow
  /// form, wide arguments against the wide form (each made when missing). A
  /// KrString is compared in the wide form when both have one, else in the
  /// narrow form when both have one, else in the wide form.
  ///@{
  int compare(char c) const;
  int compare(char c1, char c2) const;
  int compare(const char* text) const;
  int compare(wchar_t c) const;
  int compare(const wchar_t* text) const;
  int compare(const KrString& other) const;
  ///@}
  /// As compare, ignoring case; the sign of the result is what counts.
  ///@{
  int compareNoCase(char c) const;
  int compareNoCase(char c1, char c2) const;
  int compareNoCase(const char* text) const;
  int compareNoCase(wchar_t c) const;
  int compareNoCase(const wchar_t* text) const;
  int compareNoCase(const KrString& other) const;
  ///@}

  /// Case-sensitive relations, compare(argument) against 0, for every
  /// argument type that compare takes.
  ///@{
  template <typename T> bool operator==(const T& other) const { return compare(other) == 0; }
  template <typename T> bool operator!=(const T& other) const { return compare(other) != 0; }
  template <typename T> bool operator<(const T& other) const { return compare(other) < 0; }
  template <typename T> bool operator<=(const T& other) const { return compare(other) <= 0; }
  template <typename T> bool operator>(const T& other) const { return compare(other) > 0; }
  template <typename T> bool operator>=(const T& other) const { return compare(other) >= 0; }
  ///@}

  /// The number of leading characters this and other have in common, in the
  /// form that compare would use; 0 when either is empty.
  ///@{
  int match(const KrString& other) const;
  int matchNoCase(const KrString& other) const;
  ///@}

  /// Number conversions of the wide form, or of the narrow form when the wide
  /// one is empty. A failure gives 0 (all bits set with kFailAllBits) and,
  /// with kThrowOnFailure, throws the integer 0; an empty string throws only
  /// when kThrowOnEmpty is given too.
  ///@{
  int asDeci(int flags) const;
  int asHex(int flags) const;
  unsigned int asUDeci(int flags) const;
  unsigned int asUHex(int flags) const;
  int64_t asDeci64(int flags) const;
  int64_t asHex64(int flags) const;
  uint64_t asUDeci64(int flags) const;
  uint64_t asUHex64(int flags) const;
  ///@}
  /// Up to 16 hexadecimal digits; any other character makes the text invalid.
  KrDbHandle asKrDbHandle(int flags) const;

  /// Case mapping and reversal work on the wide form when there is one (the
  /// narrow form is released), else on the narrow form; a shared buffer is
  /// copied first.
  ///@{
  KrString& makeUpper();
  KrString& makeLower();
  KrString& makeReverse();
  ///@}
  /// Replaces every unit a by b in the wide form (made when missing; the
  /// narrow form is released). Returns the number of replacements.
  int replace(wchar_t a, wchar_t b);
  /// Replaces every occurrence of a by b in the wide form, searching again
  /// from the start after each replacement (so b must not contain a). An
  /// existing narrow form is left as it was. Returns the number of replacements.
  int replace(const wchar_t* a, const wchar_t* b);

 private:
  friend struct KrStringForms;

  const char* narrowFromWide() const;
  const wchar_t* wideFromNarrow() const;

  /// The two forms are a cache: const access may create the missing one.
  mutable char* mNarrow = nullptr;
  mutable wchar_t* mWide = nullptr;
};

static_assert(sizeof(KrString) == 2 * sizeof(void*), "a string is exactly its two form pointers");
static_assert(sizeof(KrDbHandle) == 8, "a handle is two 32-bit halves");

/// Exchanges the forms of a and b.
KR1ST_API void swap(KrString& a, KrString& b);
