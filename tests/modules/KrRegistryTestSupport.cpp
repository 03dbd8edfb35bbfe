#include "KrRegistryTestSupport.h"

#include <cwchar>

bool krKeyExists(HKEY hive, const std::wstring& key) {
  HKEY opened;
  if (RegOpenKeyExW(hive, key.c_str(), 0, KEY_READ, &opened) != ERROR_SUCCESS) return false;
  RegCloseKey(opened);
  return true;
}

KrRegValue krReadValue(HKEY hive, const std::wstring& key, const wchar_t* name) {
  KrRegValue value;
  HKEY opened;
  if (RegOpenKeyExW(hive, key.c_str(), 0, KEY_QUERY_VALUE, &opened) != ERROR_SUCCESS) return value;
  DWORD size = 0;
  if (RegQueryValueExW(opened, name, nullptr, &value.type, nullptr, &size) == ERROR_SUCCESS) {
    value.data.resize(size);
    RegQueryValueExW(opened, name, nullptr, &value.type, value.data.data(), &size);
  }
  RegCloseKey(opened);
  return value;
}

bool krWriteValue(HKEY hive, const std::wstring& key, const wchar_t* name, const KrRegValue& value) {
  return RegSetKeyValueW(hive, key.c_str(), name, value.type, value.data.data(), DWORD(value.data.size())) ==
         ERROR_SUCCESS;
}

KrRegValue krTextValue(const wchar_t* text) {
  const BYTE* bytes = reinterpret_cast<const BYTE*>(text);
  return {REG_SZ, std::vector<BYTE>(bytes, bytes + (wcslen(text) + 1) * sizeof(wchar_t))};
}

bool operator==(const KrRegValue& a, const KrRegValue& b) { return a.type == b.type && a.data == b.data; }

void PrintTo(const KrRegValue& value, std::ostream* out) {
  *out << "type " << value.type << ", " << value.data.size() << " bytes";
  if (value.type != REG_SZ) return;
  *out << " \"";
  for (size_t i = 0; i + 1 < value.data.size(); i += 2) {
    wchar_t unit = wchar_t(value.data[i] | value.data[i + 1] << 8);
    if (unit >= 32 && unit < 127) *out << char(unit); else *out << "\\u" << std::hex << unsigned(unit) << std::dec;
  }
  *out << "\"";
}

int krRunProgram(const std::wstring& commandLine, std::string* output) {
  SECURITY_ATTRIBUTES inheritable = {sizeof inheritable, nullptr, TRUE};
  HANDLE readEnd = nullptr;
  HANDLE writeEnd = nullptr;
  if (!CreatePipe(&readEnd, &writeEnd, &inheritable, 0)) return -1;
  SetHandleInformation(readEnd, HANDLE_FLAG_INHERIT, 0);

  STARTUPINFOW startup = {};
  startup.cb = sizeof startup;
  startup.dwFlags = STARTF_USESTDHANDLES;
  startup.hStdOutput = writeEnd;
  startup.hStdError = writeEnd;
  startup.hStdInput = GetStdHandle(STD_INPUT_HANDLE);
  PROCESS_INFORMATION process = {};
  std::wstring mutableCommandLine = commandLine;
  BOOL started = CreateProcessW(nullptr, mutableCommandLine.data(), nullptr, nullptr, TRUE, 0, nullptr, nullptr,
                                &startup, &process);
  CloseHandle(writeEnd);
  if (!started) {
    CloseHandle(readEnd);
    return -1;
  }

  char buffer[4096];
  DWORD read = 0;
  while (ReadFile(readEnd, buffer, sizeof buffer, &read, nullptr) && read)
    if (output) output->append(buffer, read);
  CloseHandle(readEnd);

  WaitForSingleObject(process.hProcess, INFINITE);
  DWORD exitCode = 0;
  GetExitCodeProcess(process.hProcess, &exitCode);
  CloseHandle(process.hThread);
  CloseHandle(process.hProcess);
  return static_cast<int>(exitCode);
}
