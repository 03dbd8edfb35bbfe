// A module that writes only its entry point: kestrune_add_module() adds
// krrxGetApiVersion from the SDK.

#include "kr1st.h"

extern "C" __declspec(dllexport) KrRx::AppRetCode krrxEntryPoint(KrRx::AppMsgCode message, void* packet) {
  if (message == KrRx::kAppMsgInit) krrxUnlockApplication(packet);
  return KrRx::kRetOK;
}
