#pragma once
// Helpers shared by the extension tests: fresh classes and their deletion.

class KrRxClass;

// A fresh, uniquely named class under parentName, linked into the tree.
KrRxClass* krMakeClass(const wchar_t* stem, const wchar_t* parentName = L"KrRxObject");

// Deletes cls the way a module's unload does: queued during kAppMsgUnload,
// then taken down when the linker clears the queue.
void krDeleteClassAsOnUnload(KrRxClass* cls);

// Deletes a descriptor at once: its implementation takes down what it owns.
void krDeleteClass(KrRxClass* cls);
