// The range check attached to every number.

#include <gtest/gtest.h>

#include <cmath>

#include "kr1st.h"

namespace {

KrRfRangeCheckPE* rangeCheckOf(KrRfValue& value) {
  return KrRfRangeCheckPE::cast(value.queryX(KrRfRangeCheckPE::desc()));
}

TEST(KrRfRangeCheckTest, EveryNumberAnswersTheOneRangeCheck) {
  KrVtInt8 small;
  KrVtFloat64 number;
  ASSERT_NE(rangeCheckOf(small), nullptr);
  EXPECT_EQ(rangeCheckOf(small), rangeCheckOf(number));
  KrVtBool flag;
  EXPECT_EQ(flag.queryX(KrRfRangeCheckPE::desc()), nullptr) << "a flag is not a number";
}

TEST(KrRfRangeCheckTest, WithoutClampTheAnswerFollowsTheLimits) {
  KrVtInt32 low(10), high(20);
  struct Case {
    int value;
    bool lowerInclusive, upperInclusive, expected;
  } cases[] = {
      {15, true, true, true},  {10, true, true, true},   {10, false, true, false}, {20, true, true, true},
      {20, true, false, false}, {9, true, true, false},  {21, true, true, false},
  };
  for (const Case& c : cases) {
    KrVtInt32 value(c.value);
    EXPECT_EQ(rangeCheckOf(value)->checkRange(&value, &low, c.lowerInclusive, &high, c.upperInclusive, false), c.expected)
        << c.value;
    EXPECT_EQ(rangeCheckOf(value)->isInRange(&value, &low, c.lowerInclusive, &high, c.upperInclusive), c.expected);
    EXPECT_EQ(value.value(), c.value) << "unchanged without clamp";
  }
  KrVtInt32 value(5);
  EXPECT_TRUE(rangeCheckOf(value)->isInRange(&value, nullptr, false, nullptr, false)) << "no limits";
  EXPECT_FALSE(rangeCheckOf(value)->isInRange(&value, &low, true, nullptr, false));
  EXPECT_TRUE(rangeCheckOf(value)->isInRange(&value, nullptr, true, &high, true));
}

TEST(KrRfRangeCheckTest, ClampMovesOntoTheLimitOrOneStepInside) {
  KrVtInt32 low(10), high(20);
  struct Case {
    int value;
    bool lowerInclusive, upperInclusive;
    int clamped;
  } cases[] = {
      {5, true, true, 10}, {5, false, true, 11}, {10, false, true, 11}, {25, true, true, 20},
      {25, true, false, 19}, {20, true, false, 19}, {15, false, false, 15},
  };
  for (const Case& c : cases) {
    KrVtInt32 value(c.value);
    EXPECT_TRUE(rangeCheckOf(value)->checkRange(&value, &low, c.lowerInclusive, &high, c.upperInclusive, true));
    EXPECT_EQ(value.value(), c.clamped) << c.value;
  }
}

TEST(KrRfRangeCheckTest, ExclusiveDoubleLimitsStepByOneUnitInTheLastPlace) {
  KrVtFloat64 value(5.0), low(10.0), high(20.0);
  EXPECT_TRUE(rangeCheckOf(value)->checkRange(&value, &low, false, nullptr, false, true));
  EXPECT_EQ(value.value(), std::nextafter(10.0, 11.0));
  value = 30.0;
  EXPECT_TRUE(rangeCheckOf(value)->checkRange(&value, nullptr, false, &high, false, true));
  EXPECT_EQ(value.value(), std::nextafter(20.0, 0.0));
}

TEST(KrRfRangeCheckTest, NotOrderableComparisonsAnswerFalseUnchanged) {
  KrVtFloat64 nan(std::nan("")), low(1.0), high(2.0);
  EXPECT_FALSE(rangeCheckOf(nan)->checkRange(&nan, &low, true, &high, true, true));
  EXPECT_TRUE(std::isnan(nan.value()));
  KrVtFloat64 value(1.5), nanLimit(std::nan(""));
  EXPECT_FALSE(rangeCheckOf(value)->checkRange(&value, &low, true, &nanLimit, true, true));
  EXPECT_EQ(value.value(), 1.5);
}

TEST(KrRfRangeCheckTest, TheLowerAndUpperPathsAreNotSymmetric) {
  KrVtInt32 low(10), high(20);
  // Below the lower limit and below the upper one: without clamp the upper
  // test keeps the lower violation and answers false.
  KrVtInt32 below(5);
  EXPECT_FALSE(rangeCheckOf(below)->checkRange(&below, &low, true, &high, true, false));
  EXPECT_EQ(below.value(), 5);
  // Inverted limits with clamp: the lower clamp is overridden by the upper one.
  KrVtInt32 value(5), inverted(0);
  EXPECT_TRUE(rangeCheckOf(value)->checkRange(&value, &low, true, &inverted, true, true));
  EXPECT_EQ(value.value(), 0);
}

}  // namespace
