// The shapes sample module: its overrule and protocol reactor, while it is
// loaded and after it has taken them back on unload.

#include <gtest/gtest.h>

#include <string>

#include "kr1st.h"

namespace {

const wchar_t* nameOf(const KrRxObject* object) { return object ? object->isA()->name() : L"(none)"; }

// The reactor classes of cls's manager lists with the number of reactors in each.
std::wstring reactorsOf(KrRxClass* cls) {
  auto* services = KrRxDictionary::cast(krrxSysRegistry()->at(L"ServiceDictionary"));
  auto* factory = KrRxProtocolReactorManagerFactory::cast(services->at(L"ProtocolReactorManager"));
  KrRxProtocolReactorListIterator* lists = factory->createReactorManager(cls)->newIterator();
  std::wstring text;
  for (; !lists->done(); lists->next()) {
    auto* list = static_cast<KrRxProtocolReactorList*>(lists->object());
    KrRxProtocolReactorIterator* reactors = list->newIterator();
    int count = 0;
    for (; !reactors->done(); reactors->next()) ++count;
    text += std::wstring(list->reactorClass()->name()) + L": " + std::to_wstring(count) + L";";
    delete reactors;
  }
  delete lists;
  return text;
}

}  // namespace

TEST(KrSampleShapesTest, OverrulesLargeShapesAndWatchesTheShapeClassWhileLoaded) {
  ASSERT_FALSE(KrRxOverrule::isOverruling());
  ASSERT_TRUE(krrxLoadModule(L"samples\\shapes.krx", false, true));
  EXPECT_TRUE(KrRxOverrule::isOverruling());
  KrRxClass* describer = krrxFindKrRxClass(L"KrSampleDescriber");
  KrRxObject* circle = krrxFindKrRxClass(L"KrSampleCircle")->create();
  KrRxObject* square = krrxFindKrRxClass(L"KrSampleSquare")->create();
  EXPECT_STREQ(nameOf(circle->queryX(describer)), L"KrSampleShapeDescriber");
  EXPECT_STREQ(nameOf(square->queryX(describer)), L"KrSampleLargeShapeDescriber") << "overruled";
  EXPECT_STREQ(nameOf(square->x(describer)), L"KrSampleShapeDescriber") << "the class's own attachment";
  EXPECT_EQ(reactorsOf(krrxFindKrRxClass(L"KrSampleShape")), L"KrSampleShapeReactor: 1;");
  delete circle;
  delete square;

  ASSERT_TRUE(krrxUnloadModule(L"shapes.krx", true));
  EXPECT_FALSE(KrRxOverrule::isOverruling()) << "the switch is as the module found it";
  EXPECT_EQ(krrxFindKrRxClass(L"KrSampleShape"), nullptr) << "gone with its manager and overrule list";
}
