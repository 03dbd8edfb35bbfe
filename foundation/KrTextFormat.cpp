#include "foundation/KrTextFormat.h"

#include <cstdio>
#include <cstring>
#include <cwchar>

int krFormatTruncated(wchar_t* buffer, size_t capacity, const wchar_t* format, va_list args) {
  memset(buffer, 0, capacity * sizeof(wchar_t));
  // The C99 form: returns the untruncated length and never writes past capacity.
  int length = __mingw_vsnwprintf(buffer, capacity, format, args);
  buffer[capacity - 1] = L'\0';
  return length;
}

int krFormatTruncated(wchar_t* buffer, size_t capacity, const wchar_t* format, ...) {
  va_list args;
  va_start(args, format);
  int length = krFormatTruncated(buffer, capacity, format, args);
  va_end(args);
  return length;
}
