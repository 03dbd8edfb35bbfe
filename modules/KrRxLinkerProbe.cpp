// Probing a module file before it loads: mapped without resolving its
// imports, it must have a fitting API version and an entry point.

#include "modules/KrRxImpDynamicLinker.h"

#include <windows.h>

#include <string>

#include "krrxdynamiclinker.h"
#include "modules/KrRxGuardedCall.h"
#include "modules/KrRxLinkerSteps.h"

namespace {

constexpr DWORD kLongPathCapacity = 32767;
// Calls a probed module's version function, whose imports are not resolved:
// a fault there (reading imported data, say) is caught and gives false.
bool probeApiVersion(KrRxGetApiVersionFunction getApiVersion, unsigned int& version) {
  struct Call {
    KrRxGetApiVersionFunction function;
    unsigned int version;
  } call = {getApiVersion, 0};
  bool returned = krrxFaultCatchingCall(
      [](void* pending) {
        auto* call = static_cast<Call*>(pending);
        call->version = call->function();
      },
      &call);
  version = call.version;
  return returned;
}

}  // namespace

namespace krrxLinker {

// The system's text for error, through the host's message output.
void reportSystemError(DWORD error) {
  wchar_t* text = nullptr;
  FormatMessageW(FORMAT_MESSAGE_ALLOCATE_BUFFER | FORMAT_MESSAGE_FROM_SYSTEM | FORMAT_MESSAGE_IGNORE_INSERTS, nullptr,
                 error, 0x400, reinterpret_cast<wchar_t*>(&text), 0, nullptr);
  if (!text) return;
  KrRxImpDynamicLinker::hostMessage(L"%ls", text);
  LocalFree(text);
}

DWORD modulePath(HMODULE module, wchar_t* path, DWORD capacity) {
  DWORD length = GetModuleFileNameW(module, path, capacity);
  return length < capacity ? length : 0;
}

std::wstring modulePath(HMODULE module) {
  std::wstring path(kLongPathCapacity, L'\0');
  path.resize(modulePath(module, &path[0], kLongPathCapacity));
  return path;
}

// Checks the probed module's API version and entry point, with the messages for a refusal.
bool acceptsEntryProtocol(HMODULE probe, const wchar_t* fileName, bool printMessages) {
  auto getApiVersion = reinterpret_cast<KrRxGetApiVersionFunction>(
      reinterpret_cast<void*>(GetProcAddress(probe, KRRX_GET_API_VERSION)));
  if (!getApiVersion) {
    if (printMessages)
      KrRxImpDynamicLinker::hostMessage(L"GetApiVersion function not found in %ls\nMake sure the app export the symbol.",
                                        fileName);
    return false;
  }
  unsigned int version;
  if (!probeApiVersion(getApiVersion, version)) {
    if (printMessages)
      KrRxImpDynamicLinker::hostMessage(
          L"krrxGetApiVersion faulted in %ls\nIt must return a constant and read nothing imported: "
          L"define it with KRRX_DEFINE_API_VERSION().\n",
          fileName);
    return false;
  }
  if (version - KRRX_MIN_API_VERSION > KRRX_CUR_API_VERSION - KRRX_MIN_API_VERSION) {
    if (printMessages) {
      KrRxImpDynamicLinker::hostMessage(L"Incompatible API version in %ls\n", fileName);
      KrRxImpDynamicLinker::hostMessage(L" Kestrune version = %d.%d\n", KRRX_CUR_API_VERSION >> 16,
                                        KRRX_CUR_API_VERSION & 0xFFFF);
      KrRxImpDynamicLinker::hostMessage(L" %ls version = %d.%d\n", fileName, version >> 16, version & 0xFFFF);
    }
    return false;
  }
  if (!GetProcAddress(probe, KRRX_ENTRY_POINT)) {
    if (printMessages) KrRxImpDynamicLinker::hostMessage(L"Entry point not found in %ls\n", fileName);
    return false;
  }
  return true;
}

}  // namespace krrxLinker
