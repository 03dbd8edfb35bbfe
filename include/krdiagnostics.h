#pragma once
/// @file
/// Reporting broken invariants: a debugger-only trace, the fatal
/// internal-error report (never returns) and the interactive assertion dialog.

#include "krerrorstatus.h"
#include "krexport.h"

/// Writes the formatted text to the debugger; does nothing without one.
KR1ST_API void krrx_warning(const wchar_t* format, ...);

/// Shows "Orvan CAD - INTERNAL ERROR" with the formatted text and ends the
/// process with exit code 3.
[[noreturn]] KR1ST_API void krrx_abort(const wchar_t* format, ...);

/// Ends the process: exception code 0x40000015 for status 0, otherwise
/// 0xE0000000 | (status & 0xFFFF). With a debugger attached the code is
/// raised; otherwise the host's crash report (if any) sees it, then exit 3.
[[noreturn]] KR1ST_API void krrx_abort(Kesu::ErrorStatus status);

/// Ends the process as krrx_abort does, naming the source file and line (and text) in the report.
///@{
[[noreturn]] KR1ST_API void krrx_abort_file_line(const wchar_t* file, int line, const wchar_t* text);
[[noreturn]] KR1ST_API void krrx_abort_file_line(const wchar_t* file, int line);
///@}

/// The "ASSERT Error" dialog: Abort reports a fatal error to the host,
/// Retry breaks into the debugger, Ignore returns.
KR1ST_API void krutAssertMessage(const wchar_t* expression, const wchar_t* file, int line,
                                 const wchar_t* status);
