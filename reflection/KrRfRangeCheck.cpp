// The range check of numbers: the value's own comparedTo decides, its
// copyFrom and increment/decrement clamp.

#include "krrfrangecheck.h"

#include "runtime/KrRxCoreClass.h"

KRRX_CORE_NO_CONS_DEFINE_MEMBERS(KrRfRangeCheckPE, KrRxObject)

KrRfRangeCheckPE::~KrRfRangeCheckPE() = default;

namespace {

// Moves a number one step inward from an exclusive limit; other values stay on the limit.
void step(KrRfValue* value, Kesu::ErrorStatus (KrRfNumber::*direction)()) {
  if (KrRfNumber* number = KrRfNumber::cast(value)) (number->*direction)();
}

}  // namespace

bool KrRfNumberRangeCheckPE::isInRange(KrRfValue* value, const KrRfValue* lower, bool lowerInclusive,
                                       const KrRfValue* upper, bool upperInclusive) {
  return checkRange(value, lower, lowerInclusive, upper, upperInclusive, false);
}

// With clamp, a violation of the lower limit is repaired at once; a
// violation of the upper limit ends in the upper clamp. Without clamp, a
// lower violation still reaches the upper test and is answered there.
bool KrRfNumberRangeCheckPE::checkRange(KrRfValue* value, const KrRfValue* lower, bool lowerInclusive,
                                        const KrRfValue* upper, bool upperInclusive, bool clamp) {
  bool violation = false;
  if (lower) {
    KrRx::Ordering order = value->comparedTo(lower);
    if (order == KrRx::kNotOrderable) return false;
    if (order == KrRx::kLessThan) violation = true;
    if (order == KrRx::kEqual) violation = !lowerInclusive;
    if (violation && clamp) {
      value->copyFrom(lower);
      if (!lowerInclusive) step(value, &KrRfNumber::increment);
      violation = false;
    }
  }
  if (!upper) return !violation;
  KrRx::Ordering order = value->comparedTo(upper);
  if (order == KrRx::kNotOrderable) return false;
  if (order == KrRx::kGreaterThan) violation = true;
  if (order == KrRx::kEqual) violation = !upperInclusive;
  if (order != KrRx::kGreaterThan && !violation) return true;
  if (!clamp) return !violation;
  value->copyFrom(upper);
  if (!upperInclusive) step(value, &KrRfNumber::decrement);
  return true;
}
