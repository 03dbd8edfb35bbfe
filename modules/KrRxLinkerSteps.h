#pragma once
// The steps of the dynamic linker's load road that more than one of its
// files uses. The road: resolving the name (KrRxLinkerNames.cpp), probing
// the file (KrRxLinkerProbe.cpp), trust and the reactors' say
// (KrRxLinkerTrust.cpp), loading and initialising (KrRxLinkerLoad.cpp),
// unloading (KrRxLinkerUnload.cpp), list files (KrRxLinkerListFiles.cpp),
// registered applications (KrRxLinkerApplications.cpp) and the
// loaded-module table with its reactors, flags and messages
// (KrRxImpDynamicLinker.cpp).

#include <windows.h>

#include <string>

class KrRxImpSet;
class KrRxDLinkerReactor;

namespace krrxLinker {

// A module's file name is one path component: at most 255 characters.
constexpr size_t kFileNameCapacity = 255;

typedef void (KrRxDLinkerReactor::*Notification)(const wchar_t* moduleName);

// Calls the notification on every reactor of set, in the set's order. It
// allocates nothing, so that the failure paths can always tell the reactors.
void notify(const KrRxImpSet* set, Notification notification, const wchar_t* moduleName);

// The system's text for error, through the host's message output.
void reportSystemError(DWORD error);
// Writes the full path module was mapped from into path (capacity characters,
// terminator included) and returns its length; 0 when module is not loaded or
// its path does not fit.
DWORD modulePath(HMODULE module, wchar_t* path, DWORD capacity);
// The full path module was mapped from, up to the longest path the system has, or empty.
std::wstring modulePath(HMODULE module);
// Checks the probed module's API version and entry point, with the messages for a refusal.
bool acceptsEntryProtocol(HMODULE probe, const wchar_t* fileName, bool printMessages);

// Makes a copy of reason (may be empty) the pending refusal; unchanged when the copy fails.
void setFailReason(const wchar_t* reason);
// Takes the pending refusal: prints it (or the standard text) when asked, and clears it.
void reportRefusal(const wchar_t* fileName, bool printMessages);
// The trust library that checks module signatures, or null where the system has none to offer.
HMODULE loadTrustLibrary();

}  // namespace krrxLinker
