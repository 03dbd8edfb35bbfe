// Stands in for a newer kr1st20.dll: a library of that name exporting a
// function this runtime does not have. A module linked against it is a
// module built against a newer runtime.
extern "C" __declspec(dllexport) int krrxFunctionOfANewerRuntime() { return 1; }
