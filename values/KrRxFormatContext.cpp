// The format context and number format interfaces that hosts implement.

#include "krrxformatcontext.h"

#include "runtime/KrRxCoreClass.h"

KRRX_CORE_NO_CONS_DEFINE_MEMBERS(KrRxFormatContext, KrRxObject)
KRRX_CORE_NO_CONS_DEFINE_MEMBERS(KrRxNumberFormat, KrRxObject)
KRRX_CORE_NO_CONS_DEFINE_MEMBERS(KrRxNumberFormat2, KrRxNumberFormat)

KrRxFormatContext::~KrRxFormatContext() = default;
KrRxNumberFormat::~KrRxNumberFormat() = default;
KrRxNumberFormat2::~KrRxNumberFormat2() = default;
