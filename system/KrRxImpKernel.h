#pragma once
// The kernel service "KernelServices".

#include "krrxservice.h"

class KR1ST_API KrRxImpKernel : public KrRxKernel {
  KRRX_DECLARE_MEMBERS(KrRxImpKernel);

 public:
  KrRxDictionary* newKrRxDictionary(const KrRxClass* requiredClass) override;
  KrRxDictionary* newKrRxDictionary(unsigned int length, bool deleteObjects, bool sorted, bool ignoreCase) override;
  KrRxDictionary* newKrRxDictionary(bool sorted, bool ignoreCase) override;
  KrRxSet* newKrRxSet(bool deleteObjects, const KrRxClass* requiredClass) override;
  KrRxSet* newKrRxSet(bool deleteObjects) override;
  KrRxSet* newKrRxSet() override;
};
