#include "host/KrHostLoading.h"

#include <algorithm>
#include <set>

#include "host/KrHostServices.h"
#include "kr1st.h"

namespace {

std::set<std::wstring> keysOf(const KrRxDictionary* dictionary) {
  std::set<std::wstring> keys;
  if (!dictionary) return keys;
  KrRxDictionaryIterator* it = dictionary->newIterator(KrRx::kDictById);
  for (; !it->done(); it->next()) keys.insert(it->key());
  delete it;
  return keys;
}

const KrRxDictionary* serviceDictionary() {
  return static_cast<const KrRxDictionary*>(krrxSysRegistry()->at(L"ServiceDictionary"));
}

std::set<std::wstring> loadedModules() {
  std::set<std::wstring> names;
  KrRxDictionaryIterator* it = krhostLinker()->loadedModulesIterator();
  for (; !it->done(); it->next()) names.insert(it->key());
  delete it;
  return names;
}

// What the runtime holds that a load can add to.
struct Snapshot {
  std::set<std::wstring> classes = keysOf(krrxSysClasses());
  std::set<std::wstring> services = keysOf(serviceDictionary());
  std::set<std::wstring> modules = loadedModules();
};

std::vector<std::wstring> added(const std::set<std::wstring>& before, const std::set<std::wstring>& after) {
  std::vector<std::wstring> names;
  std::set_difference(after.begin(), after.end(), before.begin(), before.end(), std::back_inserter(names));
  return names;
}

std::vector<std::wstring> appDataOf(const KrRxGenHand* module) {
  std::vector<std::wstring> entries;
  if (!module || !module->dictionary()) return entries;
  KrRxDictionaryIterator* it = module->dictionary()->newIterator(KrRx::kDictById);
  for (; !it->done(); it->next())
    entries.push_back(std::wstring(it->key()) + L" (" + it->object()->isA()->name() + L")");
  delete it;
  return entries;
}

}  // namespace

KrRxDynamicLinker* krhostLinker() {
  return static_cast<KrRxDynamicLinker*>(krrxSysRegistry()->at(L"DynamicLinker"));
}

KrRxGenHand* krhostModule(const wchar_t* name) {
  return KrRxGenHand::cast(static_cast<KrRxObject*>(krhostLinker()->moduleHandlePtr(name)));
}

std::wstring krhostServiceOwner(const wchar_t* serviceName) {
  auto* service = KrRxService::cast(serviceDictionary()->at(serviceName));
  KrRxGenHand* module = service ? KrRxGenHand::cast(service->getSysInfo()) : nullptr;
  return module ? module->FileName() : L"runtime";
}

std::vector<std::wstring> krhostTakeMessageLines() {
  std::vector<std::wstring> lines;
  for (const std::wstring& message : KrHostServices::instance().takeMessages()) {
    size_t start = 0;
    while (start <= message.size()) {
      size_t end = message.find(L'\n', start);
      if (end == std::wstring::npos) end = message.size();
      std::wstring line = message.substr(start, end - start);
      if (!line.empty() && line.back() == L'\r') line.pop_back();
      if (!line.empty()) lines.push_back(line);
      start = end + 1;
    }
  }
  return lines;
}

KrHostLoad krhostLoadModule(const std::wstring& name) {
  KrHostLoad load;
  load.name = name;
  krhostTakeMessageLines();
  Snapshot before;
  load.loaded = krrxLoadModule(name.c_str(), true, true);
  load.messages = krhostTakeMessageLines();
  if (!load.loaded) return load;
  Snapshot after;
  KrRxGenHand* module = krhostModule(name.c_str());
  load.module = module ? module->FileName() : name;
  load.version = krhostVersionOfBlock(module ? module->versionInfo() : nullptr);
  load.classes = added(before.classes, after.classes);
  load.services = added(before.services, after.services);
  load.appData = appDataOf(module);
  for (const std::wstring& other : added(before.modules, after.modules))
    if (other != load.module) load.modules.push_back(other);
  return load;
}

bool krhostUnloadModule(const std::wstring& module, std::vector<std::wstring>& messages) {
  krhostTakeMessageLines();
  bool unloaded = krrxUnloadModule(module.c_str(), true);
  for (const std::wstring& line : krhostTakeMessageLines()) messages.push_back(line);
  return unloaded;
}

const KrHostOption KrHostWithModules::kOption = {L"--with", L"<module>",
                                                 L"load this module first (as \"krhost load\" does); repeatable"};

KrHostWithModules::KrHostWithModules(const KrHostInvocation& invocation, KrHostReport& report) {
  std::vector<std::wstring> names = invocation.values(kOption.name);
  if (names.empty()) return;
  KrHostTable& table = report.table("with", L"Loaded first", {{"module", L"MODULE"}, {"loaded", L"LOADED"},
                                                               {"messages", L"MESSAGES"}});
  for (const std::wstring& name : names) {
    KrHostLoad load = krhostLoadModule(name);
    table.row({name, KrHostValue::truth(load.loaded), KrHostValue::list(load.messages)});
    if (load.loaded)
      mLoaded.push_back(load.module);
    else
      mAllLoaded = false;
  }
}

KrHostWithModules::~KrHostWithModules() {
  std::vector<std::wstring> ignored;
  for (auto module = mLoaded.rbegin(); module != mLoaded.rend(); ++module) krhostUnloadModule(*module, ignored);
}
