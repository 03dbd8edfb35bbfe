#pragma once
// A zero-terminated, writable copy of a piece of text, kept on the stack
// when it is short, so that reading a property path costs no allocation.

#include <cstddef>
#include <cstring>

#include "krheap.h"

class KrRfTextCopy {
 public:
  KrRfTextCopy(const wchar_t* begin, size_t length)
      : mpText(length < kLocal ? mLocal : static_cast<wchar_t*>(__krMalloc((length + 1) * sizeof(wchar_t)))) {
    if (!mpText) return;
    memcpy(mpText, begin, length * sizeof(wchar_t));
    mpText[length] = 0;
  }
  ~KrRfTextCopy() {
    if (mpText != mLocal) __krFree(mpText);
  }
  KrRfTextCopy(const KrRfTextCopy&) = delete;
  KrRfTextCopy& operator=(const KrRfTextCopy&) = delete;

  // The copy, or null when memory was short.
  wchar_t* text() const { return mpText; }

 private:
  static constexpr size_t kLocal = 128;
  wchar_t mLocal[kLocal];
  wchar_t* mpText;
};
