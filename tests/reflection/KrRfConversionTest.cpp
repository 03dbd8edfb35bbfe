// The conversions between the ten numeric kinds: every (source,
// destination) pair at the limits of both, checked against the range rule
// computed independently in extended precision.

#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <limits>
#include <tuple>
#include <typeinfo>
#include <vector>

#include "kr1st.h"

namespace {

// The to.../from... operations of one destination kind.
template <typename T> struct Ops;
#define KR_OPS(TYPE, NAME)                                                 \
  template <> struct Ops<TYPE> {                                           \
    static constexpr auto to = &KrRfNumber::to##NAME;                      \
    static constexpr auto from = &KrRfNumber::from##NAME;                  \
  };
KR_OPS(unsigned char, UInt8)
KR_OPS(signed char, Int8)
KR_OPS(unsigned short, UInt16)
KR_OPS(short, Int16)
KR_OPS(unsigned int, UInt32)
KR_OPS(int, Int32)
KR_OPS(unsigned __int64, UInt64)
KR_OPS(__int64, Int64)
KR_OPS(float, Float)
KR_OPS(double, Double)
#undef KR_OPS

using Kinds = std::tuple<unsigned char, signed char, unsigned short, short, unsigned int, int, unsigned __int64,
                         __int64, float, double>;

template <typename F, typename... T>
void forEachKind(F f, std::tuple<T...>*) {
  (f(static_cast<T*>(nullptr)), ...);
}
template <typename F>
void forEachKind(F f) {
  forEachKind(f, static_cast<Kinds*>(nullptr));
}

// Whether the mathematical value v, truncated toward zero for an integer
// destination, lies within Dst's limits; for a floating source the limits
// count as rounded to double.
template <typename Dst, typename Src>
bool expectedToFit(Src v) {
  long double lo = std::numeric_limits<Dst>::lowest(), hi = std::numeric_limits<Dst>::max();
  if (std::is_floating_point<Src>::value) {
    lo = static_cast<double>(std::numeric_limits<Dst>::lowest());
    hi = static_cast<double>(std::numeric_limits<Dst>::max());
  }
  long double x = std::is_integral<Dst>::value ? std::trunc(static_cast<long double>(v)) : v;
  return !(x < lo || x > hi);
}

// The source values worth trying: the source's own limits and zero, one
// beyond each of every destination's limits where the source can hold it,
// and for floats NaN and the infinities.
template <typename Src>
std::vector<Src> interestingValues() {
  std::vector<long double> wanted = {std::numeric_limits<Src>::lowest(), std::numeric_limits<Src>::max(), 0};
  forEachKind([&](auto* dst) {
    using Dst = std::remove_pointer_t<decltype(dst)>;
    if (std::is_integral<Dst>::value) {
      wanted.push_back(static_cast<long double>(std::numeric_limits<Dst>::lowest()) - 1);
      wanted.push_back(static_cast<long double>(std::numeric_limits<Dst>::max()) + 1);
    }
  });
  std::vector<Src> values;
  for (long double w : wanted)
    if (w >= static_cast<long double>(std::numeric_limits<Src>::lowest()) &&
        w <= static_cast<long double>(std::numeric_limits<Src>::max()) && static_cast<long double>(static_cast<Src>(w)) == w)
      values.push_back(static_cast<Src>(w));
  if (std::is_floating_point<Src>::value) {
    values.push_back(std::numeric_limits<Src>::quiet_NaN());
    values.push_back(std::numeric_limits<Src>::infinity());
    values.push_back(-std::numeric_limits<Src>::infinity());
  }
  return values;
}

template <typename T>
T sentinel() {
  return static_cast<T>(42);
}

template <typename Dst, typename Src>
void checkPair(int& pairs) {
  ++pairs;
  for (Src v : interestingValues<Src>()) {
    bool fits = std::isnan(static_cast<double>(v)) || expectedToFit<Dst>(v);
    Kesu::ErrorStatus expected = fits ? Kesu::eOk : Kesu::eOutOfRange;
    // Exactly representable results are checked for their value too.
    bool exact = fits && !std::isnan(static_cast<double>(v)) && std::trunc(static_cast<long double>(v)) <= std::numeric_limits<Dst>::max();

    KrRfValueT<Src> source(v);
    Dst out = sentinel<Dst>();
    EXPECT_EQ((source.*Ops<Dst>::to)(out), expected) << typeid(Src).name() << "->" << typeid(Dst).name() << " " << (double)v;
    if (!fits) {
      EXPECT_EQ(out, sentinel<Dst>()) << "destination untouched";
    }
    if (exact) {
      EXPECT_EQ(out, static_cast<Dst>(v));
    }

    KrRfValueT<Dst> destination(sentinel<Dst>());
    EXPECT_EQ((destination.*Ops<Src>::from)(v), expected) << typeid(Src).name() << "=>" << typeid(Dst).name() << " " << (double)v;
    if (!fits) {
      EXPECT_EQ(destination.value(), sentinel<Dst>()) << "value untouched";
    }
    if (exact) {
      EXPECT_EQ(destination.value(), static_cast<Dst>(v));
    }
  }
}

TEST(KrRfConversionTest, EveryPairOfKindsAtTheLimits) {
  int pairs = 0;
  forEachKind([&](auto* src) {
    forEachKind([&](auto* dst) {
      checkPair<std::remove_pointer_t<decltype(dst)>, std::remove_pointer_t<decltype(src)>>(pairs);
    });
  });
  EXPECT_EQ(pairs, 100);
}

TEST(KrRfConversionTest, DoublesAtTwoToThe63And64) {
  const double two63 = 9223372036854775808.0, two64 = 18446744073709551616.0;
  __int64 signedOut = 0;
  EXPECT_EQ(KrVtFloat64(two63).toInt64(signedOut), Kesu::eOk) << "the upper limit is 2^63 itself";
  EXPECT_EQ(KrVtFloat64(std::nextafter(two63, 1e300)).toInt64(signedOut), Kesu::eOutOfRange);

  unsigned __int64 unsignedOut = 0;
  EXPECT_EQ(KrVtFloat64(two63).toUInt64(unsignedOut), Kesu::eOk);
  EXPECT_EQ(unsignedOut, 1ULL << 63);
  EXPECT_EQ(KrVtFloat64(two63 + 4096.0).toUInt64(unsignedOut), Kesu::eOk);
  EXPECT_EQ(unsignedOut, (1ULL << 63) + 4096);
  EXPECT_EQ(KrVtFloat64(std::nextafter(two64, 0.0)).toUInt64(unsignedOut), Kesu::eOk);
  EXPECT_EQ(unsignedOut, 0xFFFFFFFFFFFFF800ULL);
  EXPECT_EQ(KrVtFloat64(two64).toUInt64(unsignedOut), Kesu::eOk) << "2^64 passes the test";
  EXPECT_EQ(KrVtFloat64(std::nextafter(two64, 1e300)).toUInt64(unsignedOut), Kesu::eOutOfRange);
}

TEST(KrRfConversionTest, TruncationAndTheListedCases) {
  unsigned char byte = 7;
  EXPECT_EQ(KrVtFloat64(255.9).toUInt8(byte), Kesu::eOk);
  EXPECT_EQ(byte, 255);
  EXPECT_EQ(KrVtFloat64(256.0).toUInt8(byte), Kesu::eOutOfRange);
  EXPECT_EQ(byte, 255);
  EXPECT_EQ(KrVtFloat64(-0.9).toUInt8(byte), Kesu::eOk) << "tested after truncation";
  EXPECT_EQ(byte, 0);
  EXPECT_EQ(KrVtFloat32(-128.5f).toInt8(reinterpret_cast<signed char&>(byte)), Kesu::eOk);
  EXPECT_EQ(KrVtFloat32(-129.0f).toInt8(reinterpret_cast<signed char&>(byte)), Kesu::eOutOfRange);
  int whole = 0;
  EXPECT_EQ(KrVtFloat64(-2.9).toInt32(whole), Kesu::eOk);
  EXPECT_EQ(whole, -2) << "toward zero";
  unsigned int positive = 9;
  EXPECT_EQ(KrVtFloat64(-1.0).toUInt32(positive), Kesu::eOutOfRange);
  EXPECT_EQ(positive, 9u);
  unsigned __int64 big = 0;
  EXPECT_EQ(KrVtInt64(-1).toUInt64(big), Kesu::eOutOfRange);
  __int64 signedBig = 0;
  EXPECT_EQ(KrVtUInt64(1ULL << 63).toInt64(signedBig), Kesu::eOutOfRange);
  EXPECT_EQ(KrVtUInt64((1ULL << 63) - 1).toInt64(signedBig), Kesu::eOk);

  KrVtFloat64 number(5.0);
  EXPECT_EQ(number.fromDouble(std::numeric_limits<double>::infinity()), Kesu::eOutOfRange);
  EXPECT_EQ(number.value(), 5.0);
  EXPECT_EQ(number.fromDouble(std::nan("")), Kesu::eOk);
  EXPECT_TRUE(std::isnan(number.value()));
  KrVtFloat32 single(1.0f);
  EXPECT_EQ(single.fromDouble(3.5e38), Kesu::eOutOfRange);
  EXPECT_EQ(single.fromDouble(3.4028234663852886e38), Kesu::eOk);
  double wide = 0;
  EXPECT_EQ(KrVtFloat32(std::numeric_limits<float>::infinity()).toDouble(wide), Kesu::eOutOfRange);
}

TEST(KrRfConversionTest, IntegerStepsStopAtTheLimits) {
  KrVtInt8 top(127);
  EXPECT_EQ(top.increment(), Kesu::eOutOfRange);
  EXPECT_EQ(top.value(), 127);
  EXPECT_EQ(top.decrement(), Kesu::eOk);
  EXPECT_EQ(top.value(), 126);
  KrVtInt8 bottom(-128);
  EXPECT_EQ(bottom.decrement(), Kesu::eOutOfRange);
  EXPECT_EQ(bottom.value(), -128);
  KrVtUInt64 zero;
  EXPECT_EQ(zero.decrement(), Kesu::eOutOfRange);
  EXPECT_EQ(zero.increment(), Kesu::eOk);
  EXPECT_EQ(zero.value(), 1u);
}

TEST(KrRfConversionTest, FloatStepsAreOneUnitInTheLastPlace) {
  KrVtFloat64 one(1.0);
  EXPECT_EQ(one.increment(), Kesu::eOk);
  EXPECT_EQ(one.value(), 1.0000000000000002);
  EXPECT_EQ(one.decrement(), Kesu::eOk);
  EXPECT_EQ(one.decrement(), Kesu::eOk);
  EXPECT_EQ(one.value(), std::nextafter(1.0, 0.0));

  KrVtFloat64 largest(1.7976931348623157e308);
  EXPECT_EQ(largest.increment(), Kesu::eOutOfRange);
  EXPECT_EQ(largest.value(), 1.7976931348623157e308);
  KrVtFloat64 lowest(-1.7976931348623157e308);
  EXPECT_EQ(lowest.decrement(), Kesu::eOutOfRange);
  for (double stuck : {std::numeric_limits<double>::infinity(), std::nan("")}) {
    KrVtFloat64 value(stuck);
    EXPECT_EQ(value.increment(), Kesu::eOutOfRange);
  }
  KrVtFloat32 single(1.0f);
  EXPECT_EQ(single.increment(), Kesu::eOk);
  EXPECT_EQ(single.value(), std::nextafter(1.0f, 2.0f));
}

}  // namespace
