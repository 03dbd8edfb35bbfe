#include "krrxgenvoid.h"

#include "runtime/KrRxCoreClass.h"

KRRX_CORE_CONS_DEFINE_MEMBERS(KrRxGenVoid, KrRxObject)

KrRxGenVoid::~KrRxGenVoid() {}
