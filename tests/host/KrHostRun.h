#pragma once
// Runs krhost.exe (beside the test) as a user would and keeps what it
// printed and its exit status.

#include <string>

#include "KrJsonReader.h"

struct KrHostRun {
  int exitCode = -1;
  std::string out;  // standard output, UTF-8, line ends as printed
  std::string err;

  KrJson json() const { return KrJson::parse(out); }
};

// Runs "krhost <arguments>" in folder (the test's folder when empty); a
// krhost still running after two minutes is ended with exit code 99.
KrHostRun krRunHost(const std::wstring& arguments, const std::wstring& folder = L"");

// A command run in both forms, "krhost <command> <arguments>" and
// "krhost <command> --json <arguments>": the text form's output, the JSON
// form read back, and the exit status, which must be the same for both.
struct KrHostForms {
  int exitCode = -1;
  std::string text;
  KrJson doc;
};
KrHostForms krRunHostForms(const std::wstring& command, const std::wstring& arguments,
                           const std::wstring& folder = L"");
