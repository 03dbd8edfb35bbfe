// The library's entry routine: the runtime comes up when the library is
// loaded into a process and goes down when it is unloaded.

#include <windows.h>

#include "krrxsystem.h"

namespace __gnu_cxx {
// Frees the C++ runtime's emergency exception pool, which is linked into this
// library and would otherwise stay behind each time the library is unloaded.
void __freeres();
}  // namespace __gnu_cxx

extern "C" BOOL WINAPI DllMain(HINSTANCE instance, DWORD reason, LPVOID) {
  switch (reason) {
    case DLL_PROCESS_ATTACH:
      OutputDebugStringW(L"kr1st.dll Initializing!\r\n");
      DisableThreadLibraryCalls(instance);
      krrxInitSystem();
      break;
    case DLL_PROCESS_DETACH:
      OutputDebugStringW(L"kr1st.dll Terminating!\r\n");
      krrxKillSystem();
      __gnu_cxx::__freeres();
      break;
    default:
      break;
  }
  return TRUE;
}
