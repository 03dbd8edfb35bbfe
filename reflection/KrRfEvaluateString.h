#pragma once
// The walk along a property path ("layer.colour.name") behind both
// krrfEvaluateString and krrfFormatString. The caller owns the path text
// (the walk splits it at the dots) and decides where the last step's value
// object lives, so that a template can read a number without a heap object.
//
//   KrRfValueMaker heap;
//   KrRxObject* value = nullptr;
//   if (krrfEvaluatePath(path, object, true, heap, value) == Kesu::eOk) use(value), heap.dispose(value);

#include "krrxobject.h"

// Makes the value object that a path's step is read into, and disposes of it
// again: on the heap, unless a subclass keeps some kinds elsewhere.
class KrRfValueMaker {
 public:
  virtual ~KrRfValueMaker() = default;
  // A fresh default instance of exactly valueType, or null when the class
  // cannot be instantiated.
  virtual KrRxObject* make(const KrRxClass* valueType);
  // Ends the life of a value that make() gave.
  virtual void dispose(KrRxObject* value);
};

// Reads the property path in path (written into) on object; on success value
// holds the last step's value, made by maker, and the caller disposes of it
// through maker. The proxies of earlier steps live on the heap. Steps and
// statuses are krrfEvaluateString's; value is set only on success.
Kesu::ErrorStatus krrfEvaluatePath(wchar_t* path, const KrRxObject* object, bool effective, KrRfValueMaker& maker,
                                   KrRxObject*& value);
