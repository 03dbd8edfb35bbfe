// Class descriptors, the class tree and protocol extensions.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>

#include "KrAbortTrap.h"
#include "KrObjectOfClass.h"
#include "kr1st.h"
#include "runtime/KrRxImpClass.h"

using ::testing::HasSubstr;

namespace {

// A protocol class.
class Greeter : public KrRxObject {
  KRRX_DECLARE_MEMBERS(Greeter);
};
KRRX_CONS_DEFINE_MEMBERS(Greeter, KrRxObject)

// A copyable class: clone works through its pseudo-constructor and copyFrom.
class Point : public KrRxObject {
  KRRX_DECLARE_MEMBERS(Point);

 public:
  Kesu::ErrorStatus copyFrom(const KrRxObject* other) override {
    const Point* p = Point::cast(other);
    if (!p) return Kesu::eInvalidInput;
    mX = p->mX;
    return Kesu::eOk;
  }
  int mX = 0;
};
KRRX_CONS_DEFINE_MEMBERS(Point, KrRxObject)

// A class whose copy falls back to the root version.
class Uncopyable : public KrRxObject {
  KRRX_DECLARE_MEMBERS(Uncopyable);
};
KRRX_CONS_DEFINE_MEMBERS(Uncopyable, KrRxObject)

// A class that answers every protocol with one object of its own.
class Redirecting : public Point {
  KRRX_DECLARE_MEMBERS(Redirecting);

 public:
  KrRxObject* mpAnswer = nullptr;

 protected:
  KrRxObject* subQueryX(const KrRxClass*) const override { return mpAnswer; }
};
KRRX_CONS_DEFINE_MEMBERS(Redirecting, Point)

class Registered : public ::testing::Environment {
 public:
  void SetUp() override {
    Greeter::rxInit();
    Point::rxInit();
    Uncopyable::rxInit();
    Redirecting::rxInit();
    krrxBuildClassHierarchy();
  }
};
const auto* const kRegistered = ::testing::AddGlobalTestEnvironment(new Registered);

// A fresh, uniquely named class under parentName, linked into the tree.
KrRxClass* makeClass(const std::wstring& name, const wchar_t* parentName = L"KrRxObject") {
  KrRxClass* cls = newKrRxClass(name.c_str(), parentName, 0, nullptr, nullptr, nullptr);
  krrxBuildClassHierarchy();
  return cls;
}

std::wstring unique(const wchar_t* stem) {
  static int serial = 0;
  return std::wstring(stem) + std::to_wstring(++serial);
}

const KrRxProtocolTable* tableOf(const KrRxClass* cls) { return cls->impObj()->mpPeTable; }

}  // namespace

TEST(KrRxClassTest, TypeTestsWalkTheParentChain) {
  KrRxClass* chain[9];
  chain[0] = makeClass(unique(L"Depth"));
  for (int i = 1; i < 9; ++i) chain[i] = makeClass(unique(L"Depth"), chain[i - 1]->name());
  KrRxObject* deep = chain[8]->create();
  EXPECT_EQ(deep, nullptr) << "classes without a pseudo-constructor create nothing";

  Point point;
  EXPECT_TRUE(point.isKindOf(Point::desc()));
  EXPECT_TRUE(point.isKindOf(KrRxObject::desc()));
  EXPECT_FALSE(point.isKindOf(Greeter::desc()));
  KrRxObject* none = nullptr;
  asm volatile("" : "+r"(none));  // a null object the compiler cannot see through
  EXPECT_FALSE(none->isKindOf(KrRxObject::desc()));
  EXPECT_EQ(Point::cast(static_cast<KrRxObject*>(nullptr)), nullptr);
  EXPECT_EQ(Greeter::cast(&point), nullptr);
  EXPECT_EQ(Point::cast(&point), &point);

  EXPECT_TRUE(chain[8]->isDerivedFrom(chain[0]));
  EXPECT_TRUE(KrRxClass::isDerivedFrom(chain[8], KrRxObject::desc()));
  EXPECT_FALSE(chain[0]->isDerivedFrom(chain[8]));
  EXPECT_FALSE(KrRxClass::isDerivedFrom(nullptr, chain[0]));
  EXPECT_EQ(chain[3]->myParent(), chain[2]);
}

TEST(KrRxClassTest, ChildCreatedBeforeParentConnectsInOnePass) {
  std::wstring parentName = unique(L"LateParent"), childName = unique(L"EarlyChild");
  KrRxClass* child = newKrRxClass(childName.c_str(), parentName.c_str(), 0, nullptr, nullptr, nullptr);
  KrRxClass* parent = newKrRxClass(parentName.c_str(), L"KrRxObject", 0, nullptr, nullptr, nullptr);
  EXPECT_EQ(krrxFindKrRxClass(childName.c_str()), nullptr) << "pending until the pass";
  krrxBuildClassHierarchy();
  EXPECT_EQ(krrxFindKrRxClass(childName.c_str()), child);
  EXPECT_EQ(child->myParent(), parent);
  ASSERT_NE(parent->descendants(), nullptr);
  EXPECT_TRUE(parent->descendants()->isMember(child));
  EXPECT_EQ(parent->descendants()->numEntries(), 1u);
  EXPECT_EQ(KrRxImpClass::newClasses.count, 0) << "the pending list is emptied";
}

TEST(KrRxClassTest, ClassInformationIsKeptOnlyWhenGiven) {
  KrRxClass* plain = makeClass(unique(L"Plain"));
  int version = -1, maintenance = -1;
  plain->getClassVersion(version, maintenance);
  EXPECT_EQ(version, 0);
  EXPECT_EQ(maintenance, 0);
  EXPECT_EQ(plain->appName(), nullptr);
  EXPECT_EQ(plain->dxfName(), nullptr);

  std::wstring name = unique(L"Informed");
  KrRxClass* informed = newKrRxClass(name.c_str(), L"KrRxObject", 7, 3, 0x21, nullptr, L"INFORMED", L"Drafting",
                                     nullptr);
  krrxBuildClassHierarchy();
  informed->getClassVersion(version, maintenance);
  EXPECT_EQ(version, 7);
  EXPECT_EQ(maintenance, 3);
  EXPECT_EQ(informed->proxyFlags(), 0x21);
  EXPECT_STREQ(informed->dxfName(), L"INFORMED");
  EXPECT_STREQ(informed->appName(), L"Drafting");
  EXPECT_NE(informed->impObj()->info(), plain->impObj()->info());
}

TEST(KrRxClassTest, ProtocolTablesAreSharedUntilAnOwnAttachment) {
  KrRxClass* a = makeClass(unique(L"TableA"));
  KrRxClass* b = makeClass(unique(L"TableB"), a->name());
  KrRxClass* c = makeClass(unique(L"TableC"), b->name());
  KrRxClass* protocol = makeClass(unique(L"Protocol"), L"Greeter");
  EXPECT_EQ(tableOf(b), tableOf(a));
  EXPECT_EQ(tableOf(c), tableOf(a));

  KrObjectOfClass o(protocol), o2(protocol);
  EXPECT_EQ(a->addX(protocol, &o), nullptr);
  int slot = protocol->impObj()->mProtocolIndex;
  EXPECT_GT(slot, 0) << "slot 0 is never given";
  EXPECT_EQ(KrRxImpClass::protocolClasses.data[0], nullptr);
  EXPECT_EQ(tableOf(a)->owner, a->impObj());
  EXPECT_EQ(tableOf(b), tableOf(a)) << "descendants follow their ancestor's new table";
  EXPECT_EQ(b->queryX(protocol), &o);

  b->addX(protocol, &o2);
  EXPECT_NE(tableOf(b), tableOf(a));
  EXPECT_EQ(tableOf(c), tableOf(b));
  EXPECT_EQ(a->queryX(protocol), &o);
  EXPECT_EQ(b->queryX(protocol), &o2);
  EXPECT_EQ(c->queryX(protocol), &o2);

  KrObjectOfClass o3(protocol);
  EXPECT_EQ(a->addX(protocol, &o3), &o) << "replacing returns the previous object";
  EXPECT_EQ(c->queryX(protocol), &o2) << "an own attachment below stops the descent";

  EXPECT_EQ(b->delX(protocol), &o2);
  EXPECT_EQ(b->queryX(protocol), &o3);
  EXPECT_EQ(c->queryX(protocol), &o3);
  EXPECT_EQ(b->delX(protocol), nullptr) << "nothing of its own left";
  EXPECT_EQ(a->addX(protocol, nullptr), &o3) << "a null object detaches";
  EXPECT_EQ(c->queryX(protocol), nullptr);
}

TEST(KrRxClassTest, ObjectsFindProtocolObjectsThroughTheirClass) {
  KrRxClass* protocol = makeClass(unique(L"PointProtocol"), L"Greeter");
  Point point;
  EXPECT_EQ(point.queryX(protocol), nullptr) << "never used as a protocol: null, no report";
  EXPECT_EQ(point.queryX(nullptr), nullptr);
  KrObjectOfClass extension(protocol);
  KrRxObject::desc()->addX(protocol, &extension);
  EXPECT_EQ(point.queryX(protocol), &extension) << "inherited from the root";
  EXPECT_EQ(point.x(protocol), &extension);
  EXPECT_EQ(Point::desc()->getX(protocol), &extension);
  KrRxObject::desc()->delX(protocol);
  EXPECT_EQ(point.queryX(protocol), nullptr);
  EXPECT_EQ(krAbortMessageOf([&] { point.x(protocol); }), L"KrRxClass::getX() failed!!");
  EXPECT_EQ(krAbortMessageOf([&] { Point::desc()->getX(protocol); }), L"KrRxClass::getX() failed!!");
}

// queryX looks the table up inline only for classes that keep the root's
// subQueryX, whether their vtables live here or in the library.
TEST(KrRxClassTest, QueryXTakesTheInlineLookupOnlyWhereSubQueryXIsTheRoots) {
  KrRxClass* protocol = makeClass(unique(L"InlineProtocol"), L"Greeter");
  KrObjectOfClass extension(protocol), answer(protocol);
  KrRxObject::desc()->addX(protocol, &extension);
  Point point;
  Redirecting redirecting;
  redirecting.mpAnswer = &answer;
  const KrRxObject* libraryObject = Point::desc();
  EXPECT_TRUE(KrRxProtocolLookup::keepsDefaultSubQueryX(&point));
  EXPECT_TRUE(KrRxProtocolLookup::keepsDefaultSubQueryX(libraryObject));
  EXPECT_FALSE(KrRxProtocolLookup::keepsDefaultSubQueryX(&redirecting));
  EXPECT_EQ(point.queryX(protocol), &extension);
  EXPECT_EQ(libraryObject->queryX(protocol), &extension);
  EXPECT_EQ(redirecting.queryX(protocol), &answer) << "an override is always asked";
  KrRxObject::desc()->delX(protocol);
  EXPECT_EQ(libraryObject->queryX(protocol), nullptr);
}

TEST(KrRxClassTest, DetachingFromAClassWithoutSlotGivesNoSlot) {
  KrRxClass* protocol = makeClass(unique(L"Unused"), L"Greeter");
  EXPECT_EQ(Point::desc()->addX(protocol, nullptr), nullptr);
  EXPECT_EQ(protocol->impObj()->mProtocolIndex, 0);
  EXPECT_EQ(Point::desc()->delX(protocol), nullptr);
}

TEST(KrRxClassTest, SlotsOfDeletedProtocolClassesAreReused) {
  KrRxClass* doomed = makeClass(unique(L"Doomed"), L"Greeter");
  KrObjectOfClass extension(doomed);
  KrRxClass* host = makeClass(unique(L"Host"));
  host->addX(doomed, &extension);
  host->delX(doomed);
  int slot = doomed->impObj()->mProtocolIndex;
  KrRxImpClass::deleteClass(doomed);
  KrRxImpClass::clearDeletedClassesArray();
  EXPECT_EQ(KrRxImpClass::protocolClasses.data[slot], nullptr);

  KrRxClass* successor = makeClass(unique(L"Successor"), L"Greeter");
  KrObjectOfClass successorExtension(successor);
  host->addX(successor, &successorExtension);
  EXPECT_EQ(successor->impObj()->mProtocolIndex, slot);
  host->delX(successor);
}

TEST(KrRxClassTest, ReplacementKeepsTheSubtreeAndItsExtensions) {
  std::wstring name = unique(L"Replaced");
  KrRxClass* original = makeClass(name);
  KrRxClass* child = makeClass(unique(L"Kept"), name.c_str());
  KrRxClass* protocol = makeClass(unique(L"KeptProtocol"), L"Greeter");
  KrRxClass* otherProtocol = makeClass(unique(L"ChildProtocol"), L"Greeter");
  KrObjectOfClass onOriginal(protocol), onChild(otherProtocol);
  original->addX(protocol, &onOriginal);
  child->addX(otherProtocol, &onChild);

  KrRxClass* replacement = makeClass(name);
  EXPECT_EQ(krrxFindKrRxClass(name.c_str()), replacement);
  EXPECT_EQ(child->myParent(), replacement);
  EXPECT_EQ(original->descendants(), nullptr);
  EXPECT_EQ(original->impObj()->mDictionaryId, 0u);
  EXPECT_TRUE(KrRxObject::desc()->descendants()->isMember(replacement));
  EXPECT_EQ(child->queryX(protocol), &onOriginal);
  EXPECT_EQ(child->queryX(otherProtocol), &onChild);
  EXPECT_EQ(replacement->queryX(protocol), &onOriginal);
  EXPECT_TRUE(replacement->descendants()->isMember(child));
}

TEST(KrRxClassTest, DescriptorsCompareByNameCodeUnitByCodeUnit) {
  KrRxClass* upper = newKrRxClass(L"Ab", L"KrRxObject", 0, nullptr, nullptr, nullptr);
  KrRxClass* lower = newKrRxClass(L"ab", L"KrRxObject", 0, nullptr, nullptr, nullptr);
  Point point;
  EXPECT_EQ(upper->comparedTo(lower), KrRx::kLessThan);
  EXPECT_EQ(lower->comparedTo(upper), KrRx::kGreaterThan);
  EXPECT_EQ(upper->comparedTo(upper), KrRx::kEqual);
  EXPECT_EQ(upper->comparedTo(&point), KrRx::kNotOrderable);
  krrxBuildClassHierarchy();
}

TEST(KrRxClassTest, CloneCopiesThroughThePseudoConstructor) {
  Point point;
  point.mX = 42;
  KrRxObject* copy = point.clone();
  ASSERT_NE(copy, nullptr);
  EXPECT_EQ(copy->isA(), Point::desc());
  EXPECT_EQ(Point::cast(copy)->mX, 42);
  delete copy;

  KrRxClass* abstractClass = makeClass(unique(L"Abstract"));
  EXPECT_EQ(abstractClass->create(), nullptr);
  EXPECT_EQ(KrRxObject::desc()->create(), nullptr);
  Greeter greeter;
  EXPECT_TRUE(greeter.isEqualTo(&greeter));
  EXPECT_FALSE(greeter.isEqualTo(&point));
  EXPECT_EQ(greeter.comparedTo(&greeter), KrRx::kNotOrderable);

  Uncopyable uncopyable;
  EXPECT_EQ(krAbortMessageOf([&] { uncopyable.clone(); }), L"Unimplemented KrRxObject::copyFrom() function invoked.");
}

TEST(KrRxClassTest, ProtocolMisuseIsReportedVerbatim) {
  KrRxClass* protocol = makeClass(unique(L"Strict"), L"Greeter");
  KrRxClass* nullClass = nullptr;
  KrObjectOfClass greeter(protocol);
  Point wrongKind;
  EXPECT_EQ(krAbortMessageOf([&] { nullClass->addX(protocol, &greeter); }),
            L"KrRxClass::addX() called on a nullptr instance.\n");
  EXPECT_EQ(krAbortMessageOf([&] { nullClass->delX(protocol); }), L"KrRxClass::addX() called on a nullptr instance.\n");
  EXPECT_EQ(krAbortMessageOf([&] { Point::desc()->addX(nullptr, &greeter); }),
            L"KrRxClass::addX() called on 'Point' using nullptr class.\n");
  EXPECT_EQ(krAbortMessageOf([&] { Point::desc()->delX(nullptr); }),
            L"KrRxClass::addX() called on 'Point' using nullptr class.\n");
  std::wstring name = protocol->name();
  EXPECT_EQ(krAbortMessageOf([&] { Point::desc()->addX(protocol, &wrongKind); }),
            L"KrRxClass::addX() called on 'Point' using a protocol object that is not a kind of '" + name +
                L"'.\n'" + name + L"::cast()' will not work on this protocol.\n\nSolution: Your protocol object "
                L"KrRxClass should inherit from '" + name + L"' in order to use it here as protocol extension "
                L"object.\n");
  EXPECT_EQ(protocol->impObj()->mProtocolIndex, 0) << "a refused attachment gives no slot";
}

TEST(KrRxClassTest, UnknownParentIsFatal) {
  std::wstring name = unique(L"Orphan");
  newKrRxClass(name.c_str(), L"NoSuchParent", 0, nullptr, nullptr, nullptr);
  EXPECT_EQ(krAbortMessageOf([] { krrxBuildClassHierarchy(); }),
            L"Class '" + name + L"' parent named 'NoSuchParent' not found.");
  KrRxImpClass::newClasses.count = 0;
}

TEST(KrRxClassTest, LinkingTwiceAndUnlinkingAStrangerAreFatal) {
  KrRxClass* parent = makeClass(unique(L"Family"));
  KrRxClass* child = makeClass(unique(L"Member"), parent->name());
  std::wstring parentName = parent->name(), childName = child->name();
  EXPECT_EQ(krAbortMessageOf([&] { child->impObj()->connect(sysClasses); }),
            L"Class '" + parentName + L"' already contains a descendant called '" + childName + L"'.");
  EXPECT_EQ(child->myParent(), parent) << "nothing changed";

  ASSERT_TRUE(parent->impObj()->removeDescendant(child));
  EXPECT_EQ(parent->descendants(), nullptr) << "the set goes with its last member";
  EXPECT_EQ(krAbortMessageOf([&] { child->impObj()->disconnect(sysClasses); }),
            L"Class '" + parentName + L"' does not contain a descendant called '" + childName + L"'.");
}

TEST(KrRxClassTest, DeletionQueuesUntilClearedAndTakesDescendantsFirst) {
  KrRxClass* parent = makeClass(unique(L"DeadParent"));
  KrRxClass* child = makeClass(unique(L"DeadChild"), parent->name());
  std::wstring parentName = parent->name(), childName = child->name();
  deleteKrRxClass(child);
  EXPECT_EQ(KrRxImpClass::deletedClasses.count, 0) << "outside a module's unload nothing happens";

  KrRxImpClass::deleteClass(parent);
  KrRxImpClass::deleteClass(child);
  KrRxImpClass::deleteClass(child);
  EXPECT_EQ(KrRxImpClass::deletedClasses.count, 2) << "queued once each";
  EXPECT_EQ(krrxFindKrRxClass(parentName.c_str()), parent) << "nothing deleted before clearing";
  KrRxImpClass::clearDeletedClassesArray();
  EXPECT_EQ(KrRxImpClass::deletedClasses.count, 0);
  EXPECT_EQ(krrxFindKrRxClass(parentName.c_str()), nullptr);
  EXPECT_EQ(krrxFindKrRxClass(childName.c_str()), nullptr);
}

TEST(KrRxClassDeathTest, DeletingAClassWithDescendantsIsFatal) {
  KrRxClass* parent = makeClass(unique(L"Busy"));
  makeClass(unique(L"BusyChild"), parent->name());
  EXPECT_EXIT(
      {
        krEchoMessageBoxesToStderr();
        delete parent;
      },
      ::testing::ExitedWithCode(3),
      HasSubstr("Orvan CAD - INTERNAL ERROR | Attempt to delete class '" + krUtf8(parent->name()) +
                "' which still has registered descendants."));
}

TEST(KrRxClassDeathTest, ACoreClassMeetingAnotherDescriptorOfItsNameIsFatal) {
  EXPECT_EXIT(
      {
        krEchoMessageBoxesToStderr();
        newKrRxClass(L"KrRxGenVoid", L"KrRxObject", 0, nullptr, nullptr, nullptr);
        krrxBuildClassHierarchy();
        KrRxGenVoid::rxInit();
      },
      ::testing::ExitedWithCode(3), HasSubstr("| Class mismatch"));
}
