// Protocol reactors: managers per class, lists per reactor class, iterators.

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "KrExtensionsTestSupport.h"
#include "kr1st.h"
#include "runtime/KrRxImpClass.h"

namespace {

// A reactor class, one derived from it and one unrelated to it.
class Listener : public KrRxProtocolReactor {
  KRRX_DECLARE_MEMBERS(Listener);
};
class LoudListener : public Listener {
  KRRX_DECLARE_MEMBERS(LoudListener);
};
class Stranger : public KrRxProtocolReactor {
  KRRX_DECLARE_MEMBERS(Stranger);
};
KRRX_CONS_DEFINE_MEMBERS(Listener, KrRxProtocolReactor)
KRRX_CONS_DEFINE_MEMBERS(LoudListener, Listener)
KRRX_CONS_DEFINE_MEMBERS(Stranger, KrRxProtocolReactor)

class Registered : public ::testing::Environment {
 public:
  void SetUp() override {
    Listener::rxInit();
    LoudListener::rxInit();
    Stranger::rxInit();
    krrxBuildClassHierarchy();
  }
};
const auto* const kRegistered = ::testing::AddGlobalTestEnvironment(new Registered);

// The factory as a module finds it: system registry, service dictionary, service.
KrRxProtocolReactorManagerFactory* factory() {
  auto* services = KrRxDictionary::cast(krrxSysRegistry()->at(L"ServiceDictionary"));
  return services ? KrRxProtocolReactorManagerFactory::cast(services->at(L"ProtocolReactorManager")) : nullptr;
}

KrRxProtocolReactorList* listFor(const wchar_t* stem, KrRxClass* reactorClass) {
  return factory()->createReactorManager(krMakeClass(stem))->createReactorList(reactorClass);
}

// What an iterator yields from where it stands to its end.
std::vector<KrRxObject*> walk(KrRxIterator* it) {
  std::vector<KrRxObject*> seen;
  for (; !it->done(); it->next()) seen.push_back(it->object());
  return seen;
}

std::vector<KrRxObject*> reactorsOf(const KrRxProtocolReactorList* list) {
  KrRxProtocolReactorIterator* it = list->newIterator();
  std::vector<KrRxObject*> seen = walk(it);
  delete it;
  return seen;
}

}  // namespace

TEST(KrRxProtocolReactorTest, TheFactoryIsTheRegisteredService) {
  ASSERT_NE(factory(), nullptr);
  EXPECT_EQ(factory()->isA(), krrxFindKrRxClass(L"KrRxImpProtocolReactorManagerFactory"));
  EXPECT_EQ(factory()->createReactorManager(nullptr), nullptr);
}

TEST(KrRxProtocolReactorTest, OneManagerPerClassMadeOnFirstRequest) {
  KrRxClass* cls = krMakeClass(L"Watched");
  EXPECT_EQ(cls->impObj()->mpReactorManager, nullptr) << "nothing before the first request";
  KrRxProtocolReactorManager* manager = factory()->createReactorManager(cls);
  ASSERT_NE(manager, nullptr);
  EXPECT_EQ(factory()->createReactorManager(cls), manager);
  EXPECT_EQ(cls->impObj()->mpReactorManager, manager) << "kept in the descriptor";
  EXPECT_NE(factory()->createReactorManager(krMakeClass(L"Other")), manager);
  EXPECT_TRUE(manager->isKindOf(KrRxProtocolReactorManager::desc()));
}

TEST(KrRxProtocolReactorTest, OneListPerExactReactorClassInCreationOrder) {
  KrRxProtocolReactorManager* manager = factory()->createReactorManager(krMakeClass(L"Lists"));
  KrRxProtocolReactorList* listeners = manager->createReactorList(Listener::desc());
  ASSERT_NE(listeners, nullptr);
  EXPECT_EQ(listeners->reactorClass(), Listener::desc());
  EXPECT_EQ(manager->createReactorList(Listener::desc()), listeners) << "same class, same list";
  KrRxProtocolReactorList* loud = manager->createReactorList(LoudListener::desc());
  EXPECT_NE(loud, listeners) << "a derived reactor class gets a list of its own";
  EXPECT_EQ(manager->createReactorList(nullptr), nullptr);

  KrRxProtocolReactorListIterator* it = manager->newIterator();
  EXPECT_EQ(walk(it), (std::vector<KrRxObject*>{listeners, loud}));
  EXPECT_EQ(it->object(), nullptr) << "past the end";
  EXPECT_FALSE(it->next());
  it->start();
  EXPECT_EQ(it->object(), listeners);
  delete it;
}

TEST(KrRxProtocolReactorTest, AddingChecksTheReactorClassAndDuplicates) {
  KrRxProtocolReactorList* list = listFor(L"Adds", Listener::desc());
  Listener plain;
  LoudListener loud;
  Stranger stranger;
  EXPECT_EQ(list->addReactor(&plain), Kesu::eOk);
  EXPECT_EQ(list->addReactor(&loud), Kesu::eOk) << "kinds of the reactor class are accepted";
  EXPECT_EQ(list->addReactor(&stranger), Kesu::eWrongObjectType);
  EXPECT_EQ(list->addReactor(nullptr), Kesu::eWrongObjectType);
  EXPECT_EQ(list->addReactor(&plain), Kesu::eDuplicateKey);
  EXPECT_EQ(reactorsOf(list), (std::vector<KrRxObject*>{&plain, &loud})) << "one entry each, in order";

  KrRxProtocolReactorList* loudOnly = listFor(L"LoudAdds", LoudListener::desc());
  EXPECT_EQ(loudOnly->addReactor(&plain), Kesu::eWrongObjectType) << "a base-class reactor is not a kind";
}

TEST(KrRxProtocolReactorTest, RemovalKeepsOrderAndIgnoresAbsentReactors) {
  KrRxProtocolReactorList* list = listFor(L"Removes", Listener::desc());
  Listener a, b, c, absent;
  for (Listener* reactor : {&a, &b, &c}) ASSERT_EQ(list->addReactor(reactor), Kesu::eOk);
  list->removeReactor(&b);
  EXPECT_EQ(reactorsOf(list), (std::vector<KrRxObject*>{&a, &c}));
  list->removeReactor(&absent);
  list->removeReactor(nullptr);
  EXPECT_EQ(reactorsOf(list), (std::vector<KrRxObject*>{&a, &c}));
  EXPECT_EQ(list->addReactor(&b), Kesu::eOk) << "a removed reactor can come back, at the end";
  EXPECT_EQ(reactorsOf(list), (std::vector<KrRxObject*>{&a, &c, &b}));
}

TEST(KrRxProtocolReactorTest, IteratorsStepStartAndGiveNullOutOfRange) {
  KrRxProtocolReactorList* list = listFor(L"Walks", Listener::desc());
  KrRxProtocolReactorIterator* it = list->newIterator();
  EXPECT_TRUE(it->done()) << "an empty list is done at once";
  EXPECT_EQ(it->object(), nullptr);
  EXPECT_EQ(it->reactorClass(), Listener::desc());
  delete it;

  Listener first, second;
  list->addReactor(&first);
  list->addReactor(&second);
  it = list->newIterator();
  EXPECT_FALSE(it->done());
  EXPECT_EQ(it->object(), &first);
  EXPECT_TRUE(it->next());
  EXPECT_EQ(it->object(), &second);
  EXPECT_FALSE(it->next()) << "stepping past the last";
  EXPECT_TRUE(it->done());
  EXPECT_EQ(it->object(), nullptr);
  it->start();
  EXPECT_EQ(it->object(), &first);
  delete it;
}

TEST(KrRxProtocolReactorTest, AModuleCanDeleteAWatchedClassOnUnload) {
  KrRxClass* cls = krMakeClass(L"Unloaded");
  std::wstring name = cls->name();
  Listener reactor;
  factory()->createReactorManager(cls)->createReactorList(Listener::desc())->addReactor(&reactor);
  krDeleteClassAsOnUnload(cls);
  EXPECT_EQ(krrxFindKrRxClass(name.c_str()), nullptr);
}

TEST(KrRxProtocolReactorTest, AManagerDiesWithItsClass) {
  // A manager with two lists takes well over 100 bytes; kept per cycle it would show.
  Listener reactor;
  EXPECT_LT(krHeapGrowthOfAttaching([&](KrRxClass* cls) {
              KrRxProtocolReactorManager* manager = factory()->createReactorManager(cls);
              manager->createReactorList(Listener::desc())->addReactor(&reactor);
              manager->createReactorList(Stranger::desc());
            }),
            4096);
}
