// Linker reactors and the abstract linker's run-time type members.

#include <cstdlib>
#include <cwchar>

#include "krrxdynamiclinker.h"
#include "runtime/KrRxCoreClass.h"

KRRX_CORE_CONS_DEFINE_MEMBERS(KrRxDLinkerReactor, KrRxObject)
KRRX_CORE_CONS_DEFINE_MEMBERS(KrRxDLinkerReactor2, KrRxDLinkerReactor)
KRRX_CORE_NO_CONS_DEFINE_MEMBERS(KrRxDynamicLinker, KrRxObject)

void KrRxDLinkerReactor::rxAppWillBeLoaded(const wchar_t*) {}
void KrRxDLinkerReactor::rxAppLoaded(const wchar_t*) {}
void KrRxDLinkerReactor::rxAppLoadAborted(const wchar_t*) {}
void KrRxDLinkerReactor::rxAppWillBeUnloaded(const wchar_t*) {}
void KrRxDLinkerReactor::rxAppUnloaded(const wchar_t*) {}
void KrRxDLinkerReactor::rxAppUnloadAborted(const wchar_t*) {}
void KrRxDLinkerReactor2::rxAppCouldBeLoaded(void*) {}
