#pragma once
// Keeping the system's shared dictionaries from growing while modules come
// and go.

// Gives back the ids freed at the end of the system registry, the class
// dictionary and the service dictionary, so that the next entries take them
// again. Safe because the runtime keeps no id of a removed entry in them (a
// class forgets its id when it leaves the class dictionary); does nothing
// while the system is down.
void krrxReclaimSystemDictionaryIds();
