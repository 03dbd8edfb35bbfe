#pragma once
// Helpers shared by the extension tests: fresh classes and their deletion.

#include <functional>

class KrRxClass;

// A fresh, uniquely named class under parentName, linked into the tree.
KrRxClass* krMakeClass(const wchar_t* stem, const wchar_t* parentName = L"KrRxObject");

// Deletes cls the way a module's unload does: queued during kAppMsgUnload,
// then taken down when the linker clears the queue.
void krDeleteClassAsOnUnload(KrRxClass* cls);

// How much more a descriptor that was made, given attach(cls), and deleted
// leaves on the heap per 200 cycles than a bare one: what a descriptor
// fails to take down with it shows here.
long long krHeapGrowthOfAttaching(const std::function<void(KrRxClass*)>& attach);
