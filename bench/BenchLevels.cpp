#include "BenchLevels.h"

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
