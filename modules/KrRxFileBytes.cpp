#include "modules/KrRxFileBytes.h"

bool krrxReadFileBytes(HANDLE file, std::string& bytes) {
  char chunk[16384];
  DWORD read = 0;
  BOOL ok;
  while ((ok = ReadFile(file, chunk, sizeof chunk, &read, nullptr)) && read) bytes.append(chunk, read);
  return ok;
}

bool krrxReadFileBytes(const wchar_t* path, std::string& bytes, DWORD& error) {
  bytes.clear();
  HANDLE file = CreateFileW(path, GENERIC_READ, FILE_SHARE_READ, nullptr, OPEN_EXISTING, FILE_FLAG_SEQUENTIAL_SCAN,
                            nullptr);
  if (file == INVALID_HANDLE_VALUE) {
    error = GetLastError();
    return false;
  }
  bool ok = krrxReadFileBytes(file, bytes);
  error = ok ? ERROR_SUCCESS : GetLastError();
  CloseHandle(file);
  return ok;
}
