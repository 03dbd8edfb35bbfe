#include "values/KrVtDaytimeText.h"

#include <cmath>
#include <cstdio>

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

}  // namespace

Kesu::ErrorStatus dateTimeToText(double v, wchar_t*& text) {
  if (const wchar_t* special = KrVtText::specialTextOf(v, KrVtText::kUnsetAndInfinity))
    return KrVtText::printText(text, L"%ls", special);
  Parts p = partsOf(v);
  return KrVtText::printText(text, L"%04hd-%02hu-%02huT%02hu:%02hu:%02hu.%03huZ", p.year, p.month, p.day, p.hour,
                             p.minute, p.second, p.millisecond);
}

Kesu::ErrorStatus dateToText(double v, wchar_t*& text) {
  if (const wchar_t* special = KrVtText::specialTextOf(v, KrVtText::kUnsetAndInfinity))
    return KrVtText::printText(text, L"%ls", special);
  Parts p = partsOf(v);
  const wchar_t* format = KrVtDay::isUniversal(v) ? L"%04hd-%02hu-%02huZ" : L"%04hd-%02hu-%02hu";
  return KrVtText::printText(text, format, p.year, p.month, p.day);
}

Kesu::ErrorStatus timeToText(double v, wchar_t*& text) {
  if (const wchar_t* special = KrVtText::specialTextOf(v, KrVtText::kUnsetAndInfinity))
    return KrVtText::printText(text, L"%ls", special);
  // Rows: model time, universal time; columns: with milliseconds, with seconds, minutes only.
  static const wchar_t* const kFormats[2][3] = {
      {L"%02hu:%02hu:%02hu.%03hu", L"%02hu:%02hu:%02hu", L"%02hu:%02hu"},
      {L"%02hu:%02hu:%02hu.%03huZ", L"%02hu:%02hu:%02huZ", L"%02hu:%02huZ"}};
  Parts p = partsOf(v);
  int precision = p.millisecond ? 0 : p.second ? 1 : 2;
  return KrVtText::printText(text, kFormats[KrVtDay::isUniversal(v)][precision], p.hour, p.minute, p.second,
                             p.millisecond);
}

Kesu::ErrorStatus dateTimeFromText(double& v, const wchar_t* text) {
  if (!text) return Kesu::eInvalidInput;
  if (KrVtText::readSpecialText(text, KrVtText::kUnsetAndInfinity, v)) return Kesu::eOk;
  short year = 0;
  unsigned short month = 0, day = 0, hour = 0, minute = 0, second = 0, millisecond = 0;
  int read = __ms_swscanf(text, L"%hd-%hu-%huT%hu:%hu:%hu.%huZ", &year, &month, &day, &hour, &minute, &second,
                          &millisecond);
  if (read <= 0) return Kesu::eInvalidInput;
  if (read < 2) month = 1;
  if (read < 3) day = 1;
  double result = v;
  Kesu::ErrorStatus status = KrVtDay::setDate(result, year, short(month), short(day));
  if (status == Kesu::eOk) status = KrVtDay::setTime(result, short(hour), short(minute), short(second), short(millisecond));
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
