#pragma once
// The iterator protocol of lists, sets and other runtime collections.

#include "krrxobject.h"

class KR1ST_API KrRxIterator : public KrRxObject {
  KRRX_DECLARE_MEMBERS(KrRxIterator);

 public:
  virtual bool done() const = 0;
  // Moves on; false (without moving) when already done.
  virtual bool next() = 0;
  // The current object, or null when done.
  virtual KrRxObject* object() const = 0;
};
