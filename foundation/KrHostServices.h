#pragma once
// Access to the host's database library services, when that library is loaded.

class KrDbHostApplicationServices;

// The host services object, or null when "KRDB20.DLL" is not loaded or does
// not export krdbHostApplicationServices. The library and its export are
// resolved once per process.
KrDbHostApplicationServices* krHostServices();
