// A library built into a folder of its own that no module search reaches.
extern "C" __declspec(dllexport) int unreachableHelperValue() { return 7; }
