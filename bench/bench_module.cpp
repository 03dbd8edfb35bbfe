// The smallest well-formed module: the benchmark loads it, and 500 copies
// of it, to measure the linker's own cost.
#include "kr1st.h"

extern "C" __declspec(dllexport) unsigned int krrxGetApiVersion() { return 0x00140005; }

extern "C" __declspec(dllexport) KrRx::AppRetCode krrxEntryPoint(KrRx::AppMsgCode, void*) { return KrRx::kRetOK; }
