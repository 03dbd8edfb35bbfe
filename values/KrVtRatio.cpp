#include "krvtratio.h"

#include <cmath>
#include <cstdio>
#include <cwctype>

#include "runtime/KrRxCoreClass.h"
#include "values/KrVtFraction.h"
#include "values/KrVtText.h"
#include "values/KrVtValueMembers.h"

KRVT_DEFINE_VALUE_MEMBERS(KrVtRatio, KrVtFloat64)
KRVT_DEFINE_VALUE_MEMBERS(KrVtPercentage, KrVtRatio)
KRVT_DEFINE_VALUE_MEMBERS(KrVtPermille, KrVtRatio)

Kesu::ErrorStatus KrVtRatio::toFraction(__int64& numerator, unsigned __int64& denominator) const {
  return KrVtFraction::best(mValue, numerator, denominator);
}

Kesu::ErrorStatus KrVtRatio::fromFraction(__int64 numerator, unsigned __int64 denominator) {
  mValue = double(numerator) / double(denominator);
  return Kesu::eOk;
}

// KrVtRatioFormattable

Kesu::ErrorStatus KrVtRatioFormattable::toText(const KrRxObject* object, wchar_t*& text, const KrRxFormatContext*) {
  const KrVtRatio* ratio = KrVtRatio::cast(object);
  if (!ratio) return Kesu::eInvalidInput;
  __int64 numerator = 0;
  unsigned __int64 denominator = 0;
  if (ratio->toFraction(numerator, denominator) != Kesu::eOk) return KrVtText::printText(text, L"%lf", ratio->value());
  if (denominator == 1) return KrVtText::printText(text, L"%lld", numerator);
  return KrVtText::printText(text, L"%lld : %llu", numerator, denominator);
}

Kesu::ErrorStatus KrVtRatioFormattable::fromText(KrRxObject* object, const wchar_t* text, const KrRxFormatContext*) {
  KrVtRatio* ratio = KrVtRatio::cast(object);
  if (!ratio || !text) return Kesu::eInvalidInput;
  // As "%lld : %llu" reads it: white space around the colon is optional.
  long long numerator = 0;
  unsigned long long denominator = 0;
  const wchar_t* rest = text;
  if (!KrVtText::scanInteger(rest, numerator)) return Kesu::eInvalidInput;
  while (iswspace(*rest)) ++rest;
  if (*rest == L':' && KrVtText::scanUnsigned(++rest, denominator))
    return ratio->fromFraction(numerator, denominator);
  // One number: the text is read again as a double (1.0 when that fails).
  double single = 1.0;
  KrVtText::scanDouble(text, single);
  ratio->fromDouble(single);
  return Kesu::eOk;
}

// KrVtPercentageFormattable and KrVtPermilleFormattable

namespace {

const wchar_t kPercentFormat[] = L"%ld%%";
const wchar_t kPermilleFormat[] = L"%ld\u2030";

// The ratio as a count of units per whole, rounded half away from zero.
template <typename Units>
Kesu::ErrorStatus unitsToText(const KrRxObject* object, const wchar_t* format, wchar_t*& text) {
  const Units* units = Units::cast(object);
  if (!units) return Kesu::eInvalidInput;
  return KrVtText::printText(text, format, std::lround(units->value() * Units::kUnitsPerWhole));
}

// Only the count must be read: the unit sign after it is optional.
template <typename Units>
Kesu::ErrorStatus unitsFromText(KrRxObject* object, const wchar_t* text) {
  Units* units = Units::cast(object);
  long count = 0;
  if (!units || !text || !KrVtText::scanLong(text, count)) return Kesu::eInvalidInput;
  units->value() = double(count) / Units::kUnitsPerWhole;
  return Kesu::eOk;
}

}  // namespace

Kesu::ErrorStatus KrVtPercentageFormattable::toText(const KrRxObject* object, wchar_t*& text,
                                                    const KrRxFormatContext*) {
  return unitsToText<KrVtPercentage>(object, kPercentFormat, text);
}

Kesu::ErrorStatus KrVtPercentageFormattable::fromText(KrRxObject* object, const wchar_t* text,
                                                      const KrRxFormatContext*) {
  return unitsFromText<KrVtPercentage>(object, text);
}

Kesu::ErrorStatus KrVtPermilleFormattable::toText(const KrRxObject* object, wchar_t*& text,
                                                  const KrRxFormatContext*) {
  return unitsToText<KrVtPermille>(object, kPermilleFormat, text);
}

Kesu::ErrorStatus KrVtPermilleFormattable::fromText(KrRxObject* object, const wchar_t* text,
                                                    const KrRxFormatContext*) {
  return unitsFromText<KrVtPermille>(object, text);
}

KRRX_CORE_CONS_DEFINE_MEMBERS(KrVtRatioFormattable, KrRxFormattablePE)
KRRX_CORE_CONS_DEFINE_MEMBERS(KrVtPercentageFormattable, KrRxFormattablePE)
KRRX_CORE_CONS_DEFINE_MEMBERS(KrVtPermilleFormattable, KrRxFormattablePE)
