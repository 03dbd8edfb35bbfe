#include "values/KrVtNumberText.h"

#include <cmath>
#include <cwchar>

#include "values/KrVtText.h"

namespace KrVtNumberText {

Kesu::ErrorStatus unitsToText(double v, long units, const wchar_t* format, wchar_t*& text) {
  return KrVtText::printText(text, format, std::lround(v * double(units)));
}

Kesu::ErrorStatus unitsFromText(double& v, long units, const wchar_t* format, const wchar_t* text) {
  long count = 0;
  if (!text || __ms_swscanf(text, format, &count) < 1) return Kesu::eInvalidInput;
  v = double(count) / double(units);
  return Kesu::eOk;
}

Kesu::ErrorStatus floatToText(double v, const wchar_t* format, wchar_t*& text) {
  if (const wchar_t* special = KrVtText::specialTextOf(v, KrVtText::kWithNegativeInfinity))
    return KrVtText::copyText(special, text);
  return KrVtText::printText(text, format, v);
}

Kesu::ErrorStatus floatFromText(double& v, const wchar_t* text) {
  if (!text) return Kesu::eInvalidInput;
  if (KrVtText::readSpecialText(text, KrVtText::kWithNegativeInfinity, v)) return Kesu::eOk;
  double read = 0;
  if (__ms_swscanf(text, L"%lf", &read) != 1) return Kesu::eInvalidInput;
  v = read;
  return Kesu::eOk;
}

}  // namespace KrVtNumberText
