#include "KrTestFiles.h"

#include <windows.h>

#include <softpub.h>
#include <wintrust.h>

std::wstring krTestBinDirectory() {
  wchar_t path[MAX_PATH];
  GetModuleFileNameW(nullptr, path, MAX_PATH);
  std::wstring directory(path);
  return directory.substr(0, directory.find_last_of(L"\\/") + 1);
}

long krVerifyTrust(const wchar_t* path) {
  static const auto verify = reinterpret_cast<LONG(WINAPI*)(HWND, GUID*, WINTRUST_DATA*)>(
      reinterpret_cast<void*>(GetProcAddress(LoadLibraryW(L"WINTRUST.DLL"), "WinVerifyTrustEx")));
  WINTRUST_FILE_INFO file = {sizeof file, path, nullptr, nullptr};
  WINTRUST_DATA data = {};
  data.cbStruct = sizeof data;
  data.dwUIChoice = WTD_UI_NONE;
  data.dwUnionChoice = WTD_CHOICE_FILE;
  data.pFile = &file;
  data.dwProvFlags = WTD_REVOCATION_CHECK_NONE;
  GUID action = WINTRUST_ACTION_GENERIC_VERIFY_V2;
  return verify(static_cast<HWND>(INVALID_HANDLE_VALUE), &action, &data);
}
