// The reflection service, the reflection extension of a class and symbol
// iteration over the class chain.

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "KrRfTestSymbols.h"

namespace {

// The class tree of the reflection tests, registered for the whole program,
// which needs the reflection service throughout.
class Registered : public ::testing::Environment {
 public:
  void SetUp() override {
    ASSERT_NE(KrRfReflectionService::cast(krrfReflectionService()), nullptr);
    Animal::rxInit();
    Mammal::rxInit();
    Dog::rxInit();
    Plant::rxInit();
    krrxBuildClassHierarchy();
  }
};
const auto* const kEnvironment = ::testing::AddGlobalTestEnvironment(new Registered);

// Symbols added to classes for one test and taken out again at its end.
class ReflectionTest : public ::testing::Test {
 protected:
  void TearDown() override {
    for (auto it = mAdded.rbegin(); it != mAdded.rend(); ++it) {
      if (KrRfReflectionPE* pe = krrfReflectionService()->reflectionPE(it->first, false)) pe->removeSymbol(it->second);
      delete it->second;
    }
  }

  TestSymbol* add(KrRxClass* cls, const wchar_t* name, unsigned long high = 0, unsigned long low = 0) {
    auto* symbol = new TestSymbol(name, high, low);
    EXPECT_EQ(krrfReflectionService()->reflectionPE(cls, true)->addSymbol(symbol), Kesu::eOk) << name;
    mAdded.push_back({cls, symbol});
    return symbol;
  }

  // The names an iterator yields, each prefixed by its class's name.
  static std::vector<std::wstring> walk(KrRfSymbolIterator* it) {
    std::vector<std::wstring> seen;
    for (; !it->done(); it->next()) seen.push_back(std::wstring(it->currentClass()->name()) + L"." + it->symbol()->name());
    EXPECT_EQ(it->object(), nullptr);
    EXPECT_EQ(it->currentClass(), nullptr);
    EXPECT_FALSE(it->next());
    delete it;
    return seen;
  }

  std::vector<std::pair<KrRxClass*, KrRfSymbol*>> mAdded;
};

// Records the order in which reactors hear of symbols.
class Recorder : public KrRfReflectionReactor {
 public:
  Recorder(const wchar_t* tag, std::wstring& log) : mTag(tag), mLog(log) {}
  void symbolAdded(KrRfSymbol* symbol) override { mLog += std::wstring(L"+") + mTag + symbol->name() + L" "; }
  void symbolRemoved(KrRfSymbol* symbol) override { mLog += std::wstring(L"-") + mTag + symbol->name() + L" "; }

 private:
  const wchar_t* mTag;
  std::wstring& mLog;
};

TEST_F(ReflectionTest, NamesMustBeginInLowerCaseOrUnderscoreAndBeUnique) {
  TestSymbol capital(L"Width"), digit(L"2d"), empty(L"");
  KrRfReflectionPE* pe = krrfReflectionService()->reflectionPE(Animal::desc(), true);
  EXPECT_EQ(pe->addSymbol(&capital), Kesu::eInvalidInput);
  EXPECT_EQ(pe->addSymbol(&digit), Kesu::eInvalidInput);
  EXPECT_EQ(pe->addSymbol(&empty), Kesu::eInvalidInput);
  TestSymbol* width = add(Animal::desc(), L"width");
  add(Animal::desc(), L"_width");
  TestSymbol again(L"width");
  EXPECT_EQ(pe->addSymbol(&again), Kesu::eDuplicateKey);
  EXPECT_EQ(pe->symbolAt(L"width"), width);
  EXPECT_EQ(pe->symbolAt(L"height"), nullptr);
  EXPECT_EQ(pe->ownerClass(), Animal::desc());
}

TEST_F(ReflectionTest, ReactorsHearAdditionsInOrderAndRemovalsInReverse) {
  std::wstring log;
  Recorder a(L"A", log), b(L"B", log), absent(L"X", log);
  krrfReflectionService()->addReactor(&a);
  krrfReflectionService()->addReactor(&b);
  krrfReflectionService()->removeReactor(&absent);
  TestSymbol width(L"width");
  KrRfReflectionPE* pe = krrfReflectionService()->reflectionPE(Plant::desc(), true);
  EXPECT_EQ(pe->addSymbol(&width), Kesu::eOk);
  EXPECT_EQ(pe->removeSymbol(&width), Kesu::eOk);
  EXPECT_EQ(log, L"+Awidth +Bwidth -Bwidth -Awidth ");
  krrfReflectionService()->removeReactor(&a);
  log.clear();
  add(Plant::desc(), L"height");
  EXPECT_EQ(log, L"+Bheight ");
  krrfReflectionService()->removeReactor(&b);
}

TEST_F(ReflectionTest, RemovingTheLastSymbolDestroysTheExtension) {
  TestSymbol width(L"width"), height(L"height"), stranger(L"depth");
  KrRfReflectionPE* pe = krrfReflectionService()->reflectionPE(Dog::desc(), true);
  EXPECT_EQ(krrfReflectionService()->reflectionPE(Dog::desc(), true), pe);
  ASSERT_EQ(pe->addSymbol(&width), Kesu::eOk);
  ASSERT_EQ(pe->addSymbol(&height), Kesu::eOk);
  EXPECT_EQ(pe->removeSymbol(&stranger), Kesu::eKeyNotFound);
  EXPECT_EQ(pe->removeSymbol(&width), Kesu::eOk);
  EXPECT_EQ(krrfReflectionService()->reflectionPE(Dog::desc(), false), pe);
  EXPECT_EQ(pe->removeSymbol(&height), Kesu::eOk);
  EXPECT_EQ(krrfReflectionService()->reflectionPE(Dog::desc(), false), nullptr);
  EXPECT_EQ(Dog::desc()->queryX(KrRfReflectionPE::desc()), nullptr);
  EXPECT_EQ(krrfReflectionService()->reflectionPE(nullptr, true), nullptr);
}

TEST_F(ReflectionTest, AClassDoesNotAnswerWithTheExtensionItInheritsAndAnEmptyOneIsPassedOver) {
  add(Animal::desc(), L"legs");
  EXPECT_NE(Mammal::desc()->queryX(KrRfReflectionPE::desc()), nullptr);
  EXPECT_EQ(krrfReflectionService()->reflectionPE(Mammal::desc(), false), nullptr);
  KrRfReflectionPE* own = krrfReflectionService()->reflectionPE(Mammal::desc(), true);
  EXPECT_EQ(own->ownerClass(), Mammal::desc());
  EXPECT_EQ(krrfReflectionService()->reflectionPE(Animal::desc(), false)->ownerClass(), Animal::desc());
  EXPECT_EQ(walk(own->newSymbolIterator(nullptr)), (std::vector<std::wstring>{L"Animal.legs"}));
  add(Mammal::desc(), L"fur");
}

TEST_F(ReflectionTest, IterationRunsRootFirstAndPassesOverClassesWithoutSymbols) {
  add(Dog::desc(), L"bark");
  add(Animal::desc(), L"legs");
  add(Animal::desc(), L"eyes");
  KrRfReflectionPE* dog = krrfReflectionService()->reflectionPE(Dog::desc(), false);
  EXPECT_EQ(walk(dog->newSymbolIterator(nullptr)),
            (std::vector<std::wstring>{L"Animal.legs", L"Animal.eyes", L"Dog.bark"}));
  add(Mammal::desc(), L"fur");
  EXPECT_EQ(walk(dog->newSymbolIterator(nullptr)),
            (std::vector<std::wstring>{L"Animal.legs", L"Animal.eyes", L"Mammal.fur", L"Dog.bark"}));
  EXPECT_EQ(dog->findSymbol(L"legs"), krrfReflectionService()->reflectionPE(Animal::desc(), false)->symbolAt(L"legs"));
  EXPECT_EQ(dog->findSymbol(L"bark"), dog->symbolAt(L"bark"));
  EXPECT_EQ(dog->findSymbol(L"leaves"), nullptr);
  EXPECT_EQ(dog->symbolAt(L"legs"), nullptr);
}

TEST_F(ReflectionTest, IterationSeesSymbolsAddedAndRemovedBetweenWalksInIdOrder) {
  TestSymbol* legs = add(Animal::desc(), L"legs");
  TestSymbol* eyes = add(Animal::desc(), L"eyes");
  add(Animal::desc(), L"tail");
  add(Mammal::desc(), L"fur");
  add(Dog::desc(), L"bark");
  KrRfReflectionPE* animal = krrfReflectionService()->reflectionPE(Animal::desc(), false);
  KrRfReflectionPE* dog = krrfReflectionService()->reflectionPE(Dog::desc(), false);
  ASSERT_EQ(animal->removeSymbol(eyes), Kesu::eOk);
  EXPECT_EQ(walk(dog->newSymbolIterator(nullptr)),
            (std::vector<std::wstring>{L"Animal.legs", L"Animal.tail", L"Mammal.fur", L"Dog.bark"}));
  // A symbol put back comes last in its class; free positions at the end of
  // one class's symbols lead on to the next class.
  ASSERT_EQ(animal->addSymbol(eyes), Kesu::eOk);
  ASSERT_EQ(animal->removeSymbol(legs), Kesu::eOk);
  ASSERT_EQ(animal->removeSymbol(eyes), Kesu::eOk);
  EXPECT_EQ(walk(dog->newSymbolIterator(nullptr)),
            (std::vector<std::wstring>{L"Animal.tail", L"Mammal.fur", L"Dog.bark"}));
  ASSERT_EQ(animal->addSymbol(legs), Kesu::eOk);
  EXPECT_EQ(walk(dog->newSymbolIterator(nullptr)),
            (std::vector<std::wstring>{L"Animal.tail", L"Animal.legs", L"Mammal.fur", L"Dog.bark"}));
}

// Chains of every length walk the same, whether the iterator keeps their
// extensions beside itself or in a list of its own that grows.
TEST_F(ReflectionTest, IterationOverLongChainsRunsRootFirst) {
  static const wchar_t* const kSymbols[] = {L"s0", L"s1", L"s2", L"s3", L"s4", L"s5", L"s6", L"s7", L"s8",
                                            L"s9", L"s10", L"s11", L"s12", L"s13", L"s14", L"s15", L"s16"};
  for (int depth : {1, 8, 9, 17}) {
    std::vector<KrRxClass*> chain;
    std::wstring parent = L"KrRxObject";
    for (int level = 0; level < depth; ++level) {
      std::wstring name = L"Chain" + std::to_wstring(depth) + L"_" + std::to_wstring(level);
      chain.push_back(newKrRxClass(name.c_str(), parent.c_str(), 0, nullptr, nullptr, nullptr));
      parent = name;
    }
    krrxBuildClassHierarchy();
    std::vector<std::wstring> expected;
    for (int level = 0; level < depth; ++level) {
      add(chain[level], kSymbols[level]);
      expected.push_back(parent.substr(0, parent.rfind(L'_') + 1) + std::to_wstring(level) + L"." + kSymbols[level]);
    }
    KrRfReflectionPE* deepest = krrfReflectionService()->reflectionPE(chain.back(), false);
    EXPECT_EQ(walk(deepest->newSymbolIterator(nullptr)), expected) << depth;
    EXPECT_EQ(walk(deepest->newSymbolIterator(chain[depth / 2])), std::vector<std::wstring>{expected[depth / 2]})
        << depth;
  }
}

TEST_F(ReflectionTest, IterationRestrictedToAClassVisitsOnlyItsOwnSymbols) {
  add(Animal::desc(), L"legs");
  add(Dog::desc(), L"bark");
  add(Plant::desc(), L"leaves");
  KrRfReflectionPE* dog = krrfReflectionService()->reflectionPE(Dog::desc(), false);
  EXPECT_EQ(walk(dog->newSymbolIterator(Animal::desc())), (std::vector<std::wstring>{L"Animal.legs"}));
  EXPECT_EQ(walk(dog->newSymbolIterator(Dog::desc())), (std::vector<std::wstring>{L"Dog.bark"}));
  EXPECT_TRUE(walk(dog->newSymbolIterator(Mammal::desc())).empty());
  EXPECT_TRUE(walk(dog->newSymbolIterator(Plant::desc())).empty());
  KrRfReflectionPE* animal = krrfReflectionService()->reflectionPE(Animal::desc(), false);
  EXPECT_TRUE(walk(animal->newSymbolIterator(Dog::desc())).empty());
}

TEST_F(ReflectionTest, LookupByGuidComparesBothHalves) {
  TestSymbol* legs = add(Animal::desc(), L"legs", 1, 2);
  TestSymbol* bark = add(Dog::desc(), L"bark", 1, 3);
  add(Dog::desc(), L"tail", 4, 2);
  KrRfReflectionPE* dog = krrfReflectionService()->reflectionPE(Dog::desc(), false);
  GUID guid;
  EXPECT_EQ(dog->symbolAt(*legs->getGuid(&guid)), legs);
  EXPECT_EQ(dog->symbolAt(*bark->getGuid(&guid)), bark);
  TestSymbol probe(L"probe", 4, 3);
  EXPECT_EQ(dog->symbolAt(*probe.getGuid(&guid)), nullptr);
  EXPECT_EQ(krrfReflectionService()->reflectionPE(Animal::desc(), false)->symbolAt(*bark->getGuid(&guid)), nullptr);
  EXPECT_EQ(dog->propertyAt(*legs->getGuid(&guid)), nullptr);
}

TEST_F(ReflectionTest, PropertyAtAnswersOnlyProperties) {
  add(Plant::desc(), L"leaves");
  TestProperty height(L"height", nullptr);
  KrRfReflectionPE* plant = krrfReflectionService()->reflectionPE(Plant::desc(), false);
  ASSERT_EQ(plant->addSymbol(&height), Kesu::eOk);
  EXPECT_EQ(plant->propertyAt(L"leaves"), nullptr);
  EXPECT_EQ(plant->propertyAt(L"height"), &height);
  GUID guid;
  EXPECT_EQ(plant->propertyAt(*height.getGuid(&guid)), &height);
  EXPECT_EQ(plant->removeSymbol(&height), Kesu::eOk);
  // A property that its module does not make readable or writable answers 1.
  Plant object, value;
  EXPECT_EQ(height.getValue(&object, &value), Kesu::eNotApplicable);
  EXPECT_EQ(height.setValue(&object, &value), Kesu::eNotApplicable);
}

}  // namespace
