#include "values/KrVtText.h"

#include <cmath>
#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <cwchar>

#include "values/KrVtDayValue.h"

namespace KrVtText {

namespace {
const wchar_t kUnsetText[] = L"*";
const wchar_t kInfinityText[] = L"\u221E";
const wchar_t kNegativeInfinityText[] = L"-\u221E";
}  // namespace

const wchar_t* specialTextOf(double v, Specials specials) {
  if (std::isnan(v)) return kUnsetText;
  if (v == HUGE_VAL) return kInfinityText;
  if (v == -HUGE_VAL && specials == kWithNegativeInfinity) return kNegativeInfinityText;
  return nullptr;
}

bool readSpecialText(const wchar_t* text, Specials specials, double& v) {
  if (!wcscmp(text, kUnsetText)) {
    v = KrVtDay::unset();
  } else if (!wcscmp(text, kInfinityText)) {
    v = HUGE_VAL;
  } else if (specials == kWithNegativeInfinity && !wcscmp(text, kNegativeInfinityText)) {
    v = -HUGE_VAL;
  } else {
    return false;
  }
  return true;
}

Kesu::ErrorStatus printText(wchar_t*& text, const wchar_t* format, ...) {
  va_list args, counting;
  va_start(args, format);
  va_copy(counting, args);
  int length = __mingw_vsnwprintf(nullptr, 0, format, counting);
  va_end(counting);
  Kesu::ErrorStatus status = Kesu::eInvalidInput;
  if (length > 0) {
    wchar_t* block = static_cast<wchar_t*>(malloc((size_t(length) + 1) * sizeof(wchar_t)));
    status = Kesu::eOutOfMemory;
    if (block) {
      __mingw_vsnwprintf(block, size_t(length) + 1, format, args);
      text = block;
      status = Kesu::eOk;
    }
  }
  va_end(args);
  return status;
}

Kesu::ErrorStatus doubleToText(double v, const wchar_t* finiteFormat, wchar_t*& text) {
  if (const wchar_t* special = specialTextOf(v, kWithNegativeInfinity)) return printText(text, L"%ls", special);
  return printText(text, finiteFormat, v);
}

Kesu::ErrorStatus doubleFromText(double& v, const wchar_t* text) {
  if (!text) return Kesu::eInvalidInput;
  if (readSpecialText(text, kWithNegativeInfinity, v)) return Kesu::eOk;
  double read = 0;
  if (!scanDouble(text, read)) return Kesu::eInvalidInput;
  v = read;
  return Kesu::eOk;
}

namespace {

// Runs a C runtime number reader on text, which reads nothing when it stops at once.
template <typename Number, typename Reader>
bool scanWith(const wchar_t*& text, Number& value, Reader read) {
  wchar_t* end = nullptr;
  Number number = read(text, &end);
  if (end == text) return false;
  text = end;
  value = number;
  return true;
}

}  // namespace

bool scanInteger(const wchar_t*& text, long long& value) {
  return scanWith(text, value, [](const wchar_t* from, wchar_t** end) { return _wcstoi64(from, end, 10); });
}

bool scanUnsigned(const wchar_t*& text, unsigned long long& value) {
  return scanWith(text, value, [](const wchar_t* from, wchar_t** end) { return _wcstoui64(from, end, 10); });
}

bool scanLong(const wchar_t*& text, long& value) {
  return scanWith(text, value, [](const wchar_t* from, wchar_t** end) { return wcstol(from, end, 10); });
}

bool scanUnsignedLong(const wchar_t*& text, unsigned long& value) {
  return scanWith(text, value, [](const wchar_t* from, wchar_t** end) { return wcstoul(from, end, 10); });
}

bool scanDouble(const wchar_t*& text, double& value) {
  return scanWith(text, value, [](const wchar_t* from, wchar_t** end) { return __mingw_wcstod(from, end); });
}

}  // namespace KrVtText
