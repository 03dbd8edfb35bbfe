// Run-time type tests and protocol lookup beside their C++ peers.

#include <cstdio>
#include <string>

#include "BenchHarness.h"
#include "BenchLevels.h"
#include "kr1st.h"

namespace {

// The same depth as a plain polymorphic C++ hierarchy.
struct Plain0 {
  virtual ~Plain0() = default;
};
struct Plain1 : Plain0 {};
struct Plain2 : Plain1 {};
struct Plain3 : Plain2 {};
struct Plain4 : Plain3 {};
struct Plain5 : Plain4 {};
struct Plain6 : Plain5 {};
struct Plain7 : Plain6 {};
struct Plain8 : Plain7 {};

}  // namespace

int main() {
  registerBenchLevels();
  Probe extension;
  Level1::desc()->addX(Probe::desc(), &extension);

  Level8 deep;
  KrRxObject* object = &deep;
  KrRxClass* root = Level1::desc();
  Plain8 plainDeep;
  Plain0* plain = &plainDeep;
  // Opaque to the optimiser, so every call is really made.
  asm volatile("" : "+r"(object), "+r"(root), "+r"(plain));

  std::printf("Runtime type tests and protocol lookup (best of 5 rounds, ns per call)\n");
  // The protocol class is looked up once, as a caller in a loop would.
  benchQueryXBesidePeers("queryX (inherited from 7 levels up)", object, Probe::desc(), &extension);
  // A descriptor is an object of a class whose vtable lives in the library.
  KrRxClass::desc()->addX(Probe::desc(), &extension);
  benchQueryXBesidePeers("queryX on a library object (a descriptor)", root, Probe::desc(), &extension);
  KrRxClass::desc()->delX(Probe::desc());

  double isKindOf = bench::nsPerCall([&](long long) { bench::keep(object->isKindOf(root)); }, 10000000);
  double dynamicCast = bench::nsPerCall([&](long long) { bench::keep(dynamic_cast<Plain1*>(plain)); }, 10000000);
  bench::report("isKindOf, 8 levels deep", isKindOf, "dynamic_cast, 8 levels deep", dynamicCast);

  double cast = bench::nsPerCall([&](long long) { bench::keep(Level1::cast(object)); }, 10000000);
  bench::report("Level1::cast, 8 levels deep", cast, "dynamic_cast, 8 levels deep", dynamicCast);

  Level1::desc()->delX(Probe::desc());
  return 0;
}
