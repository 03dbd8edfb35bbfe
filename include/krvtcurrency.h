#pragma once
/// @file
/// Currency amounts: a KrVtFloat64 written with two decimals.
///
/// @code
///   KrVtCurrency price(1234.5);
///   wchar_t* text = nullptr;
///   krrxFormatObject(&price, text, nullptr);      // L"1234.50"
///   free(text);
///   krrxParseObject(&price, L"99.95", nullptr);
/// @endcode

#include "krrfarray.h"
#include "krrfvalue.h"
#include "krrxformattable.h"

/// A currency amount: a double written with two decimals.
class KR1ST_API KrVtCurrency : public KrRfValueT<double> {
  KRRX_DECLARE_MEMBERS(KrVtCurrency);

 public:
  KrVtCurrency() = default;
  /// An amount of amount.
  KrVtCurrency(double amount) : KrRfValueT<double>(amount) {}
};

static_assert(sizeof(KrVtCurrency) == sizeof(KrVtFloat64), "an amount adds no data");

/// A growable array of currency amounts.
typedef KrRfValueArrayT<double, KrVtCurrency> KrVtCurrencyArray;
template <>
inline const wchar_t* KrVtCurrencyArray::className() { return L"KrVtCurrencyArray"; }
template <>
inline const wchar_t* KrVtCurrencyArray::parentName() { return L"KrVtFloat64Array"; }

/// "%.02f", or "*", U+221E and "-\u221E" for unset and infinite amounts; reads
/// those texts or one number ("%lf"); eInvalidInput otherwise, for a null
/// text or an object of another class.
class KR1ST_API KrVtCurrencyFormattable : public KrRxFormattablePE {
  KRRX_DECLARE_MEMBERS(KrVtCurrencyFormattable);

 public:
  Kesu::ErrorStatus toText(const KrRxObject* object, wchar_t*& text, const KrRxFormatContext* context) override;
  Kesu::ErrorStatus fromText(KrRxObject* object, const wchar_t* text, const KrRxFormatContext* context) override;
};
