#pragma once
// Registry access for the registry tests, and runs of the Wine prefix's own
// programs (reg.exe, regsvr32.exe).

#include <windows.h>

#include <ostream>
#include <string>
#include <vector>

struct KrRegValue {
  DWORD type = REG_NONE;  // REG_NONE: no such value
  std::vector<BYTE> data;
};

bool krKeyExists(HKEY hive, const std::wstring& key);
// The value as stored (RegGetValueW would add a missing terminator); a null name is the default value.
KrRegValue krReadValue(HKEY hive, const std::wstring& key, const wchar_t* name);
// Writes the value, creating the key when needed; a null name is the default value.
bool krWriteValue(HKEY hive, const std::wstring& key, const wchar_t* name, const KrRegValue& value);
// The value of a REG_SZ text written with its terminating zero.
KrRegValue krTextValue(const wchar_t* text);
bool operator==(const KrRegValue& a, const KrRegValue& b);
// Shows the type and, for texts, the text.
void PrintTo(const KrRegValue& value, std::ostream* out);

// Runs commandLine, waits for it and returns its exit code (-1 when it
// cannot be started). Its standard output is appended to *output when given.
int krRunProgram(const std::wstring& commandLine, std::string* output = nullptr);
