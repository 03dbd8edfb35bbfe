#include "KrTestFiles.h"

#include <windows.h>

#include "modules/KrRxTrustCheck.h"

std::wstring krTestBinDirectory() {
  wchar_t path[MAX_PATH];
  GetModuleFileNameW(nullptr, path, MAX_PATH);
  std::wstring directory(path);
  return directory.substr(0, directory.find_last_of(L"\\/") + 1);
}

long krVerifyTrust(const wchar_t* path) {
  static const auto verify = reinterpret_cast<KrRxWinVerifyTrustEx>(
      reinterpret_cast<void*>(GetProcAddress(LoadLibraryW(L"WINTRUST.DLL"), "WinVerifyTrustEx")));
  return krrxVerifyTrust(verify, path);
}
