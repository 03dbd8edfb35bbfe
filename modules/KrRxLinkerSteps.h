#pragma once
// The pieces of the load road that the dynamic linker's files share: telling
// reactors, reporting a system error, the probe's entry-protocol check, and
// the trust step's refusal. Each is defined in the file of its step.

#include <windows.h>

class KrRxSet;
class KrRxDLinkerReactor;

typedef void (KrRxDLinkerReactor::*KrRxLinkerNotification)(const wchar_t* moduleName);

// Calls the notification on every reactor of set, in the set's order.
void krrxNotifyReactors(const KrRxSet* set, KrRxLinkerNotification notification, const wchar_t* moduleName);

// Probing. The system's text for error, through the host's message output.
void krrxReportSystemError(DWORD error);
// Checks the probed module's API version and entry point, with the messages for a refusal.
bool krrxAcceptsEntryProtocol(HMODULE probe, const wchar_t* fileName, bool printMessages);

// Trust. The trust library, where the system has one, or null.
HMODULE krrxLoadTrustLibrary();
// Makes reason (may be empty) the pending refusal of the module being loaded.
void krrxSetLoadFailReason(const wchar_t* reason);
// Takes the pending refusal: prints it (or the standard text) when asked, and clears it.
void krrxReportLoadRefusal(const wchar_t* fileName, bool printMessages);
