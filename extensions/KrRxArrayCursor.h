#pragma once
// A position over a growable array of runtime objects, the common part of
// the protocol-reactor iterators. The array is read live, so changes made
// while iterating are seen.

#include "krrxobject.h"
#include "runtime/KrRxGrowArray.h"

template <typename T>
class KrRxArrayCursor {
 public:
  explicit KrRxArrayCursor(const KrRxGrowArray<T*>& array) : mArray(array) {}

  // True when the position is negative or at least the count.
  bool done() const { return mPosition < 0 || mPosition >= mArray.count; }
  // Moves on; true while the new position is valid.
  bool next() {
    ++mPosition;
    return !done();
  }
  // The element at the position, or null when out of range.
  T* object() const { return done() ? nullptr : mArray.data[mPosition]; }
  void start() { mPosition = 0; }

 private:
  const KrRxGrowArray<T*>& mArray;
  int32_t mPosition = 0;
};
