#include "host/KrHostModuleCommands.h"

#include <cwchar>

#include "host/KrHostLoading.h"
#include "host/KrHostServices.h"
#include "kr1st.h"
#include "modules/KesuAppKeyList.h"

namespace {

constexpr int kFailure = 1;

void reportLoad(KrHostReport& report, const KrHostLoad& load) {
  report.field("module", L"Module", load.module.empty() ? load.name : load.module);
  report.field("loaded", L"Loaded", KrHostValue::truth(load.loaded));
  report.field("messages", L"Messages", KrHostValue::list(load.messages));
  if (!load.loaded) return;
  krhostReportVersion(report, load.version);
  report.field("classes", L"Classes added", KrHostValue::list(load.classes));
  report.field("services", L"Services added", KrHostValue::list(load.services));
  report.field("appData", L"Application data", KrHostValue::list(load.appData));
  report.field("dependencies", L"Loaded with it", KrHostValue::list(load.modules));
}

int runLoad(const KrHostInvocation& invocation) {
  KrHostReport report;
  std::vector<std::pair<KrHostReport*, std::wstring>> loaded;
  bool allLoaded = true;
  for (const std::wstring& name : invocation.operands()) {
    KrHostLoad load = krhostLoadModule(name);
    KrHostReport& child = report.child("modules");
    reportLoad(child, load);
    if (load.loaded)
      loaded.emplace_back(&child, load.module);
    else
      allLoaded = false;
  }
  for (auto entry = loaded.rbegin(); entry != loaded.rend(); ++entry) {
    std::vector<std::wstring> messages;
    bool unloaded = krhostUnloadModule(entry->second, messages);
    entry->first->field("unloaded", L"Unloaded", KrHostValue::truth(unloaded));
    entry->first->field("unloadMessages", L"Unload messages", KrHostValue::list(messages));
  }
  report.field("ok", L"Every module loaded", KrHostValue::truth(allLoaded));
  return invocation.print(report, allLoaded ? 0 : kFailure);
}

// ---- apps ----

// The load-control flags in words.
std::vector<std::wstring> loadReasonsOf(unsigned int flags) {
  std::vector<std::wstring> reasons;
  if (flags & KesuApp::kLoadDisabled) reasons.push_back(L"never on demand (0x10)");
  if (flags & KesuApp::kLoadByName) reasons.push_back(L"by name or trigger (0x8)");
  unsigned int host = flags & ~unsigned(KesuApp::kLoadDisabled | KesuApp::kLoadByName);
  for (unsigned int bit = 1; bit; bit <<= 1) {
    if (!(host & bit)) continue;
    wchar_t text[32];
    swprintf(text, 32, L"host reason 0x%X", bit);
    reasons.push_back(text);
  }
  return reasons;
}

// The value names of the first "Triggers" key of the application in search
// order: the names that krrxIsAppTriggeredBy answers true for.
std::vector<std::wstring> triggersOf(const wchar_t* appName) {
  std::vector<std::wstring> triggers;
  KrString subKey = krrxApplicationSubKey(appName, L"\\Triggers");
  KesuAppKeyList().useFirst(subKey, KEY_QUERY_VALUE, [&triggers](HKEY key) {
    wchar_t name[16384];
    for (DWORD index = 0;; ++index) {
      DWORD length = sizeof(name) / sizeof(name[0]);
      if (RegEnumValueW(key, index, name, &length, nullptr, nullptr, nullptr, nullptr) != ERROR_SUCCESS) break;
      triggers.emplace_back(name, length);
    }
  });
  return triggers;
}

KrHostValue productCodeOf(const wchar_t* appName) {
  wchar_t* code = nullptr;
  if (!krrxGetAppProdCode(appName, code)) return KrHostValue();
  KrHostValue value(code);
  __krFree(code);
  return value;
}

int runApps(const KrHostInvocation& invocation) {
  for (const std::wstring& key : invocation.values(L"--product-key")) KrHostServices::instance().setProductKey(key);
  KrHostReport report;
  report.field("productKey", L"Product key", krrxProductKey());
  report.field("settableKey", L"Settable key", krrxKestruneRegistryKey());
  KrHostTable& table = report.table("apps", L"Registered applications",
                                    {{"name", L"APPLICATION"},
                                     {"loader", L"LOADER"},
                                     {"loadCtrls", L"FLAGS"},
                                     {"loadReasons", L"LOADS"},
                                     {"triggers", L"TRIGGERED BY"},
                                     {"productCode", L"PRODUCT CODE"},
                                     {"description", L"DESCRIPTION"},
                                     {"loaded", L"LOADED NOW"}});
  KesuAppRegistry registry;
  int count = registry.enumerate();
  for (int i = 0; i < count; ++i) {
    const wchar_t* name = registry.keyName(i);
    KesuAppInfo app(name);
    app.readFromRegistry();
    wchar_t flags[16];
    swprintf(flags, 16, L"0x%X", app.loadCtrls());
    table.row({name, *app.moduleName() ? KrHostValue(app.moduleName()) : KrHostValue(), flags,
               KrHostValue::list(loadReasonsOf(app.loadCtrls())), KrHostValue::list(triggersOf(name)),
               productCodeOf(name), *app.appDesc() ? KrHostValue(app.appDesc()) : KrHostValue(),
               KrHostValue::truth(krrxAppIsLoaded(name))});
  }
  return invocation.print(report, 0);
}

}  // namespace

void krhostAddModuleCommands(KrHostCommandTable& table) {
  table.push_back({L"load", L"<module>...",
                   L"Loads modules as the linker does, tells what each added, then unloads them.",
                   L"Each module is loaded through the dynamic linker as a load command would\n"
                   L"(the linker's messages are shown), then its new classes, services and\n"
                   L"application data are listed; at the end the modules are unloaded in reverse\n"
                   L"order. A module name is a path or a file name (.kra, .krx or .dll). Fails\n"
                   L"when a module does not load; \"krhost check\" tells why.",
                   {}, runLoad, 1});
  table.push_back({L"apps", L"", L"Lists the applications registered for loading on demand.",
                   L"Reads the application registry below the host's product key and the settable\n"
                   L"key (and the keys of earlier releases): each application's loader module,\n"
                   L"load-control flags, the names that trigger it and its product code.",
                   {{L"--product-key", L"<key>", L"the host's product key, e.g. Software\\Vendor\\Product"}}, runApps});
}
