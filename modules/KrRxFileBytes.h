#pragma once
// Whole-file reads, for the linker's list files, krhost's module checks and
// the tests: one read loop and one error contract for all of them.

#include <windows.h>

#include <string>

// Appends to bytes what can be read from file, from its current position up
// to its end or the first read error; false after a read error.
bool krrxReadFileBytes(HANDLE file, std::string& bytes);

// Replaces bytes with the contents of the file at path. False, with error
// set to the system's error code, when the file cannot be opened or read.
bool krrxReadFileBytes(const wchar_t* path, std::string& bytes, DWORD& error);
