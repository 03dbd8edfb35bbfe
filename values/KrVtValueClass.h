#pragma once
// The run-time type members of a named value type: desc() and isA() as for
// every class, and an rxInit() that registers CLASS under PARENT with a
// pseudo-constructor making a default value.

#include "krrfvalue.h"

#define KRVT_DEFINE_VALUE_MEMBERS(CLASS, PARENT)                                                    \
  KRRX_DEFINE_MEMBERS(CLASS)                                                                        \
  void CLASS::rxInit() {                                                                            \
    gpDesc = krrfNewValueClass(L## #CLASS, L## #PARENT, [] { return static_cast<KrRxObject*>(new CLASS()); }); \
  }
