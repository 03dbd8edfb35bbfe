// A stand-in for the host's database library "KRDB20.DLL": it supplies the
// host services and writes everything the runtime hands it to stderr, so
// that tests can compare it verbatim.

#include <windows.h>

#include <cstdio>
#include <string>

#include "krhostservices.h"

namespace {

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
  const wchar_t* productKey() const override { return L"Software\\Kestrune\\TestProduct"; }
  unsigned int productLcid() const override { return 0x407; }
  const wchar_t* listFileBaseName() const override { return nullptr; }
  void writeMessage(const wchar_t* text, int length) override {
    std::fprintf(stderr, "host message: %s\n", utf8(text, length).c_str());
    std::fflush(stderr);
  }
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
