// Dictionaries: ids, keys, ownership, the required class, both iteration
// orders, and the key index shared by key-order iterators across threads.

#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <memory>
#include <string>
#include <thread>
#include <vector>

#include "KrRxTestValue.h"
#include "krrxgenvoid.h"
#include "runtime/KrRxImpDictionary.h"

namespace {

typedef std::unique_ptr<KrRxDictionaryIterator> IteratorPtr;

// The keys met by a walk of the given order.
std::vector<std::wstring> walk(const KrRxDictionary& dictionary, KrRx::DictIterType type) {
  std::vector<std::wstring> keys;
  IteratorPtr it(dictionary.newIterator(type));
  for (; !it->done(); it->next()) {
    EXPECT_EQ(dictionary.idAt(it->key()), it->id());
    EXPECT_EQ(dictionary.at(it->id()), it->object());
    keys.push_back(it->key());
  }
  return keys;
}

typedef std::vector<std::wstring> Keys;

// The behaviour that sorted and unsorted dictionaries share.
class KrRxDictionaryTest : public ::testing::TestWithParam<bool> {
 protected:
  bool sorted() const { return GetParam(); }
  KrRxGenVoid a, b, c;
};

INSTANTIATE_TEST_SUITE_P(SortedAndUnsorted, KrRxDictionaryTest, ::testing::Bool(),
                         [](const ::testing::TestParamInfo<bool>& info) {
                           return info.param ? "Sorted" : "Unsorted";
                         });

TEST_P(KrRxDictionaryTest, IdsAreGivenInOrderAndNeverReusedByAtPut) {
  KrRxImpDictionary dictionary(0, false, sorted());
  EXPECT_EQ(dictionary.isSorted(), sorted());
  EXPECT_EQ(dictionary.numEntries(), 0u);

  unsigned int id = 99;
  EXPECT_EQ(dictionary.atPut(L"one", &a, id), nullptr);
  EXPECT_EQ(id, 1u);
  dictionary.atPut(L"two", &b, id);
  EXPECT_EQ(id, 2u);

  // A present key keeps its id and hands back the old object.
  EXPECT_EQ(dictionary.atPut(L"one", &c, id), &a);
  EXPECT_EQ(id, 1u);
  EXPECT_EQ(dictionary.at(1u), &c);

  EXPECT_EQ(dictionary.remove(1u), &c);
  dictionary.atPut(L"three", &a, id);
  EXPECT_EQ(id, 3u);
  EXPECT_FALSE(dictionary.has(1u));
  EXPECT_EQ(dictionary.at(1u), nullptr);
  EXPECT_EQ(dictionary.keyAt(1u), nullptr);
  EXPECT_EQ(dictionary.numEntries(), 2u);

  // Re-putting the removed key makes a new entry at the end too.
  dictionary.atPut(L"one", &a, id);
  EXPECT_EQ(id, 4u);
}

TEST_P(KrRxDictionaryTest, LooksUpByKeyAndById) {
  KrRxImpDictionary dictionary(2, false, sorted());
  wchar_t key[] = L"beta";
  dictionary.atPut(L"gamma", &a);
  dictionary.atPut(key, &b);
  dictionary.atPut(L"alpha", &c);

  EXPECT_EQ(dictionary.idAt(L"beta"), 2u);
  EXPECT_EQ(dictionary.at(L"alpha"), &c);
  EXPECT_TRUE(dictionary.has(L"gamma"));
  // The dictionary keeps a copy of its own.
  EXPECT_NE(dictionary.keyAt(2u), key);
  key[0] = L'x';
  EXPECT_STREQ(dictionary.keyAt(2u), L"beta");
  EXPECT_EQ(dictionary.at(L"beta"), &b);

  EXPECT_EQ(dictionary.idAt(L"delta"), 0u);
  EXPECT_EQ(dictionary.at(L"delta"), nullptr);
  EXPECT_FALSE(dictionary.has(L"Beta"));
}

TEST_P(KrRxDictionaryTest, BadKeysAndIdsGiveNullFalseOrZero) {
  KrRxImpDictionary dictionary(0, false, sorted());
  dictionary.atPut(L"kept", &a);
  dictionary.atPut(L"gone", &b);
  dictionary.remove(L"gone");

  unsigned int id = 7;
  EXPECT_EQ(dictionary.atPut(nullptr, &c, id), nullptr);
  EXPECT_EQ(id, 0u);
  EXPECT_EQ(dictionary.idAt(nullptr), 0u);
  EXPECT_EQ(dictionary.at(nullptr), nullptr);
  EXPECT_FALSE(dictionary.has(nullptr));
  EXPECT_EQ(dictionary.remove(nullptr), nullptr);
  EXPECT_EQ(dictionary.remove(L"gone"), nullptr);
  EXPECT_FALSE(dictionary.resetKey(nullptr, L"new"));
  EXPECT_FALSE(dictionary.resetKey(L"kept", nullptr));

  for (unsigned int unknown : {0u, 2u, 3u, 1000000u, 0xFFFFFFFFu}) {
    EXPECT_EQ(dictionary.at(unknown), nullptr) << unknown;
    EXPECT_FALSE(dictionary.has(unknown)) << unknown;
    EXPECT_EQ(dictionary.keyAt(unknown), nullptr) << unknown;
    EXPECT_EQ(dictionary.atPut(unknown, &c), nullptr) << unknown;
    EXPECT_EQ(dictionary.remove(unknown), nullptr) << unknown;
    EXPECT_FALSE(dictionary.resetKey(unknown, L"new")) << unknown;
  }
  // Nothing above reached the reserved entry 0 or a free position.
  EXPECT_EQ(dictionary.at(L"unknown"), nullptr);
  EXPECT_EQ(dictionary.at(2u), nullptr);
  EXPECT_EQ(dictionary.numEntries(), 1u);
  EXPECT_EQ(dictionary.at(L"kept"), &a);
}

TEST_P(KrRxDictionaryTest, AtKeyAndIdPutChoosesTheIdAndExtendsTheRange) {
  KrRxImpDictionary dictionary(0, false, sorted());
  dictionary.atPut(L"one", &a);
  dictionary.atPut(L"two", &b);

  EXPECT_FALSE(dictionary.atKeyAndIdPut(L"x", 0, &c));
  EXPECT_FALSE(dictionary.atKeyAndIdPut(nullptr, 5, &c));
  EXPECT_FALSE(dictionary.atKeyAndIdPut(L"x", 5, nullptr));
  EXPECT_FALSE(dictionary.atKeyAndIdPut(L"x", 2, &c));    // occupied
  EXPECT_FALSE(dictionary.atKeyAndIdPut(L"one", 5, &c));  // key present, beyond the end
  EXPECT_FALSE(dictionary.atKeyAndIdPut(L"x", 0xFFFFFFFFu, &c));
  EXPECT_EQ(dictionary.numEntries(), 2u);

  ASSERT_TRUE(dictionary.atKeyAndIdPut(L"ten", 10, &c));
  EXPECT_EQ(dictionary.idAt(L"ten"), 10u);
  EXPECT_EQ(dictionary.at(10u), &c);
  for (unsigned int id = 3; id < 10; ++id) EXPECT_FALSE(dictionary.has(id)) << id;
  EXPECT_EQ(dictionary.numEntries(), 3u);

  unsigned int id;
  dictionary.atPut(L"next", &a, id);
  EXPECT_EQ(id, 11u);

  // A free position below the end can be filled, but not with a present key.
  dictionary.remove(1u);
  EXPECT_FALSE(dictionary.atKeyAndIdPut(L"two", 1, &c));
  EXPECT_TRUE(dictionary.atKeyAndIdPut(L"four", 4, &c));
  EXPECT_TRUE(dictionary.atKeyAndIdPut(L"uno", 1, &a));
  EXPECT_EQ(walk(dictionary, KrRx::kDictByKey), (Keys{L"four", L"next", L"ten", L"two", L"uno"}));
  EXPECT_EQ(walk(dictionary, KrRx::kDictById), (Keys{L"uno", L"two", L"four", L"ten", L"next"}));
}

TEST_P(KrRxDictionaryTest, ResetKeyRenamesInPlace) {
  KrRxImpDictionary dictionary(0, false, sorted());
  dictionary.atPut(L"b", &a);
  dictionary.atPut(L"c", &b);

  EXPECT_TRUE(dictionary.resetKey(L"b", L"d"));
  EXPECT_EQ(dictionary.idAt(L"d"), 1u);
  EXPECT_FALSE(dictionary.has(L"b"));
  EXPECT_FALSE(dictionary.resetKey(1u, L"c"));  // taken
  EXPECT_FALSE(dictionary.resetKey(1u, L"d"));  // its own key is taken too
  EXPECT_TRUE(dictionary.resetKey(2u, L"a"));
  EXPECT_EQ(walk(dictionary, KrRx::kDictByKey), (Keys{L"a", L"d"}));
  EXPECT_EQ(dictionary.at(L"a"), &b);
}

TEST_P(KrRxDictionaryTest, IgnoringCaseKeepsTheFirstForm) {
  KrRxImpDictionary dictionary(0, false, sorted(), true);
  EXPECT_FALSE(dictionary.isCaseSensitive());
  unsigned int first, second;
  dictionary.atPut(L"Abc", &a, first);
  EXPECT_EQ(dictionary.atPut(L"ABC", &b, second), &a);
  EXPECT_EQ(first, second);
  EXPECT_STREQ(dictionary.keyAt(first), L"Abc");
  EXPECT_EQ(dictionary.at(L"aBC"), &b);
  EXPECT_EQ(dictionary.numEntries(), 1u);

  dictionary.atPut(L"abd", &c);
  dictionary.atPut(L"ABB", &c);
  EXPECT_EQ(walk(dictionary, KrRx::kDictByKey), (Keys{L"ABB", L"Abc", L"abd"}));
  EXPECT_FALSE(dictionary.resetKey(L"abd", L"aBB"));
  EXPECT_EQ(dictionary.remove(L"ABD"), &c);

  // Case is ignored past equal non-ASCII units too.
  dictionary.atPut(L"Z\u00fcrich", &a, first);
  EXPECT_EQ(dictionary.idAt(L"z\u00fcRICH"), first);
  EXPECT_EQ(dictionary.idAt(L"z\u00fcRICHx"), 0u);
  EXPECT_EQ(dictionary.remove(L"Z\u00fcrIch"), &a);

  // The order agrees with the C runtime's, punctuation and non-ASCII included.
  KrRxImpDictionary mixed(0, false, sorted(), true);
  Keys keys{L"b_", L"B[", L"ba", L"BZ", L"b\u00e4", L"B\u00c4x", L"b", L"B\u0101"};
  for (const std::wstring& key : keys) mixed.atPut(key.c_str(), &a);
  std::sort(keys.begin(), keys.end(),
            [](const std::wstring& x, const std::wstring& y) { return _wcsicmp(x.c_str(), y.c_str()) < 0; });
  EXPECT_EQ(walk(mixed, KrRx::kDictByKey), keys);
}

TEST_P(KrRxDictionaryTest, IteratesInKeyOrderAndInIdOrderSkippingRemovedEntries) {
  KrRxImpDictionary dictionary(0, false, sorted());
  for (const wchar_t* key : {L"pear", L"apple", L"fig", L"Zucchini", L"banana", L"cherry"})
    dictionary.atPut(key, &a);
  dictionary.remove(L"fig");
  dictionary.remove(L"cherry");

  EXPECT_EQ(walk(dictionary, KrRx::kDictByKey), (Keys{L"Zucchini", L"apple", L"banana", L"pear"}));
  EXPECT_EQ(walk(dictionary, KrRx::kDictById), (Keys{L"pear", L"apple", L"Zucchini", L"banana"}));
}

TEST_P(KrRxDictionaryTest, EmptyWalksAreDoneAtOnce) {
  KrRxImpDictionary dictionary(4, false, sorted());
  for (int pass = 0; pass < 2; ++pass) {
    for (KrRx::DictIterType type : {KrRx::kDictByKey, KrRx::kDictById}) {
      IteratorPtr it(dictionary.newIterator(type));
      EXPECT_TRUE(it->done());
      EXPECT_EQ(it->key(), nullptr);
      EXPECT_EQ(it->object(), nullptr);
      EXPECT_EQ(it->id(), 0u);
      EXPECT_FALSE(it->next());
    }
    // Emptied by removal: only free positions remain.
    dictionary.atPut(L"x", &a);
    dictionary.remove(L"x");
  }
}

TEST_P(KrRxDictionaryTest, RemoveAllStartsTheIdsAgain) {
  KrRxImpDictionary dictionary(0, false, sorted());
  for (const wchar_t* key : {L"c", L"b", L"a"}) dictionary.atPut(key, &a);
  dictionary.removeAll();
  EXPECT_EQ(dictionary.numEntries(), 0u);
  EXPECT_FALSE(dictionary.has(L"a"));
  EXPECT_FALSE(dictionary.has(1u));
  EXPECT_EQ(walk(dictionary, KrRx::kDictByKey), Keys{});

  unsigned int id;
  dictionary.atPut(L"b", &b, id);
  EXPECT_EQ(id, 1u);
  dictionary.atPut(L"a", &c);
  EXPECT_EQ(dictionary.at(L"a"), &c);
  EXPECT_EQ(walk(dictionary, KrRx::kDictByKey), (Keys{L"a", L"b"}));
}

TEST_P(KrRxDictionaryTest, ManyEntriesStayFindable) {
  // Enough entries for both arrays to pass 64 KiB.
  const int kCount = 20000;
  KrRxImpDictionary dictionary(0, false, sorted());
  std::vector<std::wstring> keys;
  for (int i = 0; i < kCount; ++i) keys.push_back(L"k" + std::to_wstring(i * 7919 % kCount));
  for (const std::wstring& key : keys) dictionary.atPut(key.c_str(), &a);
  for (int i = 0; i < kCount; i += 2) dictionary.remove(keys[i].c_str());

  EXPECT_EQ(dictionary.numEntries(), unsigned(kCount / 2));
  for (int i = 0; i < kCount; i += 997) {
    EXPECT_EQ(dictionary.has(keys[i].c_str()), i % 2 == 1) << i;
    if (i % 2) {
      EXPECT_EQ(dictionary.idAt(keys[i].c_str()), unsigned(i + 1)) << i;
    }
  }
  Keys ordered = walk(dictionary, KrRx::kDictByKey);
  EXPECT_EQ(ordered.size(), size_t(kCount / 2));
  EXPECT_TRUE(std::is_sorted(ordered.begin(), ordered.end()));
}

class KrRxDictionaryObjectsTest : public ::testing::Test {
 protected:
  static void SetUpTestSuite() { KrRxTestValue::registerClass(); }
  int destroyedSince(int start) const { return KrRxTestValue::gDestroyed - start; }
};

TEST_F(KrRxDictionaryObjectsTest, OwningDictionaryDeletesWhatItDrops) {
  int start = KrRxTestValue::gDestroyed;
  {
    KrRxImpDictionary dictionary(0, true);
    EXPECT_TRUE(dictionary.deletesObjects());
    for (const wchar_t* key : {L"a", L"b", L"c", L"d"}) dictionary.atPut(key, new KrRxTestValue());

    EXPECT_EQ(dictionary.atPut(L"a", new KrRxTestValue()), nullptr);  // the old one is deleted
    EXPECT_EQ(destroyedSince(start), 1);
    EXPECT_EQ(dictionary.atPut(2u, new KrRxTestValue()), nullptr);
    EXPECT_EQ(dictionary.remove(L"c"), nullptr);
    EXPECT_EQ(destroyedSince(start), 3);
    dictionary.removeAll();
    EXPECT_EQ(destroyedSince(start), 6);
    dictionary.atPut(L"e", new KrRxTestValue());
  }
  EXPECT_EQ(destroyedSince(start), 7);

  KrRxTestValue kept;
  start = KrRxTestValue::gDestroyed;
  {
    KrRxImpDictionary dictionary(0, false);
    dictionary.atPut(L"a", &kept);
    EXPECT_EQ(dictionary.atPut(L"a", &kept), &kept);
    EXPECT_EQ(dictionary.remove(L"a"), &kept);
    dictionary.atPut(L"b", &kept);
    dictionary.removeAll();
    dictionary.atPut(L"c", &kept);
  }
  EXPECT_EQ(destroyedSince(start), 0);
}

TEST_F(KrRxDictionaryObjectsTest, RequiredClassRejectsOtherKinds) {
  ASSERT_NE(KrRxTestValue::desc(), nullptr);
  KrRxImpDictionary dictionary(0, false, false, false, KrRxTestValue::desc());
  KrRxTestValue value(1), other(2);
  KrRxTestUnordered derived(3);
  KrRxGenVoid stranger;

  unsigned int id = 5;
  EXPECT_EQ(dictionary.atPut(L"s", &stranger, id), nullptr);
  EXPECT_EQ(id, 0u);
  EXPECT_FALSE(dictionary.has(L"s"));
  EXPECT_EQ(dictionary.atPut(L"n", nullptr, id), nullptr);
  EXPECT_FALSE(dictionary.has(L"n"));
  EXPECT_FALSE(dictionary.atKeyAndIdPut(L"s", 3, &stranger));

  dictionary.atPut(L"v", &value, id);
  EXPECT_EQ(id, 1u);
  dictionary.atPut(L"d", &derived);
  EXPECT_EQ(dictionary.at(L"d"), &derived);

  // A rejected replacement leaves the entry alone.
  EXPECT_EQ(dictionary.atPut(L"v", &stranger), nullptr);
  EXPECT_EQ(dictionary.atPut(1u, &stranger), nullptr);
  EXPECT_EQ(dictionary.at(1u), &value);
  EXPECT_EQ(dictionary.atPut(1u, &other), &value);
  EXPECT_EQ(dictionary.numEntries(), 2u);
}

// The key index of an unsorted dictionary exists only while key-order
// iterators are open.
TEST(KrRxDictionarySortStateTest, KeyOrderIteratorsHoldTheIndex) {
  KrRxGenVoid object;
  KrRxImpDictionary dictionary;
  for (const wchar_t* key : {L"c", L"a", L"b"}) dictionary.atPut(key, &object);
  EXPECT_EQ(dictionary.sortState(), 0);
  EXPECT_EQ(dictionary.keyIndex().count, 0);

  IteratorPtr byId(dictionary.newIterator(KrRx::kDictById));
  EXPECT_EQ(dictionary.sortState(), 0);

  IteratorPtr first(dictionary.newIterator(KrRx::kDictByKey));
  EXPECT_EQ(dictionary.sortState(), 2);
  const uint32_t* index = dictionary.keyIndex().data;
  IteratorPtr second(dictionary.newIterator(KrRx::kDictByKey));
  EXPECT_EQ(dictionary.sortState(), 3);
  EXPECT_EQ(dictionary.keyIndex().data, index);
  EXPECT_EQ(std::vector<uint32_t>(index, index + dictionary.keyIndex().count), (std::vector<uint32_t>{0, 2, 3, 1}));

  // While it exists the index is kept up to date, so lookups bisect.
  dictionary.atPut(L"aa", &object);
  dictionary.remove(L"c");
  EXPECT_EQ(dictionary.idAt(L"aa"), 4u);
  EXPECT_EQ(std::vector<uint32_t>(dictionary.keyIndex().data, dictionary.keyIndex().data + dictionary.keyIndex().count),
            (std::vector<uint32_t>{0, 2, 4, 3}));

  first.reset();
  EXPECT_EQ(dictionary.sortState(), 2);
  second.reset();
  EXPECT_EQ(dictionary.sortState(), 0);
  EXPECT_EQ(dictionary.keyIndex().count, 0);
  EXPECT_EQ(dictionary.keyIndex().data, nullptr);
  EXPECT_EQ(dictionary.idAt(L"b"), 3u);

  KrRxImpDictionary sorted(0, false, true);
  IteratorPtr permanent(sorted.newIterator(KrRx::kDictByKey));
  EXPECT_EQ(sorted.sortState(), -1);
  permanent.reset();
  EXPECT_EQ(sorted.sortState(), -1);
  EXPECT_EQ(sorted.keyIndex().count, 1);
}

TEST(KrRxDictionarySortStateTest, ThreadsShareOneIndexAndTheLastFreesIt) {
  const int kThreads = 8;
  const int kKeys = 2000;
  KrRxGenVoid object;
  KrRxImpDictionary dictionary;
  for (int i = 0; i < kKeys; ++i) dictionary.atPut((L"key" + std::to_wstring(i * 37 % kKeys)).c_str(), &object);

  for (int round = 0; round < 20; ++round) {
    std::atomic<int> opened(0);
    std::atomic<bool> start(false), release(false);
    std::vector<const uint32_t*> seen(kThreads);
    std::vector<char> ordered(kThreads);
    std::vector<std::thread> threads;
    for (int t = 0; t < kThreads; ++t) {
      threads.emplace_back([&, t] {
        while (!start) std::this_thread::yield();
        IteratorPtr it(dictionary.newIterator(KrRx::kDictByKey));
        seen[t] = dictionary.keyIndex().data;
        ++opened;
        std::wstring previous;
        int count = 0;
        bool inOrder = true;
        for (; !it->done(); it->next(), ++count) {
          inOrder = inOrder && previous < it->key();
          previous = it->key();
        }
        ordered[t] = inOrder && count == kKeys;
        while (!release) std::this_thread::yield();
      });
    }
    start = true;
    while (opened < kThreads) std::this_thread::yield();
    EXPECT_EQ(dictionary.sortState(), kThreads + 1);
    EXPECT_EQ(dictionary.keyIndex().count, kKeys + 1);
    release = true;
    for (std::thread& thread : threads) thread.join();

    for (int t = 0; t < kThreads; ++t) {
      EXPECT_EQ(seen[t], seen[0]) << "thread " << t << " round " << round;
      EXPECT_TRUE(ordered[t]) << "thread " << t << " round " << round;
    }
    EXPECT_EQ(dictionary.sortState(), 0);
    EXPECT_EQ(dictionary.keyIndex().data, nullptr);
  }
}

}  // namespace
