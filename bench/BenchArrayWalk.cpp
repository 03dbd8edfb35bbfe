#include "BenchArrayWalk.h"

namespace {

class ArrayWalk : public KrRfSymbolIterator {
 public:
  ArrayWalk(KrRfSymbol* const* symbols, int count) : mpAt(symbols), mpEnd(symbols + count) {}
  bool done() const override { return mpAt == mpEnd; }
  bool next() override { return mpAt != mpEnd && ++mpAt != mpEnd; }
  KrRxObject* object() const override { return mpAt == mpEnd ? nullptr : *mpAt; }
  KrRxClass* currentClass() const override { return nullptr; }

 private:
  KrRfSymbol* const* mpAt;
  KrRfSymbol* const* mpEnd;
};

}  // namespace

KrRfSymbolIterator* newArrayWalk(KrRfSymbol* const* symbols, int count) { return new ArrayWalk(symbols, count); }
