// A module built against an older 20.x runtime (API version 20.3) that
// imports a function this runtime no longer exports.

#include "kr1st.h"

extern "C" __declspec(dllimport) int krrxFunctionSinceRemoved();

extern "C" __declspec(dllexport) unsigned int krrxGetApiVersion() { return 0x00140003; }

extern "C" __declspec(dllexport) KrRx::AppRetCode krrxEntryPoint(KrRx::AppMsgCode message, void*) {
  return message == KrRx::kAppMsgInit && krrxFunctionSinceRemoved() != 1 ? KrRx::AppRetCode(1) : KrRx::kRetOK;
}
