// A module built against a newer runtime: it imports from kr1st20.dll a
// function that this runtime does not export.

#include "kr1st.h"

extern "C" __declspec(dllimport) int krrxFunctionOfANewerRuntime();

extern "C" __declspec(dllexport) KrRx::AppRetCode krrxEntryPoint(KrRx::AppMsgCode message, void*) {
  return message == KrRx::kAppMsgInit && krrxFunctionOfANewerRuntime() != 1 ? KrRx::AppRetCode(1) : KrRx::kRetOK;
}
