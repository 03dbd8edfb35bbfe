// Stands in for an older 20.x kr1st20.dll: a library of that name exporting
// a function this runtime no longer has. A module linked against it is a
// module whose runtime names were removed since.
extern "C" __declspec(dllexport) int krrxFunctionSinceRemoved() { return 1; }
