// A stand-in for the host's database library "KRDB20.DLL": it supplies the
// host services, keeps every message the runtime writes so that tests can
// compare them verbatim (krdb20.h), and writes crash reports and fatal
// errors to stderr for death tests.

#include <windows.h>

#include <cstdio>
#include <string>
#include <vector>

#include "krhostservices.h"

namespace {

const wchar_t kDefaultProductKey[] = L"Software\\Kestrune\\TestProduct";
std::vector<std::wstring> sMessages;
std::wstring sProductKey = kDefaultProductKey;
std::wstring sListFileBaseName;

std::string utf8(const wchar_t* text, int length) {
  if (!text) return "(null)";
  int size = WideCharToMultiByte(CP_UTF8, 0, text, length, nullptr, 0, nullptr, nullptr);
  std::string out(size, '\0');
  WideCharToMultiByte(CP_UTF8, 0, text, length, out.data(), size, nullptr, nullptr);
  if (length < 0 && !out.empty()) out.pop_back();
  return out;
}

class TestHostServices : public KrDbHostApplicationServices {
 public:
  const wchar_t* productKey() const override { return sProductKey.c_str(); }
  unsigned int productLcid() const override { return 0x407; }
  const wchar_t* listFileBaseName() const override {
    return sListFileBaseName.empty() ? nullptr : sListFileBaseName.c_str();
  }
  void writeMessage(const wchar_t* text, int length) override { sMessages.emplace_back(text, size_t(length)); }
  void reportCrash(_EXCEPTION_POINTERS* exception, const wchar_t* applicationName) override {
    const EXCEPTION_RECORD* record = exception->ExceptionRecord;
    std::fprintf(stderr, "crash report: code %08lX flags %lu application %s\n", record->ExceptionCode,
                 record->ExceptionFlags, utf8(applicationName, -1).c_str());
    std::fflush(stderr);
  }
  void fatalError(const wchar_t* message) override {
    std::fprintf(stderr, "fatal error: %s\n", utf8(message, -1).c_str());
    std::fflush(stderr);
  }
};

}  // namespace

__declspec(dllexport) KrDbHostApplicationServices* krdbHostApplicationServices() {
  static TestHostServices services;
  return &services;
}

extern "C" __declspec(dllexport) int krdbTestMessageCount() { return int(sMessages.size()); }

extern "C" __declspec(dllexport) const wchar_t* krdbTestMessage(int index) {
  return index >= 0 && index < int(sMessages.size()) ? sMessages[size_t(index)].c_str() : nullptr;
}

extern "C" __declspec(dllexport) void krdbTestClearMessages() { sMessages.clear(); }

extern "C" __declspec(dllexport) void krdbTestSetProductKey(const wchar_t* key) {
  sProductKey = key ? key : kDefaultProductKey;
}

extern "C" __declspec(dllexport) void krdbTestSetListFileBaseName(const wchar_t* baseName) {
  sListFileBaseName = baseName ? baseName : L"";
}
