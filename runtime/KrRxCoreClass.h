#pragma once
// Run-time type members of the library's own classes. Their rxInit() makes
// the descriptor once: calling it again while the class dictionary holds the
// same descriptor is quiet, finding a different one there is fatal.

#include "krrxclass.h"

// Creates the descriptor of a library class unless *current is already the
// one entered under name ("Class mismatch" when another one is).
KrRxClass* krrxInitCoreClass(KrRxClass* current, const wchar_t* name, const wchar_t* parentName,
                             KrRxPseudoConstructor pseudoConstructor);

#define KRRX_CORE_NO_CONS_DEFINE_MEMBERS(CLASS, PARENT) \
  KRRX_DEFINE_MEMBERS(CLASS)                            \
  void CLASS::rxInit() { gpDesc = krrxInitCoreClass(gpDesc, L## #CLASS, L## #PARENT, nullptr); }

#define KRRX_CORE_CONS_DEFINE_MEMBERS(CLASS, PARENT)                              \
  KRRX_DEFINE_MEMBERS(CLASS)                                                      \
  static KrRxObject* CLASS##PseudoConstructor() { return new CLASS(); }           \
  void CLASS::rxInit() {                                                          \
    gpDesc = krrxInitCoreClass(gpDesc, L## #CLASS, L## #PARENT, CLASS##PseudoConstructor); \
  }
