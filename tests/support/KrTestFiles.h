#pragma once
// Files the tests and benchmarks work with, and the platform's own verdict
// on their signatures.

#include <string>

// The folder of the running executable (and of the test modules), with a trailing backslash.
std::wstring krTestBinDirectory();

// WinVerifyTrustEx's verdict on the file, asked directly, without user
// interface or revocation checks: the reference the runtime is measured against.
long krVerifyTrust(const wchar_t* path);
