// The runtime's other structures when an allocation fails: classes and
// their protocol extensions, sets and lists, services, strings and unique
// strings. Each failure point throws std::bad_alloc or is absorbed as
// defined, and leaves the structure answering as before.

#include <gtest/gtest.h>

#include <memory>
#include <string>

#include "KrFailingAllocations.h"
#include "KrHeapUsage.h"
#include "kr1st.h"
#include "runtime/KrRxImpClass.h"
#include "runtime/KrRxImpDictionary.h"
#include "runtime/KrRxImpSet.h"

namespace {

// Creating, linking and deleting a small class tree, with an extension on it.
TEST(KrRxRuntimeFailureTest, ClassTreesAndExtensions) {
  krRunFailurePoints("classes", [](KrAllocationFailure& failure) {
    KrRxClass* shape = nullptr;
    KrRxClass* circle = nullptr;
    KrRxService extension;
    bool created = failure.run([&] {
      shape = newKrRxClass(L"FailShape", L"KrRxObject", 0, nullptr, nullptr, nullptr);
      circle = newKrRxClass(L"FailCircle", L"FailShape", 0, nullptr, nullptr, nullptr);
      krrxBuildClassHierarchy();
      shape->addX(KrRxService::desc(), &extension);
    });
    if (created) {
      EXPECT_EQ(krrxFindKrRxClass(L"FailCircle"), circle);
      EXPECT_EQ(circle->myParent(), shape);
      EXPECT_EQ(shape->myParent(), KrRxObject::desc());
      EXPECT_EQ(circle->queryX(KrRxService::desc()), &extension);
    }
    if (shape && failure.run([&] { shape->delX(KrRxService::desc()); })) {
      EXPECT_EQ(circle ? circle->queryX(KrRxService::desc()) : nullptr, nullptr);
    }
    if (shape) shape->delX(KrRxService::desc());
    if (circle) KrRxImpClass::deleteClass(circle);
    if (shape) KrRxImpClass::deleteClass(shape);
    KrRxImpClass::clearDeletedClassesArray();
    EXPECT_EQ(krrxFindKrRxClass(L"FailShape"), nullptr);
    EXPECT_EQ(krrxFindKrRxClass(L"FailCircle"), nullptr);
    EXPECT_EQ(KrRxObject::desc()->queryX(KrRxService::desc()), nullptr);
  });
}

TEST(KrRxRuntimeFailureTest, SetsListsAndServices) {
  krRunFailurePoints("sets and lists", [](KrAllocationFailure& failure) {
    KrRxImpSet set;
    KrRxGenLinkedList list;
    KrRxObject members[6];
    failure.run([&] {
      for (KrRxObject& member : members) {
        set.add(&member);
        list.addNewLastEntry(&member);
      }
    });
    unsigned int inSet = 0;
    for (KrRxObject& member : members) inSet += set.isMember(&member);
    EXPECT_EQ(set.numEntries(), inSet);
    std::unique_ptr<KrRxIterator> it(list.newIterator());
    unsigned int walked = 0;
    for (; !it->done(); it->next(), ++walked) EXPECT_EQ(it->object(), &members[walked]);
    EXPECT_EQ(list.numEntries(), walked);
    if (!failure.reached()) { EXPECT_EQ(inSet + walked, 12u); }
  });
  // Ids are never reused: the service dictionary grows by design.
  auto* services = KrRxImpDictionary::cast(krrxSysRegistry()->at(L"ServiceDictionary"));
  krRunFailurePoints("services", [&](KrAllocationFailure& failure) {
    bool registered = failure.run([] { krrxRegisterService(L"FailService"); });
    EXPECT_EQ(krrxServiceIsRegistered(L"FailService"), registered);
    delete services->remove(L"FailService");
    EXPECT_TRUE(krrxServiceIsRegistered(L"KernelServices"));
  }, [&] { return static_cast<long long>(services->entryBlockBytes()); });
}

// A failed string form stays empty; nothing throws.
TEST(KrRxRuntimeFailureTest, StringsAndUniqueStrings) {
  krRunFailurePoints("strings", [](KrAllocationFailure& failure) {
    KrString built, copy, number;
    bool completed = failure.run([&] {
      built = L"Layer";
      built += L" 12";
      copy = built;
      built.kszPtr();
      number = KrString(2, 42u);
      copy.replace(L"Layer", L"Level");
      built.setEmpty();
    });
    EXPECT_TRUE(completed);
    EXPECT_TRUE(built.isEmpty());
    // A failed step leaves its string empty or as it was before that step.
    const std::wstring copyText = copy.kwszPtr();
    EXPECT_TRUE(copyText.empty() || copyText == L"Layer" || copyText == L"Level" || copyText == L" 12" || copyText == L"Layer 12" ||
                copyText == L"Level 12")
        << copyText;
    EXPECT_TRUE(number.isEmpty() || number.asDeci(0) == 42);
    if (!failure.reached()) { EXPECT_STREQ(copy.kwszPtr(), L"Level 12"); }
  });
  // Every try interns a name of its own; the table keeps each name for the
  // process's life, so its growth is all by design.
  int tries = 0;
  krRunFailurePoints("unique strings", [&](KrAllocationFailure& failure) {
    const std::wstring name = L"FailureName" + std::to_wstring(tries++);
    const KrUniqueString* interned = nullptr;
    bool completed = failure.run([&] { interned = KrUniqueString::Intern(name.c_str()); });
    const KrUniqueString* again = KrUniqueString::Intern(name.c_str());
    EXPECT_NE(again, nullptr);
    if (completed) { EXPECT_EQ(interned, again); }
  }, [] { return static_cast<long long>(krBusyHeapBytes()); });
}

}  // namespace
