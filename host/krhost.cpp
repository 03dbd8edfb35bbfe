// krhost: a small console host. It loads the runtime and prints what it
// holds: the system registry, the services and the class tree with each
// class's protocol extensions. Then it loads the sample modules named in a
// start-up list file that it writes into the current directory (run it from
// the samples' folder), shows them in the loaded-module table and the class
// tree, sends one of them a message, unloads them and tells what a linker
// reactor saw meanwhile.

#include <windows.h>

#include <cstdio>
#include <cwchar>
#include <string>
#include <vector>

#include "kr1st.h"

namespace {

void printRegistry() {
  std::wprintf(L"System registry (%u entries)\n", krrxSysRegistry()->numEntries());
  KrRxDictionaryIterator* it = krrxSysRegistry()->newIterator(KrRx::kDictById);
  for (; !it->done(); it->next()) std::wprintf(L"  %-20ls %ls\n", it->key(), it->object()->isA()->name());
  delete it;
}

void printServices() {
  auto* services = static_cast<KrRxDictionary*>(krrxSysRegistry()->at(L"ServiceDictionary"));
  std::wprintf(L"\nServices (%u)\n", services->numEntries());
  KrRxDictionaryIterator* it = services->newIterator(KrRx::kDictById);
  for (; !it->done(); it->next()) {
    auto* service = static_cast<KrRxService*>(it->object());
    std::wprintf(L"  %-24ls %-40ls dependants: %ls\n", it->key(), service->isA()->name(),
                 service->unloadable() ? L"none" : L"some");
  }
  delete it;
}

// The protocol classes for which cls has an entry of its own or inherited.
void printExtensions(const KrRxClass* cls) {
  KrRxDictionaryIterator* it = krrxSysClasses()->newIterator(KrRx::kDictByKey);
  for (; !it->done(); it->next()) {
    auto* protocol = static_cast<KrRxClass*>(it->object());
    if (KrRxObject* extension = cls->queryX(protocol))
      std::wprintf(L" [%ls: %ls]", protocol->name(), extension->isA()->name());
  }
  delete it;
}

void printClassTree(const KrRxClass* cls, int depth) {
  std::wprintf(L"%*ls%ls", depth * 2, L"", cls->name());
  printExtensions(cls);
  std::wprintf(L"\n");
  if (KrRxSet* children = cls->descendants()) {
    KrRxIterator* it = children->newIterator(true);
    for (; !it->done(); it->next()) printClassTree(static_cast<KrRxClass*>(it->object()), depth + 1);
    delete it;
  }
}

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

KrRxDynamicLinker* linker() { return static_cast<KrRxDynamicLinker*>(krrxSysRegistry()->at(L"DynamicLinker")); }

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
std::wstring servicesOf(const KrRxGenHand* module) {
  std::wstring names;
  auto* services = static_cast<KrRxDictionary*>(krrxSysRegistry()->at(L"ServiceDictionary"));
  KrRxDictionaryIterator* it = services->newIterator(KrRx::kDictById);
  for (; !it->done(); it->next())
    if (static_cast<KrRxService*>(it->object())->getSysInfo() == module)
      names += std::wstring(names.empty() ? L"" : L", ") + it->key();
  delete it;
  return names.empty() ? L"none" : names;
}

void printLoadedModules() {
  KrRxDictionaryIterator* it = linker()->loadedModulesIterator();
  std::wprintf(L"\nLoaded modules\n");
  for (; !it->done(); it->next()) {
    auto* module = static_cast<KrRxGenHand*>(it->object());
    std::wprintf(L"  %-14ls %ls, %ls, command reference %ls, API references %u, services: %ls\n", it->key(),
                 module->appStatusFlags() & KrRxGenHand::kLocked ? L"locked" : L"unlocked",
                 module->appStatusFlags() & KrRxGenHand::kMDIAware ? L"MDI-aware" : L"not MDI-aware",
                 module->uiValue() ? L"yes" : L"no", module->apiValue(), servicesOf(module).c_str());
  }
  delete it;
}

void printGreeting() {
  wchar_t reply[kGreetingCapacity] = {};
  bool answered = krrxSendAppMessage(L"greeter", kGreet, reply);
  std::wprintf(L"\nMessage %d to greeter.kra: %ls, reply \"%ls\"\n", kGreet, answered ? L"answered" : L"failed",
               reply);
  auto* motto = KrRxTextString::cast(krrxGetAppData(L"Motto", L"greeter.kra"));
  std::wprintf(L"Its application data \"Motto\": \"%ls\"\n", motto ? motto->getAsciiPtr() : L"(none)");
}

void printServicesAndClasses() {
  printServices();
  std::wprintf(L"\nClass tree (%u classes)\n", krrxSysClasses()->numEntries());
  printClassTree(KrRxObject::desc(), 1);
}

}  // namespace

int wmain() {
  std::wprintf(L"Kestrune runtime host\n\n");
  printRegistry();
  printServicesAndClasses();

  LoggingReactor reactor;
  linker()->addReactor(&reactor);
  std::wprintf(L"\n---- Loading the sample modules listed in krrx.rx ----\n");
  bool listed = writeStartUpList() && krrxProcessInitFile();
  std::wprintf(L"krrxProcessInitFile: %ls\n", listed ? L"every module loaded" : L"some module did not load");
  printLoadedModules();
  printServicesAndClasses();
  printGreeting();

  std::wprintf(L"\n---- Unloading them ----\n");
  for (const wchar_t* module : kSampleModules)
    std::wprintf(L"  %-14ls %ls\n", module, krrxUnloadModule(module, true) ? L"unloaded" : L"still loaded");
  printLoadedModules();
  linker()->removeReactor(&reactor);
  DeleteFileW(L"krrx.rx");

  std::wprintf(L"\nWhat the linker reactor saw\n");
  for (const std::wstring& event : reactor.events()) std::wprintf(L"  %ls\n", event.c_str());
  return listed ? 0 : 1;
}
