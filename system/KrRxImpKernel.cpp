#include "system/KrRxImpKernel.h"

#include "runtime/KrRxCoreClass.h"
#include "runtime/KrRxImpDictionary.h"
#include "runtime/KrRxImpSet.h"

KRRX_CORE_NO_CONS_DEFINE_MEMBERS(KrRxKernel, KrRxService)
KRRX_CORE_CONS_DEFINE_MEMBERS(KrRxImpKernel, KrRxKernel)

KrRxDictionary* KrRxImpKernel::newKrRxDictionary(const KrRxClass* requiredClass) {
  return new KrRxImpDictionary(0, false, false, false, requiredClass);
}

KrRxDictionary* KrRxImpKernel::newKrRxDictionary(unsigned int length, bool deleteObjects, bool sorted,
                                                 bool ignoreCase) {
  return new KrRxImpDictionary(length, deleteObjects, sorted, ignoreCase, nullptr);
}

KrRxDictionary* KrRxImpKernel::newKrRxDictionary(bool sorted, bool ignoreCase) {
  return new KrRxImpDictionary(0, false, sorted, ignoreCase, nullptr);
}

KrRxSet* KrRxImpKernel::newKrRxSet(bool deleteObjects, const KrRxClass* requiredClass) {
  return new KrRxGenTypedSet(deleteObjects, requiredClass);
}

KrRxSet* KrRxImpKernel::newKrRxSet(bool deleteObjects) { return new KrRxImpSet(deleteObjects); }

KrRxSet* KrRxImpKernel::newKrRxSet() { return new KrRxImpSet(false); }
