// Events: the broadcaster is abstract, the listener base takes every
// callback quietly, and the callbacks stand in their contracted slots.

#include <gtest/gtest.h>

#include <cstring>
#include <string>
#include <type_traits>
#include <vector>

#include "kr1st.h"

// The host's database; the callbacks only pass it on.
class KrDbDatabase {};

namespace {

static_assert(std::is_abstract<KrRxEvent>::value, "the broadcaster is the host's to implement");
static_assert(std::is_trivially_copyable<KrDbObjectId>::value && sizeof(KrDbObjectId) == 8,
              "object ids travel in one register");

// The vtable slot of a virtual member function (Itanium ABI: the pointer
// holds one plus the byte offset into the vtable).
template <typename F>
long slotOf(F member) {
  struct Representation {
    uintptr_t pointer;
    ptrdiff_t adjustment;
  } representation;
  static_assert(sizeof(F) == sizeof(Representation), "a member function pointer is two words");
  std::memcpy(&representation, &member, sizeof representation);
  return static_cast<long>((representation.pointer - 1) / sizeof(void*));
}

// The slot of callback n (1-based, as numbered in the interface): after
// KrRxObject's comparedTo comes subQueryX, then the callbacks.
long callbackSlot(int n) { return slotOf(&KrRxObject::comparedTo) + 1 + n; }

using Db = KrDbDatabase*;
using Names = const wchar_t* const*;

// Overrides a few callbacks and records which were called, with what.
class Recorder : public KrRxEventReactor {
 public:
  void beginWblock(Db to, Db from) override { record("wblock(to,from)", to, from); }
  void beginWblock(Db to, Db from, KrDbObjectId id) override {
    record("wblock(to,from,id)", to, from, id);
  }
  void beginWblock(Db to, Db from, const KrGePoint3d*&) override { record("wblock(to,from,point)", to, from); }
  void comandeered(Db to, KrDbObjectId id, Db from) override { record("comandeered", to, from, id); }
  void endUnitsChange(Db db, const KrDb::UnitsValue& units, bool scaling) override {
    record("endUnitsChange", db, nullptr, KrDbObjectId(), static_cast<int>(units) * 10 + scaling);
  }

  std::vector<std::string> mCalls;
  Db mTo = nullptr, mFrom = nullptr;
  KrDbObjectId mId;
  int mValue = 0;

 private:
  void record(const char* what, Db to, Db from, KrDbObjectId id = KrDbObjectId(), int value = 0) {
    mCalls.push_back(what);
    mTo = to, mFrom = from, mId = id, mValue = value;
  }
};

// The host's values, which the callbacks only pass on.
struct Host {
  KrDbDatabase database;
  alignas(8) char opaque[64] = {};
};

// Sends every callback once through the base interface.
void fireAll(KrRxEventReactor* reactor, Host& host) {
  Db db = &host.database;
  auto& map = reinterpret_cast<KrDbIdMapping&>(host.opaque);
  auto& matrix = reinterpret_cast<const KrGeMatrix3d&>(host.opaque);
  auto& ids = reinterpret_cast<const KrArray<KrDbObjectId>&>(host.opaque);
  const auto units = static_cast<KrDb::UnitsValue>(3);
  const auto command = static_cast<KrXrefSubCommand>(1);
  KrDbObjectId id(db);
  const KrGePoint3d* point = nullptr;
  Kesu::ErrorStatus status = Kesu::eOk;
  bool vetoed = false;
  wchar_t name[] = L"drawing.dwg";
  Names none = nullptr;
  reactor->databaseConstructed(db), reactor->databaseToBeDestroyed(db), reactor->fileOpened(db, name);
  reactor->initialFileOpenComplete(db), reactor->beginSave(db, name), reactor->saveComplete(db, name);
  reactor->abortSave(db), reactor->beginDxfIn(db), reactor->abortDxfIn(db), reactor->dxfInComplete(db);
  reactor->beginDxfOut(db), reactor->abortDxfOut(db), reactor->dxfOutComplete(db);
  reactor->beginInsert(db, matrix, db), reactor->beginInsert(db, name, db), reactor->otherInsert(db, map, db);
  reactor->abortInsert(db), reactor->endInsert(db), reactor->wblockNotice(db);
  reactor->beginWblock(db, db), reactor->beginWblock(db, db, id), reactor->beginWblock(db, db, point);
  reactor->otherWblock(db, map, db), reactor->abortWblock(db), reactor->endWblock(db);
  reactor->beginWblockObjects(db, map), reactor->beginDeepClone(db, map);
  reactor->beginDeepCloneXlation(map, &status), reactor->abortDeepClone(map), reactor->endDeepClone(map);
  reactor->partialOpenNotice(db), reactor->objectsLazyLoaded(ids), reactor->beginAttach(db, name, db);
  reactor->otherAttach(db, db), reactor->abortAttach(db), reactor->endAttach(db), reactor->redirected(id, id);
  reactor->comandeered(db, id, db), reactor->beginRestore(db, name, db), reactor->abortRestore(db);
  reactor->endRestore(db), reactor->xrefSubcommandBindItem(db, 1, id);
  reactor->xrefSubcommandAttachItem(db, 1, name), reactor->xrefSubcommandOverlayItem(db, 1, name);
  reactor->xrefSubcommandDetachItem(db, 1, id), reactor->xrefSubcommandPathItem(1, id, name);
  reactor->xrefSubcommandReloadItem(db, 1, id), reactor->xrefSubcommandUnloadItem(db, 1, id);
  reactor->xrefSubCommandStart(db, command, ids, none, none, vetoed);
  reactor->xrefSubCommandAborted(db, command, ids, none, none);
  reactor->xrefSubCommandEnd(db, command, ids, none, none), reactor->preXrefLockFile(db, id);
  reactor->beginUnitsChange(db, units, true), reactor->endUnitsChange(db, units, true);
  EXPECT_EQ(status, Kesu::eOk);
  EXPECT_FALSE(vetoed);
  EXPECT_EQ(point, nullptr);
}

}  // namespace

TEST(KrRxEventTest, TheClassesAreRegistered) {
  EXPECT_EQ(KrRxEvent::desc(), krrxFindKrRxClass(L"KrRxEvent"));
  EXPECT_EQ(KrRxEvent::desc()->create(), nullptr) << "abstract: no pseudo-constructor";
  KrRxObject* made = KrRxEventReactor::desc()->create();
  EXPECT_EQ(KrRxEventReactor::cast(made), made);
  EXPECT_NE(made, nullptr);
  delete made;
}

TEST(KrRxEventTest, AReactorThatOverridesNothingTakesEveryCallback) {
  Host host;
  KrRxEventReactor plain;
  fireAll(&plain, host);
  // The library's own instance, with the library's own vtable.
  KrRxObject* made = KrRxEventReactor::desc()->create();
  fireAll(KrRxEventReactor::cast(made), host);
  delete made;
}

TEST(KrRxEventTest, OverriddenCallbacksAreReachedThroughTheBase) {
  Host host, other;
  Recorder recorder;
  KrRxEventReactor* reactor = &recorder;
  fireAll(reactor, host);
  EXPECT_EQ(recorder.mCalls, (std::vector<std::string>{"wblock(to,from)", "wblock(to,from,id)",
                                                        "wblock(to,from,point)", "comandeered",
                                                        "endUnitsChange"}));
  reactor->comandeered(&host.database, KrDbObjectId(&other), &other.database);
  EXPECT_EQ(recorder.mTo, &host.database);
  EXPECT_EQ(recorder.mFrom, &other.database);
  EXPECT_EQ(recorder.mId, KrDbObjectId(&other)) << "the id arrives by value, intact";
  const auto units = static_cast<KrDb::UnitsValue>(4);
  reactor->endUnitsChange(&host.database, units, true);
  EXPECT_EQ(recorder.mValue, 41);
}

TEST(KrRxEventTest, CallbacksStandInTheirContractedSlots) {
  using R = KrRxEventReactor;
  EXPECT_EQ(slotOf(&R::databaseConstructed), callbackSlot(1));
  EXPECT_EQ(slotOf(static_cast<void (R::*)(Db, const KrGeMatrix3d&, Db)>(&R::beginInsert)), callbackSlot(14));
  EXPECT_EQ(slotOf(static_cast<void (R::*)(Db, const wchar_t*, Db)>(&R::beginInsert)), callbackSlot(15));
  EXPECT_EQ(slotOf(&R::wblockNotice), callbackSlot(19));
  EXPECT_EQ(slotOf(static_cast<void (R::*)(Db, Db)>(&R::beginWblock)), callbackSlot(20));
  EXPECT_EQ(slotOf(static_cast<void (R::*)(Db, Db, KrDbObjectId)>(&R::beginWblock)), callbackSlot(21));
  EXPECT_EQ(slotOf(static_cast<void (R::*)(Db, Db, const KrGePoint3d*&)>(&R::beginWblock)), callbackSlot(22));
  EXPECT_EQ(slotOf(&R::otherWblock), callbackSlot(23));
  EXPECT_EQ(slotOf(&R::objectsLazyLoaded), callbackSlot(32));
  EXPECT_EQ(slotOf(&R::redirected), callbackSlot(37));
  EXPECT_EQ(slotOf(&R::comandeered), callbackSlot(38));
  EXPECT_EQ(slotOf(&R::xrefSubcommandBindItem), callbackSlot(42));
  EXPECT_EQ(slotOf(&R::xrefSubcommandUnloadItem), callbackSlot(48));
  EXPECT_EQ(slotOf(&R::xrefSubCommandStart), callbackSlot(49));
  EXPECT_EQ(slotOf(&R::xrefSubCommandEnd), callbackSlot(51));
  EXPECT_EQ(slotOf(&R::endUnitsChange), callbackSlot(54));
  EXPECT_EQ(slotOf(&KrRxEvent::addReactor), callbackSlot(1));
  EXPECT_EQ(slotOf(&KrRxEvent::removeReactor), callbackSlot(2));
}
