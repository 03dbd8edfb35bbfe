// The text forms of the plain numbers.

#include "values/KrVtNumberFormattable.h"

#include <cmath>
#include <cstdio>
#include <cwchar>
#include <type_traits>

#include "krrfvalue.h"
#include "runtime/KrRxCoreClass.h"
#include "values/KrVtText.h"

namespace {

// The C formats of the integer kinds; printing and scanning use the same one.
template <typename T> const wchar_t* integerFormat();
template <> const wchar_t* integerFormat<signed char>() { return L"%hhd"; }
template <> const wchar_t* integerFormat<unsigned char>() { return L"%hhu"; }
template <> const wchar_t* integerFormat<short>() { return L"%hd"; }
template <> const wchar_t* integerFormat<unsigned short>() { return L"%hu"; }
template <> const wchar_t* integerFormat<int>() { return L"%ld"; }
template <> const wchar_t* integerFormat<unsigned int>() { return L"%lu"; }
template <> const wchar_t* integerFormat<__int64>() { return L"%lld"; }
template <> const wchar_t* integerFormat<unsigned __int64>() { return L"%llu"; }

template <typename T, typename Wide>
bool scanInto(bool (*scan)(const wchar_t*&, Wide&), const wchar_t* text, T& value) {
  Wide read;
  if (!scan(text, read)) return false;
  value = T(read);
  return true;
}

// Reads text into value as the type's scanf conversion does: the 64-bit kinds
// in 64 bits, the others in 32 bits keeping the low bits; value unchanged
// when there is no number.
template <typename T>
bool scanInteger(const wchar_t* text, T& value) {
  if (sizeof(T) == 8)
    return std::is_signed<T>::value ? scanInto(KrVtText::scanInteger, text, value)
                                    : scanInto(KrVtText::scanUnsigned, text, value);
  return std::is_signed<T>::value ? scanInto(KrVtText::scanLong, text, value)
                                  : scanInto(KrVtText::scanUnsignedLong, text, value);
}

}  // namespace

// KrVtBoolFormattable

Kesu::ErrorStatus KrVtBoolFormattable::toText(const KrRxObject* object, wchar_t*& text, const KrRxFormatContext*) {
  const KrVtBool* flag = KrVtBool::cast(object);
  if (!flag) return Kesu::eInvalidInput;
  return KrVtText::printText(text, L"%ls", flag->value() ? L"Yes" : L"No");
}

Kesu::ErrorStatus KrVtBoolFormattable::fromText(KrRxObject* object, const wchar_t* text, const KrRxFormatContext*) {
  KrVtBool* flag = KrVtBool::cast(object);
  if (!flag || !text) return Kesu::eInvalidInput;
  if (_wcsicmp(text, L"Yes") == 0) {
    flag->value() = true;
  } else if (_wcsicmp(text, L"No") == 0) {
    flag->value() = false;
  } else {
    return Kesu::eInvalidInput;
  }
  return Kesu::eOk;
}

// KrVtFloat64Formattable

Kesu::ErrorStatus KrVtFloat64Formattable::toText(const KrRxObject* object, wchar_t*& text, const KrRxFormatContext*) {
  const KrVtFloat64* number = KrVtFloat64::cast(object);
  if (!number) return Kesu::eInvalidInput;
  double value = number->value();
  return KrVtText::doubleToText(value, std::fabs(value) < 1e10 ? L"%.03f" : L"%.03E", text);
}

Kesu::ErrorStatus KrVtFloat64Formattable::fromText(KrRxObject* object, const wchar_t* text, const KrRxFormatContext*) {
  KrVtFloat64* number = KrVtFloat64::cast(object);
  if (!number) return Kesu::eInvalidInput;
  return KrVtText::doubleFromText(number->value(), text);
}

// KrVtIntegerFormattable

template <typename T>
Kesu::ErrorStatus KrVtIntegerFormattable<T>::toText(const KrRxObject* object, wchar_t*& text,
                                                    const KrRxFormatContext*) {
  const KrRfValueT<T>* number = KrRfValueT<T>::cast(object);
  if (!number) return Kesu::eInvalidInput;
  return KrVtText::printText(text, integerFormat<T>(), number->value());
}

template <typename T>
Kesu::ErrorStatus KrVtIntegerFormattable<T>::fromText(KrRxObject* object, const wchar_t* text,
                                                      const KrRxFormatContext*) {
  KrRfValueT<T>* number = KrRfValueT<T>::cast(object);
  if (!number || !text) return Kesu::eInvalidInput;
  if (!scanInteger(text, number->value())) return Kesu::eInvalidInput;
  return Kesu::eOk;
}

template class KrVtIntegerFormattable<signed char>;
template class KrVtIntegerFormattable<unsigned char>;
template class KrVtIntegerFormattable<short>;
template class KrVtIntegerFormattable<unsigned short>;
template class KrVtIntegerFormattable<int>;
template class KrVtIntegerFormattable<unsigned int>;
template class KrVtIntegerFormattable<__int64>;
template class KrVtIntegerFormattable<unsigned __int64>;

KRRX_CORE_CONS_DEFINE_MEMBERS(KrVtBoolFormattable, KrRxFormattablePE)
KRRX_CORE_CONS_DEFINE_MEMBERS(KrVtFloat64Formattable, KrRxFormattablePE)
KRRX_CORE_CONS_DEFINE_MEMBERS(KrVtInt8Formattable, KrRxFormattablePE)
KRRX_CORE_CONS_DEFINE_MEMBERS(KrVtUInt8Formattable, KrRxFormattablePE)
KRRX_CORE_CONS_DEFINE_MEMBERS(KrVtInt16Formattable, KrRxFormattablePE)
KRRX_CORE_CONS_DEFINE_MEMBERS(KrVtUInt16Formattable, KrRxFormattablePE)
KRRX_CORE_CONS_DEFINE_MEMBERS(KrVtInt32Formattable, KrRxFormattablePE)
KRRX_CORE_CONS_DEFINE_MEMBERS(KrVtUInt32Formattable, KrRxFormattablePE)
KRRX_CORE_CONS_DEFINE_MEMBERS(KrVtInt64Formattable, KrRxFormattablePE)
KRRX_CORE_CONS_DEFINE_MEMBERS(KrVtUInt64Formattable, KrRxFormattablePE)
