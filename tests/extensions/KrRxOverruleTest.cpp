// Overrules: registration, the order in which lists are consulted, the
// master switch and the overruled queryX.

#include <gtest/gtest.h>

#include <string>

#include "KrExtensionsTestSupport.h"
#include "KrObjectOfClass.h"
#include "kr1st.h"
#include "runtime/KrRxImpClass.h"

namespace {

// Base <- Middle <- Derived, objects of which carry a flag that overrules select on.
class Base : public KrRxObject {
  KRRX_DECLARE_MEMBERS(Base);

 public:
  bool mSelected = false;
};
class Middle : public Base {
  KRRX_DECLARE_MEMBERS(Middle);
};
class Derived : public Middle {
  KRRX_DECLARE_MEMBERS(Derived);
};
// A protocol class.
class Probe : public KrRxObject {
  KRRX_DECLARE_MEMBERS(Probe);
};
KRRX_CONS_DEFINE_MEMBERS(Base, KrRxObject)
KRRX_CONS_DEFINE_MEMBERS(Middle, Base)
KRRX_CONS_DEFINE_MEMBERS(Derived, Middle)
KRRX_CONS_DEFINE_MEMBERS(Probe, KrRxObject)

// Answers queryX with its own protocol object for the objects it applies to,
// and writes its tag into a shared trace each time it is asked.
class TracingQueryX : public KrRxQueryXOverrule {
 public:
  TracingQueryX(char tag, std::string& trace, bool onlySelected = false)
      : mTag(tag), mTrace(trace), mOnlySelected(onlySelected) {}
  bool isApplicable(const KrRxObject* object) const override {
    mTrace += mTag;
    const Base* base = Base::cast(object);
    return mApplies && (!mOnlySelected || (base && base->mSelected));
  }
  KrRxObject* queryX(const KrRxObject*, const KrRxClass*) const override {
    return const_cast<Probe*>(&mAnswer);
  }
  bool mApplies = true;
  Probe mAnswer;

 private:
  char mTag;
  std::string& mTrace;
  bool mOnlySelected;
};

// An overrule of another kind than queryX: never chosen for queryX.
class OtherKind : public KrRxOverrule {
  KRRX_DECLARE_MEMBERS(OtherKind);

 public:
  bool isApplicable(const KrRxObject*) const override { return true; }
};
KRRX_CONS_DEFINE_MEMBERS(OtherKind, KrRxOverrule)

// A query overrule that keeps the plain lookup.
class PlainQueryX : public KrRxQueryXOverrule {
 public:
  bool isApplicable(const KrRxObject*) const override { return true; }
};

class Registered : public ::testing::Environment {
 public:
  void SetUp() override {
    Base::rxInit();
    Middle::rxInit();
    Derived::rxInit();
    Probe::rxInit();
    OtherKind::rxInit();
    krrxBuildClassHierarchy();
  }
};
const auto* const kRegistered = ::testing::AddGlobalTestEnvironment(new Registered);

KrRxClass* queryXKind() { return KrRxQueryXOverrule::desc(); }

// Every test starts with overruling on and leaves no overrule behind.
class KrRxOverruleTest : public ::testing::Test {
 protected:
  void SetUp() override {
    Base::desc()->addX(Probe::desc(), &mPlainAnswer);
    KrRxOverrule::setIsOverruling(true);
  }
  void TearDown() override {
    KrRxOverrule::setIsOverruling(false);
    for (auto& [cls, overrule] : mRegistered) KrRxOverrule::removeOverrule(cls, overrule);
    Base::desc()->delX(Probe::desc());
  }
  Kesu::ErrorStatus add(KrRxClass* cls, KrRxOverrule* overrule, bool addAtLast = false) {
    Kesu::ErrorStatus status = KrRxOverrule::addOverrule(cls, overrule, addAtLast);
    if (status == Kesu::eOk) mRegistered.emplace_back(cls, overrule);
    return status;
  }

  Probe mPlainAnswer;
  std::string mTrace;
  std::vector<std::pair<KrRxClass*, KrRxOverrule*>> mRegistered;
};

}  // namespace

TEST_F(KrRxOverruleTest, RegistrationStatuses) {
  TracingQueryX overrule('a', mTrace);
  EXPECT_EQ(add(Middle::desc(), &overrule), Kesu::eOk);
  EXPECT_EQ(add(Middle::desc(), &overrule), Kesu::eDuplicateKey);
  EXPECT_EQ(add(Middle::desc(), &overrule, true), Kesu::eDuplicateKey) << "whatever the end";
  EXPECT_EQ(add(Derived::desc(), &overrule), Kesu::eOk) << "another class has a list of its own";
  EXPECT_EQ(add(nullptr, &overrule), Kesu::eInvalidInput);
  EXPECT_EQ(add(Base::desc(), nullptr), Kesu::eInvalidInput);

  TracingQueryX stranger('s', mTrace);
  EXPECT_EQ(KrRxOverrule::removeOverrule(Middle::desc(), &stranger), Kesu::eKeyNotFound);
  EXPECT_EQ(KrRxOverrule::removeOverrule(krMakeClass(L"Unlisted", Middle::desc()->name()), &overrule),
            Kesu::eKeyNotFound)
      << "a class without a list of its own, though it inherits one";
  EXPECT_EQ(KrRxOverrule::removeOverrule(nullptr, &overrule), Kesu::eKeyNotFound);
  EXPECT_EQ(KrRxOverrule::removeOverrule(Middle::desc(), nullptr), Kesu::eKeyNotFound);
  EXPECT_EQ(KrRxOverrule::removeOverrule(Middle::desc(), &overrule), Kesu::eOk);
  EXPECT_EQ(KrRxOverrule::removeOverrule(Middle::desc(), &overrule), Kesu::eKeyNotFound);
}

TEST_F(KrRxOverruleTest, ListsAreInheritedProtocolExtensionsThatStayWhenEmptied) {
  KrRxClass* holder = krMakeClass(L"Holder");
  KrRxClass* heir = krMakeClass(L"Heir", holder->name());
  TracingQueryX overrule('a', mTrace);
  ASSERT_EQ(add(holder, &overrule), Kesu::eOk);
  KrRxObject* list = holder->impObj()->ownX(KrRxOverruleInternals::desc());
  ASSERT_NE(list, nullptr);
  EXPECT_EQ(list->isA(), KrRxOverruleInternals::desc());
  EXPECT_EQ(heir->queryX(KrRxOverruleInternals::desc()), list) << "inherited through the table";
  EXPECT_EQ(heir->impObj()->ownX(KrRxOverruleInternals::desc()), nullptr);
  KrObjectOfClass object(heir);
  EXPECT_EQ(KrRxOverruleInternals::queryOverrule(&object, queryXKind()), &overrule);

  ASSERT_EQ(KrRxOverrule::removeOverrule(holder, &overrule), Kesu::eOk);
  EXPECT_EQ(holder->impObj()->ownX(KrRxOverruleInternals::desc()), list) << "still attached";
  EXPECT_EQ(KrRxOverruleInternals::queryOverrule(&object, queryXKind()), nullptr);
  EXPECT_EQ(add(holder, &overrule), Kesu::eOk);
  EXPECT_EQ(holder->impObj()->ownX(KrRxOverruleInternals::desc()), list) << "and used again";
}

TEST_F(KrRxOverruleTest, AListIsConsultedFromItsEnd) {
  TracingQueryX first('1', mTrace), second('2', mTrace), atLast('L', mTrace);
  ASSERT_EQ(add(Base::desc(), &first), Kesu::eOk);
  ASSERT_EQ(add(Base::desc(), &atLast, true), Kesu::eOk);
  ASSERT_EQ(add(Base::desc(), &second), Kesu::eOk);
  Base object;
  EXPECT_EQ(KrRxOverruleInternals::queryOverrule(&object, queryXKind()), &second) << "the newest first";

  for (TracingQueryX* overrule : {&first, &second, &atLast}) overrule->mApplies = false;
  mTrace.clear();
  EXPECT_EQ(KrRxOverruleInternals::queryOverrule(&object, queryXKind()), nullptr);
  EXPECT_EQ(mTrace, "21L") << "added at last, consulted after all others";

  first.mApplies = true;
  mTrace.clear();
  EXPECT_EQ(KrRxOverruleInternals::queryOverrule(&object, queryXKind()), &first);
  EXPECT_EQ(mTrace, "21") << "an inapplicable overrule passes to the next";
}

TEST_F(KrRxOverruleTest, DerivedClassListsComeBeforeBaseClassLists) {
  TracingQueryX onBase('B', mTrace), onDerived('D', mTrace);
  ASSERT_EQ(add(Base::desc(), &onBase), Kesu::eOk);
  Derived derived;
  Middle middle;
  EXPECT_EQ(KrRxOverruleInternals::queryOverrule(&derived, queryXKind()), &onBase)
      << "a base class's overrule acts for objects of derived classes";

  ASSERT_EQ(add(Derived::desc(), &onDerived), Kesu::eOk);
  EXPECT_EQ(KrRxOverruleInternals::queryOverrule(&derived, queryXKind()), &onDerived);
  EXPECT_EQ(KrRxOverruleInternals::queryOverrule(&middle, queryXKind()), &onBase);

  onDerived.mApplies = false;
  mTrace.clear();
  EXPECT_EQ(KrRxOverruleInternals::queryOverrule(&derived, queryXKind()), &onBase);
  EXPECT_EQ(mTrace, "DB");
}

TEST_F(KrRxOverruleTest, OnlyOverrulesOfTheAskedKindAreChosen) {
  OtherKind other;
  ASSERT_EQ(add(Base::desc(), &other), Kesu::eOk);
  Base object;
  EXPECT_EQ(KrRxOverruleInternals::queryOverrule(&object, queryXKind()), nullptr);
  EXPECT_FALSE(KrRxOverrule::hasOverrule(&object, queryXKind()));
  EXPECT_EQ(KrRxOverruleInternals::queryOverrule(&object, OtherKind::desc()), &other);
  EXPECT_TRUE(KrRxOverrule::hasOverrule(&object, OtherKind::desc()));
  EXPECT_TRUE(KrRxOverrule::hasOverrule(&object, KrRxOverrule::desc())) << "kinds derive";
  EXPECT_EQ(object.queryX(Probe::desc()), &mPlainAnswer);
}

TEST_F(KrRxOverruleTest, QueryXGoesThroughTheChosenOverrule) {
  TracingQueryX selective('s', mTrace, true);
  ASSERT_EQ(add(Base::desc(), &selective), Kesu::eOk);
  Derived selected, ordinary;
  selected.mSelected = true;
  EXPECT_EQ(selected.queryX(Probe::desc()), &selective.mAnswer);
  EXPECT_EQ(ordinary.queryX(Probe::desc()), &mPlainAnswer) << "the others keep the plain lookup";
  EXPECT_EQ(selected.x(Probe::desc()), &mPlainAnswer) << "x is not overruled";

  PlainQueryX plain;
  ASSERT_EQ(add(Derived::desc(), &plain), Kesu::eOk);
  EXPECT_EQ(selected.queryX(Probe::desc()), &mPlainAnswer) << "the base version is the plain lookup";
  EXPECT_EQ(plain.KrRxQueryXOverrule::queryX(nullptr, Probe::desc()), nullptr);
}

TEST_F(KrRxOverruleTest, TheSwitchOffMakesEverythingPlain) {
  TracingQueryX overrule('a', mTrace);
  ASSERT_EQ(add(Base::desc(), &overrule), Kesu::eOk);
  Base object;
  EXPECT_TRUE(KrRxOverrule::isOverruling());
  EXPECT_TRUE(KrRxOverrule::hasOverrule(&object, queryXKind()));
  EXPECT_EQ(object.queryX(Probe::desc()), &overrule.mAnswer);

  KrRxOverrule::setIsOverruling(false);
  EXPECT_FALSE(KrRxOverrule::isOverruling());
  mTrace.clear();
  EXPECT_FALSE(KrRxOverrule::hasOverrule(&object, queryXKind()));
  EXPECT_EQ(object.queryX(Probe::desc()), &mPlainAnswer);
  EXPECT_EQ(mTrace, "") << "no overrule is asked";
  EXPECT_EQ(KrRxOverruleInternals::queryOverrule(&object, queryXKind()), &overrule)
      << "the lookup itself ignores the switch";
}

TEST_F(KrRxOverruleTest, NullObjectsAndClassesFindNothing) {
  TracingQueryX overrule('a', mTrace);
  ASSERT_EQ(add(Base::desc(), &overrule), Kesu::eOk);
  EXPECT_EQ(KrRxOverruleInternals::queryOverrule(nullptr, queryXKind()), nullptr);
  EXPECT_FALSE(KrRxOverrule::hasOverrule(nullptr, queryXKind()));
  Base object;
  EXPECT_EQ(KrRxOverruleInternals::queryOverrule(&object, nullptr), nullptr);
  KrRxObject root;
  EXPECT_EQ(KrRxOverruleInternals::queryOverrule(&root, queryXKind()), nullptr) << "no list up to the root";
}

TEST(KrRxOverruleLifetimeTest, AClassTakesItsOverruleListAlong) {
  PlainQueryX overrule;
  EXPECT_LT(krHeapGrowthOfAttaching([&](KrRxClass* cls) { KrRxOverrule::addOverrule(cls, &overrule, false); }), 4096);
}
