#pragma once
// The running system: the system registry, the class dictionary and the
// kernel, brought up when the library is loaded and taken down at unload.

#include "krexport.h"

class KrRxDictionary;
class KrRxKernel;

extern "C" {
KR1ST_API extern KrRxDictionary* sysRegistry;
KR1ST_API extern KrRxDictionary* sysClasses;
KR1ST_API extern KrRxKernel* sysKernel;
}

// Run by the library's own load and unload notifications only.
KR1ST_API void krrxInitSystem();
KR1ST_API void krrxKillSystem();

KR1ST_API KrRxDictionary* krrxSysRegistry();
KR1ST_API const KrRxDictionary* krrxSysClasses();
