#pragma once
// Test objects for the container tests: a class of its own in the class
// tree, ordered and compared by an integer, counting its destructions.

#include "krrxclass.h"
#include "krrxobject.h"

class KrRxTestValue : public KrRxObject {
  KRRX_DECLARE_MEMBERS(KrRxTestValue);

 public:
  explicit KrRxTestValue(int value = 0) : mValue(value) {}
  ~KrRxTestValue() override { ++gDestroyed; }

  Kesu::ErrorStatus copyFrom(const KrRxObject* other) override;
  bool isEqualTo(const KrRxObject* other) const override;
  KrRx::Ordering comparedTo(const KrRxObject* other) const override;

  int value() const { return mValue; }
  void setValue(int value) { mValue = value; }

  // Registers the class once and links it into the class tree.
  static void registerClass();
  static int gDestroyed;

 private:
  int mValue;
};

// Equal by value like its parent, but never orderable.
class KrRxTestUnordered : public KrRxTestValue {
 public:
  using KrRxTestValue::KrRxTestValue;
  KrRx::Ordering comparedTo(const KrRxObject*) const override { return KrRx::kNotOrderable; }
};
