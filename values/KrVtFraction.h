#pragma once
// The fraction behind a ratio: the best approximation of a double by a
// fraction whose denominator is at most 1,000,000, found by continued
// fractions and one semiconvergent step.

#include <cstdint>

#include "krerrorstatus.h"
#include "krexport.h"

namespace KrVtFraction {

constexpr int64_t kLargestDenominator = 1000000;

// The fraction for value. Infinities give the largest numerator with the
// value's sign over 0, NaN gives 0 over 0 (both status 0); eNotSupported when
// no convergent with a denominator was found (the outputs are then left as
// they were). The sign is handed out with the numerator. Throws
// std::overflow_error when a convergent leaves the 64-bit range.
KR1ST_API Kesu::ErrorStatus best(double value, int64_t& numerator, uint64_t& denominator);

// a * b + c, throwing std::overflow_error with the runtime's texts when the
// product or the sum leaves the 64-bit range.
KR1ST_API int64_t checkedProductSum(int64_t a, int64_t b, int64_t c);

}  // namespace KrVtFraction
