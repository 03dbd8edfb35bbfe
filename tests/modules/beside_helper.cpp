// A plain DLL that lives only beside the module that imports it
// (beside/beside.krx), so that the module loads only when the linker makes
// its directory the DLL directory while loading it.
extern "C" __declspec(dllexport) int testHelperValue() { return 5; }
