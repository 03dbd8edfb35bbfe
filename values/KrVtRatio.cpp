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
  KrVtText::Composer composer;
  if (ratio->toFraction(numerator, denominator) != Kesu::eOk) return composer.fixed(ratio->value(), 6).copyTo(text);
  composer.integer(numerator);
  if (denominator != 1) composer.literal(L" : ").integer(denominator);
  return composer.copyTo(text);
}

namespace {

const wchar_t* skipSpace(const wchar_t* text) {
  while (iswspace(*text)) ++text;
  return text;
}

}  // namespace

Kesu::ErrorStatus KrVtRatioFormattable::fromText(KrRxObject* object, const wchar_t* text, const KrRxFormatContext*) {
  KrVtRatio* ratio = KrVtRatio::cast(object);
  if (!ratio || !text) return Kesu::eInvalidInput;
  // Read as "%lld : %llu" reads it, without the C scan (whose heap block
  // it does not survive losing): white space around the colon is optional.
  __int64 numerator = 0;
  unsigned __int64 denominator = 0;
  if (!KrVtText::scanInteger(text, numerator)) return Kesu::eInvalidInput;
  const wchar_t* rest = skipSpace(text);
  if (*rest == L'+' || *rest == L'-') ++rest;
  while (*rest >= L'0' && *rest <= L'9') ++rest;
  rest = skipSpace(rest);
  if (*rest == L':' && KrVtText::scanInteger(rest + 1, denominator)) return ratio->fromFraction(numerator, denominator);
  // One number: the text is read again as a double (1.0 when that fails).
  double single = 1.0;
  KrVtText::scanDouble(text, single);
  ratio->fromDouble(single);
  return Kesu::eOk;
}

// KrVtPercentageFormattable and KrVtPermilleFormattable

namespace {

const wchar_t kPercentSign[] = L"%";
const wchar_t kPermilleSign[] = L"\u2030";

// The ratio as a count of units per whole, rounded half away from zero.
template <typename Units>
Kesu::ErrorStatus unitsToText(const KrRxObject* object, const wchar_t* sign, wchar_t*& text) {
  const Units* units = Units::cast(object);
  if (!units) return Kesu::eInvalidInput;
  long count = std::lround(units->value() * Units::kUnitsPerWhole);
  return KrVtText::Composer().integer(static_cast<long long>(count)).literal(sign).copyTo(text);
}

// Only the count must be read ("%ld" and a unit sign, of which the sign is optional).
template <typename Units>
Kesu::ErrorStatus unitsFromText(KrRxObject* object, const wchar_t* text) {
  Units* units = Units::cast(object);
  long count = 0;
  if (!units || !text || !KrVtText::scanInteger(text, count)) return Kesu::eInvalidInput;
  units->value() = double(count) / Units::kUnitsPerWhole;
  return Kesu::eOk;
}

}  // namespace

Kesu::ErrorStatus KrVtPercentageFormattable::toText(const KrRxObject* object, wchar_t*& text,
                                                    const KrRxFormatContext*) {
  return unitsToText<KrVtPercentage>(object, kPercentSign, text);
}

Kesu::ErrorStatus KrVtPercentageFormattable::fromText(KrRxObject* object, const wchar_t* text,
                                                      const KrRxFormatContext*) {
  return unitsFromText<KrVtPercentage>(object, text);
}

Kesu::ErrorStatus KrVtPermilleFormattable::toText(const KrRxObject* object, wchar_t*& text,
                                                  const KrRxFormatContext*) {
  return unitsToText<KrVtPermille>(object, kPermilleSign, text);
}

Kesu::ErrorStatus KrVtPermilleFormattable::fromText(KrRxObject* object, const wchar_t* text,
                                                    const KrRxFormatContext*) {
  return unitsFromText<KrVtPermille>(object, text);
}

KRRX_CORE_CONS_DEFINE_MEMBERS(KrVtRatioFormattable, KrRxFormattablePE)
KRRX_CORE_CONS_DEFINE_MEMBERS(KrVtPercentageFormattable, KrRxFormattablePE)
KRRX_CORE_CONS_DEFINE_MEMBERS(KrVtPermilleFormattable, KrRxFormattablePE)
