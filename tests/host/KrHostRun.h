#pragma once
// Runs krhost.exe (beside the test) as a user would and keeps what it
// printed and its exit status. JSON documents are read with nlohmann-json;
// the tests index them without const, so a missing member reads as null
// and fails a comparison instead of the process.

#include <nlohmann/json.hpp>

#include <string>

using KrJson = nlohmann::json;

struct KrHostRun {
  int exitCode = -1;
  std::string out;  // standard output, UTF-8, line ends as printed
  std::string err;

  // The document printed, or a discarded value when it does not parse.
  KrJson json() const { return KrJson::parse(out, nullptr, false); }
};

// The first row of rows whose member key is the text value; null when there is none.
KrJson krRowWith(const KrJson& rows, const char* key, const std::string& value);

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
