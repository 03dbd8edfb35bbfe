// Trust: a probed module's signature, and the reactors' say, before it
// loads. A refusal is pending in mLoadModuleFailReason until it is reported.

#include "modules/KrRxImpDynamicLinker.h"

#include <windows.h>

#include <cstdlib>
#include <cwchar>

#include "krrxdynamiclinker.h"
#include "modules/KrRxLinkerSteps.h"
#include "modules/KrRxTrustCheck.h"
#include "runtime/KrRxImpSet.h"

namespace {

// Offers a probed module to the KrRxDLinkerReactor2 members of set until one refuses it.
void offer(const KrRxImpSet* set, void* probe) {
  set->forEachMember([&](KrRxObject* member) {
    if (auto* reactor = KrRxDLinkerReactor2::cast(member)) reactor->rxAppCouldBeLoaded(probe);
    return !KrRxImpDynamicLinker::mLoadModuleFailReason;
  });
}

// Resolved once per process, from the first trust library asked.
KrRxWinVerifyTrustEx winVerifyTrustEx(HMODULE trustLibrary) {
  static const KrRxWinVerifyTrustEx function = reinterpret_cast<KrRxWinVerifyTrustEx>(
      reinterpret_cast<void*>(GetProcAddress(trustLibrary, "WinVerifyTrustEx")));
  return function;
}

}  // namespace

namespace krrxLinker {

void setFailReason(const wchar_t* reason) {
  if (wchar_t* copy = _wcsdup(reason)) {
    free(KrRxImpDynamicLinker::mLoadModuleFailReason);
    KrRxImpDynamicLinker::mLoadModuleFailReason = copy;
  }
}

// Takes the pending refusal: prints it (or the standard text) when asked, and clears it.
void reportRefusal(const wchar_t* fileName, bool printMessages) {
  wchar_t*& reason = KrRxImpDynamicLinker::mLoadModuleFailReason;
  if (printMessages) {
    if (reason && *reason)
      KrRxImpDynamicLinker::hostMessage(L"%ls", reason);
    else
      KrRxImpDynamicLinker::hostMessage(L"Runtime Extension '%ls' could not been loaded\n", fileName);
  }
  free(reason);
  reason = nullptr;
}

HMODULE loadTrustLibrary() {
  HMODULE kernel = GetModuleHandleW(L"KERNEL32.DLL");
  return kernel && GetProcAddress(kernel, "GetLocaleInfoEx") ? LoadLibraryW(L"WINTRUST.DLL") : nullptr;
}

}  // namespace krrxLinker

using namespace krrxLinker;

bool KrRxImpDynamicLinker::signatureRejected(const wchar_t* path) const {
  if (!mpTrustLibrary) return false;
  KrRxWinVerifyTrustEx verify = winVerifyTrustEx(static_cast<HMODULE>(mpTrustLibrary));
  return verify && krrxVerifyTrust(verify, path) < 0;
}

void KrRxImpDynamicLinker::offerToReactors(void* probe) const {
  offer(mpDbAppMonitors, probe);
  if (!mLoadModuleFailReason) offer(mpReactors, probe);
}
