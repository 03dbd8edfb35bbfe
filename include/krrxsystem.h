#pragma once
/// @file
/// The running system: the system registry, the class dictionary and the
/// kernel, brought up when the library is loaded and taken down at unload.
///
/// Their ids are never reused: an id, once handed out, names its entry or
/// nothing for the life of the dictionary, so a caller may keep one and
/// check it later with has(). Each module load that registers classes,
/// services or registry entries therefore takes fresh ids.

#include "krexport.h"

class KrRxDictionary;
class KrRxKernel;

extern "C" {
/// The system registry, the class dictionary and the kernel, null outside start-up and shutdown.
///@{
KR1ST_API extern KrRxDictionary* sysRegistry;
KR1ST_API extern KrRxDictionary* sysClasses;
KR1ST_API extern KrRxKernel* sysKernel;
///@}
}

/// Run by the library's own load and unload notifications only.
///@{
KR1ST_API void krrxInitSystem();
KR1ST_API void krrxKillSystem();
///@}

/// The system registry and the class dictionary.
///@{
KR1ST_API KrRxDictionary* krrxSysRegistry();
KR1ST_API const KrRxDictionary* krrxSysClasses();
///@}
