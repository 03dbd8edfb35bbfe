#pragma once
/// @file
/// The iterator protocol of lists, sets and other runtime collections.

#include "krrxobject.h"

/// Visits the objects of a collection once each: object() until done(), then next().
class KR1ST_API KrRxIterator : public KrRxObject {
  KRRX_DECLARE_MEMBERS(KrRxIterator);

 public:
  /// True once every object has been visited.
  virtual bool done() const = 0;
  /// Moves on; false (without moving) when already done.
  virtual bool next() = 0;
  /// The current object, or null when done.
  virtual KrRxObject* object() const = 0;
};
