#pragma once
/// @file
/// Ratios and the counts of units per whole: a KrVtRatio is a KrVtFloat64
/// whose text form is a fraction; KrVtPercentage and KrVtPermille hold the
/// same ratio (0.5 is fifty per cent) and are written as a count of hundredths
/// or thousandths.
///
/// @code
///   KrVtRatio scale(0.75);
///   __int64 n; unsigned __int64 d;
///   scale.toFraction(n, d);                       // 3 / 4
///   KrVtPercentage share(0.125);
///   wchar_t* text = nullptr;
///   krrxFormatObject(&share, text, nullptr);      // L"13%"
///   free(text);
/// @endcode

#include "krrfarray.h"
#include "krrfvalue.h"
#include "krrxformattable.h"

/// A ratio: a double written as two whole numbers, "3 : 4".
class KR1ST_API KrVtRatio : public KrRfValueT<double> {
  KRRX_DECLARE_MEMBERS(KrVtRatio);

 public:
  KrVtRatio() = default;  ///< a ratio of 0
  /// A ratio of ratio.
  KrVtRatio(double ratio) : KrRfValueT<double>(ratio) {}

  /// The nearest fraction with a denominator of at most 1,000,000 (continued
  /// fractions and one semiconvergent step); the sign is on the numerator.
  /// Infinities give +-9223372036854775807 / 0, NaN 0 / 0. eNotSupported when
  /// none is found (values beyond the 64-bit range). Throws
  /// std::overflow_error when a convergent leaves the 64-bit range.
  virtual Kesu::ErrorStatus toFraction(__int64& numerator, unsigned __int64& denominator) const;
  /// Stores numerator / denominator computed in double; always eOk, so a zero
  /// denominator gives an infinity or NaN.
  virtual Kesu::ErrorStatus fromFraction(__int64 numerator, unsigned __int64 denominator);
};

/// A ratio counted in units per whole (100 for per cent, 1000 for per mille).
template <int N>
class KrVtUnitsPer : public KrVtRatio {
 public:
  /// The units in one whole, and the ratio's constructors.
  ///@{
  static const int kUnitsPerWhole = N;
  using KrVtRatio::KrVtRatio;
  ///@}
};

class KR1ST_API KrVtPercentage : public KrVtUnitsPer<100> {
  KRRX_DECLARE_MEMBERS(KrVtPercentage);

 public:
  using KrVtUnitsPer<100>::KrVtUnitsPer;
};

class KR1ST_API KrVtPermille : public KrVtUnitsPer<1000> {
  KRRX_DECLARE_MEMBERS(KrVtPermille);

 public:
  using KrVtUnitsPer<1000>::KrVtUnitsPer;
};

static_assert(sizeof(KrVtPercentage) == sizeof(KrVtFloat64), "a ratio adds no data");

/// A growable array of percentages.
typedef KrRfValueArrayT<double, KrVtPercentage> KrVtPercentageArray;
template <>
inline const wchar_t* KrVtPercentageArray::className() { return L"KrVtPercentageArray"; }
template <>
inline const wchar_t* KrVtPercentageArray::parentName() { return L"KrVtFloat64Array"; }

/// The text forms, attached at start-up as the classes' formattables; an
/// object of another class, a null text or a text that does not scan gives
/// eInvalidInput.
/// Ratio: "3" when the fraction is whole, else "3 : 4"; the double with "%lf"
/// when no fraction is found. Reads "n : d", or one number as a double.
class KR1ST_API KrVtRatioFormattable : public KrRxFormattablePE {
  KRRX_DECLARE_MEMBERS(KrVtRatioFormattable);

 public:
  Kesu::ErrorStatus toText(const KrRxObject* object, wchar_t*& text, const KrRxFormatContext* context) override;
  Kesu::ErrorStatus fromText(KrRxObject* object, const wchar_t* text, const KrRxFormatContext* context) override;
};

/// Percentage "13%", permille "13‰": the ratio times the units rounded half
/// away from zero; reading needs the count, the sign after it is optional.
/// There are no special texts: unset and infinite values print as the
/// rounding gives them.
class KR1ST_API KrVtPercentageFormattable : public KrRxFormattablePE {
  KRRX_DECLARE_MEMBERS(KrVtPercentageFormattable);

 public:
  Kesu::ErrorStatus toText(const KrRxObject* object, wchar_t*& text, const KrRxFormatContext* context) override;
  Kesu::ErrorStatus fromText(KrRxObject* object, const wchar_t* text, const KrRxFormatContext* context) override;
};

/// The text form of KrVtPermille.
class KR1ST_API KrVtPermilleFormattable : public KrRxFormattablePE {
  KRRX_DECLARE_MEMBERS(KrVtPermilleFormattable);

 public:
  Kesu::ErrorStatus toText(const KrRxObject* object, wchar_t*& text, const KrRxFormatContext* context) override;
  Kesu::ErrorStatus fromText(KrRxObject* object, const wchar_t* text, const KrRxFormatContext* context) override;
};
