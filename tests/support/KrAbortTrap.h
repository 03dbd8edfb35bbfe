#pragma once
// Test support for the runtime's fatal reports and thrown errors. kr1st20.dll reports a broken
// invariant with MessageBoxW and then ends the process with TerminateProcess;
// these helpers redirect the library's own imports of both functions so
// that a test can read the report.

#include <functional>
#include <string>

// The text of the fatal report that body triggered, or "" when body
// returned normally. Body runs on a thread of its own; a report ends that
// thread instead of the process (the message box shows nothing). Objects on
// the ended thread's stack are not destroyed.
std::wstring krAbortMessageOf(const std::function<void()>& body);

// The text and caption of the message box that body showed (the box is
// answered with Ignore), or "" when none.
std::wstring krMessageBoxOf(const std::function<void()>& body, std::wstring* caption = nullptr);

// For death tests: from now on every message box of the library is echoed to
// stderr as UTF-8 and the process still ends as the library decides.
void krEchoMessageBoxesToStderr();

// The what() of the Error that body threw, or "(nothing thrown)"; any other
// exception passes on.
template <typename Error, typename Body>
std::string krThrownText(Body body) {
  try {
    body();
  } catch (const Error& error) {
    return error.what();
  }
  return "(nothing thrown)";
}

// Narrows a wide text to UTF-8 for test messages and matchers.
std::string krUtf8(const std::wstring& text);
