#pragma once
// The library's reactor list and the iterator over it.

#include "extensions/KrRxArrayCursor.h"
#include "krrxprotocolreactor.h"

class KrRxImpProtocolReactorList : public KrRxProtocolReactorList {
  KRRX_DECLARE_MEMBERS(KrRxImpProtocolReactorList);

 public:
  explicit KrRxImpProtocolReactorList(KrRxClass* reactorClass) : mpReactorClass(reactorClass) {}
  ~KrRxImpProtocolReactorList() override;

  KrRxClass* reactorClass() const override { return mpReactorClass; }
  Kesu::ErrorStatus addReactor(KrRxProtocolReactor* reactor) override;
  void removeReactor(KrRxProtocolReactor* reactor) override;
  KrRxProtocolReactorIterator* newIterator() const override;

  const KrRxGrowArray<KrRxProtocolReactor*>& reactors() const { return mReactors; }

 private:
  int32_t indexOf(const KrRxProtocolReactor* reactor) const;

  KrRxClass* mpReactorClass;
  KrRxGrowArray<KrRxProtocolReactor*> mReactors;
};

class KrRxImpProtocolReactorIterator : public KrRxProtocolReactorIterator {
  KRRX_DECLARE_MEMBERS(KrRxImpProtocolReactorIterator);

 public:
  explicit KrRxImpProtocolReactorIterator(const KrRxImpProtocolReactorList* list)
      : mpList(list), mCursor(list->reactors()) {}

  bool done() const override { return mCursor.done(); }
  bool next() override { return mCursor.next(); }
  KrRxObject* object() const override { return mCursor.object(); }
  KrRxClass* reactorClass() const override { return mpList->reactorClass(); }
  void start() override { mCursor.start(); }

 private:
  const KrRxImpProtocolReactorList* mpList;
  KrRxArrayCursor<KrRxProtocolReactor> mCursor;
};
