// Run-time type members of the abstract dictionary interfaces.

#include "krrxdictionary.h"

#include "runtime/KrRxCoreClass.h"

KRRX_CORE_NO_CONS_DEFINE_MEMBERS(KrRxDictionary, KrRxObject)
KRRX_CORE_NO_CONS_DEFINE_MEMBERS(KrRxDictionaryIterator, KrRxObject)
