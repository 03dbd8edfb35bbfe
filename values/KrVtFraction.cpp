#include "values/KrVtFraction.h"

#include <cmath>
#include <stdexcept>

namespace KrVtFraction {

namespace {

const double kTwoTo63 = 9223372036854775808.0;

// Truncation toward zero as the platform's 64-bit conversion does it: the
// smallest 64-bit integer for whatever does not fit.
int64_t truncated(double x) { return x >= -kTwoTo63 && x < kTwoTo63 ? static_cast<int64_t>(x) : INT64_MIN; }

struct Convergent {
  int64_t h, k;
};

Convergent positiveDenominator(Convergent c) {
  return c.k < 0 ? Convergent{int64_t(0 - uint64_t(c.h)), -c.k} : c;
}

}  // namespace

int64_t checkedProductSum(int64_t a, int64_t b, int64_t c) {
  int64_t product, sum;
  if (__builtin_mul_overflow(a, b, &product)) {
    if ((a < 0) == (b < 0))
      throw std::overflow_error("Arithmetic overflow : result of a product is too large for the destination type");
    throw std::overflow_error("Arithmetic overflow : result of an product is too large for the destination type");
  }
  if (__builtin_add_overflow(product, c, &sum))
    throw std::overflow_error("Arithmetic overflow : result of an addition is too large for the destination type");
  return sum;
}

Kesu::ErrorStatus best(double value, int64_t& numerator, uint64_t& denominator) {
  if (std::isinf(value)) {
    numerator = value < 0 ? -INT64_MAX : INT64_MAX;
    denominator = 0;
    return Kesu::eOk;
  }
  if (std::isnan(value)) {
    numerator = 0;
    denominator = 0;
    return Kesu::eOk;
  }
  // last: the latest convergent taken (the result so far); previous: the one before.
  Convergent last = {1, 0}, previous = {0, 1};
  double x = value;
  for (;;) {
    int64_t a = truncated(x);
    Convergent next = {checkedProductSum(a, last.h, previous.h), checkedProductSum(a, last.k, previous.k)};
    // Denominators alternate in sign for negative values; the bound is on the magnitude.
    if (next.k > kLargestDenominator || next.k < -kLargestDenominator) break;
    previous = last;
    last = next;
    if (x == double(a)) break;
    x = 1 / (x - double(a));
    if (x > kTwoTo63) break;
  }
  if (last.k == 0) return Kesu::eNotSupported;
  // From here on the sign goes with the numerator, so that a negative value
  // gets the mirror image of its magnitude's fraction.
  last = positiveDenominator(last);
  previous = positiveDenominator(previous);
  // The semiconvergent with the largest multiple that keeps the denominator in
  // bound; one whose numerator does not fit in 64 bits cannot be nearer.
  int64_t m = (kLargestDenominator - previous.k) / last.k;
  Convergent semi = {0, m * last.k + previous.k};
  bool fits = !__builtin_mul_overflow(m, last.h, &semi.h) && !__builtin_add_overflow(semi.h, previous.h, &semi.h);
  Convergent result = last;
  if (fits && std::fabs(value - double(semi.h) / double(semi.k)) < std::fabs(value - double(last.h) / double(last.k)))
    result = semi;
  numerator = result.h;
  denominator = uint64_t(result.k);
  return Kesu::eOk;
}

}  // namespace KrVtFraction
