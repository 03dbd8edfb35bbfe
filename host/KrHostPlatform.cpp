#include "host/KrHostPlatform.h"

#include <windows.h>

#include <cwchar>

namespace {

constexpr DWORD kPathCapacity = 32768;
constexpr DWORD kLanguageNeutral = 0x400;

}  // namespace

std::wstring krhostProgramPath() {
  std::wstring path(kPathCapacity, L'\0');
  path.resize(GetModuleFileNameW(nullptr, &path[0], kPathCapacity));
  return path;
}

std::wstring krhostSystemText(unsigned long code) {
  wchar_t* text = nullptr;
  FormatMessageW(FORMAT_MESSAGE_ALLOCATE_BUFFER | FORMAT_MESSAGE_FROM_SYSTEM | FORMAT_MESSAGE_IGNORE_INSERTS, nullptr,
                 code, kLanguageNeutral, reinterpret_cast<wchar_t*>(&text), 0, nullptr);
  std::wstring copy = text ? text : L"";
  LocalFree(text);
  while (!copy.empty() && (copy.back() == L'\n' || copy.back() == L'\r' || copy.back() == L' ')) copy.pop_back();
  return copy.empty() ? krhostHex(code) : copy + L" (" + krhostHex(code) + L")";
}

std::wstring krhostHex(unsigned long value) {
  wchar_t text[16];
  swprintf(text, 16, L"0x%08lX", value);
  return text;
}
