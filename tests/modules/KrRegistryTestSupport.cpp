#include "KrRegistryTestSupport.h"

#include <cwchar>

#include "KrProcessRun.h"

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
  KrProcessRun run = krRunProcess(commandLine, L"", true);
  if (output) *output += run.out;
  return run.exitCode;
}
