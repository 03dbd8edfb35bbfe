// Linked lists and their iterators, ordered sets, and the copy-on-write
// wrapper.

#include <gtest/gtest.h>

#include <algorithm>
#include <memory>
#include <random>
#include <thread>
#include <vector>

#include "KrRxTestValue.h"
#include "krrxcopyonwrite.h"
#include "krrxgenvoid.h"
#include "krrxlinkedlist.h"
#include "runtime/KrRxImpSet.h"

namespace {

typedef std::vector<KrRxObject*> Objects;
typedef std::unique_ptr<KrRxIterator> IteratorPtr;

template <typename Container>
Objects walk(const Container& container, bool forward) {
  Objects objects;
  IteratorPtr it(container.newIterator(forward));
  for (; !it->done(); it->next()) objects.push_back(it->object());
  return objects;
}

template <typename Container>
void expectOrder(const Container& container, const Objects& expected) {
  EXPECT_EQ(walk(container, true), expected);
  EXPECT_EQ(walk(container, false), Objects(expected.rbegin(), expected.rend()));
  EXPECT_EQ(container.numEntries(), expected.size());
}

std::vector<int> values(const KrRxSet& set) {
  std::vector<int> result;
  for (KrRxObject* object : walk(set, true)) result.push_back(static_cast<KrRxTestValue*>(object)->value());
  return result;
}

class KrRxGenLinkedListTest : public ::testing::Test {
 protected:
  static void SetUpTestSuite() { KrRxTestValue::registerClass(); }
  KrRxGenVoid a, b, c, d;
  std::unique_ptr<KrRxGenLinkedList> list{newKrRxGenLinkedList()};
};

TEST_F(KrRxGenLinkedListTest, StartsEmptyAndAddsAtBothEnds) {
  for (bool forward : {true, false}) {
    std::unique_ptr<KrRxGenLinkedListIterator> it(list->newIterator(forward));
    EXPECT_TRUE(it->done());
    EXPECT_EQ(it->object(), nullptr);
    EXPECT_FALSE(it->next());
    EXPECT_FALSE(list->removeAtIterator(it.get()));
  }
  EXPECT_FALSE(list->removeFirstEntry());
  EXPECT_FALSE(list->removeLastEntry());
  EXPECT_EQ(list->numEntries(), 0u);

  list->addNewLastEntry(&b);
  list->addNewFirstEntry(&a);
  list->addNewLastEntry(&c);
  expectOrder(*list, {&a, &b, &c});
  EXPECT_EQ(list->getFirstEntry(), &a);
  EXPECT_EQ(list->getLastEntry(), &c);

  std::unique_ptr<KrRxGenLinkedListIterator> it(list->newIterator(false));
  EXPECT_EQ(it->object(), &c);
  EXPECT_TRUE(it->next());
  EXPECT_TRUE(it->next());
  EXPECT_FALSE(it->next());
  EXPECT_TRUE(it->done());
  EXPECT_FALSE(it->next());  // stays done
}

TEST_F(KrRxGenLinkedListTest, InsertsBesideTheIterator) {
  list->addNewLastEntry(&b);
  std::unique_ptr<KrRxGenLinkedListIterator> it(list->newIterator(true));
  list->addBeforeIterator(it.get(), &a);  // becomes the head
  list->addAfterIterator(it.get(), &d);   // becomes the tail
  list->addAfterIterator(it.get(), &c);   // between b and d
  expectOrder(*list, {&a, &b, &c, &d});
  EXPECT_EQ(list->getFirstEntry(), &a);
  EXPECT_EQ(list->getLastEntry(), &d);

  while (it->next()) {
  }
  list->addAfterIterator(it.get(), &a);
  list->addBeforeIterator(it.get(), &a);
  list->addAfterIterator(nullptr, &a);
  EXPECT_EQ(list->numEntries(), 4u);
}

TEST_F(KrRxGenLinkedListTest, RemoveAtIteratorContinuesTheWalk) {
  for (KrRxObject* object : {&a, &b, &c, &d}) list->addNewLastEntry(object);
  std::unique_ptr<KrRxGenLinkedListIterator> it(list->newIterator(true));
  EXPECT_TRUE(list->removeAtIterator(it.get()));  // the head
  EXPECT_EQ(it->object(), &b);
  it->next();
  EXPECT_TRUE(list->removeAtIterator(it.get()));  // in the middle
  EXPECT_EQ(it->object(), &d);
  EXPECT_TRUE(list->removeAtIterator(it.get()));  // the tail
  EXPECT_TRUE(it->done());
  expectOrder(*list, {&b});

  list->addNewLastEntry(&c);
  std::unique_ptr<KrRxGenLinkedListIterator> back(list->newIterator(false));
  EXPECT_TRUE(list->removeAtIterator(back.get()));
  EXPECT_EQ(back->object(), &b);
  EXPECT_TRUE(list->removeAtIterator(back.get()));
  EXPECT_TRUE(back->done());
  expectOrder(*list, {});
  list->addNewFirstEntry(&a);
  expectOrder(*list, {&a});
}

// Removal at the ends leaves the links beyond the new end as they were;
// adding at that end again, or emptying and refilling, makes a sound list.
TEST_F(KrRxGenLinkedListTest, EndRemovalsAndRefilling) {
  for (KrRxObject* object : {&a, &b, &c}) list->addNewLastEntry(object);
  EXPECT_TRUE(list->removeFirstEntry());
  EXPECT_EQ(walk(*list, true), (Objects{&b, &c}));
  EXPECT_EQ(list->getFirstEntry(), &b);
  list->addNewFirstEntry(&d);
  expectOrder(*list, {&d, &b, &c});

  EXPECT_TRUE(list->removeLastEntry());
  EXPECT_EQ(walk(*list, false), (Objects{&b, &d}));
  list->addNewLastEntry(&a);
  expectOrder(*list, {&d, &b, &a});

  // Emptied from one end, refilled from the other.
  while (list->removeFirstEntry()) {
  }
  EXPECT_EQ(list->numEntries(), 0u);
  list->addNewLastEntry(&c);
  expectOrder(*list, {&c});
  while (list->removeLastEntry()) {
  }
  list->addNewFirstEntry(&b);
  list->addNewLastEntry(&c);
  expectOrder(*list, {&b, &c});
}

TEST_F(KrRxGenLinkedListTest, ComparesEntriesAndNeverOwnsThem) {
  int start = KrRxTestValue::gDestroyed;
  KrRxTestValue x(1), y(2);
  std::unique_ptr<KrRxGenLinkedList> other(newKrRxGenLinkedList());
  EXPECT_TRUE(list->isEqualTo(other.get()));
  list->addNewLastEntry(&x);
  list->addNewLastEntry(&y);
  other->addNewFirstEntry(&x);
  other->addNewFirstEntry(&y);
  EXPECT_FALSE(list->isEqualTo(other.get()));
  other->removeFirstEntry();
  other->addNewLastEntry(&y);
  EXPECT_TRUE(list->isEqualTo(other.get()));
  other->addNewLastEntry(&y);
  EXPECT_FALSE(list->isEqualTo(other.get()));
  EXPECT_FALSE(list->isEqualTo(&x));
  EXPECT_FALSE(list->isEqualTo(nullptr));

  list.reset();
  other.reset();
  EXPECT_EQ(KrRxTestValue::gDestroyed, start);
}

class KrRxSetTest : public ::testing::Test {
 protected:
  static void SetUpTestSuite() { KrRxTestValue::registerClass(); }
  int destroyedSince(int start) const { return KrRxTestValue::gDestroyed - start; }
};

TEST_F(KrRxSetTest, KeepsComparedToOrderAndRefusesDuplicates) {
  KrRxImpSet set(true);
  std::vector<int> shuffled;
  for (int i = 0; i < 200; i += 2) shuffled.push_back(i);
  std::shuffle(shuffled.begin(), shuffled.end(), std::mt19937(7));
  for (int value : shuffled) EXPECT_TRUE(set.add(new KrRxTestValue(value)));

  std::vector<int> expected;
  for (int i = 0; i < 200; i += 2) expected.push_back(i);
  EXPECT_EQ(values(set), expected);
  EXPECT_EQ(set.numEntries(), 100u);

  for (int probe = -1; probe <= 200; ++probe) {
    KrRxTestValue value(probe);
    EXPECT_EQ(set.isMember(&value), probe >= 0 && probe < 200 && probe % 2 == 0) << probe;
  }
  KrRxTestValue duplicate(42);
  EXPECT_FALSE(set.add(&duplicate));

  std::unique_ptr<KrRxIterator> back(set.newIterator(false));
  EXPECT_EQ(static_cast<KrRxTestValue*>(back->object())->value(), 198);
}

TEST_F(KrRxSetTest, UnorderableMembersAreFoundByEquality) {
  KrRxImpSet set(true);
  for (int value : {3, 1, 2}) EXPECT_TRUE(set.add(new KrRxTestUnordered(value)));
  KrRxTestUnordered one(1), two(2), four(4);
  EXPECT_FALSE(set.add(&two));
  EXPECT_TRUE(set.isMember(&one));
  EXPECT_FALSE(set.isMember(&four));

  int start = KrRxTestValue::gDestroyed;
  EXPECT_TRUE(set.remove(&two));
  EXPECT_EQ(destroyedSince(start), 1);
  EXPECT_FALSE(set.isMember(&two));
  EXPECT_FALSE(set.remove(&two));
  EXPECT_EQ(set.numEntries(), 2u);
}

TEST_F(KrRxSetTest, DeleteObjectsFlagDecidesOwnership) {
  int start = KrRxTestValue::gDestroyed;
  {
    KrRxImpSet owning(true);
    EXPECT_TRUE(owning.deletesObjects());
    for (int value : {5, 1, 9, 3}) owning.add(new KrRxTestValue(value));
    KrRxTestValue nine(9);
    EXPECT_TRUE(owning.remove(&nine));  // deletes the member, not the probe
    EXPECT_EQ(destroyedSince(start), 1);
    EXPECT_EQ(values(owning), (std::vector<int>{1, 3, 5}));

    owning.removeAll();
    EXPECT_EQ(destroyedSince(start), 4);
    EXPECT_EQ(owning.numEntries(), 0u);
    expectOrder(owning, {});

    // Usable again after being emptied.
    owning.add(new KrRxTestValue(8));
    owning.add(new KrRxTestValue(7));
    EXPECT_EQ(values(owning), (std::vector<int>{7, 8}));
  }
  EXPECT_EQ(destroyedSince(start), 7);  // the probe and the two left in the set

  KrRxTestValue kept(1);
  start = KrRxTestValue::gDestroyed;
  {
    KrRxImpSet borrowing;
    EXPECT_FALSE(borrowing.deletesObjects());
    borrowing.add(&kept);
    EXPECT_TRUE(borrowing.remove(&kept));
    borrowing.add(&kept);
    borrowing.removeAll();
    borrowing.add(&kept);
  }
  EXPECT_EQ(destroyedSince(start), 0);
}

TEST_F(KrRxSetTest, TypedSetAdmitsOnlyKindsOfItsClass) {
  ASSERT_NE(KrRxTestValue::desc(), nullptr);
  KrRxGenTypedSet set(false, KrRxTestValue::desc());
  KrRxTestValue value(1);
  KrRxTestUnordered derived(2);
  KrRxGenVoid stranger;
  EXPECT_FALSE(set.add(&stranger));
  EXPECT_TRUE(set.add(&value));
  EXPECT_TRUE(set.add(&derived));
  EXPECT_EQ(set.numEntries(), 2u);
  EXPECT_FALSE(set.isMember(&stranger));
}

TEST_F(KrRxSetTest, NullIsNeverAMember) {
  KrRxImpSet set;
  KrRxTestValue value(1);
  set.add(&value);
  EXPECT_FALSE(set.add(nullptr));
  EXPECT_FALSE(set.isMember(nullptr));
  EXPECT_FALSE(set.remove(nullptr));
  EXPECT_EQ(set.numEntries(), 1u);
}

// Exposes the protected accessors.
class KrRxTestCow : public KrRxCopyOnWriteObject {
 public:
  using KrRxCopyOnWriteObject::KrRxCopyOnWriteObject;
  const KrRxTestValue* get() const { return static_cast<const KrRxTestValue*>(read()); }
  KrRxTestValue* edit() { return static_cast<KrRxTestValue*>(write()); }
};

class KrRxCopyOnWriteTest : public ::testing::Test {
 protected:
  static void SetUpTestSuite() { KrRxTestValue::registerClass(); }
};

TEST_F(KrRxCopyOnWriteTest, CopiesShareUntilOneWrites) {
  int start = KrRxTestValue::gDestroyed;
  {
    KrRxTestCow original(new KrRxTestValue(7));
    EXPECT_EQ(original.shareCount(), 1);
    const KrRxTestValue* shared = original.get();
    EXPECT_EQ(original.edit(), shared);  // the only holder writes in place

    KrRxTestCow copy(original);
    EXPECT_EQ(copy.get(), shared);
    EXPECT_EQ(original.shareCount(), 2);

    copy.edit()->setValue(8);
    EXPECT_NE(copy.get(), shared);
    EXPECT_EQ(copy.get()->value(), 8);
    EXPECT_EQ(original.get()->value(), 7);
    EXPECT_EQ(original.shareCount(), 1);
    EXPECT_EQ(copy.shareCount(), 1);
    EXPECT_EQ(KrRxTestValue::gDestroyed, start);

    copy = original;  // drops the clone, shares the original again
    EXPECT_EQ(KrRxTestValue::gDestroyed - start, 1);
    EXPECT_EQ(copy.get(), shared);
    copy = copy;
    EXPECT_EQ(copy.shareCount(), 2);
  }
  EXPECT_EQ(KrRxTestValue::gDestroyed - start, 2);
}

TEST_F(KrRxCopyOnWriteTest, CopiesComeAndGoOnManyThreads) {
  int start = KrRxTestValue::gDestroyed;
  {
    KrRxTestCow original(new KrRxTestValue(1));
    std::vector<std::thread> threads;
    for (int t = 0; t < 4; ++t)
      threads.emplace_back([&original] {
        for (int i = 0; i < 10000; ++i) {
          KrRxTestCow copy(original);
          KrRxTestCow another(copy);
        }
      });
    for (std::thread& thread : threads) thread.join();
    EXPECT_EQ(original.shareCount(), 1);
    EXPECT_EQ(KrRxTestValue::gDestroyed, start);
  }
  EXPECT_EQ(KrRxTestValue::gDestroyed - start, 1);
}

}  // namespace
