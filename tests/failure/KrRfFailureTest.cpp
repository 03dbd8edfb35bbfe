// Reflection and the extension mechanisms when an allocation fails: text
// formatting and parsing, property paths and templates, name conversion,
// symbols, overrules and protocol reactors. A failure point ends in
// std::bad_alloc, a failure status, or the result it gives without failure;
// never in a wrong text or a half-made registration.

#include <gtest/gtest.h>

#include <cstdlib>
#include <memory>
#include <set>
#include <string>
#include <vector>

#include "KrFailingAllocations.h"
#include "KrRfTestDoor.h"
#include "KrRfTestSymbols.h"
#include "reflection/KrRfImpReflectionPE.h"
#include "runtime/KrRxImpClass.h"

namespace {

// A class made for one try and deleted after it.
struct FreshClass {
  FreshClass() {
    cls = newKrRxClass(L"FailFresh", L"KrRxObject", 0, nullptr, nullptr, nullptr);
    krrxBuildClassHierarchy();
  }
  ~FreshClass() {
    KrRxImpClass::deleteClass(cls);
    KrRxImpClass::clearDeletedClassesArray();
  }
  KrRxClass* cls;
};

class EveryObject : public KrRxQueryXOverrule {
 public:
  bool isApplicable(const KrRxObject*) const override { return true; }
};

// What text(...) gives without failure, then that every failure point gives
// it too, or a failure.
void expectTextOrFailure(const char* name, const std::function<Kesu::ErrorStatus(wchar_t*&)>& text) {
  wchar_t* reference = nullptr;
  ASSERT_EQ(text(reference), Kesu::eOk);
  const std::wstring expected = reference;
  free(reference);
  krRunFailurePoints(name, [&](KrAllocationFailure& failure) {
    wchar_t* result = nullptr;
    Kesu::ErrorStatus status = Kesu::eOk;
    if (failure.run([&] { status = text(result); }) && status == Kesu::eOk) {
      ASSERT_NE(result, nullptr);
      EXPECT_EQ(result, expected);
    }
    free(result);
  });
}

// A template's placeholder whose value cannot be formatted contributes
// nothing, and a result whose block cannot be had stays untouched: what the
// template gives is its full text with any placeholders left out, or nothing.
// The template is long enough to be composed in a heap block.
TEST(KrRfFailureTest, TemplatesLoseWholePlaceholdersOnly) {
  describeTestDoor();
  TestDoor door;
  const wchar_t* const paths[] = {L"name", L"width", L"slope", L"share", L"installed", L"price"};
  const std::wstring lead(1500, L'-');
  std::wstring format = lead;
  std::vector<std::wstring> values;
  for (const wchar_t* path : paths) {
    wchar_t* value = nullptr;
    ASSERT_EQ(krrfFormatString((L"%<" + std::wstring(path) + L">%").c_str(), &door, value), Kesu::eOk);
    values.push_back(value);
    free(value);
    format += L"%<" + std::wstring(path) + L">%;";
  }
  std::set<std::wstring> allowed;
  std::wstring fullText;
  for (unsigned kept = 0; kept < 1u << values.size(); ++kept) {
    std::wstring text = lead;
    for (size_t i = 0; i < values.size(); ++i) text += (kept >> i & 1 ? values[i] : L"") + L";";
    allowed.insert(text);
    if (kept == (1u << values.size()) - 1) fullText = text;
  }
  krRunFailurePoints("krrfFormatString", [&](KrAllocationFailure& failure) {
    wchar_t* result = nullptr;
    Kesu::ErrorStatus status = Kesu::eNotApplicable;
    if (failure.run([&] { status = krrfFormatString(format.c_str(), &door, result); })) { EXPECT_EQ(status, Kesu::eOk); }
    if (result) { EXPECT_EQ(allowed.count(result), 1u) << result; }
    if (!failure.reached()) { EXPECT_EQ(std::wstring(result ? result : L"-"), fullText); }
    free(result);
  });
}

TEST(KrRfFailureTest, ParsingFormattingAndNameConversion) {
  describeTestDoor();
  TestDoor door;
  expectTextOrFailure("krrfToCamelCase", [](wchar_t*& result) { return krrfToCamelCase(L"Größte Breite", result); });
  expectTextOrFailure("krrfEvaluateString", [&](wchar_t*& result) {
    KrRxObject* value = nullptr;
    Kesu::ErrorStatus status = krrfEvaluateString(L"installed", &door, value);
    if (status == Kesu::eOk) status = krrxFormatObject(value, result, nullptr);
    delete value;
    return status;
  });
  expectTextOrFailure("krrxParseObject", [](wchar_t*& result) {
    KrVtRatio ratio;
    Kesu::ErrorStatus status = krrxParseObject(&ratio, L"3:4", nullptr);
    return status == Kesu::eOk ? krrxFormatObject(&ratio, result, nullptr) : status;
  });
}

// Registrations either happen whole or report failure; taking them back
// then leaves the class as it was.
TEST(KrRfFailureTest, SymbolsOverrulesAndProtocolReactors) {
  describeTestDoor();
  KrRfReflectionPE* pe = krrfReflectionService()->reflectionPE(TestDoor::desc(), false);
  krRunFailurePoints("symbols", [&](KrAllocationFailure& failure) {
    TestSymbol symbol(L"failPoint");
    Kesu::ErrorStatus status = Kesu::eNotApplicable;
    int walked = 0;
    failure.run([&] {
      status = pe->addSymbol(&symbol);
      std::unique_ptr<KrRfSymbolIterator> it(pe->newSymbolIterator(nullptr));
      for (; !it->done(); it->next()) ++walked;
    });
    EXPECT_EQ(pe->findSymbol(L"failPoint"), status == Kesu::eOk ? &symbol : nullptr);
    if (pe->findSymbol(L"failPoint")) { EXPECT_EQ(pe->removeSymbol(&symbol), Kesu::eOk); }
    EXPECT_NE(pe->findSymbol(L"width"), nullptr);
  }, [&] { return static_cast<long long>(static_cast<KrRfImpReflectionPE*>(pe)->symbols().entryBlockBytes()); });
  // A class of its own for each try, so that its overrule list and reactor
  // manager are made under failure.
  krRunFailurePoints("overrules", [&](KrAllocationFailure& failure) {
    FreshClass fresh;
    EveryObject overrule;
    Kesu::ErrorStatus status = Kesu::eNotApplicable;
    failure.run([&] { status = KrRxOverrule::addOverrule(fresh.cls, &overrule); });
    EXPECT_EQ(KrRxOverrule::removeOverrule(fresh.cls, &overrule),
              status == Kesu::eOk ? Kesu::eOk : Kesu::eKeyNotFound);
  });
  auto* services = KrRxDictionary::cast(krrxSysRegistry()->at(L"ServiceDictionary"));
  auto* factory = KrRxProtocolReactorManagerFactory::cast(services->at(L"ProtocolReactorManager"));
  krRunFailurePoints("protocol reactors", [&](KrAllocationFailure& failure) {
    KrRxProtocolReactor reactor;
    KrRxProtocolReactorList* list = nullptr;
    Kesu::ErrorStatus status = Kesu::eNotApplicable;
    FreshClass fresh;
    failure.run([&] {
      list = factory->createReactorManager(fresh.cls)->createReactorList(KrRxProtocolReactor::desc());
      status = list->addReactor(&reactor);
    });
    if (!list) return;
    std::unique_ptr<KrRxProtocolReactorIterator> it(list->newIterator());
    EXPECT_EQ(!it->done(), status == Kesu::eOk);
    list->removeReactor(&reactor);
  });
}

}  // namespace
