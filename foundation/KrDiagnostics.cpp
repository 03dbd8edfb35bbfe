// Diagnostics: the debugger trace, the fatal internal-error report and the
// assertion dialog.

#include "krdiagnostics.h"

#include <windows.h>

#include <cwchar>

#include "foundation/KrHostServices.h"
#include "foundation/KrModuleName.h"
#include "foundation/KrTextFormat.h"
#include "krhostservices.h"

namespace {

constexpr size_t kMessageCapacity = 2048;

KrModuleNameSource moduleNameSource = nullptr;

// The name under which a crash is reported: the running module's, else "Kestrune".
const wchar_t* crashApplicationName() {
  const wchar_t* name = krCurrentModuleName();
  return name && *name ? name : L"Kestrune";
}

DWORD abortExceptionCode(Kesu::ErrorStatus status) {
  return status == 0 ? 0x40000015u : 0xE0000000u | (static_cast<DWORD>(status) & 0xFFFFu);
}

}  // namespace

void krSetModuleNameSource(KrModuleNameSource source) { moduleNameSource = source; }

const wchar_t* krCurrentModuleName() { return moduleNameSource ? moduleNameSource() : nullptr; }

void krrx_warning(const wchar_t* format, ...) {
  if (!IsDebuggerPresent()) return;
  wchar_t message[kMessageCapacity];
  va_list args;
  va_start(args, format);
  int length = krFormatTruncated(message, kMessageCapacity, format, args);
  va_end(args);
  if (length >= 0) OutputDebugStringW(message);
}

void krrx_abort(const wchar_t* format, ...) {
  wchar_t message[kMessageCapacity];
  va_list args;
  va_start(args, format);
  krFormatTruncated(message, kMessageCapacity, format, args);
  va_end(args);
  MessageBoxW(GetLastActivePopup(GetActiveWindow()), message, L"Orvan CAD - INTERNAL ERROR",
              MB_ICONHAND | MB_TASKMODAL | MB_SETFOREGROUND | MB_OK);
  krrx_abort(static_cast<Kesu::ErrorStatus>(0));
}

void krrx_abort(Kesu::ErrorStatus status) {
  DWORD code = abortExceptionCode(status);
  if (IsDebuggerPresent()) RaiseException(code, EXCEPTION_NONCONTINUABLE, 0, nullptr);
  CONTEXT context;
  RtlCaptureContext(&context);
  EXCEPTION_RECORD record = {};
  record.ExceptionCode = code;
  record.ExceptionFlags = EXCEPTION_NONCONTINUABLE;
  record.ExceptionAddress = __builtin_return_address(0);
  EXCEPTION_POINTERS exception = {&record, &context};
  if (KrDbHostApplicationServices* host = krHostServices())
    host->reportCrash(&exception, crashApplicationName());
  TerminateProcess(GetCurrentProcess(), 3);
  for (;;) {
  }
}

void krrx_abort_file_line(const wchar_t* file, int line, const wchar_t* text) {
  krrx_abort(L"!%ls@%d: %ls", file, line, text);
}

void krrx_abort_file_line(const wchar_t* file, int line) { krrx_abort(L"!%ls@%d", file, line); }

void krutAssertMessage(const wchar_t* expression, const wchar_t* file, int line, const wchar_t* status) {
  const wchar_t* moduleName = krCurrentModuleName();
  if (!moduleName) moduleName = L"..";
  wchar_t failed[400], statusText[200], moduleText[260], fileText[260], lineText[32];
  krFormatTruncated(failed, 400, L"Failed: %ls.\r\n", expression);
  krFormatTruncated(statusText, 200, L"Status: %ls.\r\n", status);
  krFormatTruncated(moduleText, 260, L"Module: %ls.\r\n", moduleName);
  krFormatTruncated(fileText, 260, L"File: %ls. ", file);
  krFormatTruncated(lineText, 32, L"Line: %d\r\n", line);
  wchar_t text[400 + 200 + 260 + 260 + 32];
  swprintf(text, sizeof text / sizeof *text, L"%ls%ls%ls%ls%ls", failed, statusText, moduleText, fileText,
           lineText);
  switch (MessageBoxW(GetForegroundWindow(), text, L"ASSERT Error",
                      MB_ICONHAND | MB_TASKMODAL | MB_ABORTRETRYIGNORE)) {
    case IDABORT:
      if (KrDbHostApplicationServices* host = krHostServices()) {
        wchar_t fileLine[kMessageCapacity], lineOnly[32];
        krFormatTruncated(fileLine, kMessageCapacity, L"User aborted during ASSERT file %ls, ", file);
        krFormatTruncated(lineOnly, 32, L"line %d", line);
        wcsncat(fileLine, lineOnly, kMessageCapacity - wcslen(fileLine) - 1);
        host->fatalError(fileLine);
      }
      break;
    case IDRETRY:
      DebugBreak();
      break;
    default:
      break;
  }
}
