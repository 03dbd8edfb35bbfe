#pragma once
// The implementation of the service "ReflectionServices": makes the
// reflection extensions of classes and keeps the reflection reactors.

#include "krrfreflection.h"
#include "runtime/KrRxGrowArray.h"

class KR1ST_API KrRfImpReflectionService : public KrRfReflectionService {
  KRRX_DECLARE_MEMBERS(KrRfImpReflectionService);

 public:
  ~KrRfImpReflectionService() override;

  KrRfReflectionPE* reflectionPE(KrRxClass* cls, bool create) override;
  KrRfReflectionPE* requestReflectionPE(KrRxClass* cls) override;
  void addReactor(KrRfReflectionReactor* reactor) override;
  void removeReactor(KrRfReflectionReactor* reactor) override;

  // Tells every reactor, first registered first.
  void notifyAdded(KrRfSymbol* symbol) const;
  // Tells every reactor, last registered first.
  void notifyRemoved(KrRfSymbol* symbol) const;

 private:
  // Not owned.
  KrRxGrowArray<KrRfReflectionReactor*> mReactors;

  friend struct KrRfImpReflectionServiceLayout;
};

// The service of that name in the system registry's "ServiceDictionary"
// (taken only when that is a dictionary), or null.
KrRxObject* krrfFindService(const wchar_t* name);
// The implementation behind "ReflectionServices", or null when there is none.
KrRfImpReflectionService* krrfImpReflectionService();
