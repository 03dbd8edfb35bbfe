#pragma once
// krhost's command table: each command family adds its commands to one
// table; krhostRun picks the command named on the command line, parses its
// options, answers --help and runs it. Every command exits with 0 on
// success and 1 on failure (usage errors included), and takes --json to
// print one JSON document on standard output instead of aligned text.
//
//   KrHostCommandTable table;
//   table.push_back({L"hello", L"", L"Says hello.", L"", {}, [](const KrHostInvocation&) { return 0; }});
//   return krhostRun(table, argc, argv);

#include <string>
#include <vector>

#include "host/KrHostOutput.h"

// An option of a command: a flag, or, with a value name, an option taking
// one value (given once or more).
struct KrHostOption {
  const wchar_t* name;       // "--with"
  const wchar_t* valueName;  // "<module>", or null for a flag
  const wchar_t* help;
};

// A parsed command line: the operands in order, the options given, and --json.
class KrHostInvocation {
 public:
  const std::vector<std::wstring>& operands() const { return mOperands; }
  bool json() const { return mJson; }
  bool has(const wchar_t* option) const;
  // Every value given to option, in command-line order.
  std::vector<std::wstring> values(const wchar_t* option) const;
  // The report printed as the invocation asks (text or JSON); returns exitCode.
  int print(const KrHostReport& report, int exitCode) const;

 private:
  friend class KrHostCommandParser;
  std::vector<std::wstring> mOperands;
  std::vector<std::pair<std::wstring, std::wstring>> mOptions;
  bool mJson = false;
};

struct KrHostCommand {
  const wchar_t* name;
  const wchar_t* operands;  // the operands' synopsis, such as "<module>..."
  const wchar_t* summary;   // one line for the command list
  const wchar_t* details;   // what --help adds below the synopsis
  std::vector<KrHostOption> options;
  int (*run)(const KrHostInvocation& invocation);
  int minOperands = 0;
  bool hidden = false;  // run by krhost itself, not listed
};

typedef std::vector<KrHostCommand> KrHostCommandTable;

// Runs the command named by argv[1] ("demo" when there is none); the exit status.
int krhostRun(const KrHostCommandTable& table, int argc, wchar_t** argv);
