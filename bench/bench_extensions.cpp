// Overrules and protocol reactors beside their C++ peers: queryX with the
// overrule switch off and on, and reactor lists against a vector.

#include <algorithm>
#include <cstdio>
#include <string>
#include <vector>

#include "BenchHarness.h"
#include "BenchLevels.h"
#include "kr1st.h"

namespace {

KR_BENCH_CLASS(Listener, KrRxProtocolReactor)

// A query overrule that never applies: every lookup asks it and moves on.
class NeverQueryX : public KrRxQueryXOverrule {
 public:
  bool isApplicable(const KrRxObject*) const override { return false; }
};

KrRxProtocolReactorManagerFactory* reactorFactory() {
  auto* services = KrRxDictionary::cast(krrxSysRegistry()->at(L"ServiceDictionary"));
  return KrRxProtocolReactorManagerFactory::cast(services->at(L"ProtocolReactorManager"));
}

void benchQueryX() {
  Probe extension;
  Level1::desc()->addX(Probe::desc(), &extension);
  Level5 deep;
  KrRxObject* object = &deep;
  const KrRxClass* probe = Probe::desc();
  asm volatile("" : "+r"(object), "+r"(probe));  // opaque, so every call is really made
  double switchOff = benchQueryXBesidePeers("queryX, overruling off (4 levels up)", object, probe, &extension);

  NeverQueryX never;
  KrRxOverrule::addOverrule(Level1::desc(), &never, false);
  KrRxOverrule::setIsOverruling(true);
  double switchOn = bench::nsPerCall([&](long long) { bench::keep(object->queryX(probe)); }, 1000000);
  bench::report("queryX, overruling on, 1 overrule not applying", switchOn, "queryX, overruling off", switchOff);
  KrRxOverrule::setIsOverruling(false);
  KrRxOverrule::removeOverrule(Level1::desc(), &never);
  Level1::desc()->delX(Probe::desc());
}

// Adds 1,000 reactors to a fresh list and walks it once; ns per reactor.
void benchReactors() {
  const int n = 1000, batch = 20, rounds = 5;
  std::vector<Listener> reactors(n);
  // One fresh list per call, made beforehand: lists live as long as their class.
  std::vector<KrRxProtocolReactorList*> lists;
  for (int i = 0; i < batch * rounds; ++i) {
    KrRxClass* cls = newKrRxClass((L"Watched" + std::to_wstring(i)).c_str(), L"KrRxObject", 0, nullptr,
                                  nullptr, nullptr);
    lists.push_back(reactorFactory()->createReactorManager(cls)->createReactorList(Listener::desc()));
  }
  krrxBuildClassHierarchy();
  size_t next = 0;
  double ours = bench::nsPerCall(
      [&](long long) {
        KrRxProtocolReactorList* list = lists[next++];
        for (Listener& reactor : reactors) list->addReactor(&reactor);
        KrRxProtocolReactorIterator* it = list->newIterator();
        for (; !it->done(); it->next()) bench::keep(it->object());
        delete it;
      },
      batch, rounds);
  // The same work on a vector: a duplicate check before each append.
  double peer = bench::nsPerCall(
      [&](long long) {
        std::vector<KrRxProtocolReactor*> list;
        for (Listener& reactor : reactors)
          if (std::find(list.begin(), list.end(), &reactor) == list.end()) list.push_back(&reactor);
        for (KrRxProtocolReactor* reactor : list) bench::keep(reactor);
      },
      batch, rounds);
  bench::report("addReactor+walk, 1,000 reactors, per reactor", ours / n, "vector find+push_back+walk", peer / n);
}

}  // namespace

int main() {
  registerBenchLevels();
  Listener::rxInit();
  krrxBuildClassHierarchy();
  std::printf("Overrules and protocol reactors (best of 5 rounds, ns per call)\n");
  benchQueryX();
  benchReactors();
  return 0;
}
