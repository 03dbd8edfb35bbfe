#pragma once
// The class tree that the type-test and lookup benchmarks share: eight
// levels of runtime classes below KrRxObject, each a C++ class registered
// under its name, and Probe, a protocol class whose object serves as an
// extension.
//
//   registerBenchLevels();
//   Level8 deep;
//   Level1::cast(&deep);
//   benchQueryXBesidePeers("queryX", &deep, Probe::desc(), &extension);

#include "kr1st.h"

class Level1 : public KrRxObject { KRRX_DECLARE_MEMBERS(Level1); };
class Level2 : public Level1 { KRRX_DECLARE_MEMBERS(Level2); };
class Level3 : public Level2 { KRRX_DECLARE_MEMBERS(Level3); };
class Level4 : public Level3 { KRRX_DECLARE_MEMBERS(Level4); };
class Level5 : public Level4 { KRRX_DECLARE_MEMBERS(Level5); };
class Level6 : public Level5 { KRRX_DECLARE_MEMBERS(Level6); };
class Level7 : public Level6 { KRRX_DECLARE_MEMBERS(Level7); };
class Level8 : public Level7 { KRRX_DECLARE_MEMBERS(Level8); };
class Probe : public KrRxObject { KRRX_DECLARE_MEMBERS(Probe); };

// Registers the levels and Probe and builds the class hierarchy.
void registerBenchLevels();

// Reports object->queryX(protocol) beside one virtual call and beside a hash
// lookup keyed by the protocol (holding extension), as line what; returns
// the nanoseconds per queryX.
double benchQueryXBesidePeers(const char* what, KrRxObject* object, const KrRxClass* protocol, KrRxObject* extension);
