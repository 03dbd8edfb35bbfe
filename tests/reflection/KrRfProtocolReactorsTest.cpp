// Symbol filters and reflection providers, the protocol reactors of reflection.

#include <gtest/gtest.h>

#include <vector>

#include "KrRfTestSymbols.h"

namespace {

KrRxProtocolReactorList* reactorList(KrRxClass* cls, KrRxClass* reactorClass) {
  auto* services = KrRxDictionary::cast(krrxSysRegistry()->at(L"ServiceDictionary"));
  auto* factory = KrRxProtocolReactorManagerFactory::cast(services->at(L"ProtocolReactorManager"));
  return factory->createReactorManager(cls)->createReactorList(reactorClass);
}

// Attached to a class for one test's length.
class Attached {
 public:
  Attached(KrRxClass* cls, KrRxProtocolReactor* reactor, KrRxClass* reactorClass)
      : mpList(reactorList(cls, reactorClass)), mpReactor(reactor) {
    EXPECT_EQ(mpList->addReactor(reactor), Kesu::eOk);
  }
  ~Attached() { mpList->removeReactor(mpReactor); }

 private:
  KrRxProtocolReactorList* mpList;
  KrRxProtocolReactor* mpReactor;
};

// Hides one symbol; records what it was asked.
class Hider : public KrRxSymbolFilterPR {
 public:
  explicit Hider(const KrRfSymbol* hidden) : mpHidden(hidden) {}
  bool isSymbolApplicable(const KrRxObject* object, const KrRfSymbol* symbol,
                          const KrRxReflectionContext* context) const override {
    mAsked.push_back(object);
    mContext = context;
    return symbol != mpHidden;
  }
  mutable std::vector<const KrRxObject*> mAsked;
  mutable const KrRxReflectionContext* mContext = nullptr;

 private:
  const KrRfSymbol* mpHidden;
};

TEST(KrRxSymbolIsApplicable, WithoutFiltersEverySymbolIsApplicable) {
  TestSymbol legs(L"legs");
  Dog dog;
  EXPECT_TRUE(krrxSymbolIsApplicable(&dog, &legs, nullptr));
  EXPECT_FALSE(krrxSymbolIsApplicable(nullptr, &legs, nullptr));
}

TEST(KrRxSymbolIsApplicable, AFilterOnABaseClassVetoesForDerivedObjects) {
  TestSymbol legs(L"legs"), tail(L"tail");
  Hider hideTail(&tail);
  Attached attached(Animal::desc(), &hideTail, KrRxSymbolFilterPR::desc());
  Dog dog;
  Plant plant;
  const auto* context = reinterpret_cast<const KrRxReflectionContext*>(&plant);
  EXPECT_TRUE(krrxSymbolIsApplicable(&dog, &legs, context));
  EXPECT_EQ(hideTail.mContext, context);
  EXPECT_FALSE(krrxSymbolIsApplicable(&dog, &tail, nullptr));
  EXPECT_TRUE(krrxSymbolIsApplicable(&plant, &tail, nullptr));
  EXPECT_EQ(hideTail.mAsked, (std::vector<const KrRxObject*>{&dog, &dog}));
}

TEST(KrRxSymbolIsApplicable, OnlyTheFirstFilterOfAClassIsAsked) {
  TestSymbol legs(L"legs"), tail(L"tail");
  Hider first(&tail), second(&legs), onMammal(&legs);
  Attached a(Dog::desc(), &first, KrRxSymbolFilterPR::desc());
  Attached b(Dog::desc(), &second, KrRxSymbolFilterPR::desc());
  Dog dog;
  EXPECT_TRUE(krrxSymbolIsApplicable(&dog, &legs, nullptr));
  EXPECT_TRUE(second.mAsked.empty());
  Attached c(Mammal::desc(), &onMammal, KrRxSymbolFilterPR::desc());
  EXPECT_FALSE(krrxSymbolIsApplicable(&dog, &legs, nullptr));
  EXPECT_FALSE(krrxSymbolIsApplicable(&dog, &tail, nullptr));
  EXPECT_EQ(onMammal.mAsked.size(), 1u);
}

// Supplies one symbol for Plant, or none.
class Provider : public KrRfReflectionProviderPR {
 public:
  explicit Provider(KrRfSymbol* symbol) : mpSymbol(symbol) {}
  void provideSymbols(KrRxClass* cls, KrRfReflectionService* service) const override {
    ++mCalls;
    if (mpSymbol) service->reflectionPE(cls, true)->addSymbol(mpSymbol);
  }
  mutable int mCalls = 0;

 private:
  KrRfSymbol* mpSymbol;
};

TEST(KrRfReflectionService, ProvidersSupplyTheSymbolsOfAClassOnRequest) {
  KrRfReflectionService* service = krrfReflectionService();
  EXPECT_EQ(service->requestReflectionPE(Plant::desc()), nullptr);
  TestSymbol leaves(L"leaves");
  Provider none(nullptr), some(&leaves), later(&leaves);
  Attached a(Plant::desc(), &none, KrRfReflectionProviderPR::desc());
  Attached b(Plant::desc(), &some, KrRfReflectionProviderPR::desc());
  Attached c(Plant::desc(), &later, KrRfReflectionProviderPR::desc());
  KrRfReflectionPE* pe = service->requestReflectionPE(Plant::desc());
  ASSERT_NE(pe, nullptr);
  EXPECT_EQ(pe->symbolAt(L"leaves"), &leaves);
  EXPECT_EQ(service->requestReflectionPE(Plant::desc()), pe);
  EXPECT_EQ(none.mCalls + some.mCalls + later.mCalls, 2);
  EXPECT_EQ(later.mCalls, 0);
  EXPECT_EQ(pe->removeSymbol(&leaves), Kesu::eOk);
}

}  // namespace
