#pragma once
// The service "ProtocolReactorManager" and the per-class reactor manager it
// hands out, with the iterator over a manager's lists.

#include "extensions/KrRxArrayCursor.h"
#include "extensions/KrRxProtocolReactorList.h"

class KrRxImpProtocolReactorManager : public KrRxProtocolReactorManager {
  KRRX_DECLARE_MEMBERS(KrRxImpProtocolReactorManager);

 public:
  KrRxImpProtocolReactorManager() = default;
  // Deletes the lists.
  ~KrRxImpProtocolReactorManager() override;

  KrRxProtocolReactorList* createReactorList(KrRxClass* reactorClass) override;
  KrRxProtocolReactorListIterator* newIterator() const override;

  const KrRxGrowArray<KrRxProtocolReactorList*>& lists() const { return mLists; }

 private:
  KrRxGrowArray<KrRxProtocolReactorList*> mLists;
};

class KrRxImpProtocolReactorListIterator : public KrRxProtocolReactorListIterator {
  KRRX_DECLARE_MEMBERS(KrRxImpProtocolReactorListIterator);

 public:
  explicit KrRxImpProtocolReactorListIterator(const KrRxImpProtocolReactorManager* manager)
      : mCursor(manager->lists()) {}

  bool done() const override { return mCursor.done(); }
  bool next() override { return mCursor.next(); }
  KrRxObject* object() const override { return mCursor.object(); }
  void start() override { mCursor.start(); }

 private:
  KrRxArrayCursor<KrRxProtocolReactorList> mCursor;
};

// Exported: modules built against the first 20.x release import its class members.
class KR1ST_API KrRxImpProtocolReactorManagerFactory : public KrRxProtocolReactorManagerFactory {
  KRRX_DECLARE_MEMBERS(KrRxImpProtocolReactorManagerFactory);

 public:
  KrRxProtocolReactorManager* createReactorManager(KrRxClass* cls) const override;
};
