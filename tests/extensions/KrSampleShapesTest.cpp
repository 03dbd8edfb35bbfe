// The shapes sample module: its overrule, protocol reactor and properties,
// while it is loaded and after it has taken them back on unload.

#include <gtest/gtest.h>

#include <cmath>
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

// Counts the symbols added and removed on any class.
class SymbolCounter : public KrRfReflectionReactor {
 public:
  void symbolAdded(KrRfSymbol*) override { ++added; }
  void symbolRemoved(KrRfSymbol*) override { ++removed; }
  int added = 0;
  int removed = 0;
};

// The property name on object read as a double, or NaN when it cannot be read.
double lengthOf(const wchar_t* name, const KrRxObject* object) {
  KrRxObject* value = nullptr;
  if (krrfEvaluateString(name, object, value) != Kesu::eOk) return std::nan("");
  double length = KrVtFloat64::cast(value) ? KrVtFloat64::cast(value)->value() : std::nan("");
  delete value;
  return length;
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

TEST(KrSampleShapesTest, ShapesHaveAWidthAndHeightWhileLoaded) {
  SymbolCounter counter;
  krrfReflectionService()->addReactor(&counter);
  ASSERT_TRUE(krrxLoadModule(L"samples\\shapes.krx", false, true));
  EXPECT_EQ(counter.added, 2);
  KrRxObject* circle = krrxFindKrRxClass(L"KrSampleCircle")->create();
  KrRxObject* square = krrxFindKrRxClass(L"KrSampleSquare")->create();
  EXPECT_EQ(lengthOf(L"width", circle), 2.0);
  EXPECT_EQ(lengthOf(L"height", square), 20.0);
  EXPECT_TRUE(std::isnan(lengthOf(L"depth", square)));
  KrRfReflectionPE* symbols = krrfReflectionService()->reflectionPE(krrxFindKrRxClass(L"KrSampleShape"), false);
  ASSERT_NE(symbols, nullptr);
  EXPECT_STREQ(symbols->propertyAt(L"width")->displayName(), L"Width");
  EXPECT_EQ(symbols->propertyAt(L"height")->valueType(), KrVtFloat64::desc());
  delete circle;
  delete square;

  ASSERT_TRUE(krrxUnloadModule(L"shapes.krx", true));
  EXPECT_EQ(counter.removed, 2) << "both properties taken back before the classes went";
  krrfReflectionService()->removeReactor(&counter);
}
