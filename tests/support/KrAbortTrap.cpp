#include "KrAbortTrap.h"

#include <windows.h>

#include <cstdio>
#include <cstring>

namespace {

// Replaces the address that module imports for functionName from dllName;
// returns the previous address.
void* patchImport(HMODULE module, const char* dllName, const char* functionName, void* replacement) {
  auto* base = reinterpret_cast<BYTE*>(module);
  auto* dos = reinterpret_cast<IMAGE_DOS_HEADER*>(base);
  auto* nt = reinterpret_cast<IMAGE_NT_HEADERS*>(base + dos->e_lfanew);
  const IMAGE_DATA_DIRECTORY& dir = nt->OptionalHeader.DataDirectory[IMAGE_DIRECTORY_ENTRY_IMPORT];
  for (auto* desc = reinterpret_cast<IMAGE_IMPORT_DESCRIPTOR*>(base + dir.VirtualAddress); desc->Name; ++desc) {
    if (_stricmp(reinterpret_cast<char*>(base + desc->Name), dllName) != 0) continue;
    auto* names = reinterpret_cast<IMAGE_THUNK_DATA*>(base + desc->OriginalFirstThunk);
    auto* slots = reinterpret_cast<IMAGE_THUNK_DATA*>(base + desc->FirstThunk);
    for (; names->u1.AddressOfData; ++names, ++slots) {
      if (IMAGE_SNAP_BY_ORDINAL(names->u1.Ordinal)) continue;
      auto* byName = reinterpret_cast<IMAGE_IMPORT_BY_NAME*>(base + names->u1.AddressOfData);
      if (strcmp(reinterpret_cast<char*>(byName->Name), functionName) != 0) continue;
      DWORD protection;
      VirtualProtect(&slots->u1.Function, sizeof(void*), PAGE_READWRITE, &protection);
      void* previous = reinterpret_cast<void*>(slots->u1.Function);
      slots->u1.Function = reinterpret_cast<ULONG_PTR>(replacement);
      VirtualProtect(&slots->u1.Function, sizeof(void*), protection, &protection);
      return previous;
    }
  }
  return nullptr;
}

HMODULE runtimeModule() { return GetModuleHandleW(L"kr1st20.dll"); }

// The exit code of a worker thread that the library tried to end the process from.
constexpr DWORD kTrappedAbort = 0xAB0127;

std::wstring sText, sCaption;
bool sEcho = false;

int WINAPI recordMessageBox(HWND, LPCWSTR text, LPCWSTR caption, UINT) {
  sText = text ? text : L"";
  sCaption = caption ? caption : L"";
  if (sEcho) {
    std::fprintf(stderr, "[message box] %s | %s\n", krUtf8(sCaption).c_str(), krUtf8(sText).c_str());
    std::fflush(stderr);
  }
  return IDIGNORE;
}

BOOL WINAPI trapTermination(HANDLE, UINT) { ExitThread(kTrappedAbort); }

DWORD WINAPI runBody(void* body) {
  (*static_cast<const std::function<void()>*>(body))();
  return 0;
}

// Installs replacements for the library's imports and puts the originals back.
class ImportPatch {
 public:
  ImportPatch(const char* dll, const char* function, void* replacement)
      : mDll(dll), mFunction(function), mOriginal(patchImport(runtimeModule(), dll, function, replacement)) {}
  ~ImportPatch() { patchImport(runtimeModule(), mDll, mFunction, mOriginal); }

 private:
  const char* mDll;
  const char* mFunction;
  void* mOriginal;
};

}  // namespace

std::wstring krAbortMessageOf(const std::function<void()>& body) {
  sText.clear();
  ImportPatch box("USER32.dll", "MessageBoxW", reinterpret_cast<void*>(recordMessageBox));
  ImportPatch end("KERNEL32.dll", "TerminateProcess", reinterpret_cast<void*>(trapTermination));
  // The body runs on a thread of its own, which the trapped termination ends.
  HANDLE worker = CreateThread(nullptr, 0, runBody, const_cast<std::function<void()>*>(&body), 0, nullptr);
  WaitForSingleObject(worker, INFINITE);
  DWORD exitCode = 0;
  GetExitCodeThread(worker, &exitCode);
  CloseHandle(worker);
  if (exitCode != kTrappedAbort) return L"";
  return sText.empty() ? L"(terminated without a message)" : sText;
}

std::wstring krMessageBoxOf(const std::function<void()>& body, std::wstring* caption) {
  sText.clear();
  sCaption.clear();
  {
    ImportPatch box("USER32.dll", "MessageBoxW", reinterpret_cast<void*>(recordMessageBox));
    body();
  }
  if (caption) *caption = sCaption;
  return sText;
}

void krEchoMessageBoxesToStderr() {
  sEcho = true;
  patchImport(runtimeModule(), "USER32.dll", "MessageBoxW", reinterpret_cast<void*>(recordMessageBox));
}

std::string krUtf8(const std::wstring& text) {
  int size = WideCharToMultiByte(CP_UTF8, 0, text.c_str(), static_cast<int>(text.size()), nullptr, 0, nullptr, nullptr);
  std::string out(size, '\0');
  WideCharToMultiByte(CP_UTF8, 0, text.c_str(), static_cast<int>(text.size()), out.data(), size, nullptr, nullptr);
  return out;
}
