// A module written the tempting way: its version function returns the
// runtime's KRRX_CUR_API_VERSION, imported data that is not there while the
// module is only probed, so the call faults.

#include "kr1st.h"

extern "C" __declspec(dllexport) unsigned int krrxGetApiVersion() { return KRRX_CUR_API_VERSION; }

extern "C" __declspec(dllexport) KrRx::AppRetCode krrxEntryPoint(KrRx::AppMsgCode, void*) { return KrRx::kRetOK; }
