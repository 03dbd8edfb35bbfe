// Value arrays: element access, growth and search.

#include <gtest/gtest.h>

#include "kr1st.h"

namespace {

KrVtFloat64Array arrayOf(std::initializer_list<double> elements) {
  KrVtFloat64Array array;
  for (double element : elements) array.append(element);
  return array;
}

TEST(KrRfArrayTest, ANewArrayIsEmpty) {
  KrVtFloat64Array array;
  EXPECT_EQ(array.length(), 0);
  EXPECT_TRUE(array.isEmpty());
  EXPECT_EQ(array.capacity(), 0);
  KrVtFloat64 value;
  EXPECT_EQ(array.getAt(0, &value), Kesu::eInvalidIndex);
  EXPECT_EQ(array.getAt(-1, &value), Kesu::eInvalidIndex);
  EXPECT_EQ(array.find(&value, 0), -1);
  EXPECT_STREQ(array.isA()->name(), L"KrVtFloat64Array");
  EXPECT_STREQ(array.isA()->myParent()->name(), L"KrRfArray");
  EXPECT_EQ(array.elementType(), KrVtFloat64::desc());
}

TEST(KrRfArrayTest, ElementsAreReadAndWrittenThroughValuesOfTheElementClass) {
  KrVtFloat64Array array = arrayOf({1.5, 2.5});
  KrVtFloat64 value;
  EXPECT_EQ(array.getAt(1, &value), Kesu::eOk);
  EXPECT_EQ(value.value(), 2.5);
  value = 7.0;
  EXPECT_EQ(array.setAt(0, &value), Kesu::eOk);
  EXPECT_EQ(array[0], 7.0);
  EXPECT_EQ(array.setAt(2, &value), Kesu::eInvalidIndex);
  KrVtInt64 wrong(3);
  EXPECT_EQ(array.getAt(0, &wrong), Kesu::eWrongObjectType);
  EXPECT_EQ(array.setAt(0, &wrong), Kesu::eWrongObjectType);
  EXPECT_EQ(array.getAt(0, nullptr), Kesu::eWrongObjectType);
  EXPECT_EQ(wrong.value(), 3);
}

TEST(KrRfArrayTest, GrowsByEightElements) {
  KrVtFloat64Array array;
  array.append(0.0);
  EXPECT_EQ(array.capacity(), 8);
  for (int i = 1; i < 9; ++i) array.append(i);
  EXPECT_EQ(array.capacity(), 16);
  EXPECT_EQ(array.length(), 9);
  EXPECT_EQ(array[8], 8.0);
}

TEST(KrRfArrayTest, FindStartsWhereAskedAndAnswersTheFirstMatch) {
  KrVtFloat64Array array = arrayOf({1.0, 2.0, 1.0});
  KrVtFloat64 one(1.0), three(3.0);
  EXPECT_EQ(array.find(&one, 0), 0);
  EXPECT_EQ(array.find(&one, 1), 2);
  EXPECT_EQ(array.find(&one, 3), -1) << "start equal to the length";
  EXPECT_EQ(array.find(&one, 4), -1);
  EXPECT_EQ(array.find(&three, 0), -1);
  EXPECT_TRUE(array.contains(&one));
  EXPECT_FALSE(array.contains(&three));
  KrRxTextString text(L"1.0", -1);
  EXPECT_EQ(array.find(&text, 0), -1) << "not a value";
  EXPECT_EQ(array.find(nullptr, 0), -1);
}

TEST(KrRfArrayTest, CopiesAreDeep) {
  KrVtFloat64Array array = arrayOf({1.0, 2.0});
  KrRxObject* copy = array.clone();
  ASSERT_NE(copy, nullptr);
  array[0] = 9.0;
  KrVtFloat64Array* copied = KrVtFloat64Array::cast(copy);
  ASSERT_NE(copied, nullptr);
  EXPECT_EQ(copied->length(), 2);
  EXPECT_EQ((*copied)[0], 1.0);
  delete copy;
  KrRxObject* value = KrVtFloat64::desc()->create();
  EXPECT_EQ(array.copyFrom(value), Kesu::eInvalidInput);
  delete value;
}

}  // namespace
