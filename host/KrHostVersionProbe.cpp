#include "host/KrHostVersionProbe.h"

#include <windows.h>

#include <cstdlib>

#include "host/KrHostPlatform.h"
#include "kr1st.h"

namespace {

constexpr wchar_t kCommand[] = L"__version";
constexpr DWORD kTimeout = 10000;
// Exit codes of the child besides 0 and a fault's exception code.
constexpr DWORD kNotMapped = 2;
constexpr DWORD kNoExport = 3;

LONG WINAPI exitWithFaultCode(EXCEPTION_POINTERS* fault) {
  TerminateProcess(GetCurrentProcess(), fault->ExceptionRecord->ExceptionCode);
  return EXCEPTION_EXECUTE_HANDLER;
}

// The child's side: maps the module as the linker's probe does, calls its
// krrxGetApiVersion and prints the version; a fault ends the process with
// the fault's code.
int runVersionProbe(const KrHostInvocation& invocation) {
  SetErrorMode(SEM_FAILCRITICALERRORS | SEM_NOGPFAULTERRORBOX);
  SetUnhandledExceptionFilter(exitWithFaultCode);
  HMODULE probe = LoadLibraryExW(invocation.operands().front().c_str(), nullptr, DONT_RESOLVE_DLL_REFERENCES);
  if (!probe) {
    krhostWrite(std::to_wstring(GetLastError()) + L"\n");
    return kNotMapped;
  }
  auto getApiVersion = reinterpret_cast<KrRxGetApiVersionFunction>(
      reinterpret_cast<void*>(GetProcAddress(probe, KRRX_GET_API_VERSION)));
  if (!getApiVersion) return kNoExport;
  krhostWrite(std::to_wstring(getApiVersion()) + L"\n");
  return 0;
}

std::wstring faultName(DWORD code) {
  switch (code) {
    case EXCEPTION_ACCESS_VIOLATION:
      return L"an access violation";
    case EXCEPTION_ILLEGAL_INSTRUCTION:
      return L"an illegal instruction";
    case EXCEPTION_STACK_OVERFLOW:
      return L"a stack overflow";
    case EXCEPTION_INT_DIVIDE_BY_ZERO:
      return L"a division by zero";
    default:
      return L"exception " + krhostHex(code);
  }
}

}  // namespace

KrHostVersionProbe krhostProbeVersion(const std::wstring& path) {
  KrHostVersionProbe probe;
  SECURITY_ATTRIBUTES inherit = {sizeof(SECURITY_ATTRIBUTES), nullptr, TRUE};
  HANDLE readEnd, writeEnd;
  if (!CreatePipe(&readEnd, &writeEnd, &inherit, 0)) return (probe.failure = krhostSystemText(GetLastError()), probe);
  SetHandleInformation(readEnd, HANDLE_FLAG_INHERIT, 0);
  STARTUPINFOW startup = {};
  startup.cb = sizeof(startup);
  startup.dwFlags = STARTF_USESTDHANDLES;
  startup.hStdOutput = writeEnd;
  startup.hStdError = GetStdHandle(STD_ERROR_HANDLE);
  startup.hStdInput = GetStdHandle(STD_INPUT_HANDLE);
  std::wstring self = krhostProgramPath();
  std::wstring commandLine = L"\"" + self + L"\" " + kCommand + L" \"" + path + L"\"";
  PROCESS_INFORMATION process = {};
  bool started = CreateProcessW(self.c_str(), &commandLine[0], nullptr, nullptr, TRUE, 0, nullptr, nullptr, &startup,
                                &process);
  CloseHandle(writeEnd);
  if (!started) {
    CloseHandle(readEnd);
    return (probe.failure = L"could not start the probe: " + krhostSystemText(GetLastError()), probe);
  }
  // The answer is one short line, well within the pipe's buffer: wait first, then read.
  bool finished = WaitForSingleObject(process.hProcess, kTimeout) == WAIT_OBJECT_0;
  if (!finished) TerminateProcess(process.hProcess, 1);
  std::string answer;
  char buffer[256];
  DWORD read = 0;
  while (ReadFile(readEnd, buffer, sizeof(buffer), &read, nullptr) && read) answer.append(buffer, read);
  CloseHandle(readEnd);
  DWORD exitCode = 0;
  if (!finished) {
    probe.failure = L"krrxGetApiVersion did not return within 10 s";
  } else if (GetExitCodeProcess(process.hProcess, &exitCode) && exitCode == 0) {
    probe.returned = true;
    probe.version = unsigned(std::strtoul(answer.c_str(), nullptr, 10));
  } else if (exitCode == kNotMapped) {
    probe.failure = L"the system does not map it: " + krhostSystemText(DWORD(std::strtoul(answer.c_str(), nullptr, 10)));
  } else if (exitCode == kNoExport) {
    probe.failure = L"krrxGetApiVersion is not exported";
  } else {
    probe.failure = L"krrxGetApiVersion faulted when called (" + faultName(exitCode) + L")";
  }
  CloseHandle(process.hThread);
  CloseHandle(process.hProcess);
  return probe;
}

void krhostAddVersionProbeCommand(KrHostCommandTable& table) {
  KrHostCommand probe = {kCommand, L"<path>", L"Calls a module's krrxGetApiVersion (for check).", L"",
                         {}, runVersionProbe, 1};
  probe.hidden = true;
  table.push_back(probe);
}
