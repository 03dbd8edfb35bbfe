#include "host/KrHostRuntimeCommands.h"

#include <cstdlib>
#include <cwctype>

#include "host/KrHostLoading.h"
#include "kr1st.h"

namespace {

constexpr int kFailure = 1;

// Calls visit(key, object) for every entry of dictionary in id order.
template <typename Visit>
void forEachEntry(const KrRxDictionary* dictionary, Visit visit) {
  KrRxDictionaryIterator* it = dictionary->newIterator(KrRx::kDictById);
  for (; !it->done(); it->next()) visit(it->key(), it->object());
  delete it;
}

// The protocol classes for which cls answers queryX, each as "protocol: extension class".
std::vector<std::wstring> extensionsOf(const KrRxClass* cls) {
  std::vector<std::wstring> extensions;
  forEachEntry(krrxSysClasses(), [&](const wchar_t*, KrRxObject* object) {
    auto* protocol = static_cast<KrRxClass*>(object);
    if (KrRxObject* extension = cls->queryX(protocol))
      extensions.push_back(std::wstring(protocol->name()) + L": " + extension->isA()->name());
  });
  return extensions;
}

void addClassRows(KrHostTable& table, const KrRxClass* cls, int depth, const KrHostClassModules* modules) {
  const KrRxClass* parent = cls->myParent();
  std::vector<KrHostValue> cells = {cls->name(), parent ? KrHostValue(parent->name()) : KrHostValue(),
                                    KrHostValue::number(depth), KrHostValue::list(extensionsOf(cls))};
  if (modules) {
    auto added = modules->find(cls->name());
    cells.push_back(added == modules->end() ? KrHostValue() : KrHostValue(added->second));
  }
  table.row(cells, depth);
  if (KrRxSet* children = cls->descendants()) {
    KrRxIterator* it = children->newIterator(true);
    for (; !it->done(); it->next()) addClassRows(table, static_cast<KrRxClass*>(it->object()), depth + 1, modules);
    delete it;
  }
}

int runTree(const KrHostInvocation& invocation) {
  KrHostReport report;
  KrHostWithModules with(invocation, report);
  krhostReportClassTree(report);
  return invocation.print(report, with.allLoaded() ? 0 : kFailure);
}

int runServices(const KrHostInvocation& invocation) {
  KrHostReport report;
  KrHostWithModules with(invocation, report);
  krhostReportServices(report);
  return invocation.print(report, with.allLoaded() ? 0 : kFailure);
}

int runRegistry(const KrHostInvocation& invocation) {
  KrHostReport report;
  KrHostWithModules with(invocation, report);
  krhostReportRegistry(report);
  return invocation.print(report, with.allLoaded() ? 0 : kFailure);
}

// ---- describe ----

// The ancestor of cls from which it inherits extension (the highest one
// that answers the same object), or cls itself.
const KrRxClass* extensionOwner(const KrRxClass* cls, const KrRxClass* protocol, const KrRxObject* extension) {
  const KrRxClass* owner = cls;
  for (const KrRxClass* up = cls->myParent(); up && up->queryX(protocol) == extension; up = up->myParent()) owner = up;
  return owner;
}

void reportExtensions(KrHostReport& report, const KrRxClass* cls) {
  KrHostTable& table = report.table("extensions", L"Protocol extensions",
                                    {{"protocol", L"PROTOCOL"}, {"extension", L"EXTENSION"}, {"from", L"FROM"}});
  forEachEntry(krrxSysClasses(), [&](const wchar_t*, KrRxObject* object) {
    auto* protocol = static_cast<KrRxClass*>(object);
    KrRxObject* extension = cls->queryX(protocol);
    if (!extension) return;
    const KrRxClass* owner = extensionOwner(cls, protocol, extension);
    table.row({protocol->name(), extension->isA()->name(),
               owner == cls ? std::wstring(L"own") : std::wstring(L"inherited from ") + owner->name()});
  });
}

std::vector<std::wstring> ancestryOf(const KrRxClass* cls) {
  std::vector<std::wstring> names;
  for (const KrRxClass* up = cls->myParent(); up; up = up->myParent()) names.push_back(up->name());
  return names;
}

std::vector<std::wstring> childrenOf(const KrRxClass* cls) {
  std::vector<std::wstring> names;
  if (KrRxSet* children = cls->descendants()) {
    KrRxIterator* it = children->newIterator(true);
    for (; !it->done(); it->next()) names.push_back(static_cast<KrRxClass*>(it->object())->name());
    delete it;
  }
  return names;
}

std::wstring lower(std::wstring text) {
  for (wchar_t& unit : text) unit = wchar_t(towlower(unit));
  return text;
}

// Class names equal to name but for case, for the "did you mean" line.
std::vector<std::wstring> namesLike(const std::wstring& name) {
  std::vector<std::wstring> similar;
  forEachEntry(krrxSysClasses(), [&](const wchar_t* key, KrRxObject*) {
    if (lower(key) == lower(name)) similar.push_back(key);
  });
  return similar;
}

void reportClass(KrHostReport& report, const KrRxClass* cls) {
  int version = 0, maintenance = 0;
  cls->getClassVersion(version, maintenance);
  report.field("class", L"Class", cls->name());
  report.field("parent", L"Parent", cls->myParent() ? KrHostValue(cls->myParent()->name()) : KrHostValue());
  report.field("ancestors", L"Ancestors", KrHostValue::list(ancestryOf(cls)));
  report.field("children", L"Children", KrHostValue::list(childrenOf(cls)));
  report.field("appName", L"Application", cls->appName());
  report.field("dxfName", L"DXF name", cls->dxfName());
  report.field("version", L"Version", std::to_wstring(version) + L"." + std::to_wstring(maintenance));
  report.field("proxyFlags", L"Proxy flags", KrHostValue::number(cls->proxyFlags()));
  reportExtensions(report, cls);
  krhostReportSymbols(report, cls);
}

int runDescribe(const KrHostInvocation& invocation) {
  KrHostReport report;
  KrHostWithModules with(invocation, report);
  const std::wstring& name = invocation.operands().front();
  const KrRxClass* cls = krrxFindKrRxClass(name.c_str());
  if (!cls) {
    report.field("class", L"Class", name);
    report.field("found", L"Found", KrHostValue::truth(false));
    report.field("similar", L"Similar names", KrHostValue::list(namesLike(name)));
    report.field("hint", L"Hint",
                 L"class names are case-sensitive; a module's classes exist only while it is loaded (--with <module>)");
    return invocation.print(report, kFailure);
  }
  reportClass(report, cls);
  return invocation.print(report, with.allLoaded() ? 0 : kFailure);
}

}  // namespace

void krhostReportRegistry(KrHostReport& report) {
  KrHostTable& table = report.table("registry", L"System registry", {{"key", L"KEY"}, {"class", L"CLASS"}});
  forEachEntry(krrxSysRegistry(), [&](const wchar_t* key, KrRxObject* object) { table.row({key, object->isA()->name()}); });
}

void krhostReportServices(KrHostReport& report) {
  KrHostTable& table = report.table(
      "services", L"Services",
      {{"name", L"SERVICE"}, {"class", L"CLASS"}, {"owner", L"OWNER"}, {"hasDependants", L"DEPENDANTS"}});
  auto* services = static_cast<const KrRxDictionary*>(krrxSysRegistry()->at(L"ServiceDictionary"));
  forEachEntry(services, [&](const wchar_t* key, KrRxObject* object) {
    auto* service = KrRxService::cast(object);
    table.row({key, object->isA()->name(), krhostServiceOwner(key),
               KrHostValue::truth(service && !service->unloadable())});
  });
}

namespace {

// The reflection extension of cls or of its nearest ancestor that has one
// (asking the class's providers too), or null.
KrRfReflectionPE* nearestSymbols(const KrRxClass* cls) {
  KrRfReflectionService* reflection = krrfReflectionService();
  if (!reflection) return nullptr;
  for (; cls; cls = cls->myParent())
    if (KrRfReflectionPE* symbols = reflection->requestReflectionPE(const_cast<KrRxClass*>(cls))) return symbols;
  return nullptr;
}

// The property's value on object as its formattable writes it, or nothing.
KrHostValue valueText(const KrRfSymbol* symbol, const KrRxObject* object) {
  KrRxObject* value = nullptr;
  if (!KrRfProperty::cast(symbol) || krrfEvaluateString(symbol->name(), object, value) != Kesu::eOk) return {};
  wchar_t* text = nullptr;
  KrHostValue cell = krrxFormatObject(value, text, nullptr) == Kesu::eOk ? KrHostValue(text) : KrHostValue();
  free(text);
  delete value;
  return cell;
}

}  // namespace

void krhostReportSymbols(KrHostReport& report, const KrRxClass* cls, const KrRxObject* object) {
  std::vector<KrHostTable::Column> columns = {{"class", L"CLASS"},
                                              {"name", L"NAME"},
                                              {"displayName", L"DISPLAY NAME"},
                                              {"kind", L"KIND"},
                                              {"valueClass", L"VALUE CLASS"}};
  if (object) columns.push_back({"value", std::wstring(L"VALUE ON A ") + object->isA()->name()});
  KrHostTable& table = report.table("symbols", L"Symbols and properties", columns);
  KrRfReflectionPE* symbols = nearestSymbols(cls);
  if (!symbols) return;
  KrRfSymbolIterator* it = symbols->newSymbolIterator(nullptr);
  for (; !it->done(); it->next()) {
    KrRfSymbol* symbol = it->symbol();
    KrRxClass* valueClass = symbol->valueType();
    std::vector<KrHostValue> cells = {it->currentClass()->name(), symbol->name(), symbol->displayName(),
                                      KrRfProperty::cast(symbol) ? L"property" : L"symbol",
                                      valueClass ? KrHostValue(valueClass->name()) : KrHostValue()};
    if (object) cells.push_back(valueText(symbol, object));
    table.row(cells);
  }
  delete it;
}

void krhostReportClassTree(KrHostReport& report, const KrHostClassModules* modules) {
  std::vector<KrHostTable::Column> columns = {{"name", L"CLASS"},
                                              {"parent", L"PARENT", false},
                                              {"depth", L"DEPTH", false},
                                              {"extensions", L"PROTOCOL EXTENSIONS"}};
  if (modules) columns.push_back({"module", L"MODULE"});
  KrHostTable& table = report.table("classes", L"Class tree", columns);
  addClassRows(table, KrRxObject::desc(), 0, modules);
}

void krhostAddRuntimeCommands(KrHostCommandTable& table) {
  table.push_back({L"tree", L"", L"Shows the class tree with each class's protocol extensions.",
                   L"Each class is shown below its parent, with the protocol extensions it answers\n"
                   L"(own or inherited) as \"protocol: extension class\".",
                   {KrHostWithModules::kOption}, runTree});
  table.push_back({L"services", L"", L"Lists the services with their owner module and whether anything depends on them.",
                   L"The owner is the module that registered the service (\"runtime\" for the\n"
                   L"runtime's own). A service with dependants keeps its module loaded.",
                   {KrHostWithModules::kOption}, runServices});
  table.push_back({L"registry", L"", L"Lists the system registry: each key and the class of its object.", L"",
                   {KrHostWithModules::kOption}, runRegistry});
  table.push_back({L"describe", L"<class>", L"Describes one class: its place in the tree and its protocol extensions.",
                   L"Shows the descriptor's information (parent, ancestors, children, application\n"
                   L"name, DXF name, version, proxy flags) and every protocol extension the class\n"
                   L"answers, own or inherited (and from which class), then its symbols and\n"
                   L"properties with their value classes, root-most class first. Class names\n"
                   L"are case-sensitive; load the module that defines a class with --with.",
                   {KrHostWithModules::kOption}, runDescribe, 1});
}
