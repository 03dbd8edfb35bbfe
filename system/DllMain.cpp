// The library's entry routine: the runtime comes up when the library is
// loaded into a process and goes down when it is unloaded.

#include <windows.h>

#include "krrxsystem.h"

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
      break;
    default:
      break;
  }
  return TRUE;
}
