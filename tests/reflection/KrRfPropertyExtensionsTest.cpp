// Effective values: read through a property's derivation extension when the
// value is derived, else straight from the property.

#include <gtest/gtest.h>

#include "KrRfTestSymbols.h"

namespace {

// A value holding an int.
class Number : public KrRxObject {
 public:
  int mValue = 0;
};

// Animals know their leg count; a derived one takes its source's, doubled.
class Creature : public Dog {
 public:
  int mLegs = 4;
  const KrRxObject* mpSource = nullptr;
};

Kesu::ErrorStatus readLegs(const KrRxObject* object, KrRxObject* value) {
  static_cast<Number*>(value)->mValue = static_cast<const Creature*>(object)->mLegs;
  return Kesu::eOk;
}

// A property class of its own, so that extensions attach to it alone.
class LegsProperty : public TestProperty {
  KRRX_DECLARE_MEMBERS(LegsProperty);

 public:
  LegsProperty() : TestProperty(L"legs", nullptr, readLegs) {}
};
KRRX_NO_CONS_DEFINE_MEMBERS(LegsProperty, KrRfProperty)

class Derivation : public KrRfPropertyDerivationPE {
 public:
  bool isDerivable(const KrRfProperty*, const KrRxObject*) const override { return true; }
  KrRxClass* sourceClass(const KrRfProperty*) const override { return Animal::desc(); }
  Kesu::ErrorStatus setDerived(const KrRfProperty*, KrRxObject*, bool) const override { return Kesu::eOk; }
  bool isDerived(const KrRfProperty*, const KrRxObject* object, const KrRxObject*& source) const override {
    source = static_cast<const Creature*>(object)->mpSource;
    return source != nullptr;
  }
  Kesu::ErrorStatus setSource(const KrRfProperty*, KrRxObject*, const KrRxObject*) const override {
    return Kesu::eOk;
  }
  Kesu::ErrorStatus getDerivedValue(const KrRfProperty* p, const KrRxObject*, const KrRxObject* source,
                                    KrRxObject* value) const override {
    if (source == mpFailing) return Kesu::eNotApplicable;
    Kesu::ErrorStatus status = p->getValue(source, value);
    static_cast<Number*>(value)->mValue *= 2;
    return status;
  }
  const KrRxObject* mpFailing = nullptr;
};

class Registered : public ::testing::Environment {
 public:
  void SetUp() override {
    LegsProperty::rxInit();
    krrxBuildClassHierarchy();
  }
};
const auto* const kEnvironment = ::testing::AddGlobalTestEnvironment(new Registered);

TEST(KrRfGetEffectiveValueForObject, WithoutDerivationItIsTheValueRead) {
  LegsProperty legs;
  Creature spider;
  spider.mLegs = 8;
  Number value;
  EXPECT_EQ(krrfGetEffectiveValueForObject(&legs, &spider, &value), Kesu::eOk);
  EXPECT_EQ(value.mValue, 8);
  TestProperty unreadable(L"unreadable", nullptr);
  EXPECT_EQ(krrfGetEffectiveValueForObject(&unreadable, &spider, &value), Kesu::eNotApplicable);
}

TEST(KrRfGetEffectiveValueForObject, ADerivedValueComesFromTheDerivationExtension) {
  Derivation derivation;
  LegsProperty::desc()->addX(KrRfPropertyDerivationPE::desc(), &derivation);
  LegsProperty legs;
  Creature source, own, derived, broken;
  source.mLegs = 3;
  derived.mpSource = &source;
  broken.mpSource = &own;
  derivation.mpFailing = &own;
  Number value;
  EXPECT_EQ(krrfGetEffectiveValueForObject(&legs, &own, &value), Kesu::eOk);
  EXPECT_EQ(value.mValue, 4);
  EXPECT_EQ(krrfGetEffectiveValueForObject(&legs, &derived, &value), Kesu::eOk);
  EXPECT_EQ(value.mValue, 6);
  EXPECT_EQ(legs.getValue(&derived, &value), Kesu::eOk);
  EXPECT_EQ(value.mValue, 4);
  EXPECT_EQ(krrfGetEffectiveValueForObject(&legs, &broken, &value), Kesu::eNotApplicable);
  TestProperty plain(L"plain", nullptr, readLegs);
  EXPECT_EQ(krrfGetEffectiveValueForObject(&plain, &derived, &value), Kesu::eOk);
  EXPECT_EQ(value.mValue, 4);
  LegsProperty::desc()->delX(KrRfPropertyDerivationPE::desc());
}

}  // namespace
