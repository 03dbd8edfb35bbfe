#include "KrProcessRun.h"

#include <windows.h>

#include "modules/KrRxFileBytes.h"

namespace {

constexpr DWORD kTimeout = 120000;
constexpr UINT kHung = 99;

// A new temporary file that child processes inherit and that goes away with its last handle.
HANDLE newCaptureFile() {
  wchar_t folder[MAX_PATH], name[MAX_PATH];
  if (!GetTempPathW(MAX_PATH, folder) || !GetTempFileNameW(folder, L"krp", 0, name)) return INVALID_HANDLE_VALUE;
  SECURITY_ATTRIBUTES inherit = {sizeof inherit, nullptr, TRUE};
  return CreateFileW(name, GENERIC_READ | GENERIC_WRITE, FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE,
                     &inherit, CREATE_ALWAYS, FILE_ATTRIBUTE_TEMPORARY | FILE_FLAG_DELETE_ON_CLOSE, nullptr);
}

// Everything written to file so far; closes it.
std::string takeCapture(HANDLE file) {
  std::string text;
  if (file == INVALID_HANDLE_VALUE) return text;
  SetFilePointer(file, 0, nullptr, FILE_BEGIN);
  krrxReadFileBytes(file, text);
  CloseHandle(file);
  return text;
}

}  // namespace

KrProcessRun krRunProcess(const std::wstring& commandLine, const std::wstring& folder, bool mergeErrors) {
  KrProcessRun run;
  HANDLE out = newCaptureFile();
  HANDLE err = mergeErrors ? out : newCaptureFile();
  STARTUPINFOW startup = {};
  startup.cb = sizeof startup;
  startup.dwFlags = STARTF_USESTDHANDLES;
  startup.hStdInput = GetStdHandle(STD_INPUT_HANDLE);
  startup.hStdOutput = out;
  startup.hStdError = err;
  PROCESS_INFORMATION process = {};
  std::wstring mutableCommandLine = commandLine;
  if (CreateProcessW(nullptr, &mutableCommandLine[0], nullptr, nullptr, TRUE, 0, nullptr,
                     folder.empty() ? nullptr : folder.c_str(), &startup, &process)) {
    if (WaitForSingleObject(process.hProcess, kTimeout) != WAIT_OBJECT_0) {
      TerminateProcess(process.hProcess, kHung);
      WaitForSingleObject(process.hProcess, INFINITE);
    }
    DWORD code = 0;
    GetExitCodeProcess(process.hProcess, &code);
    run.exitCode = int(code);
    CloseHandle(process.hThread);
    CloseHandle(process.hProcess);
  }
  run.out = takeCapture(out);
  if (!mergeErrors) run.err = takeCapture(err);
  return run;
}
