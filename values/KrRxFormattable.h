#pragma once
// Inside the library: finding an object's formattable extension.

#include "krrxformattable.h"

// The object's KrRxFormattablePE (through any overrule), or null.
KrRxFormattablePE* krrxFormattableOf(const KrRxObject* object);
