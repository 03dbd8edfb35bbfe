#include "reflection/KrRfReflectionService.h"

#include "runtime/KrRxCoreClass.h"

KRRX_CORE_NO_CONS_DEFINE_MEMBERS(KrRfReflectionService, KrRxService)
KRRX_CORE_CONS_DEFINE_MEMBERS(KrRfImpReflectionService, KrRfReflectionService)

KrRfImpReflectionService::~KrRfImpReflectionService() { mClasses.release(); }
