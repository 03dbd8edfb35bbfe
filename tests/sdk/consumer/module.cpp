// A module as small as the SDK allows: its entry point only. The SDK's
// kestrune_add_module() adds krrxGetApiVersion and signs the file.

#include "kr1st.h"

extern "C" __declspec(dllexport) KrRx::AppRetCode krrxEntryPoint(KrRx::AppMsgCode message, void* packet) {
  if (message == KrRx::kAppMsgInit) krrxUnlockApplication(packet);
  return KrRx::kRetOK;
}
