#pragma once
// Small questions to the system that several krhost commands ask.

#include <string>

// The full path of krhost.exe itself.
std::wstring krhostProgramPath();

// The system's text for an error or status code with the code in hex, e.g.
// "No Signature found in file. (0x800B0100)"; the code alone when the
// system has no text for it.
std::wstring krhostSystemText(unsigned long code);

// value as eight hex digits: "0x00140006".
std::wstring krhostHex(unsigned long value);
