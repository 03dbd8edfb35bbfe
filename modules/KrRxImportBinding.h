#pragma once
// Whether a module's imports from libraries already in the process can be
// bound, checked on the probe mapping before the module is loaded for real.
// Windows refuses a module with an unbound import; other loaders bind it to
// a stub that ends the process at the first call. Checking first gives every
// system the refusal.
//
//   std::string missing;
//   if (!krrxImportsBind(probe, missing)) refuse(ERROR_PROC_NOT_FOUND);

#include <windows.h>

#include <string>

#include "modules/KrRxPeImage.h"

// The image of a module as the system mapped it (also without resolving
// references), its headers already checked by the loader.
KrRxPeImage krrxMappedImage(HMODULE module);

// The loaded extension module (one exporting "krrxEntryPoint") of that file
// name, or null.
HMODULE krrxLoadedExtensionModule(const std::string& name);

// True when every function that module imports from kr1st20.dll, and then
// from each loaded extension module it names, is exported there; otherwise
// false with the first missing name (as imported) in missing. Libraries not
// loaded yet are left to the system's loader.
bool krrxImportsBind(HMODULE module, std::string& missing);
