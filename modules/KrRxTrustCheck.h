#pragma once
// Authenticode verification of a module file as the linker asks for it, for
// the linker and for krhost's check: the generic verify action, no user
// interface, no revocation checks.

#include <windows.h>

#include <wintrust.h>

typedef LONG(WINAPI* KrRxWinVerifyTrustEx)(HWND window, GUID* action, WINTRUST_DATA* data);

// verify's verdict on the file at path: 0 when its signature verifies,
// otherwise a negative status such as TRUST_E_NOSIGNATURE.
LONG krrxVerifyTrust(KrRxWinVerifyTrustEx verify, const wchar_t* path);
