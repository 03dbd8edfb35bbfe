#include "values/KrVtDaytimeText.h"

#include <cmath>
#include <cstdio>
#include <cwctype>

#include "values/KrVtDayValue.h"
#include "values/KrVtText.h"

namespace KrVtDaytimeText {

namespace {

struct Parts {
  short year = 0, month = 0, day = 0, hour = 0, minute = 0, second = 0, millisecond = 0;
};

Parts partsOf(double v) {
  Parts p;
  KrVtDay::getDate(v, p.year, p.month, p.day);
  KrVtDay::getTime(v, p.hour, p.minute, p.second, p.millisecond);
  return p;
}

// A scanset separator as read: one character and its terminator.
typedef wchar_t Separator[2];

bool isZ(wchar_t c) { return c == L'Z' || c == L'z'; }

// The number of separators read before the first Z or z among them.
int separatorsBeforeZ(const Separator* separators, int read) {
  int k = 0;
  while (k < read && !isZ(separators[k][0])) ++k;
  return k;
}

// The value read, made universal when a Z or z was among the separators read
// (it then follows the last number kept).
double zoned(double v, int zAt, int separatorsRead) {
  return zAt < separatorsRead ? -v : v;
}

// The fraction digits of a time as milliseconds: scaled by the number's value,
// so one significant digit counts hundreds, two tens, three ones and four or
// more nothing (leading zeros are lost).
short fractionToMilliseconds(unsigned short fraction) {
  if (!fraction) return 0;
  double scale = std::pow(10.0, 2 - static_cast<int>(std::log10(double(fraction))));
  return static_cast<short>(fraction * static_cast<long>(scale));
}

// A field as "%0<width>hu" prints it: the short read as unsigned.
KrVtText::Composer& field(KrVtText::Composer& composer, short v, int width) {
  return composer.padded(static_cast<unsigned short>(v), width);
}

// "%04hd-%02hu-%02hu"
KrVtText::Composer& writeDate(KrVtText::Composer& composer, const Parts& p) {
  composer.padded(p.year, 4).literal(L"-");
  field(composer, p.month, 2).literal(L"-");
  return field(composer, p.day, 2);
}

enum Precision { kWithMilliseconds, kWithSeconds, kMinutesOnly };

// "%02hu:%02hu", then ":%02hu" and ".%03hu" as precision asks.
KrVtText::Composer& writeTime(KrVtText::Composer& composer, const Parts& p, Precision precision) {
  field(composer, p.hour, 2).literal(L":");
  field(composer, p.minute, 2);
  if (precision != kMinutesOnly) field(composer.literal(L":"), p.second, 2);
  if (precision == kWithMilliseconds) field(composer.literal(L"."), p.millisecond, 3);
  return composer;
}

// Reads numbers and literal characters as the C runtime's wide scan reads
// "%hd", "%hu" and a literal of its format, without the format machinery.
class FieldScanner {
 public:
  explicit FieldScanner(const wchar_t* text) : mAt(text) {}

  // White space, an optional sign and decimal digits, kept modulo 2^16 as the
  // scan's 16-bit store keeps them; false (with the sign consumed) when no digit follows.
  bool number(unsigned short& v) {
    while (!isDigit(*mAt) && *mAt != L'-' && *mAt != L'+' && *mAt && std::iswspace(*mAt)) ++mAt;
    bool negative = *mAt == L'-';
    if (negative || *mAt == L'+') ++mAt;
    if (!isDigit(*mAt)) return false;
    unsigned short read = 0;
    for (; isDigit(*mAt); ++mAt) read = static_cast<unsigned short>(read * 10 + (*mAt - L'0'));
    v = negative ? static_cast<unsigned short>(-read) : read;
    return true;
  }
  // True, consuming it, when the next character is c.
  bool literal(wchar_t c) { return *mAt == c && (++mAt, true); }

 private:
  static bool isDigit(wchar_t c) { return c >= L'0' && c <= L'9'; }
  const wchar_t* mAt;
};

}  // namespace

Kesu::ErrorStatus dateTimeToText(double v, wchar_t*& text) {
  KrVtText::Composer composer;
  if (const wchar_t* special = KrVtText::specialTextOf(v, KrVtText::kUnsetAndInfinity))
    return composer.literal(special).copyTo(text);
  Parts p = partsOf(v);
  writeDate(composer, p).literal(L"T");
  return writeTime(composer, p, kWithMilliseconds).literal(L"Z").copyTo(text);
}

Kesu::ErrorStatus dateToText(double v, wchar_t*& text) {
  KrVtText::Composer composer;
  if (const wchar_t* special = KrVtText::specialTextOf(v, KrVtText::kUnsetAndInfinity))
    return composer.literal(special).copyTo(text);
  writeDate(composer, partsOf(v));
  return composer.literal(KrVtDay::isUniversal(v) ? L"Z" : L"").copyTo(text);
}

Kesu::ErrorStatus timeToText(double v, wchar_t*& text) {
  KrVtText::Composer composer;
  if (const wchar_t* special = KrVtText::specialTextOf(v, KrVtText::kUnsetAndInfinity))
    return composer.literal(special).copyTo(text);
  Parts p = partsOf(v);
  Precision precision = p.millisecond ? kWithMilliseconds : p.second ? kWithSeconds : kMinutesOnly;
  writeTime(composer, p, precision);
  return composer.literal(KrVtDay::isUniversal(v) ? L"Z" : L"").copyTo(text);
}

Kesu::ErrorStatus dateTimeFromText(double& v, const wchar_t* text) {
  if (!text) return Kesu::eInvalidInput;
  if (KrVtText::readSpecialText(text, KrVtText::kUnsetAndInfinity, v)) return Kesu::eOk;
  // "%hd-%hu-%huT%hu:%hu:%hu.%hu": year, month, day, hour, minute, second, millisecond.
  static const wchar_t kSeparators[] = L"--T::.";
  unsigned short fields[7] = {0, 1, 1, 0, 0, 0, 0};
  FieldScanner scanner(text);
  int read = 0;
  while (read < 7 && scanner.number(fields[read]) && ++read < 7 && scanner.literal(kSeparators[read - 1])) {
  }
  if (read == 0) return Kesu::eInvalidInput;
  double result = v;
  Kesu::ErrorStatus status = KrVtDay::setDate(result, short(fields[0]), short(fields[1]), short(fields[2]));
  if (status == Kesu::eOk)
    status = KrVtDay::setTime(result, short(fields[3]), short(fields[4]), short(fields[5]), short(fields[6]));
  if (status == Kesu::eOk) v = result;
  return status;
}

Kesu::ErrorStatus dateFromText(double& v, const wchar_t* text) {
  if (!text) return Kesu::eInvalidInput;
  if (KrVtText::readSpecialText(text, KrVtText::kUnsetAndInfinity, v)) return Kesu::eOk;
  // The scansets are read by the C runtime's rules: " -/" is the range from space to slash.
  short year = 0;
  unsigned short month = 0, day = 0;
  Separator separators[3] = {};
  int read = __ms_swscanf(text, L"%hd%1[ -/.Zz]%hu%1[ -/.Zz]%hu%1[Zz]", &year, separators[0], &month,
                          separators[1], &day, separators[2]);
  if (read <= 0) return Kesu::eInvalidInput;
  int separatorsRead = read / 2;
  int k = separatorsBeforeZ(separators, separatorsRead);
  if (k < 1) month = 1;
  if (k < 2) day = 1;
  double result = +0.0;
  Kesu::ErrorStatus status = KrVtDay::setDate(result, year, short(month), short(day));
  if (status == Kesu::eOk) v = zoned(result, k, separatorsRead);
  return status;
}

Kesu::ErrorStatus timeFromText(double& v, const wchar_t* text) {
  if (!text) return Kesu::eInvalidInput;
  if (KrVtText::readSpecialText(text, KrVtText::kUnsetAndInfinity, v)) return Kesu::eOk;
  // Hour, minute, second and the fraction digits.
  unsigned short numbers[4] = {};
  Separator separators[4] = {};
  int read = __ms_swscanf(text, L"%hu%1[ :Zz]%hu%1[ :Zz]%hu%1[ .,'Zz]%hu%1[Zz]", &numbers[0], separators[0],
                          &numbers[1], separators[1], &numbers[2], separators[2], &numbers[3], separators[3]);
  if (read <= 0) return Kesu::eInvalidInput;
  int separatorsRead = read / 2;
  int k = separatorsBeforeZ(separators, separatorsRead);
  for (int i = k + 1; i < 4; ++i) numbers[i] = 0;
  double result = +0.0;
  Kesu::ErrorStatus status = KrVtDay::setTime(result, short(numbers[0]), short(numbers[1]), short(numbers[2]),
                                              fractionToMilliseconds(numbers[3]));
  if (status == Kesu::eOk) v = zoned(result, k, separatorsRead);
  return status;
}

}  // namespace KrVtDaytimeText
