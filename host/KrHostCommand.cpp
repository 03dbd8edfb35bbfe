#include "host/KrHostCommand.h"

#include <algorithm>
#include <cwchar>

namespace {

constexpr int kSuccess = 0;
constexpr int kFailure = 1;
constexpr wchar_t kDefaultCommand[] = L"demo";

std::wstring synopsis(const KrHostCommand& command) {
  std::wstring text = std::wstring(L"krhost ") + command.name;
  for (const KrHostOption& option : command.options)
    text += std::wstring(L" [") + option.name + (option.valueName ? std::wstring(L" ") + option.valueName : L"") + L"]";
  text += L" [--json]";
  if (*command.operands) text += std::wstring(L" ") + command.operands;
  return text;
}

std::wstring commandHelp(const KrHostCommand& command) {
  std::wstring text = L"Usage: " + synopsis(command) + L"\n\n" + command.summary + L"\n";
  if (*command.details) text += std::wstring(L"\n") + command.details + L"\n";
  text += L"\nOptions:\n";
  std::vector<KrHostOption> options = command.options;
  options.push_back({L"--json", nullptr, L"print one JSON document instead of aligned text"});
  options.push_back({L"--help", nullptr, L"print this help"});
  for (const KrHostOption& option : options) {
    std::wstring left = std::wstring(L"  ") + option.name + (option.valueName ? std::wstring(L" ") + option.valueName : L"");
    left.resize(std::max<size_t>(left.size() + 2, 24), L' ');
    text += left + option.help + L"\n";
  }
  return text;
}

std::wstring overallHelp(const KrHostCommandTable& table) {
  std::wstring text =
      L"Usage: krhost [<command>] [options] [operands]\n\n"
      L"A console host of the Kestrune runtime: shows what the runtime holds and\n"
      L"tells module authors whether and why their modules load.\n\nCommands:\n";
  for (const KrHostCommand& command : table) {
    if (command.hidden) continue;
    std::wstring name = std::wstring(L"  ") + command.name;
    name.resize(14, L' ');
    text += name + command.summary + L"\n";
  }
  return text + L"\nWithout a command krhost runs the demo. \"krhost <command> --help\" tells more;\n"
                L"\"krhost --version\" tells the release.\n"
                L"Exit status: 0 on success, 1 on failure.\n";
}

const KrHostCommand* findCommand(const KrHostCommandTable& table, const std::wstring& name) {
  for (const KrHostCommand& command : table)
    if (name == command.name) return &command;
  return nullptr;
}

const KrHostOption* findOption(const KrHostCommand& command, const std::wstring& name) {
  for (const KrHostOption& option : command.options)
    if (name == option.name) return &option;
  return nullptr;
}

int usageError(const KrHostCommand* command, const std::wstring& problem) {
  krhostWriteError(L"krhost: " + problem + L"\n" +
                   (command ? L"Usage: " + synopsis(*command) + L"\n" : std::wstring()) +
                   L"Run \"krhost" + (command ? std::wstring(L" ") + command->name : L"") + L" --help\" for help.\n");
  return kFailure;
}

}  // namespace

// Turns the words after the command name into an invocation, or explains what is wrong.
class KrHostCommandParser {
 public:
  static bool parse(const KrHostCommand& command, int argc, wchar_t** argv, KrHostInvocation& invocation,
                    bool& help, std::wstring& problem) {
    for (int i = 0; i < argc; ++i) {
      std::wstring word = argv[i];
      if (word == L"--help" || word == L"-h") {
        help = true;
      } else if (word == L"--json") {
        invocation.mJson = true;
      } else if (word.size() > 2 && word.compare(0, 2, L"--") == 0) {
        const KrHostOption* option = findOption(command, word);
        if (!option) return (problem = L"unknown option " + word, false);
        std::wstring value;
        if (option->valueName) {
          if (++i == argc) return (problem = word + L" needs a value " + option->valueName, false);
          value = argv[i];
        }
        invocation.mOptions.emplace_back(word, value);
      } else {
        invocation.mOperands.push_back(word);
      }
    }
    if (!help && int(invocation.mOperands.size()) < command.minOperands)
      return (problem = std::wstring(L"missing operand ") + command.operands, false);
    return true;
  }
};

bool KrHostInvocation::has(const wchar_t* option) const {
  for (const auto& given : mOptions)
    if (given.first == option) return true;
  return false;
}

std::vector<std::wstring> KrHostInvocation::values(const wchar_t* option) const {
  std::vector<std::wstring> values;
  for (const auto& given : mOptions)
    if (given.first == option) values.push_back(given.second);
  return values;
}

int KrHostInvocation::print(const KrHostReport& report, int exitCode) const {
  if (mJson)
    krhostWriteUtf8(report.json());
  else
    krhostWrite(report.text());
  return exitCode;
}

int krhostRun(const KrHostCommandTable& table, int argc, wchar_t** argv) {
  std::wstring name = argc > 1 ? argv[1] : kDefaultCommand;
  if (name == L"--help" || name == L"-h" || name == L"help") {
    krhostWrite(overallHelp(table));
    return kSuccess;
  }
  if (name == L"--version") {
    krhostWrite(L"krhost " KESTRUNE_VERSION L"\n");
    return kSuccess;
  }
  const KrHostCommand* command = findCommand(table, name);
  if (!command) return usageError(nullptr, L"unknown command \"" + name + L"\"");
  KrHostInvocation invocation;
  bool help = false;
  std::wstring problem;
  int rest = argc > 2 ? argc - 2 : 0;
  if (!KrHostCommandParser::parse(*command, rest, argv + 2, invocation, help, problem))
    return usageError(command, problem);
  if (help) {
    krhostWrite(commandHelp(*command));
    return kSuccess;
  }
  return command->run(invocation);
}
