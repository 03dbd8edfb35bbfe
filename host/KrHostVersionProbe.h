#pragma once
// Calls a module's krrxGetApiVersion the way the linker's probe does (the
// file mapped, its imports not resolved), but in a child process: krhost
// runs itself with the hidden command "__version <path>", so a version
// function that faults or hangs is reported and never takes krhost down.
//
//   KrHostVersionProbe probe = krhostProbeVersion(L"C:\\modules\\hello.krx");
//   if (probe.returned) ... probe.version ... else ... probe.failure ...

#include <string>

#include "host/KrHostCommand.h"

struct KrHostVersionProbe {
  bool returned = false;   // the function returned
  unsigned int version = 0;
  std::wstring failure;    // why not, in plain words, when it did not
};

KrHostVersionProbe krhostProbeVersion(const std::wstring& path);

// Adds the hidden "__version" command, the child's side.
void krhostAddVersionProbeCommand(KrHostCommandTable& table);
