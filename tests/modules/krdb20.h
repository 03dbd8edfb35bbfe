#pragma once
// Test controls of the "KRDB20.DLL" stand-in: the host messages it received,
// verbatim, and the product key and list-file base name it reports.

#include <string>
#include <vector>

extern "C" {
__declspec(dllimport) int krdbTestMessageCount();
// The index-th message as received (its given length, terminated here).
__declspec(dllimport) const wchar_t* krdbTestMessage(int index);
__declspec(dllimport) void krdbTestClearMessages();
// Null restores the defaults: key L"Software\\Kestrune\\TestProduct", no base name.
__declspec(dllimport) void krdbTestSetProductKey(const wchar_t* key);
__declspec(dllimport) void krdbTestSetListFileBaseName(const wchar_t* baseName);
}

// The messages received so far, in order; they are cleared.
inline std::vector<std::wstring> krdbTestTakeMessages() {
  std::vector<std::wstring> messages;
  for (int i = 0; i < krdbTestMessageCount(); ++i) messages.push_back(krdbTestMessage(i));
  krdbTestClearMessages();
  return messages;
}
