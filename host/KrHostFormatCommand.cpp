#include "host/KrHostFormatCommand.h"

#include <cstdlib>

#include "host/KrHostLoading.h"
#include "kr1st.h"

namespace {

constexpr int kFailure = 1;

// Why text could not be read into an instance of cls; empty when it was,
// with the instance's text form in written.
std::wstring readAndWrite(const KrRxClass* cls, const std::wstring& text, std::wstring& written) {
  std::wstring name = cls->name();
  KrRxObject* value = cls->create();
  if (!value) return name + L" cannot be created: it is abstract or has no constructor; name a concrete value class";
  std::wstring problem;
  wchar_t* out = nullptr;
  Kesu::ErrorStatus read = krrxParseObject(value, text.c_str(), nullptr);
  if (read == Kesu::eNotSupported)
    problem = name + L" has no text form (no formattable is attached to it or its ancestors)";
  else if (read != Kesu::eOk)
    problem = L"\"" + text + L"\" does not read as a " + name + L" (status " + std::to_wstring(read) + L")";
  else if (krrxFormatObject(value, out, nullptr) != Kesu::eOk)
    problem = name + L" read the text but could not write it back";
  else
    written = out;
  free(out);
  delete value;
  return problem;
}

int runFormat(const KrHostInvocation& invocation) {
  KrHostReport report;
  KrHostWithModules with(invocation, report);
  const std::wstring& name = invocation.operands()[0];
  const std::wstring& text = invocation.operands()[1];
  report.field("class", L"Class", name);
  report.field("input", L"Input", text);
  const KrRxClass* cls = krrxFindKrRxClass(name.c_str());
  std::wstring written;
  std::wstring problem = cls ? readAndWrite(cls, text, written)
                             : L"no class named " + name +
                                   L" (names are case-sensitive; a module's classes exist only while it is loaded: "
                                   L"--with <module>)";
  report.field("ok", L"Read", KrHostValue::truth(problem.empty()));
  if (problem.empty()) {
    report.field("text", L"Text", written);
    return invocation.print(report, with.allLoaded() ? 0 : kFailure);
  }
  report.field("problem", L"Problem", problem);
  return invocation.print(report, kFailure);
}

}  // namespace

void krhostAddFormatCommand(KrHostCommandTable& table) {
  table.push_back({L"format", L"<class> <text>", L"Reads a text into a new value of a class and writes it back.",
                   L"Makes a new instance of the value class, reads the text into it through the\n"
                   L"class's formattable and prints the instance's own text form, so that you see\n"
                   L"how a text is understood:\n"
                   L"  krhost format KrVtDate 2023/05/17      Text: 2023-05-17\n"
                   L"  krhost format KrVtRatio 0.75           Text: 3 : 4\n"
                   L"An unknown class, a class that cannot be created or has no text form, and a\n"
                   L"text that does not read fail with the reason. Load the module that defines a\n"
                   L"class with --with.",
                   {KrHostWithModules::kOption}, runFormat, 2});
}
