// The text forms of the plain numbers.

#include "values/KrVtNumberFormattable.h"

#include <cwchar>
#include <type_traits>

#include "krrfvalue.h"
#include "runtime/KrRxCoreClass.h"
#include "values/KrVtText.h"

namespace {

KrVtText::Composer& composeFloat64(const KrVtFloat64& number, KrVtText::Composer& composer) {
  return KrVtText::composeDouble(composer, number.value(), 3, KrVtText::kExponentFrom1e10);
}

// False when object is not of the integer kind T.
template <typename T>
bool composeInteger(const KrRxObject* object, KrVtText::Composer& composer) {
  const KrRfValueT<T>* number = KrRfValueT<T>::cast(object);
  if (!number) return false;
  using Wide = std::conditional_t<std::is_signed<T>::value, long long, unsigned long long>;
  composer.integer(Wide(number->value()));
  return true;
}

}  // namespace

// KrVtBoolFormattable

Kesu::ErrorStatus KrVtBoolFormattable::toText(const KrRxObject* object, wchar_t*& text, const KrRxFormatContext*) {
  const KrVtBool* flag = KrVtBool::cast(object);
  if (!flag) return Kesu::eInvalidInput;
  return KrVtText::Composer().literal(flag->value() ? L"Yes" : L"No").copyTo(text);
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
  KrVtText::Composer composer;
  return composeFloat64(*number, composer).copyTo(text);
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
  KrVtText::Composer composer;
  return composeInteger<T>(object, composer) ? composer.copyTo(text) : Kesu::eInvalidInput;
}

template <typename T>
Kesu::ErrorStatus KrVtIntegerFormattable<T>::fromText(KrRxObject* object, const wchar_t* text,
                                                      const KrRxFormatContext*) {
  KrRfValueT<T>* number = KrRfValueT<T>::cast(object);
  if (!number || !text) return Kesu::eInvalidInput;
  return KrVtText::scanInteger(text, number->value()) ? Kesu::eOk : Kesu::eInvalidInput;
}

template class KrVtIntegerFormattable<signed char>;
template class KrVtIntegerFormattable<unsigned char>;
template class KrVtIntegerFormattable<short>;
template class KrVtIntegerFormattable<unsigned short>;
template class KrVtIntegerFormattable<int>;
template class KrVtIntegerFormattable<unsigned int>;
template class KrVtIntegerFormattable<__int64>;
template class KrVtIntegerFormattable<unsigned __int64>;

bool krvtComposeNumberText(const KrRxFormattablePE* formattable, const KrRxObject* object,
                           KrVtText::Composer& composer) {
  KrRxClass* kind = formattable->isA();
  if (kind == KrVtFloat64Formattable::desc()) {
    const KrVtFloat64* number = KrVtFloat64::cast(object);
    return number && (composeFloat64(*number, composer), true);
  }
  if (kind == KrVtInt32Formattable::desc()) return composeInteger<int>(object, composer);
  if (kind == KrVtUInt32Formattable::desc()) return composeInteger<unsigned int>(object, composer);
  if (kind == KrVtInt64Formattable::desc()) return composeInteger<__int64>(object, composer);
  if (kind == KrVtUInt64Formattable::desc()) return composeInteger<unsigned __int64>(object, composer);
  if (kind == KrVtInt16Formattable::desc()) return composeInteger<short>(object, composer);
  if (kind == KrVtUInt16Formattable::desc()) return composeInteger<unsigned short>(object, composer);
  if (kind == KrVtInt8Formattable::desc()) return composeInteger<signed char>(object, composer);
  if (kind == KrVtUInt8Formattable::desc()) return composeInteger<unsigned char>(object, composer);
  return false;
}

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
