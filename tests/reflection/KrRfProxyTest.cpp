// Pointers and references: typing, ownership, copying and ordering.

#include <gtest/gtest.h>

#include "kr1st.h"

namespace {

// Counts its destructions, so ownership mistakes show as wrong counts.
class Counted : public KrRxTextString {
 public:
  explicit Counted(const wchar_t* text = L"") : KrRxTextString(text, -1) {}
  Counted(const Counted& other) : KrRxTextString(other) {}
  ~Counted() override { ++destroyed; }
  KrRxObject* clone() const override { return new Counted(*this); }
  static int destroyed;
};
int Counted::destroyed = 0;

class KrRfProxyTest : public ::testing::Test {
 protected:
  void SetUp() override { Counted::destroyed = 0; }
};

TEST_F(KrRfProxyTest, ThePointerClassesKnowTheirObjectTypes) {
  EXPECT_EQ(KrRxObjectPointer().objectType(), KrRxObject::desc());
  EXPECT_EQ(KrRxClassPointer().objectType(), KrRxClass::desc());
  EXPECT_EQ(KrRfValuePointer().objectType(), KrRfValue::desc());
  EXPECT_EQ(KrRfReference().objectType(), KrRxObject::desc());
  KrRxObject* made = KrRxObjectPointer::desc()->create();
  ASSERT_NE(made, nullptr);
  EXPECT_EQ(made->isA(), KrRxObjectPointer::desc());
  delete made;
}

TEST_F(KrRfProxyTest, SetObjectRefusesTheWrongKindAndKeepsTheOldObject) {
  KrRxClassPointer classes(KrRxTextString::desc(), false);
  KrRxTextString plain(L"not a class", -1);
  EXPECT_EQ(classes.setObject(&plain, false), Kesu::eWrongObjectType);
  EXPECT_EQ(classes.object(), KrRxTextString::desc());
  EXPECT_EQ(classes.setObject(nullptr, false), Kesu::eOk) << "a pointer may be null";
  EXPECT_EQ(classes.object(), nullptr);

  KrVtInt32 number(3);
  KrRfValuePointer values;
  EXPECT_EQ(values.setObject(&plain, false), Kesu::eWrongObjectType);
  EXPECT_EQ(values.setObject(&number, false), Kesu::eOk);
  EXPECT_EQ(values.object()->sizeOf(), 4u) << "typed access";

  KrRfReference reference(&number, false);
  EXPECT_EQ(reference.setObject(nullptr, false), Kesu::eInvalidInput);
  EXPECT_EQ(reference.object(), &number);
}

TEST_F(KrRfProxyTest, AnOwnedObjectIsDestroyedExactlyOnce) {
  {
    KrRxObjectPointer pointer(new Counted(L"first"), true);
    EXPECT_EQ(pointer.flags(), KrRfProxy::kOwnsObject);
    Counted second(L"second");
    EXPECT_EQ(pointer.setObject(&second, false), Kesu::eOk);
    EXPECT_EQ(Counted::destroyed, 1) << "the owned first object went";
    EXPECT_EQ(pointer.flags(), 0u);
    EXPECT_EQ(pointer.setObject(new Counted(L"third"), true), Kesu::eOk);
    EXPECT_EQ(Counted::destroyed, 1) << "second was not owned";
    Counted* fourth = new Counted(L"fourth");
    KrRfReference reference(fourth, true);
  }
  EXPECT_EQ(Counted::destroyed, 4) << "third and fourth by their proxies, second off the stack";
}

TEST_F(KrRfProxyTest, SetFlagsChangesOnlyTheMaskedBits) {
  KrRfPointer pointer(nullptr, true);
  pointer.setFlags(0xFF, 0x0F);
  EXPECT_EQ(pointer.flags(), 0x1000Fu);
  pointer.setFlags(0, KrRfProxy::kOwnsObject);
  EXPECT_EQ(pointer.flags(), 0x0Fu);
}

TEST_F(KrRfProxyTest, CopyingClonesOnlyWhenTheSourceAsksForIt) {
  Counted original(L"shared");
  KrRfPointer cloning(&original, false);
  cloning.setFlags(KrRfProxy::kCloneOnCopy, KrRfProxy::kCloneOnCopy);
  {
    KrRfPointer copy;
    EXPECT_EQ(copy.copyFrom(&cloning), Kesu::eOk);
    ASSERT_NE(copy.object(), nullptr);
    EXPECT_NE(copy.object(), &original);
    EXPECT_TRUE(copy.object()->isEqualTo(&original));
    EXPECT_EQ(copy.flags(), KrRfProxy::kCloneOnCopy | KrRfProxy::kOwnsObject);
  }
  EXPECT_EQ(Counted::destroyed, 1) << "the copy owned its clone";

  KrRfPointer sharing(&original, false);
  KrRfPointer copy(nullptr, true);
  copy.setFlags(KrRfProxy::kCloneOnCopy, KrRfProxy::kCloneOnCopy);
  EXPECT_EQ(copy.copyFrom(&sharing), Kesu::eOk);
  EXPECT_EQ(copy.object(), &original);
  EXPECT_EQ(copy.flags(), 0u) << "shares and owns nothing";

  KrRfReference reference;
  EXPECT_EQ(copy.copyFrom(&reference), Kesu::eNotSupported);
  EXPECT_EQ(reference.copyFrom(&copy), Kesu::eNotSupported);
  KrRfReference other(&original, false);
  reference.setFlags(0x40, 0x40);
  EXPECT_EQ(reference.copyFrom(&other), Kesu::eOk);
  EXPECT_EQ(reference.object(), &original);
  EXPECT_EQ(reference.flags(), 0x40u) << "a reference keeps its flags";
}

TEST_F(KrRfProxyTest, CopyFromDoesNotDestroyThePreviouslyOwnedObject) {
  Counted* owned = new Counted(L"owned");
  KrRfPointer pointer(owned, true);
  KrRfPointer empty;
  EXPECT_EQ(pointer.copyFrom(&empty), Kesu::eOk);
  EXPECT_EQ(Counted::destroyed, 0);
  delete owned;
}

TEST_F(KrRfProxyTest, ProxiesCompareByTheAddressOfTheirObject) {
  KrVtInt32 values[2];
  KrRfPointer first(&values[0], false), second(&values[1], false), again(&values[0], false);
  KrRfReference sameAsFirst(&values[0], false);
  EXPECT_EQ(first.comparedTo(&second), KrRx::kLessThan);
  EXPECT_EQ(second.comparedTo(&first), KrRx::kGreaterThan);
  EXPECT_EQ(first.comparedTo(&again), KrRx::kEqual);
  EXPECT_TRUE(first.isEqualTo(&sameAsFirst));
  EXPECT_FALSE(first.isEqualTo(&second));
  EXPECT_EQ(first.comparedTo(&values[0]), KrRx::kNotOrderable);
  EXPECT_FALSE(first.isEqualTo(&values[0]));
}

}  // namespace
