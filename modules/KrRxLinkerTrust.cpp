// The trust step of the load road: a module whose signature the system
// rejects is refused, then the linker reactors may refuse it.

#include "modules/KrRxLinkerSteps.h"

#include <cstdlib>
#include <cwchar>

#include "krrxiterator.h"
#include "krrxset.h"
#include "runtime/KrRxImpSet.h"
#include "modules/KrRxImpDynamicLinker.h"
#include "modules/KrRxTrustCheck.h"

wchar_t* KrRxImpDynamicLinker::mLoadModuleFailReason = nullptr;

namespace {

// Offers a probed module to the KrRxDLinkerReactor2 members of set until one refuses it.
void offer(const KrRxSet* set, void* probe) {
  KrRxIterator* it = set->newIterator(true);
  for (; !it->done() && !KrRxImpDynamicLinker::mLoadModuleFailReason; it->next())
    if (auto* reactor = KrRxDLinkerReactor2::cast(it->object())) reactor->rxAppCouldBeLoaded(probe);
  delete it;
}

// Resolved once per process, from the first trust library asked.
KrRxWinVerifyTrustEx winVerifyTrustEx(HMODULE trustLibrary) {
  static const KrRxWinVerifyTrustEx function = reinterpret_cast<KrRxWinVerifyTrustEx>(
      reinterpret_cast<void*>(GetProcAddress(trustLibrary, "WinVerifyTrustEx")));
  return function;
}

}  // namespace

HMODULE krrxLoadTrustLibrary() {
  HMODULE kernel = GetModuleHandleW(L"KERNEL32.DLL");
  return kernel && GetProcAddress(kernel, "GetLocaleInfoEx") ? LoadLibraryW(L"WINTRUST.DLL") : nullptr;
}

void krrxSetLoadFailReason(const wchar_t* reason) {
  if (wchar_t* copy = _wcsdup(reason)) {
    free(KrRxImpDynamicLinker::mLoadModuleFailReason);
    KrRxImpDynamicLinker::mLoadModuleFailReason = copy;
  }
}

void krrxReportLoadRefusal(const wchar_t* fileName, bool printMessages) {
  wchar_t*& reason = KrRxImpDynamicLinker::mLoadModuleFailReason;
  if (printMessages) {
    if (*reason)
      KrRxImpDynamicLinker::hostMessage(L"%ls", reason);
    else
      KrRxImpDynamicLinker::hostMessage(L"Runtime Extension '%ls' could not been loaded\n", fileName);
  }
  free(reason);
  reason = nullptr;
}

bool KrRxImpDynamicLinker::signatureRejected(const wchar_t* path) const {
  if (!mpTrustLibrary) return false;
  KrRxWinVerifyTrustEx verify = winVerifyTrustEx(static_cast<HMODULE>(mpTrustLibrary));
  return verify && krrxVerifyTrust(verify, path) < 0;
}

void KrRxImpDynamicLinker::offerToReactors(void* probe) const {
  offer(mpDbAppMonitors, probe);
  if (!mLoadModuleFailReason) offer(mpReactors, probe);
}
