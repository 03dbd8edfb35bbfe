#include "values/KrVtText.h"

#include <cstdarg>
#include <cstdio>
#include <cstdlib>

namespace KrVtText {

Kesu::ErrorStatus printText(wchar_t*& text, const wchar_t* format, ...) {
  va_list args, counting;
  va_start(args, format);
  va_copy(counting, args);
  int length = _vscwprintf(format, counting);
  va_end(counting);
  Kesu::ErrorStatus status = Kesu::eInvalidInput;
  if (length > 0) {
    wchar_t* block = static_cast<wchar_t*>(malloc((size_t(length) + 1) * sizeof(wchar_t)));
    status = Kesu::eOutOfMemory;
    if (block) {
      _vsnwprintf(block, size_t(length) + 1, format, args);
      text = block;
      status = Kesu::eOk;
    }
  }
  va_end(args);
  return status;
}

}  // namespace KrVtText
