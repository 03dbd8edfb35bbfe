#pragma once
// Printing into fixed wide buffers, as the diagnostics and message paths do.

#include <cstdarg>
#include <cstddef>

// Zero-fills buffer, prints into it at most capacity - 1 characters and
// always leaves it terminated. Returns the length the full text would have,
// or a negative value when the format could not be printed.
int krFormatTruncated(wchar_t* buffer, size_t capacity, const wchar_t* format, va_list args);
int krFormatTruncated(wchar_t* buffer, size_t capacity, const wchar_t* format, ...);
