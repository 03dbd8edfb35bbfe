#pragma once
// Helpers shared by the extension tests: fresh classes and heap accounting.

#include <functional>

class KrRxClass;

// A fresh, uniquely named class under parentName, linked into the tree.
KrRxClass* krMakeClass(const wchar_t* stem, const wchar_t* parentName = L"KrRxObject");

// Deletes cls the way a module's unload does: queued during kAppMsgUnload,
// then taken down when the linker clears the queue.
void krDeleteClassAsOnUnload(KrRxClass* cls);

// Deletes a descriptor at once: its implementation takes down what it owns.
void krDeleteClass(KrRxClass* cls);

// How many bytes the process's heaps grow over 200 runs of cycle, after 20 to warm up.
long long krHeapGrowthOver200(const std::function<void()>& cycle);
