// Dictionaries when an allocation fails: every failure point of filling,
// changing and walking a dictionary, in each of its four kinds, leaves a
// dictionary whose lookups, counts and orders still agree.

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

#include "KrFailingAllocations.h"
#include "runtime/KrRxImpDictionary.h"

namespace {

constexpr int kKeys = 40;
KrRxObject gObjects[kKeys + 1];

std::wstring keyOf(int i) { return L"Key" + std::to_wstring((i * 7) % kKeys); }

struct Kind {
  const char* name;
  bool sorted;
  bool ignoreCase;
};
const Kind kKinds[] = {{"unsorted", false, false}, {"sorted", true, false},
                       {"unsorted ignoring case", false, true}, {"sorted ignoring case", true, true}};

// Every keyed entry is found by its key, ids and key order agree, and the
// count is the keyed entries plus the keyless positions that failed key
// copies left (keyless).
void expectConsistent(const KrRxImpDictionary& dictionary, int keyless) {
  std::vector<std::wstring> byId;
  std::unique_ptr<KrRxDictionaryIterator> ids(dictionary.newIterator(KrRx::kDictById));
  for (; !ids->done(); ids->next()) {
    byId.push_back(ids->key());
    EXPECT_EQ(dictionary.idAt(ids->key()), ids->id()) << ids->key();
    EXPECT_EQ(dictionary.at(ids->key()), ids->object());
  }
  EXPECT_EQ(dictionary.numEntries(), byId.size() + keyless);
  std::unique_ptr<KrRxDictionaryIterator> keys(dictionary.newIterator(KrRx::kDictByKey));
  size_t walked = 0;
  std::wstring previous;
  for (; !keys->done(); keys->next(), ++walked) {
    if (walked) {
      EXPECT_LT(dictionary.isCaseSensitive() ? wcscmp(previous.c_str(), keys->key())
                                             : _wcsicmp(previous.c_str(), keys->key()), 0);
    }
    previous = keys->key();
  }
  EXPECT_EQ(walked, byId.size());
}

std::unique_ptr<KrRxImpDictionary> filled(const Kind& kind, int initialLength) {
  auto dictionary = std::make_unique<KrRxImpDictionary>(initialLength, false, kind.sorted, kind.ignoreCase);
  for (int i = 0; i < kKeys; ++i) dictionary->atPut(keyOf(i).c_str(), &gObjects[i]);
  return dictionary;
}

// Building a 40-entry dictionary from a small one: each put either holds its
// key or left a counted keyless position; lookups of every key still work.
TEST(KrRxDictionaryFailureTest, FillingLeavesEveryEarlierKeyAndNoKeylessPositionInTheIndex) {
  for (const Kind& kind : kKinds) {
    KrFailurePoints points = krRunFailurePoints(kind.name, [&](KrAllocationFailure& failure) {
      std::unique_ptr<KrRxImpDictionary> dictionary;
      unsigned int ids[kKeys] = {};
      failure.run([&] {
        dictionary = std::make_unique<KrRxImpDictionary>(4, false, kind.sorted, kind.ignoreCase);
        for (int i = 0; i < kKeys; ++i) dictionary->atPut(keyOf(i).c_str(), &gObjects[i], ids[i]);
      });
      if (!dictionary) return;
      int keyless = 0;
      for (int i = 0; i < kKeys; ++i) {
        bool held = ids[i] && dictionary->has(ids[i]);
        keyless += ids[i] && !held;
        EXPECT_EQ(dictionary->idAt(keyOf(i).c_str()), held ? ids[i] : 0u);
        EXPECT_EQ(dictionary->at(keyOf(i).c_str()), held ? &gObjects[i] : nullptr);
      }
      EXPECT_LE(keyless, failure.reached() ? 1 : 0);
      expectConsistent(*dictionary, keyless);
      if (!failure.reached()) { EXPECT_EQ(dictionary->numEntries(), unsigned(kKeys)); }
    });
    EXPECT_GT(points.tried, 0);
  }
}

// Changes to a full dictionary: a change either happened whole or not at
// all, and the dictionary answers as before for everything else.
TEST(KrRxDictionaryFailureTest, ChangesHappenWholeOrNotAtAll) {
  for (const Kind& kind : kKinds) {
    krRunFailurePoints(kind.name, [&](KrAllocationFailure& failure) {
      std::unique_ptr<KrRxImpDictionary> dictionary = filled(kind, 0);
      const unsigned int renamedId = dictionary->idAt(keyOf(3).c_str());
      bool renamed = false, placed = false;
      failure.run([&] {
        dictionary->remove(keyOf(1).c_str());
        dictionary->remove(dictionary->idAt(keyOf(2).c_str()));
        renamed = dictionary->resetKey(renamedId, L"Renamed");
        placed = dictionary->atKeyAndIdPut(L"Placed", 90, &gObjects[kKeys]);
        dictionary->atPut(keyOf(4).c_str(), &gObjects[kKeys]);
      });
      EXPECT_FALSE(dictionary->has(keyOf(1).c_str()));
      EXPECT_FALSE(dictionary->has(keyOf(2).c_str()));
      EXPECT_EQ(dictionary->idAt(renamed ? L"Renamed" : keyOf(3).c_str()), renamedId);
      EXPECT_FALSE(dictionary->has(renamed ? keyOf(3).c_str() : L"Renamed"));
      EXPECT_EQ(dictionary->idAt(L"Placed"), placed ? 90u : 0u);
      EXPECT_EQ(dictionary->at(keyOf(4).c_str()), &gObjects[kKeys]);
      if (!failure.reached()) { EXPECT_TRUE(renamed && placed); }
      expectConsistent(*dictionary, 0);
      EXPECT_EQ(dictionary->numEntries(), unsigned(kKeys - 2 + placed));
    });
  }
}

// Opening key-order iterators builds a shared index: a failed build throws
// and leaves no index behind, and the dictionary's lookups still work.
TEST(KrRxDictionaryFailureTest, AFailedKeyOrderIndexLeavesTheDictionaryUnindexed) {
  for (const Kind& kind : kKinds) {
    krRunFailurePoints(kind.name, [&](KrAllocationFailure& failure) {
      std::unique_ptr<KrRxImpDictionary> dictionary = filled(kind, 0);
      int32_t stateBefore = dictionary->sortState();
      std::unique_ptr<KrRxDictionaryIterator> first, second;
      size_t walked = 0;
      bool opened = failure.run([&] {
        first.reset(dictionary->newIterator(KrRx::kDictByKey));
        second.reset(dictionary->newIterator(KrRx::kDictByKey));
        for (; !second->done(); second->next()) ++walked;
      });
      EXPECT_EQ(walked, opened ? size_t(kKeys) : 0u);
      first.reset();
      second.reset();
      EXPECT_EQ(dictionary->sortState(), stateBefore);
      expectConsistent(*dictionary, 0);
    });
  }
}

}  // namespace
