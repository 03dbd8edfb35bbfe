#pragma once
// Calls into module code under a structured-exception guard. While
// bCatchSendAppExceptions is true, a machine fault raised inside the call
// (an access violation, say) is caught and the call reports failure; while
// it is false, the fault goes on to the host. C++ exceptions always pass.

#include "krexport.h"
#include "krrxmodulemessages.h"

// Runs function(argument); false when a fault was caught.
KR1ST_API bool krrxGuardedCall(void (*function)(void*), void* argument);

// Runs function(argument) and catches a machine fault in it whatever
// bCatchSendAppExceptions says: for module code that runs while the module
// is only probed, where no module code is meant to run at all.
bool krrxFaultCatchingCall(void (*function)(void*), void* argument);

// Calls a module's entry point; a caught fault yields 3 (KrRx::kRetError).
KR1ST_API KrRx::AppRetCode krrxGuardedEntryPointCall(KrRxAppEntryPoint entryPoint, KrRx::AppMsgCode code, void* packet);
