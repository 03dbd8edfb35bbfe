// A module that does only what any statically linked C++ module with a
// thread-safe one-time static does: the baseline cost of loading and freeing
// such a module under this platform's loader and thread library.
#include <windows.h>

#include <string>

namespace __gnu_cxx {
void __freeres();
}  // namespace __gnu_cxx

namespace {

std::wstring* onceOnly() {
  static std::wstring* const text = new std::wstring(L"made once");
  return text;
}

}  // namespace

extern "C" BOOL WINAPI DllMain(HINSTANCE, DWORD reason, LPVOID) {
  if (reason == DLL_PROCESS_ATTACH) onceOnly();
  if (reason == DLL_PROCESS_DETACH) {
    delete onceOnly();
    __gnu_cxx::__freeres();
  }
  return TRUE;
}
