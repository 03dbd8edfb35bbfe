// krhost: a small console host. It loads the runtime and prints what it
// holds: the system registry, the services and the class tree with each
// class's protocol extensions.

#include <windows.h>

#include <cstdio>
#include <cwchar>

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

}  // namespace

int wmain() {
  std::wprintf(L"Kestrune runtime host\n\n");
  printRegistry();
  printServices();
  std::wprintf(L"\nClass tree (%u classes)\n", krrxSysClasses()->numEntries());
  printClassTree(KrRxObject::desc(), 1);
  return 0;
}
