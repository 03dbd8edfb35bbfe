#pragma once
// Helpers of the module tests: the linker, the test modules' folder, files
// written for a test, and a reactor that records every notification.

#include <string>
#include <vector>

#include "KrTestFiles.h"
#include "kr1st.h"
#include "modules/KrRxImpDynamicLinker.h"

KrRxImpDynamicLinker* krTestLinker();

// An exported symbol of a module that the linker has loaded, as T (null when absent).
template <typename T>
T krModuleSymbol(const wchar_t* module, const char* symbol) {
  return reinterpret_cast<T>(krTestLinker()->getSymbolAddress(module, symbol));
}

// The bytes of the dictionaries that keep a position for every id they hand
// out (the system registry, the class and service dictionaries, the
// loaded-module table): what loads and unloads may leave behind by design.
long long krSystemTableBytes();

// The system's text for an error code, as the linker reports it.
std::wstring krSystemText(unsigned long error);
std::string krUtf16le(const std::wstring& text);
void krWriteFile(const std::wstring& path, const std::string& bytes);
std::string krReadFile(const std::wstring& path);

// Records notifications as "<tag> <event> <module name>" into a shared log.
// It can refuse modules offered to it (veto) and mark a module vetoed when
// it hears that the module was loaded.
class KrRecordingReactor : public KrRxDLinkerReactor2 {
 public:
  KrRecordingReactor(const wchar_t* tag, std::vector<std::wstring>& log) : mTag(tag), mLog(log) {}

  void rxAppWillBeLoaded(const wchar_t* name) override { record(L"willBeLoaded", name); }
  void rxAppLoaded(const wchar_t* name) override;
  void rxAppLoadAborted(const wchar_t* name) override { record(L"loadAborted", name); }
  void rxAppWillBeUnloaded(const wchar_t* name) override { record(L"willBeUnloaded", name); }
  void rxAppUnloaded(const wchar_t* name) override { record(L"unloaded", name); }
  void rxAppUnloadAborted(const wchar_t* name) override { record(L"unloadAborted", name); }
  void rxAppCouldBeLoaded(void* module) override;

  bool vetoOffers = false;
  std::wstring vetoReason;
  bool markVetoedWhenLoaded = false;

 private:
  void record(const wchar_t* event, const wchar_t* name) { mLog.push_back(mTag + L" " + event + L" " + name); }

  std::wstring mTag;
  std::vector<std::wstring>& mLog;
};
