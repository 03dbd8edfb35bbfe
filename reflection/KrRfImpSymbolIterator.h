#pragma once
// Walks the symbols of a list of reflection extensions, one extension after
// the other, each in its dictionary's insertion order.

#include "krrfreflection.h"
#include "runtime/KrRxGrowArray.h"

class KrRxImpDictionaryIterator;
class KrRfImpReflectionPE;

class KR1ST_API KrRfImpSymbolIterator : public KrRfSymbolIterator {
  KRRX_DECLARE_MEMBERS(KrRfImpSymbolIterator);

 public:
  // With a null cls: over start's class and its ancestors, root-most first.
  // With cls: over cls's own symbols when cls is start's class or an
  // ancestor of it; otherwise over nothing.
  KrRfImpSymbolIterator(const KrRfImpReflectionPE* start, const KrRxClass* cls);
  ~KrRfImpSymbolIterator() override;

  bool done() const override;
  bool next() override;
  KrRxObject* object() const override;
  KrRxClass* currentClass() const override;

 private:
  void collectChain(const KrRfImpReflectionPE* start);
  void collectOwn(const KrRfImpReflectionPE* start, const KrRxClass* cls);
  // Opens the first extension from mIndex on that has symbols, reusing the one
  // dictionary iterator; false at the end.
  bool openFromIndex();
  // done() without the virtual call, so the operations stay leaf functions.
  bool atEnd() const { return mIndex >= mExtensions.count; }

  KrRxGrowArray<const KrRfImpReflectionPE*> mExtensions;
  int32_t mIndex;
  // Made for the first extension and moved on to the others; done once mIndex
  // has passed the last extension.
  KrRxImpDictionaryIterator* mpSymbols;

  friend struct KrRfImpSymbolIteratorLayout;
};
