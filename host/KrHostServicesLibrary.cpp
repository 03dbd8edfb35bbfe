// krhost's "KRDB20.DLL": the host services that the runtime asks an already
// loaded database library for. krhost loads it from its own folder
// (krhost-services\KRDB20.DLL) before it drives the runtime, and hands it
// the product key and a sink for the runtime's messages.

#include <windows.h>

#include <cstdio>
#include <string>

#include "host/KrHostServices.h"
#include "krhostservices.h"

namespace {

KrHostMessageSink sSink = nullptr;
void* sSinkContext = nullptr;
std::wstring sProductKey;

void writeError(const char* what, const wchar_t* text) {
  std::fprintf(stderr, "krhost: %s: %ls\n", what, text ? text : L"");
  std::fflush(stderr);
}

class KrHostApplicationServices : public KrDbHostApplicationServices {
 public:
  const wchar_t* productKey() const override { return sProductKey.empty() ? nullptr : sProductKey.c_str(); }
  unsigned int productLcid() const override { return GetSystemDefaultLCID(); }
  const wchar_t* listFileBaseName() const override { return nullptr; }
  void writeMessage(const wchar_t* text, int length) override {
    if (sSink) sSink(text, length, sSinkContext);
  }
  void reportCrash(_EXCEPTION_POINTERS*, const wchar_t* applicationName) override {
    writeError("crash in", applicationName);
  }
  void fatalError(const wchar_t* message) override { writeError("fatal error", message); }
};

}  // namespace

__declspec(dllexport) KrDbHostApplicationServices* krdbHostApplicationServices() {
  static KrHostApplicationServices services;
  return &services;
}

extern "C" __declspec(dllexport) void krhostSetMessageSink(KrHostMessageSink sink, void* context) {
  sSink = sink;
  sSinkContext = context;
}

extern "C" __declspec(dllexport) void krhostSetProductKey(const wchar_t* key) { sProductKey = key ? key : L""; }
