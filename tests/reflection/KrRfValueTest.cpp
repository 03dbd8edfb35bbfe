// Reflected values: their classes, layout, comparison and raw copying.

#include <gtest/gtest.h>

#include <cmath>
#include <cstring>

#include "kr1st.h"

namespace {

TEST(KrRfValueTest, EachKindIsItsRegisteredClassUnderItsParent) {
  struct Expected {
    KrRxObject* value;
    const wchar_t* name;
    const wchar_t* parent;
    unsigned int size;
  } kinds[] = {
      {new KrVtBool, L"KrVtBool", L"KrRfValue", 1},        {new KrVtInt8, L"KrVtInt8", L"KrRfNumber", 1},
      {new KrVtInt16, L"KrVtInt16", L"KrRfNumber", 2},     {new KrVtInt32, L"KrVtInt32", L"KrRfNumber", 4},
      {new KrVtInt64, L"KrVtInt64", L"KrRfNumber", 8},     {new KrVtUInt8, L"KrVtUInt8", L"KrRfNumber", 1},
      {new KrVtUInt16, L"KrVtUInt16", L"KrRfNumber", 2},   {new KrVtUInt32, L"KrVtUInt32", L"KrRfNumber", 4},
      {new KrVtUInt64, L"KrVtUInt64", L"KrRfNumber", 8},   {new KrVtFloat32, L"KrVtFloat32", L"KrRfNumber", 4},
      {new KrVtFloat64, L"KrVtFloat64", L"KrRfNumber", 8}, {new KrVtChar, L"KrVtChar", L"KrRfValue", 2},
  };
  for (const Expected& kind : kinds) {
    ASSERT_NE(kind.value->isA(), nullptr);
    EXPECT_STREQ(kind.value->isA()->name(), kind.name);
    EXPECT_STREQ(kind.value->isA()->myParent()->name(), kind.parent);
    KrRfValue* value = KrRfValue::cast(kind.value);
    ASSERT_NE(value, nullptr);
    EXPECT_EQ(value->sizeOf(), kind.size);
    EXPECT_EQ(value->addressOf(), reinterpret_cast<char*>(value) + sizeof(void*)) << "the field is right behind the header";
    KrRxObject* made = kind.value->isA()->create();
    ASSERT_NE(made, nullptr) << "pseudo-constructor";
    EXPECT_EQ(made->isA(), kind.value->isA());
    EXPECT_TRUE(made->isEqualTo(kind.value)) << "made at zero";
    delete made;
    delete kind.value;
  }
  EXPECT_EQ(KrVtBool().isKindOf(KrRfNumber::desc()), false);
}

TEST(KrRfValueTest, CloneCopiesTheValue) {
  KrVtInt32 value(-17);
  KrRxObject* copy = value.clone();
  ASSERT_NE(copy, nullptr);
  EXPECT_EQ(KrVtInt32::cast(copy)->value(), -17);
  delete copy;
}

TEST(KrRfValueTest, ComparedToOrdersAndAnswersNotOrderableForNaN) {
  KrVtFloat64 one(1.0), two(2.0), nan(std::nan(""));
  EXPECT_EQ(one.comparedTo(&two), KrRx::kLessThan);
  EXPECT_EQ(two.comparedTo(&one), KrRx::kGreaterThan);
  EXPECT_EQ(one.comparedTo(&one), KrRx::kEqual);
  EXPECT_EQ(nan.comparedTo(&one), KrRx::kNotOrderable);
  EXPECT_EQ(one.comparedTo(&nan), KrRx::kNotOrderable);
  EXPECT_FALSE(nan.isEqualTo(&nan)) << "NaN equals nothing";
  KrRxTextString text(L"1", -1);
  EXPECT_EQ(one.comparedTo(&text), KrRx::kNotOrderable);
  EXPECT_EQ(one.comparedTo(nullptr), KrRx::kNotOrderable);
  EXPECT_FALSE(one.isEqualTo(&text));
}

TEST(KrRfValueTest, CopyFromChecksTheClassButNotTheKind) {
  KrVtInt32 target(5);
  KrVtBool flag(true);
  EXPECT_EQ(target.copyFrom(&flag), Kesu::eInvalidInput) << "a flag is not a number";
  EXPECT_EQ(target.value(), 5);
  KrRxTextString text(L"x", -1);
  EXPECT_EQ(target.copyFrom(&text), Kesu::eInvalidInput);
  EXPECT_EQ(target.copyFrom(nullptr), Kesu::eInvalidInput);
  EXPECT_EQ(target.value(), 5);

  KrVtFloat64 number(1.5);
  EXPECT_EQ(target.copyFrom(&number), Kesu::eOk);
  int lowBytes;
  double held = 1.5;
  memcpy(&lowBytes, &held, sizeof lowBytes);
  EXPECT_EQ(target.value(), lowBytes) << "the other's stored bytes, not a conversion";

  KrVtChar letter(L'a');
  EXPECT_EQ(letter.copyFrom(&flag), Kesu::eOk) << "bool and wchar_t test against KrRfValue";
  EXPECT_EQ(KrVtInt32(7).isEqualTo(&number), false);
  KrVtUInt32 same(7);
  EXPECT_TRUE(KrVtInt32(7).isEqualTo(&same)) << "equal bytes are equal values";
}

// A value that keeps its number elsewhere, so the abstract layer's typed
// access must go through addressOf().
class ElsewhereValue : public KrRfValueAbstractT<int, KrRfNumber> {
 public:
  int stored = 0;
  void* addressOf() override { return &stored; }
  const void* addressOf() const override { return &stored; }
#define KR_UNUSED_CONVERSION(NAME, TYPE)                                  \
  Kesu::ErrorStatus to##NAME(TYPE&) const override { return Kesu::eNotSupported; } \
  Kesu::ErrorStatus from##NAME(TYPE) override { return Kesu::eNotSupported; }
  KR_UNUSED_CONVERSION(UInt8, unsigned char)
  KR_UNUSED_CONVERSION(Int8, signed char)
  KR_UNUSED_CONVERSION(UInt16, unsigned short)
  KR_UNUSED_CONVERSION(Int16, short)
  KR_UNUSED_CONVERSION(UInt32, unsigned int)
  KR_UNUSED_CONVERSION(Int32, int)
  KR_UNUSED_CONVERSION(UInt64, unsigned __int64)
  KR_UNUSED_CONVERSION(Int64, __int64)
  KR_UNUSED_CONVERSION(Float, float)
  KR_UNUSED_CONVERSION(Double, double)
#undef KR_UNUSED_CONVERSION
  Kesu::ErrorStatus increment() override { return Kesu::eNotSupported; }
  Kesu::ErrorStatus decrement() override { return Kesu::eNotSupported; }
};

TEST(KrRfValueTest, TheAbstractLayerReachesItsValueThroughAddressOf) {
  ElsewhereValue value;
  value.stored = 3;
  EXPECT_EQ(value.value(), 3);
  EXPECT_EQ(value.sizeOf(), sizeof(int));
  KrVtInt32 four(4), three(3);
  EXPECT_EQ(value.comparedTo(&four), KrRx::kLessThan);
  EXPECT_EQ(value.comparedTo(&three), KrRx::kEqual);
  EXPECT_EQ(value.copyFrom(&four), Kesu::eNotSupported);
  EXPECT_FALSE(value.isEqualTo(&three));
  EXPECT_EQ(value.isA(), KrRfNumber::desc()) << "an unregistered layer answers its nearest registered class";
}

TEST(KrRfValueTest, TypedAccessAndAssignment) {
  KrVtFloat64 value;
  EXPECT_EQ(value.value(), 0.0);
  value = 2.5;
  double& held = value;
  held += 1.0;
  EXPECT_EQ(value.value(), 3.5);
  KrVtFloat64 other(value);
  EXPECT_EQ(other.value(), 3.5);
  KrVtFloat64 assigned;
  assigned = other;
  EXPECT_EQ(assigned.value(), 3.5);
}

}  // namespace
