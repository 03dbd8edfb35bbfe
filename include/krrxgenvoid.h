#pragma once
/// @file
/// A runtime object holding one untyped pointer, compared by that pointer.

#include "krrxobject.h"

/// A runtime object holding one untyped pointer; equal when the pointers are.
class KR1ST_API KrRxGenVoid : public KrRxObject {
  KRRX_DECLARE_MEMBERS(KrRxGenVoid);

 public:
  /// Holds val (null by default), copies and compares it; it is never dereferenced.
  ///@{
  KrRxGenVoid() : mpVal(nullptr) {}
  explicit KrRxGenVoid(void* val) : mpVal(val) {}
  KrRxGenVoid(const KrRxGenVoid& other) : KrRxObject(), mpVal(other.mpVal) {}
  ~KrRxGenVoid() override;

  KrRxGenVoid& operator=(const KrRxGenVoid& other) {
    mpVal = other.mpVal;
    return *this;
  }
  KrRxGenVoid& operator=(void* val) {
    mpVal = val;
    return *this;
  }
  bool operator==(const KrRxGenVoid& other) const { return mpVal == other.mpVal; }
  bool operator==(const void* val) const { return mpVal == val; }

  void setVal(void* val) { mpVal = val; }
  void* getVal() const { return mpVal; }
  ///@}

 private:
  void* mpVal;
};
