// The text forms of the plain numbers.

#include "values/KrVtNumberFormattable.h"

#include <cmath>
#include <cstdarg>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <cwchar>

#include "krrfvalue.h"

namespace {

const wchar_t kUnsetText[] = L"*";
const wchar_t kInfinityText[] = L"\u221E";
const wchar_t kNegativeInfinityText[] = L"-\u221E";
const uint64_t kUnsetBits = 0xFFF8000000000000ULL;

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

// A new text from malloc printed with format; eOutOfMemory when none can be had.
Kesu::ErrorStatus newText(wchar_t*& text, const wchar_t* format, ...) {
  wchar_t buffer[512];
  va_list args;
  va_start(args, format);
  int length = __mingw_vsnwprintf(buffer, sizeof buffer / sizeof *buffer, format, args);
  va_end(args);
  if (length < 0 || static_cast<size_t>(length) >= sizeof buffer / sizeof *buffer) return Kesu::eInvalidInput;
  wchar_t* made = static_cast<wchar_t*>(malloc((static_cast<size_t>(length) + 1) * sizeof(wchar_t)));
  if (!made) return Kesu::eOutOfMemory;
  memcpy(made, buffer, (static_cast<size_t>(length) + 1) * sizeof(wchar_t));
  text = made;
  return Kesu::eOk;
}

// The special text of an unset ("*") or infinite ("∞", "-∞") double; null for a finite one.
const wchar_t* specialText(double value) {
  if (std::isnan(value)) return kUnsetText;
  if (std::isinf(value)) return value > 0 ? kInfinityText : kNegativeInfinityText;
  return nullptr;
}

// Reads value from one of the special texts; false for any other text.
bool readSpecialText(const wchar_t* text, double& value) {
  if (wcscmp(text, kUnsetText) == 0) {
    memcpy(&value, &kUnsetBits, sizeof value);
  } else if (wcscmp(text, kInfinityText) == 0) {
    value = INFINITY;
  } else if (wcscmp(text, kNegativeInfinityText) == 0) {
    value = -INFINITY;
  } else {
    return false;
  }
  return true;
}

// Writes a double: its special text, else printed with finiteFormat.
Kesu::ErrorStatus doubleToText(double value, const wchar_t* finiteFormat, wchar_t*& text) {
  const wchar_t* special = specialText(value);
  return special ? newText(text, L"%ls", special) : newText(text, finiteFormat, value);
}

// Reads a double: a special text, else "%lf" must convert; eInvalidInput otherwise.
Kesu::ErrorStatus doubleFromText(const wchar_t* text, double& value) {
  if (!text) return Kesu::eInvalidInput;
  if (readSpecialText(text, value)) return Kesu::eOk;
  double read = 0.0;
  if (__mingw_swscanf(text, L"%lf", &read) != 1) return Kesu::eInvalidInput;
  value = read;
  return Kesu::eOk;
}

}  // namespace

// KrVtBoolFormattable

Kesu::ErrorStatus KrVtBoolFormattable::toText(const KrRxObject* object, wchar_t*& text, const KrRxFormatContext*) {
  const KrVtBool* flag = KrVtBool::cast(object);
  if (!flag) return Kesu::eInvalidInput;
  return newText(text, L"%ls", flag->value() ? L"Yes" : L"No");
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
  return doubleToText(value, std::fabs(value) < 1e10 ? L"%.03f" : L"%.03E", text);
}

Kesu::ErrorStatus KrVtFloat64Formattable::fromText(KrRxObject* object, const wchar_t* text, const KrRxFormatContext*) {
  KrVtFloat64* number = KrVtFloat64::cast(object);
  if (!number) return Kesu::eInvalidInput;
  return doubleFromText(text, number->value());
}

// KrVtIntegerFormattable

template <typename T>
Kesu::ErrorStatus KrVtIntegerFormattable<T>::toText(const KrRxObject* object, wchar_t*& text,
                                                    const KrRxFormatContext*) {
  const KrRfValueT<T>* number = KrRfValueT<T>::cast(object);
  if (!number) return Kesu::eInvalidInput;
  return newText(text, integerFormat<T>(), number->value());
}

template <typename T>
Kesu::ErrorStatus KrVtIntegerFormattable<T>::fromText(KrRxObject* object, const wchar_t* text,
                                                      const KrRxFormatContext*) {
  KrRfValueT<T>* number = KrRfValueT<T>::cast(object);
  if (!number || !text) return Kesu::eInvalidInput;
  T read = 0;
  if (__mingw_swscanf(text, integerFormat<T>(), &read) != 1) return Kesu::eInvalidInput;
  number->value() = read;
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
