#include "values/KrVtNumberText.h"

#include <cmath>
#include <cstdio>

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

}  // namespace KrVtNumberText
