// The extensions that describe a property, found on the property object as a
// module's user finds them; effective values read through the derivation
// extension when the value is derived, else straight from the property.

#include <gtest/gtest.h>

#include <cwchar>

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

// A leg count is one of 2, 4, 6 and 8, between 0 (included) and 8 (excluded)
// on a creature, and a gait lists between 1 and 4 steps: one object of each
// extension, as a module would attach them.
class LegChoices : public KrRfPropertyEnumPE {
 public:
  int count(const KrRfProperty*) const override { return 4; }
  Kesu::ErrorStatus getValueAt(const KrRfProperty* p, int index, KrRxObject* value) const override {
    if (index < 0 || index >= count(p)) return Kesu::eInvalidIndex;
    *KrVtInt32::cast(value) = 2 * (index + 1);
    return Kesu::eOk;
  }
  const wchar_t* displayNameAt(const KrRfProperty* p, int index) const override {
    static const wchar_t* const kNames[] = {L"biped", L"quadruped", L"insect", L"spider"};
    return index >= 0 && index < count(p) ? kNames[index] : nullptr;
  }
  bool isExclusive(const KrRfProperty*) const override { return true; }
  int indexOf(const KrRfProperty* p, const KrRxObject* value) const override {
    for (int index = 0; index < count(p); ++index)
      if (KrVtInt32::cast(value)->value() == 2 * (index + 1)) return index;
    return -1;
  }
};

class LegLimits : public KrRfPropertyRangePE {
 public:
  bool getRange(const KrRfProperty*, const KrRxObject* object, const KrRfValue*& lower, bool& lowerInclusive,
                const KrRfValue*& upper, bool& upperInclusive) const override {
    if (!Dog::cast(object)) return false;
    lower = &mLower;
    upper = &mUpper;
    lowerInclusive = true;
    upperInclusive = false;
    return true;
  }
  KrVtInt32 mLower{0}, mUpper{8};
};

class GaitLengths : public KrRfArrayPropertyDetailsPE {
 public:
  Kesu::ErrorStatus getLengthLimits(const KrRfProperty*, const KrRxObject*, int& minLength,
                                    int& maxLength) const override {
    minLength = 1;
    maxLength = 4;
    return Kesu::eOk;
  }
};

TEST(KrRfPropertyExtensions, AttachedToThePropertyClassTheyAreFoundOnTheProperty) {
  LegChoices choices;
  LegLimits limits;
  GaitLengths gait;
  LegsProperty::desc()->addX(KrRfPropertyEnumPE::desc(), &choices);
  LegsProperty::desc()->addX(KrRfPropertyRangePE::desc(), &limits);
  LegsProperty::desc()->addX(KrRfArrayPropertyDetailsPE::desc(), &gait);
  LegsProperty legs;
  Creature spider;

  auto* enumPE = KrRfPropertyEnumPE::cast(legs.queryX(KrRfPropertyEnumPE::desc()));
  ASSERT_EQ(enumPE, &choices);
  KrVtInt32 value;
  EXPECT_EQ(enumPE->getValueAt(&legs, 3, &value), Kesu::eOk);
  EXPECT_EQ(value.value(), 8);
  EXPECT_STREQ(enumPE->displayNameAt(&legs, enumPE->indexOf(&legs, &value)), L"spider");
  EXPECT_EQ(enumPE->getValueAt(&legs, 4, &value), Kesu::eInvalidIndex);

  // The limits go straight into the range check of the value.
  auto* rangePE = KrRfPropertyRangePE::cast(legs.queryX(KrRfPropertyRangePE::desc()));
  ASSERT_EQ(rangePE, &limits);
  const KrRfValue *lower = nullptr, *upper = nullptr;
  bool lowerIn = false, upperIn = true;
  ASSERT_TRUE(rangePE->getRange(&legs, &spider, lower, lowerIn, upper, upperIn));
  auto* check = KrRfRangeCheckPE::cast(value.queryX(KrRfRangeCheckPE::desc()));
  ASSERT_NE(check, nullptr);
  EXPECT_FALSE(check->isInRange(&value, lower, lowerIn, upper, upperIn)) << "8 is the excluded upper limit";
  value = 0;
  EXPECT_TRUE(check->isInRange(&value, lower, lowerIn, upper, upperIn));
  Plant fern;
  EXPECT_FALSE(rangePE->getRange(&legs, &fern, lower, lowerIn, upper, upperIn));

  auto* arrayPE = KrRfArrayPropertyDetailsPE::cast(legs.queryX(KrRfArrayPropertyDetailsPE::desc()));
  ASSERT_EQ(arrayPE, &gait);
  int minLength = 0, maxLength = 0;
  EXPECT_EQ(arrayPE->getLengthLimits(&legs, &spider, minLength, maxLength), Kesu::eOk);
  EXPECT_EQ(maxLength - minLength, 3);

  // Another property class, and the object the property describes, carry none of them.
  TestProperty other(L"other", nullptr);
  for (KrRxClass* extension :
       {KrRfPropertyEnumPE::desc(), KrRfPropertyRangePE::desc(), KrRfArrayPropertyDetailsPE::desc()}) {
    EXPECT_EQ(other.queryX(extension), nullptr) << extension->name();
    EXPECT_EQ(spider.queryX(extension), nullptr) << extension->name();
    LegsProperty::desc()->delX(extension);
  }
  EXPECT_EQ(legs.queryX(KrRfPropertyEnumPE::desc()), nullptr);
}

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
