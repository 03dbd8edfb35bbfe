#pragma once
// What krrxFormatObject writes for an object: "" when it fails, with the status on request.

#include <cstdlib>
#include <string>

#include "krrxformattable.h"

inline std::wstring krvtTextOf(const KrRxObject* object, Kesu::ErrorStatus* status = nullptr) {
  wchar_t* text = nullptr;
  Kesu::ErrorStatus result = krrxFormatObject(object, text, nullptr);
  if (status) *status = result;
  std::wstring written = text ? text : L"";
  free(text);
  return written;
}
