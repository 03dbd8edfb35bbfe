#pragma once
/// @file
/// The range test of a value against two optional limits, attached to
/// KrRfNumber as a protocol extension so that every number answers it.
///
/// @code
///   KrVtInt32 value(5), lower(10);
///   auto* check = KrRfRangeCheckPE::cast(value.queryX(KrRfRangeCheckPE::desc()));
///   check->checkRange(&value, &lower, false, nullptr, false, true);  // value is now 11
/// @endcode

#include "krrfvalue.h"

/// Brings a number into the range of two optional limits, or tells that it is outside.
class KR1ST_API KrRfRangeCheckPE : public KrRxObject {
  KRRX_DECLARE_MEMBERS(KrRfRangeCheckPE);

 public:
  ~KrRfRangeCheckPE() override;

  /// True when value lies within the limits; a null limit is no limit.
  virtual bool isInRange(KrRfValue* value, const KrRfValue* lower, bool lowerInclusive, const KrRfValue* upper,
                         bool upperInclusive) = 0;
  /// As isInRange; with clamp a value outside is moved onto the violated
  /// limit (one step inward when that limit is exclusive) and true is
  /// answered. False, unchanged, when a comparison is not orderable.
  virtual bool checkRange(KrRfValue* value, const KrRfValue* lower, bool lowerInclusive, const KrRfValue* upper,
                          bool upperInclusive, bool clamp) = 0;
};

/// The range check of numbers: compares with comparedTo, clamps with
/// copyFrom and steps with increment/decrement.
class KR1ST_API KrRfNumberRangeCheckPE : public KrRfRangeCheckPE {
 public:
  bool isInRange(KrRfValue* value, const KrRfValue* lower, bool lowerInclusive, const KrRfValue* upper,
                 bool upperInclusive) override;
  bool checkRange(KrRfValue* value, const KrRfValue* lower, bool lowerInclusive, const KrRfValue* upper,
                  bool upperInclusive, bool clamp) override;
};
