// Reclaiming the free tail of a dictionary (what the loaded-module table
// does so that load and unload cycles do not grow it), and lookups that
// ignore case past equal non-ASCII units.

#include <gtest/gtest.h>

#include "krrxgenvoid.h"
#include "runtime/KrRxImpDictionary.h"

namespace {

TEST(KrRxDictionaryTailTest, OnlyIdsAfterTheLastEntryAreUsedAgain) {
  for (bool sorted : {false, true}) {
    KrRxImpDictionary dictionary(0, false, sorted, true);
    KrRxGenVoid value;
    unsigned int a, b, c, d;
    dictionary.atPut(L"a", &value, a);
    dictionary.atPut(L"b", &value, b);
    dictionary.atPut(L"c", &value, c);
    dictionary.remove(L"b");
    dictionary.remove(L"c");
    dictionary.reclaimFreeTail();
    dictionary.atPut(L"d", &value, d);
    EXPECT_EQ(d, b) << "the free tail is used again, from its start";
    EXPECT_FALSE(dictionary.has(c));
    EXPECT_EQ(dictionary.idAt(L"D"), d);

    dictionary.remove(L"a");
    dictionary.reclaimFreeTail();
    dictionary.atPut(L"e", &value, a);
    EXPECT_EQ(a, d + 1) << "a free position before a live entry stays free";
    dictionary.remove(L"d");
    dictionary.remove(L"e");
    dictionary.reclaimFreeTail();
    dictionary.atPut(L"f", &value, a);
    EXPECT_EQ(a, 1u) << "an empty table starts again at 1";
    EXPECT_EQ(dictionary.numEntries(), 1u);
  }
}

TEST(KrRxDictionaryTailTest, CaseIsIgnoredAfterEqualNonAsciiUnits) {
  for (bool sorted : {false, true}) {
    KrRxImpDictionary dictionary(0, false, sorted, true);
    KrRxGenVoid value;
    unsigned int id;
    dictionary.atPut(L"Z\u00fcrich", &value, id);
    EXPECT_EQ(dictionary.idAt(L"z\u00fcRICH"), id);
    EXPECT_EQ(dictionary.idAt(L"z\u00fcRICHx"), 0u);
    EXPECT_EQ(dictionary.remove(L"Z\u00fcrIch"), &value);
    EXPECT_EQ(dictionary.numEntries(), 0u);
  }
}

}  // namespace
