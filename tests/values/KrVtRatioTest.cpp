// Ratios as fractions: the bounded continued-fraction search.

#include <gtest/gtest.h>

#include <cmath>
#include <random>
#include <stdexcept>
#include <string>

#include "KrAbortTrap.h"
#include "values/KrVtFraction.h"

namespace {

const double kPi = 3.14159265358979323846;

struct Fraction {
  int64_t numerator;
  uint64_t denominator;
  bool operator==(const Fraction& o) const { return numerator == o.numerator && denominator == o.denominator; }
};

std::ostream& operator<<(std::ostream& out, const Fraction& f) {
  return out << f.numerator << "/" << f.denominator;
}

Fraction fractionOf(double v) {
  Fraction f = {-7, 7};
  EXPECT_EQ(KrVtFraction::best(v, f.numerator, f.denominator), Kesu::eOk) << v;
  return f;
}

std::string overflowTextOf(double v) {
  return krThrownText<std::overflow_error>([v] { fractionOf(v); });
}

// The best approximation of v with a denominator of at most 1,000,000,
// worked out exactly on v's binary value with 128-bit integers.
typedef __int128 Big;
struct Exact {
  Big num, den;  // v = num / den, den > 0
};

Exact exactOf(double v) {
  int exponent;
  double mantissa = std::frexp(v, &exponent);
  Big num = Big(std::ldexp(mantissa, 53)), den = 1;
  exponent -= 53;
  if (exponent >= 0) num <<= exponent;
  else den <<= -exponent;
  return {num, den};
}

// |p/q - v| compared for two fractions, exactly.
int compareDistance(const Exact& v, Big p1, Big q1, Big p2, Big q2) {
  Big d1 = p1 * v.den - v.num * q1, d2 = p2 * v.den - v.num * q2;
  if (d1 < 0) d1 = -d1;
  if (d2 < 0) d2 = -d2;
  Big left = d1 * q2, right = d2 * q1;
  return left < right ? -1 : left > right ? 1 : 0;
}

Fraction bestReference(double value) {
  Exact v = exactOf(std::fabs(value));
  Big p0 = 0, q0 = 1, p1 = 1, q1 = 0, n = v.num, d = v.den;
  while (d != 0) {
    Big a = n / d, q2 = q0 + a * q1;
    if (q2 > 1000000) break;
    Big p2 = p0 + a * p1;
    p0 = p1, q0 = q1, p1 = p2, q1 = q2;
    Big r = n - a * d;
    n = d, d = r;
  }
  Big k = (1000000 - q0) / q1;
  Big ps = p0 + k * p1, qs = q0 + k * q1;
  bool semi = compareDistance(v, ps, qs, p1, q1) < 0;
  Big p = semi ? ps : p1, q = semi ? qs : q1;
  return {value < 0 ? -int64_t(p) : int64_t(p), uint64_t(q)};
}

TEST(KrVtFraction, FindsTheBestFractionOfKnownValues) {
  EXPECT_EQ(fractionOf(0.5), (Fraction{1, 2}));
  EXPECT_EQ(fractionOf(1.0 / 3), (Fraction{1, 3}));
  EXPECT_EQ(fractionOf(kPi), (Fraction{3126535, 995207}));
  EXPECT_EQ(fractionOf(-kPi), (Fraction{-3126535, 995207}));
  EXPECT_EQ(fractionOf(0.1), (Fraction{1, 10}));
  EXPECT_EQ(fractionOf(1e-7), (Fraction{0, 1}));
  EXPECT_EQ(fractionOf(123456.789), (Fraction{123456789, 1000}));
  EXPECT_EQ(fractionOf(-0.75), (Fraction{-3, 4}));
  EXPECT_EQ(fractionOf(-2.5), (Fraction{-5, 2}));
  EXPECT_EQ(fractionOf(3.0), (Fraction{3, 1}));
  EXPECT_EQ(fractionOf(0.0), (Fraction{0, 1}));
  EXPECT_EQ(fractionOf(1e18), (Fraction{1000000000000000000, 1}));
}

TEST(KrVtFraction, InfinitiesAndNaNHaveNoDenominator) {
  EXPECT_EQ(fractionOf(HUGE_VAL), (Fraction{INT64_MAX, 0}));
  EXPECT_EQ(fractionOf(-HUGE_VAL), (Fraction{-INT64_MAX, 0}));
  EXPECT_EQ(fractionOf(std::nan("")), (Fraction{0, 0}));
}

TEST(KrVtFraction, ValuesBeyondTheIntegerRangeFindNoFraction) {
  int64_t n = 5;
  uint64_t d = 6;
  EXPECT_EQ(KrVtFraction::best(1e300, n, d), Kesu::eNotSupported);
  EXPECT_EQ(KrVtFraction::best(9223372036854775808.0, n, d), Kesu::eNotSupported);
  EXPECT_EQ(n, 5);
  EXPECT_EQ(d, 6u);
}

TEST(KrVtFraction, ConvergentsLeavingTheIntegerRangeThrow) {
  EXPECT_EQ(overflowTextOf(967428643.1946106),
            "Arithmetic overflow : result of a product is too large for the destination type");
  EXPECT_EQ(overflowTextOf(-643884010.62316132),
            "Arithmetic overflow : result of an product is too large for the destination type");
  EXPECT_EQ(overflowTextOf(-1e300), "Arithmetic overflow : result of an addition is too large for the destination type");
  EXPECT_EQ(overflowTextOf(-1e19),
            "Arithmetic overflow : result of an addition is too large for the destination type");
  auto textOf = [](int64_t a, int64_t b, int64_t c) -> std::string {
    try {
      return std::to_string(KrVtFraction::checkedProductSum(a, b, c));
    } catch (const std::overflow_error& e) {
      return e.what();
    }
  };
  EXPECT_EQ(textOf(INT64_MAX / 2, 3, 0), "Arithmetic overflow : result of a product is too large for the destination type");
  EXPECT_EQ(textOf(INT64_MIN, -1, 0), "Arithmetic overflow : result of a product is too large for the destination type");
  EXPECT_EQ(textOf(INT64_MIN, 2, 0), "Arithmetic overflow : result of an product is too large for the destination type");
  EXPECT_EQ(textOf(INT64_MAX, 1, 1), "Arithmetic overflow : result of an addition is too large for the destination type");
  EXPECT_EQ(textOf(INT64_MIN, 1, 0), std::to_string(INT64_MIN));
}

TEST(KrVtFraction, RandomValuesGetTheBestBoundedFraction) {
  std::mt19937_64 random(20261122);
  std::uniform_real_distribution<double> exponent(-6, 9), sign(-1, 1);
  int differing = 0, overflowing = 0;
  for (int i = 0; i < 10000; ++i) {
    double v = std::copysign(std::pow(10.0, exponent(random)), sign(random));
    Fraction ours;
    try {
      ours = fractionOf(v);
    } catch (const std::overflow_error&) {
      ++overflowing;  // large values whose later terms run out of the 64-bit range
      ASSERT_GT(std::fabs(v), 1e6) << v;
      continue;
    }
    Fraction reference = bestReference(v);
    ASSERT_LE(ours.denominator, 1000000u) << v;
    ASSERT_GE(ours.denominator, 1u) << v;
    if (ours == reference) continue;
    // Another fraction is admissible only where double arithmetic, in which
    // the distances are measured, cannot tell it from the best one: their
    // distances differ by less than one unit in the last place of v.
    auto distance = [v](const Fraction& f) {
      return std::fabs((long double)v - (long double)f.numerator / (long double)f.denominator);
    };
    double ulp = std::nextafter(std::fabs(v), HUGE_VAL) - std::fabs(v);
    EXPECT_LE(distance(ours) - distance(reference), ulp) << v << ": " << ours << " against " << reference;
    ++differing;
  }
  EXPECT_LT(differing + overflowing, 1500);
}

}  // namespace
