// The demo prints what the runtime holds (system registry, services, class
// tree with protocol extensions), then loads the sample modules named in a
// start-up list file that it writes into the current directory (run it from
// the samples' folder), shows them in the loaded-module table and the class
// tree, sends one of them a message, unloads them and tells what a linker
// reactor saw meanwhile.

#include "host/KrHostDemo.h"

#include <windows.h>

#include <string>
#include <vector>

#include "host/KrHostLoading.h"
#include "host/KrHostRuntimeCommands.h"
#include "kr1st.h"

namespace {

// Keeps every load and unload notification of the linker, to show at the end.
class LoggingReactor : public KrRxDLinkerReactor {
 public:
  void rxAppWillBeLoaded(const wchar_t* name) override { log(L"will be loaded", name); }
  void rxAppLoaded(const wchar_t* name) override { log(L"loaded", name); }
  void rxAppLoadAborted(const wchar_t* name) override { log(L"load aborted", name); }
  void rxAppWillBeUnloaded(const wchar_t* name) override { log(L"will be unloaded", name); }
  void rxAppUnloaded(const wchar_t* name) override { log(L"unloaded", name); }
  void rxAppUnloadAborted(const wchar_t* name) override { log(L"unload aborted", name); }

  const std::vector<std::wstring>& events() const { return mEvents; }

 private:
  void log(const wchar_t* event, const wchar_t* name) { mEvents.push_back(std::wstring(event) + L": " + name); }

  std::vector<std::wstring> mEvents;
};

const wchar_t* const kSampleModules[] = {L"shapes.krx", L"greeter.kra"};
// The host-defined message that greeter.kra answers, and its reply buffer's size.
const KrRx::AppMsgCode kGreet = static_cast<KrRx::AppMsgCode>(100);
const size_t kGreetingCapacity = 128;

void print(const std::wstring& text) { krhostWrite(text); }

void printTitle(const wchar_t* title) { print(std::wstring(L"\n---- ") + title + L" ----\n"); }

void printReport(void (*build)(KrHostReport&)) {
  KrHostReport report;
  build(report);
  print(L"\n" + report.text());
}

// The start-up list file the runtime reads by default: "krrx.rx", UTF-16LE, one module per CR LF line.
bool writeStartUpList() {
  std::wstring text;
  for (const wchar_t* module : kSampleModules) text += std::wstring(module) + L"\r\n";
  HANDLE file = CreateFileW(L"krrx.rx", GENERIC_WRITE, 0, nullptr, CREATE_ALWAYS, 0, nullptr);
  if (file == INVALID_HANDLE_VALUE) return false;
  DWORD written = 0;
  bool ok = WriteFile(file, text.data(), DWORD(text.size() * sizeof(wchar_t)), &written, nullptr);
  CloseHandle(file);
  return ok;
}

// The names of the services that module registered.
std::vector<std::wstring> servicesOf(const KrRxGenHand* module) {
  std::vector<std::wstring> names;
  auto* services = static_cast<KrRxDictionary*>(krrxSysRegistry()->at(L"ServiceDictionary"));
  KrRxDictionaryIterator* it = services->newIterator(KrRx::kDictById);
  for (; !it->done(); it->next())
    if (static_cast<KrRxService*>(it->object())->getSysInfo() == module) names.push_back(it->key());
  delete it;
  return names;
}

void printLoadedModules() {
  KrHostReport report;
  KrHostTable& table = report.table("modules", L"Loaded modules",
                                    {{"module", L"MODULE"}, {"locked", L"LOCKED"}, {"mdiAware", L"MDI-AWARE"},
                                     {"command", L"BY COMMAND"}, {"apiRefs", L"API REFS"}, {"services", L"SERVICES"}});
  KrRxDictionaryIterator* it = krhostLinker()->loadedModulesIterator();
  for (; !it->done(); it->next()) {
    auto* module = static_cast<KrRxGenHand*>(it->object());
    table.row({it->key(), KrHostValue::truth(module->appStatusFlags() & KrRxGenHand::kLocked),
               KrHostValue::truth(module->appStatusFlags() & KrRxGenHand::kMDIAware),
               KrHostValue::truth(module->uiValue()), KrHostValue::number(module->apiValue()),
               KrHostValue::list(servicesOf(module))});
  }
  delete it;
  print(L"\n" + report.text());
}

bool loadSampleModules() {
  printTitle(L"Loading the sample modules listed in krrx.rx");
  bool listed = writeStartUpList() && krrxProcessInitFile();
  print(std::wstring(L"krrxProcessInitFile: ") + (listed ? L"every module loaded\n" : L"some module did not load\n"));
  for (const std::wstring& line : krhostTakeMessageLines()) print(L"  " + line + L"\n");
  return listed;
}

void printGreeting() {
  wchar_t reply[kGreetingCapacity] = {};
  bool answered = krrxSendAppMessage(L"greeter", kGreet, reply);
  print(L"\nMessage " + std::to_wstring(kGreet) + L" to greeter.kra: " + (answered ? L"answered" : L"failed") +
        L", reply \"" + reply + L"\"\n");
  auto* motto = KrRxTextString::cast(krrxGetAppData(L"Motto", L"greeter.kra"));
  print(std::wstring(L"Its application data \"Motto\": \"") + (motto ? motto->getAsciiPtr() : L"(none)") + L"\"\n");
}

void unloadSampleModules() {
  printTitle(L"Unloading them");
  for (const wchar_t* module : kSampleModules) {
    std::vector<std::wstring> messages;
    bool unloaded = krhostUnloadModule(module, messages);
    print(std::wstring(L"  ") + module + L": " + (unloaded ? L"unloaded" : L"still loaded") + L"\n");
  }
  DeleteFileW(L"krrx.rx");
}

void printReactorLog(const LoggingReactor& reactor) {
  print(L"\nWhat the linker reactor saw\n");
  for (const std::wstring& event : reactor.events()) print(L"  " + event + L"\n");
}

int runDemo(const KrHostInvocation& invocation) {
  if (invocation.json()) {
    krhostWriteError(L"krhost: the demo has no JSON form; tree, services, registry and load give its facts as JSON\n");
    return 1;
  }
  print(L"Kestrune runtime host\n");
  printReport(krhostReportRegistry);
  printReport(krhostReportServices);
  printReport(krhostReportClassTree);

  LoggingReactor reactor;
  krhostLinker()->addReactor(&reactor);
  bool listed = loadSampleModules();
  printLoadedModules();
  printReport(krhostReportServices);
  printReport(krhostReportClassTree);
  printGreeting();
  unloadSampleModules();
  printLoadedModules();
  krhostLinker()->removeReactor(&reactor);
  printReactorLog(reactor);
  return listed ? 0 : 1;
}

}  // namespace

void krhostAddDemoCommand(KrHostCommandTable& table) {
  table.push_back({L"demo", L"", L"A tour of the runtime with the sample modules (what plain krhost runs).",
                   L"Prints the system registry, the services and the class tree, loads the two\n"
                   L"sample modules through a start-up list file (krrx.rx, written into the\n"
                   L"current directory: run it in the samples' folder), shows them, sends one a\n"
                   L"message, unloads both and prints what a linker reactor saw. Its output is\n"
                   L"narrative text only: --json is refused (the other commands give the same\n"
                   L"facts as JSON).",
                   {}, runDemo});
}
