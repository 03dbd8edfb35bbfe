#include "values/KrVtText.h"

#include <charconv>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <cwchar>
#include <limits>

#include "values/KrVtDayValue.h"

namespace KrVtText {

namespace {
const wchar_t kUnsetText[] = L"*";
const wchar_t kInfinityText[] = L"\u221E";
const wchar_t kNegativeInfinityText[] = L"-\u221E";

// The C scan format of each integer kind, for texts the shortcut leaves to it.
template <typename T> const wchar_t* scanFormat();
template <> const wchar_t* scanFormat<signed char>() { return L"%hhd"; }
template <> const wchar_t* scanFormat<unsigned char>() { return L"%hhu"; }
template <> const wchar_t* scanFormat<short>() { return L"%hd"; }
template <> const wchar_t* scanFormat<unsigned short>() { return L"%hu"; }
template <> const wchar_t* scanFormat<int>() { return L"%d"; }
template <> const wchar_t* scanFormat<long>() { return L"%ld"; }
template <> const wchar_t* scanFormat<unsigned int>() { return L"%lu"; }
template <> const wchar_t* scanFormat<__int64>() { return L"%lld"; }
template <> const wchar_t* scanFormat<unsigned __int64>() { return L"%llu"; }

bool isDigit(wchar_t c) { return c >= L'0' && c <= L'9'; }

// The white space every C runtime skips; any other leaves the text to the C scan.
bool isPlainSpace(wchar_t c) { return c == L' ' || (c >= L'\t' && c <= L'\r'); }

// The powers of ten that a long double holds exactly.
constexpr long double kExactPowersOfTen[] = {1e0L,  1e1L,  1e2L,  1e3L,  1e4L,  1e5L,  1e6L,  1e7L,  1e8L,  1e9L,
                                             1e10L, 1e11L, 1e12L, 1e13L, 1e14L, 1e15L, 1e16L, 1e17L, 1e18L, 1e19L,
                                             1e20L, 1e21L, 1e22L, 1e23L, 1e24L, 1e25L, 1e26L, 1e27L};
constexpr int kLargestExactPower = 27;

// A plain decimal number at the start of a text: a sign, at most 19
// significant digits and a power of ten. Anything else (more digits, a
// hexadecimal or incomplete exponent form, unusual white space) is marked to
// be left to the C scan, whose result the caller then takes.
class PlainNumber {
 public:
  // Integers: white space, sign, digits.
  static PlainNumber integer(const wchar_t* text) {
    PlainNumber number(text);
    number.readDigits(false);
    return number;
  }
  // Doubles: also a fraction and a complete exponent; never "0x...".
  static PlainNumber decimal(const wchar_t* text) {
    PlainNumber number(text);
    const wchar_t* start = number.mNext;
    number.readDigits(false);
    if (number.mNext - start == 1 && *start == L'0' && (*number.mNext == L'x' || *number.mNext == L'X'))
      number.mLeaveToScan = true;
    if (*number.mNext == L'.') {
      ++number.mNext;
      number.readDigits(true);
    }
    if (number.mAnyDigit && (*number.mNext == L'e' || *number.mNext == L'E')) number.readExponent();
    return number;
  }

  bool usable() const { return mAnyDigit && !mLeaveToScan; }
  bool negative() const { return mNegative; }
  uint64_t digits() const { return mDigits; }

  // The double that the C scan reads: the number rounded to the scan's
  // 64-bit long double first, then to double (ties to even at both steps).
  // False when the power of ten is not exact in a long double.
  bool toDouble(double& v) const {
    if (mDigits == 0) {
      v = sign(0.0);
      return true;
    }
    if (mPowerOfTen > kLargestExactPower || mPowerOfTen < -kLargestExactPower) return false;
    long double x = static_cast<long double>(mDigits);
    x = mPowerOfTen >= 0 ? x * kExactPowersOfTen[mPowerOfTen] : x / kExactPowersOfTen[-mPowerOfTen];
    v = sign(static_cast<double>(x));
    return true;
  }

 private:
  explicit PlainNumber(const wchar_t* text)
      : mNext(text), mDigits(0), mSignificant(0), mPowerOfTen(0), mNegative(false), mAnyDigit(false),
        mLeaveToScan(false) {
    while (isPlainSpace(*mNext)) ++mNext;
    if (*mNext == L'-' || *mNext == L'+') mNegative = *mNext++ == L'-';
  }

  double sign(double v) const { return mNegative ? -v : v; }

  // Leading zeros are not significant; each fraction digit lowers the power.
  void readDigits(bool fraction) {
    for (; isDigit(*mNext); ++mNext) {
      mAnyDigit = true;
      if (fraction) --mPowerOfTen;
      if (mDigits == 0 && *mNext == L'0') continue;
      if (++mSignificant > 19) mLeaveToScan = true;
      mDigits = mDigits * 10 + unsigned(*mNext - L'0');
    }
  }

  // An exponent must be whole here: "1e" and "1e+" are left to the C scan.
  void readExponent() {
    ++mNext;
    bool negative = false;
    if (*mNext == L'-' || *mNext == L'+') negative = *mNext++ == L'-';
    if (!isDigit(*mNext)) mLeaveToScan = true;
    int exponent = 0;
    for (; isDigit(*mNext); ++mNext)
      if (exponent < 100000) exponent = exponent * 10 + (*mNext - L'0');
    mPowerOfTen += negative ? -exponent : exponent;
  }

  const wchar_t* mNext;
  uint64_t mDigits;
  int mSignificant;
  int mPowerOfTen;
  bool mNegative;
  bool mAnyDigit;
  bool mLeaveToScan;
};

constexpr uint64_t kPowersOfTen[] = {1, 10, 100, 1000, 10000, 100000, 1000000, 10000000, 100000000, 1000000000};

// |v| at decimals places as its whole part and its fraction digits, rounded
// from the exact binary value v = mantissa * 2^-shift, ties to even, as the
// C formats round. False for infinities, NaNs, a whole part beyond 64 bits
// and more decimals than the table holds; those take the general path.
bool roundFixed(double v, int decimals, uint64_t& whole, uint64_t& fraction) {
  if (decimals < 0 || decimals >= int(sizeof kPowersOfTen / sizeof *kPowersOfTen)) return false;
  uint64_t bits;
  memcpy(&bits, &v, sizeof bits);
  int exponent = int(bits >> 52 & 0x7FF);
  uint64_t mantissa = bits & ((uint64_t(1) << 52) - 1);
  if (exponent == 0x7FF) return false;
  if (exponent) mantissa |= uint64_t(1) << 52;
  else exponent = 1;
  int shift = 1075 - exponent;
  if (shift <= 0) {
    if (shift < -11) return false;
    whole = mantissa << -shift;
    fraction = 0;
    return true;
  }
  // Below 2^-48 even the largest scaled fraction stays under half a unit of
  // the last decimal: all digits are zero.
  if (shift > 100) {
    whole = fraction = 0;
    return true;
  }
  whole = shift < 64 ? mantissa >> shift : 0;
  uint64_t rest = shift < 64 ? mantissa & ((uint64_t(1) << shift) - 1) : mantissa;
  unsigned __int128 scaled = static_cast<unsigned __int128>(rest) * kPowersOfTen[decimals];
  fraction = static_cast<uint64_t>(scaled >> shift);
  unsigned __int128 remainder = scaled - (static_cast<unsigned __int128>(fraction) << shift);
  unsigned __int128 half = static_cast<unsigned __int128>(1) << (shift - 1);
  bool odd = (decimals ? fraction : whole) & 1;
  if (remainder > half || (remainder == half && odd)) {
    if (++fraction == kPowersOfTen[decimals]) {
      fraction = 0;
      ++whole;
    }
  }
  return true;
}

}  // namespace

// Composer

Composer& Composer::ascii(const char* first, const char* last) {
  while (first != last) mText[mLength++] = wchar_t(*first++);
  return *this;
}

Composer& Composer::integer(long long v) {
  char digits[24];
  return ascii(digits, std::to_chars(digits, digits + sizeof digits, v).ptr);
}

Composer& Composer::integer(unsigned long long v) {
  char digits[24];
  return ascii(digits, std::to_chars(digits, digits + sizeof digits, v).ptr);
}

Composer& Composer::padded(long long v, int width) {
  char digits[24];
  char* first = digits;
  char* last = std::to_chars(digits, digits + sizeof digits, v).ptr;
  if (v < 0) ascii(first, first + 1), ++first, --width;
  for (int zeros = width - int(last - first); zeros > 0; --zeros) mText[mLength++] = L'0';
  return ascii(first, last);
}

Composer& Composer::fixed(double v, int decimals) {
  uint64_t whole = 0, fraction = 0;
  if (!roundFixed(v, decimals, whole, fraction)) {
    char digits[340];
    return ascii(digits, std::to_chars(digits, digits + sizeof digits, v, std::chars_format::fixed, decimals).ptr);
  }
  if (std::signbit(v)) mText[mLength++] = L'-';
  integer(static_cast<unsigned long long>(whole));
  if (decimals == 0) return *this;
  mText[mLength++] = L'.';
  for (int i = decimals - 1; i >= 0; --i, fraction /= 10) mText[mLength + unsigned(i)] = wchar_t(L'0' + fraction % 10);
  mLength += unsigned(decimals);
  return *this;
}

Composer& Composer::exponent(double v, int decimals) {
  char digits[40];
  char* last = std::to_chars(digits, digits + sizeof digits, v, std::chars_format::scientific, decimals).ptr;
  *static_cast<char*>(memchr(digits, 'e', size_t(last - digits))) = 'E';
  return ascii(digits, last);
}

Composer& Composer::literal(const wchar_t* text) {
  while (*text) mText[mLength++] = *text++;
  return *this;
}

Kesu::ErrorStatus Composer::copyTo(wchar_t*& text) const {
  if (mLength == 0) return Kesu::eInvalidInput;
  wchar_t* block = static_cast<wchar_t*>(malloc((mLength + 1) * sizeof(wchar_t)));
  if (!block) return Kesu::eOutOfMemory;
  memcpy(block, mText, mLength * sizeof(wchar_t));
  block[mLength] = 0;
  text = block;
  return Kesu::eOk;
}

// Scanning

bool scanDouble(const wchar_t* text, double& v) {
  PlainNumber number = PlainNumber::decimal(text);
  if (number.usable() && number.toDouble(v)) return true;
  double read = 0;
  if (__mingw_swscanf(text, L"%lf", &read) != 1) return false;
  v = read;
  return true;
}

template <typename T>
bool scanInteger(const wchar_t* text, T& v) {
  PlainNumber number = PlainNumber::integer(text);
  uint64_t magnitude = number.digits();
  uint64_t largest = number.negative() ? 0 - static_cast<uint64_t>(std::numeric_limits<T>::min())
                                       : static_cast<uint64_t>(std::numeric_limits<T>::max());
  if (number.usable() && magnitude <= largest) {
    v = static_cast<T>(number.negative() ? 0 - magnitude : magnitude);
    return true;
  }
  T scanned = 0;
  if (__mingw_swscanf(text, scanFormat<T>(), &scanned) != 1) return false;
  v = scanned;
  return true;
}

template bool scanInteger(const wchar_t*, signed char&);
template bool scanInteger(const wchar_t*, unsigned char&);
template bool scanInteger(const wchar_t*, short&);
template bool scanInteger(const wchar_t*, unsigned short&);
template bool scanInteger(const wchar_t*, int&);
template bool scanInteger(const wchar_t*, long&);
template bool scanInteger(const wchar_t*, unsigned int&);
template bool scanInteger(const wchar_t*, __int64&);
template bool scanInteger(const wchar_t*, unsigned __int64&);

const wchar_t* specialTextOf(double v, Specials specials) {
  if (std::isnan(v)) return kUnsetText;
  if (v == HUGE_VAL) return kInfinityText;
  if (v == -HUGE_VAL && specials == kWithNegativeInfinity) return kNegativeInfinityText;
  return nullptr;
}

bool readSpecialText(const wchar_t* text, Specials specials, double& v) {
  if (!wcscmp(text, kUnsetText)) {
    v = KrVtDay::unset();
  } else if (!wcscmp(text, kInfinityText)) {
    v = HUGE_VAL;
  } else if (specials == kWithNegativeInfinity && !wcscmp(text, kNegativeInfinityText)) {
    v = -HUGE_VAL;
  } else {
    return false;
  }
  return true;
}

Composer& composeDouble(Composer& composer, double v, int decimals, DoubleForm form) {
  if (const wchar_t* special = specialTextOf(v, kWithNegativeInfinity)) return composer.literal(special);
  if (form == kExponentFrom1e10 && std::fabs(v) >= 1e10) return composer.exponent(v, decimals);
  return composer.fixed(v, decimals);
}

Kesu::ErrorStatus doubleToText(double v, int decimals, DoubleForm form, wchar_t*& text) {
  Composer composer;
  return composeDouble(composer, v, decimals, form).copyTo(text);
}

Kesu::ErrorStatus doubleFromText(double& v, const wchar_t* text) {
  if (!text) return Kesu::eInvalidInput;
  if (readSpecialText(text, kWithNegativeInfinity, v)) return Kesu::eOk;
  return scanDouble(text, v) ? Kesu::eOk : Kesu::eInvalidInput;
}

}  // namespace KrVtText
