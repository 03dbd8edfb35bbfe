#pragma once
// The class dictionary: every registered class by name and id. The runtime
// owns the pointer; the system creates the dictionary at start-up and
// destroys it at shutdown. Null outside that span.

#include "krexport.h"

class KrRxDictionary;

extern "C" {
KR1ST_API extern KrRxDictionary* sysClasses;
}
