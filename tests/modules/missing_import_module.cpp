// A module that imports unreachable_helper.dll, which is not found beside it
// nor anywhere else the loader looks.

#include "kr1st.h"

extern "C" __declspec(dllimport) int unreachableHelperValue();

extern "C" __declspec(dllexport) KrRx::AppRetCode krrxEntryPoint(KrRx::AppMsgCode message, void*) {
  return message == KrRx::kAppMsgInit && unreachableHelperValue() != 7 ? KrRx::AppRetCode(1) : KrRx::kRetOK;
}
