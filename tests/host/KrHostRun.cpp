#include "KrHostRun.h"

#include <windows.h>

#include <thread>

#include "KrTestFiles.h"

namespace {

constexpr DWORD kTimeout = 120000;
constexpr UINT kHung = 99;

void drain(HANDLE pipe, std::string& out) {
  char buffer[4096];
  DWORD read = 0;
  while (ReadFile(pipe, buffer, sizeof(buffer), &read, nullptr) && read) out.append(buffer, read);
}

}  // namespace

KrHostRun krRunHost(const std::wstring& arguments, const std::wstring& folder) {
  KrHostRun run;
  SECURITY_ATTRIBUTES inherit = {sizeof(SECURITY_ATTRIBUTES), nullptr, TRUE};
  HANDLE outRead, outWrite, errRead, errWrite;
  CreatePipe(&outRead, &outWrite, &inherit, 0);
  CreatePipe(&errRead, &errWrite, &inherit, 0);
  SetHandleInformation(outRead, HANDLE_FLAG_INHERIT, 0);
  SetHandleInformation(errRead, HANDLE_FLAG_INHERIT, 0);
  STARTUPINFOW startup = {};
  startup.cb = sizeof(startup);
  startup.dwFlags = STARTF_USESTDHANDLES;
  startup.hStdOutput = outWrite;
  startup.hStdError = errWrite;
  std::wstring program = krTestBinDirectory() + L"krhost.exe";
  std::wstring commandLine = L"\"" + program + L"\" " + arguments;
  PROCESS_INFORMATION process = {};
  bool started = CreateProcessW(program.c_str(), &commandLine[0], nullptr, nullptr, TRUE, 0, nullptr,
                                folder.empty() ? nullptr : folder.c_str(), &startup, &process);
  CloseHandle(outWrite);
  CloseHandle(errWrite);
  if (started) {
    std::thread output(drain, outRead, std::ref(run.out));
    std::thread errors(drain, errRead, std::ref(run.err));
    // A krhost that hangs fails the test instead of stopping the suite.
    if (WaitForSingleObject(process.hProcess, kTimeout) != WAIT_OBJECT_0) TerminateProcess(process.hProcess, kHung);
    output.join();
    errors.join();
    DWORD code = 0;
    GetExitCodeProcess(process.hProcess, &code);
    run.exitCode = int(code);
    CloseHandle(process.hThread);
    CloseHandle(process.hProcess);
  }
  CloseHandle(outRead);
  CloseHandle(errRead);
  return run;
}
