// The demo prints what the runtime holds (system registry, services) and how
// values are written as text, then loads the sample modules named in a
// start-up list file that it writes into the current directory (run it from
// the samples' folder), shows them in the loaded-module table, prints the
// class tree once with each module's classes marked by its name, and what
// loading added to and removed from the registry, services and classes. Then
// it shows what the shapes module adds (an overrule, a protocol reactor, two
// properties), sends the greeter a message, unloads them and tells what a
// linker reactor saw meanwhile.

#include "host/KrHostDemo.h"

#include <windows.h>

#include <cmath>
#include <cstdlib>
#include <limits>
#include <set>
#include <string>
#include <vector>

#include "host/KrHostLoading.h"
#include "host/KrHostRuntimeCommands.h"
#include "kr1st.h"

namespace {

using Names = std::set<std::wstring>;

Names keysOf(const KrRxDictionary* dictionary) {
  Names keys;
  KrRxDictionaryIterator* it = dictionary->newIterator(KrRx::kDictById);
  for (; !it->done(); it->next()) keys.insert(it->key());
  delete it;
  return keys;
}

Names classNames() { return keysOf(krrxSysClasses()); }
Names serviceNames() { return keysOf(static_cast<KrRxDictionary*>(krrxSysRegistry()->at(L"ServiceDictionary"))); }
Names registryKeys() { return keysOf(krrxSysRegistry()); }

// Keeps every load and unload notification of the linker, to show at the end,
// and the classes each loaded module added.
class LoggingReactor : public KrRxDLinkerReactor {
 public:
  LoggingReactor() : mKnownClasses(classNames()) {}

  void rxAppWillBeLoaded(const wchar_t* name) override { log(L"will be loaded", name); }
  void rxAppLoaded(const wchar_t* name) override {
    log(L"loaded", name);
    Names now = classNames();
    for (const std::wstring& cls : now)
      if (!mKnownClasses.count(cls)) mClassModules[cls] = name;
    mKnownClasses = std::move(now);
  }
  void rxAppLoadAborted(const wchar_t* name) override { log(L"load aborted", name); }
  void rxAppWillBeUnloaded(const wchar_t* name) override { log(L"will be unloaded", name); }
  void rxAppUnloaded(const wchar_t* name) override { log(L"unloaded", name); }
  void rxAppUnloadAborted(const wchar_t* name) override { log(L"unload aborted", name); }

  const std::vector<std::wstring>& events() const { return mEvents; }
  const KrHostClassModules& classModules() const { return mClassModules; }

 private:
  void log(const wchar_t* event, const wchar_t* name) { mEvents.push_back(std::wstring(event) + L": " + name); }

  std::vector<std::wstring> mEvents;
  Names mKnownClasses;
  KrHostClassModules mClassModules;
};

// The names of the registry, the services and the classes at one moment.
struct Holdings {
  Names registry = registryKeys();
  Names services = serviceNames();
  Names classes = classNames();
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

void addChangeRows(KrHostTable& table, const wchar_t* what, const Names& before, const Names& after) {
  std::vector<std::wstring> added, removed;
  for (const std::wstring& name : after)
    if (!before.count(name)) added.push_back(name);
  for (const std::wstring& name : before)
    if (!after.count(name)) removed.push_back(name);
  table.row({what, KrHostValue::list(added), KrHostValue::list(removed)});
}

void printChanges(const Holdings& before) {
  Holdings after;
  KrHostReport report;
  KrHostTable& table = report.table("changes", L"What loading added and removed",
                                    {{"what", L""}, {"added", L"ADDED"}, {"removed", L"REMOVED"}});
  addChangeRows(table, L"registry", before.registry, after.registry);
  addChangeRows(table, L"services", before.services, after.services);
  addChangeRows(table, L"classes", before.classes, after.classes);
  print(L"\n" + report.text());
}

void printClassTree(const KrHostClassModules& classModules) {
  KrHostReport report;
  krhostReportClassTree(report, &classModules);
  print(L"\n" + report.text());
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

// ---- Values: each written by its class's formattable ----

void addValueRow(KrHostTable& table, const KrRxObject& value, const std::wstring& holding) {
  wchar_t* text = nullptr;
  Kesu::ErrorStatus status = krrxFormatObject(&value, text, nullptr);
  table.row({value.isA()->name(), holding,
             status == Kesu::eOk ? KrHostValue(text) : KrHostValue(L"(status " + std::to_wstring(status) + L")")});
  free(text);
}

void printValues() {
  printTitle(L"Values and their text forms (krrxFormatObject)");
  KrHostReport report;
  KrHostTable& table = report.table("values", L"Values", {{"class", L"CLASS"}, {"holding", L"HOLDING"}, {"text", L"TEXT"}});
  addValueRow(table, KrVtFloat64(1234.5), L"1234.5");
  addValueRow(table, KrVtFloat64(12345678901.0), L"12345678901.0");
  addValueRow(table, KrVtFloat64(std::nan("")), L"NaN, the unset value");
  addValueRow(table, KrVtFloat64(HUGE_VAL), L"+infinity");
  addValueRow(table, KrVtInt8(-128), L"-128, the smallest");
  addValueRow(table, KrVtUInt64(std::numeric_limits<unsigned __int64>::max()), L"the largest");
  addValueRow(table, KrVtBool(true), L"true");
  addValueRow(table, KrRxTextString(L"Kestrune", -1), L"a text");
  KrVtBool answer(true);
  Kesu::ErrorStatus read = krrxParseObject(&answer, L"no", nullptr);
  addValueRow(table, answer, L"read from \"no\" (status " + std::to_wstring(read) + L")");
  KrVtDate day;
  day.setDate(2023, 5, 17);
  addValueRow(table, day, L"setDate(2023, 5, 17), model time");
  KrVtTime time(-0.0);
  time.setTime(8, 30, 5, 250);
  addValueRow(table, time, L"setTime(8, 30, 5, 250), universal time");
  addValueRow(table, KrVtRatio(0.75), L"0.75");
  addValueRow(table, KrVtPercentage(0.125), L"0.125");
  addValueRow(table, KrVtCurrency(1234.5), L"1234.5");
  print(L"\n" + report.text());
}

// ---- What the shapes module adds ----

const wchar_t* const kShapeClasses[] = {L"KrSampleCircle", L"KrSampleSquare"};

void printOverruling() {
  print(std::wstring(L"\nOverruling: ") + (KrRxOverrule::isOverruling() ? L"on" : L"off") + L"\n");
}

// Which describer answers queryX on a new circle and a new square, and the
// overrule that decided where one did.
void printDescribers() {
  KrHostReport report;
  KrHostTable& table = report.table("describers", L"queryX(KrSampleDescriber) on new shapes",
                                    {{"shape", L"SHAPE"}, {"answer", L"ANSWERED BY"}, {"overrule", L"DECIDED BY OVERRULE"}});
  KrRxClass* describer = krrxFindKrRxClass(L"KrSampleDescriber");
  for (const wchar_t* name : kShapeClasses) {
    KrRxObject* shape = krrxFindKrRxClass(name)->create();
    KrRxObject* answer = shape->queryX(describer);
    KrRxOverrule* overrule = KrRxOverruleInternals::queryOverrule(shape, KrRxQueryXOverrule::desc());
    table.row({name, answer ? KrHostValue(answer->isA()->name()) : KrHostValue(),
               overrule ? KrHostValue(overrule->isA()->name()) : KrHostValue()});
    delete shape;
  }
  print(L"\n" + report.text());
}

// The reactor lists of the shape class's manager: each reactor class and how many reactors it holds.
void printShapeReactors() {
  KrHostReport report;
  KrHostTable& table = report.table("reactors", L"Protocol reactors on KrSampleShape",
                                    {{"reactorClass", L"REACTOR CLASS"}, {"count", L"REACTORS"}});
  auto* services = static_cast<KrRxDictionary*>(krrxSysRegistry()->at(L"ServiceDictionary"));
  auto* factory = KrRxProtocolReactorManagerFactory::cast(services->at(L"ProtocolReactorManager"));
  KrRxProtocolReactorListIterator* lists =
      factory->createReactorManager(krrxFindKrRxClass(L"KrSampleShape"))->newIterator();
  for (; !lists->done(); lists->next()) {
    auto* list = static_cast<KrRxProtocolReactorList*>(lists->object());
    KrRxProtocolReactorIterator* reactors = list->newIterator();
    long long count = 0;
    for (; !reactors->done(); reactors->next()) ++count;
    delete reactors;
    table.row({list->reactorClass()->name(), KrHostValue::number(count)});
  }
  delete lists;
  print(L"\n" + report.text());
}

// The shape class's properties read on a new square, one by one and through a template.
void printShapeProperties() {
  KrRxObject* square = krrxFindKrRxClass(L"KrSampleSquare")->create();
  KrHostReport report;
  krhostReportSymbols(report, krrxFindKrRxClass(L"KrSampleShape"), square);
  print(L"\n" + report.text());
  wchar_t* text = nullptr;
  krrfFormatString(L"Width: %<width>%, height: %<height>%", square, text);
  print(std::wstring(L"krrfFormatString(L\"Width: %<width>%, height: %<height>%\", square): \"") +
        (text ? text : L"") + L"\"\n");
  free(text);
  delete square;
}

void printShapesModule() {
  printTitle(L"What shapes.krx added: an overrule, a protocol reactor and properties");
  printOverruling();
  printDescribers();
  printShapeReactors();
  printShapeProperties();
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
  printValues();

  Holdings before;
  LoggingReactor reactor;
  krhostLinker()->addReactor(&reactor);
  bool listed = loadSampleModules();
  printLoadedModules();
  printClassTree(reactor.classModules());
  printChanges(before);
  printShapesModule();
  printGreeting();
  unloadSampleModules();
  printLoadedModules();
  printOverruling();
  krhostLinker()->removeReactor(&reactor);
  printReactorLog(reactor);
  return listed ? 0 : 1;
}

}  // namespace

void krhostAddDemoCommand(KrHostCommandTable& table) {
  table.push_back({L"demo", L"", L"A tour of the runtime with the sample modules (what plain krhost runs).",
                   L"Prints the system registry, the services and values in their text forms,\n"
                   L"loads the two sample modules through a start-up list file (krrx.rx,\n"
                   L"written into the current directory: run it in the samples' folder),\n"
                   L"prints the class tree once with each module's classes marked by its name\n"
                   L"and what loading added and removed, shows the overrule, protocol reactor\n"
                   L"and properties the shapes module adds, sends one a message, unloads both\n"
                   L"and prints what a linker reactor saw. Its output is narrative text only:\n"
                   L"--json is refused\n"
                   L"(the other commands give the same facts as JSON).",
                   {}, runDemo});
}
