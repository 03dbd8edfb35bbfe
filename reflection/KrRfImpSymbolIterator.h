#pragma once
// Walks the symbols of a list of reflection extensions, one extension after
// the other, each in its dictionary's id order.
//
//   KrRfSymbolIterator* it = KrRfImpSymbolIterator::create(extension, nullptr);
//   for (; !it->done(); it->next()) use(it->symbol());
//   delete it;

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

  // The same walk on the heap, owned by the caller; made in one block with
  // its dictionary iterator and extension list when the list fits. Throws
  // std::bad_alloc when memory is short.
  static KrRfImpSymbolIterator* create(const KrRfImpReflectionPE* start, const KrRxClass* cls);

  bool done() const override;
  bool next() override;
  KrRxObject* object() const override;
  KrRxClass* currentClass() const override;

 private:
  class InOneBlock;

  void collectChain(const KrRfImpReflectionPE* start);
  void collectOwn(const KrRfImpReflectionPE* start, const KrRxClass* cls);

  // Over the count extensions of found, given in walk order (start's own
  // first), kept in room: a dictionary iterator's place, then the list's.
  KrRfImpSymbolIterator(const KrRfImpReflectionPE* const* found, int32_t count, void* room);

  // Opens the first extension from mIndex on that has symbols, reusing the one
  // dictionary iterator or else making it in symbolsRoom (on the heap when
  // null); false at the end.
  bool openFromIndex(void* symbolsRoom);
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
