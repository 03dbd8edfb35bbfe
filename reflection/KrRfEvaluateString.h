#pragma once
// The walk along a property path ("layer.colour.name") behind both
// krrfEvaluateString and krrfFormatString. The caller owns the path text
// (the walk splits it at the dots) and says where the last step's value
// object lives, so that a template can read a number without a heap object.
//
//   KrRfPathValue holder(KrRfPathValue::kNumbersInPlace);
//   KrRxObject* value = nullptr;
//   if (krrfEvaluatePath(path, object, true, holder, value) == Kesu::eOk) use(value), holder.dispose(value);

#include "krrxobject.h"

// Makes the value object that a path's step is read into, and disposes of it
// again: a new heap object of the value class, or, where asked for and the
// class is exactly one of the plain number kinds (Float64 and the integers),
// one made inside the holder. Holds at most one value in place at a time.
class KrRfPathValue {
 public:
  enum Place { kHeap, kNumbersInPlace };
  explicit KrRfPathValue(Place place) : mPlace(place) {}
  KrRfPathValue(const KrRfPathValue&) = delete;
  KrRfPathValue& operator=(const KrRfPathValue&) = delete;

  // A fresh default instance of exactly valueType, or null when the class
  // cannot be instantiated.
  KrRxObject* make(const KrRxClass* valueType);
  // Ends the life of a value that make() gave.
  void dispose(KrRxObject* value);

 private:
  template <typename T>
  bool makeInPlace(const KrRxClass* valueType, KrRxObject*& value);

  Place mPlace;
  alignas(8) unsigned char mStorage[16];
};

// Reads the property path in path (written into) on object; on success value
// holds the last step's value, made by holder, and the caller disposes of it
// through holder. The proxies of earlier steps live on the heap. Steps and
// statuses are krrfEvaluateString's; value is set only on success.
Kesu::ErrorStatus krrfEvaluatePath(wchar_t* path, const KrRxObject* object, bool effective, KrRfPathValue& holder,
                                   KrRxObject*& value);
