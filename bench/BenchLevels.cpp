#include "BenchLevels.h"

#include <unordered_map>

#include "BenchHarness.h"

KRRX_CONS_DEFINE_MEMBERS(Level1, KrRxObject)
KRRX_CONS_DEFINE_MEMBERS(Level2, Level1)
KRRX_CONS_DEFINE_MEMBERS(Level3, Level2)
KRRX_CONS_DEFINE_MEMBERS(Level4, Level3)
KRRX_CONS_DEFINE_MEMBERS(Level5, Level4)
KRRX_CONS_DEFINE_MEMBERS(Level6, Level5)
KRRX_CONS_DEFINE_MEMBERS(Level7, Level6)
KRRX_CONS_DEFINE_MEMBERS(Level8, Level7)
KRRX_CONS_DEFINE_MEMBERS(Probe, KrRxObject)

void registerBenchLevels() {
  Level1::rxInit(), Level2::rxInit(), Level3::rxInit(), Level4::rxInit();
  Level5::rxInit(), Level6::rxInit(), Level7::rxInit(), Level8::rxInit();
  Probe::rxInit();
  krrxBuildClassHierarchy();
}

double benchQueryXBesidePeers(const char* what, KrRxObject* object, const KrRxClass* protocol, KrRxObject* extension) {
  asm volatile("" : "+r"(object), "+r"(protocol));  // opaque, so every call is really made
  double queryX = bench::nsPerCall([&](long long) { bench::keep(object->queryX(protocol)); }, 10000000);
  double virtualCall = bench::nsPerCall([&](long long) { bench::keep(object->isA()); }, 10000000);
  bench::report(what, queryX, "one virtual call (isA)", virtualCall);
  // What a lookup keyed by protocol would cost instead of the table index.
  std::unordered_map<const void*, KrRxObject*> byProtocol;
  for (int i = 0; i < 64; ++i) byProtocol[reinterpret_cast<const char*>(object) + i] = nullptr;
  byProtocol[protocol] = extension;
  double hashed = bench::nsPerCall([&](long long) { bench::keep(byProtocol.find(protocol)->second); }, 10000000);
  bench::report(what, queryX, "unordered_map<const void*,T*>::find", hashed);
  return queryX;
}
