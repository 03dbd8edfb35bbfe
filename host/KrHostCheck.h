#pragma once
// "krhost check": tells whether each module would load and why not, without
// running its entry point. One line per check: the name resolved to a file,
// a readable x64 PE DLL, both exports present, the API version (read in a
// child process, so a faulting version function cannot take krhost down),
// the signature, every imported DLL found, every runtime function it imports
// present in this runtime, and the extension modules it would load first.

#include "host/KrHostCommand.h"

void krhostAddCheckCommand(KrHostCommandTable& table);
