// KrRxTextString: storage inside the object, character counting, cutting,
// the heap copy, and comparison and copying through the generic object
// operations.

#include "krrxtextstring.h"

#include <gtest/gtest.h>
#include <malloc.h>

#include <cstdlib>
#include <memory>

#include "krrxclass.h"

namespace {

bool heldInside(const KrRxTextString& text) {
  const char* units = reinterpret_cast<const char*>(text.getAsciiPtr());
  const char* object = reinterpret_cast<const char*>(&text);
  return units >= object && units < object + sizeof text;
}

}  // namespace

TEST(KrRxTextString, ShortTextsLiveInsideTheObject) {
  KrRxTextString seven(L"1234567", -1);
  EXPECT_TRUE(heldInside(seven));
  KrRxTextString eight(L"12345678", -1);
  EXPECT_FALSE(heldInside(eight));

  EXPECT_FALSE(heldInside(KrRxTextString(100)));
  EXPECT_TRUE(heldInside(KrRxTextString(-5)));

  eight.initStrData();
  EXPECT_EQ(eight.size(), 0u);
  EXPECT_STREQ(eight, L"");
  EXPECT_FALSE(heldInside(eight)) << "emptying keeps the storage";
  eight = L"12345678";
  eight.cpyFromAscii(nullptr);
  EXPECT_EQ(eight.size(), 0u);
  EXPECT_TRUE(heldInside(eight)) << "a null text gives the heap storage back";
}

TEST(KrRxTextString, ConstructorsTakeTheRequestedUnits) {
  EXPECT_STREQ(KrRxTextString(L"abcdef", 3), L"abc");
  EXPECT_STREQ(KrRxTextString(L"abc", 10), L"abc");
  KrRxTextString source(L"abcdefghij", -1);
  EXPECT_STREQ(KrRxTextString(source, 4), L"abcd");
  EXPECT_STREQ(KrRxTextString(source, 40), L"abcdefghij");
  source.cat(&source);
  EXPECT_STREQ(source, L"abcdefghijabcdefghij");
}

TEST(KrRxTextString, LenSkipsTrailingSurrogatesAndTheDbffBoundary) {
  KrRxTextString pair(L"a\xD83D\xDE00", -1);
  EXPECT_EQ(pair.size(), 3u);
  EXPECT_EQ(pair.len(), 2u);
  EXPECT_EQ(KrRxTextString(L"\xDBFF\xDC00", -1).len(), 0u);
  EXPECT_EQ(KrRxTextString(L"\xDBFE\xDFFF", -1).len(), 1u);
  EXPECT_EQ(KrRxTextString(L"\xE000", -1).len(), 1u);
}

TEST(KrRxTextString, SetCharReplacesOrCuts) {
  KrRxTextString text(L"abcde", -1);
  EXPECT_FALSE(text.setChar(5, L'x'));
  EXPECT_TRUE(text.setChar(1, L'X'));
  EXPECT_STREQ(text, L"aXcde");
  EXPECT_TRUE(text.setChar(2, 0));
  EXPECT_EQ(text.size(), 2u);
  EXPECT_STREQ(text, L"aX");
  EXPECT_EQ(text.getChar(1), L'X');
  EXPECT_EQ(text.getChar(2), 0);
}

TEST(KrRxTextString, CpyToAsciiIsACopyFromTheRuntimeHeap) {
  KrRxTextString text(L"copy me", -1);
  wchar_t* copy = text.cpyToAscii();
  ASSERT_NE(copy, nullptr);
  EXPECT_NE(copy, text.getAsciiPtr());
  EXPECT_STREQ(copy, L"copy me");
  EXPECT_EQ(_msize(copy), 8 * sizeof(wchar_t));
  free(copy);

  wchar_t* empty = KrRxTextString().cpyToAscii();
  ASSERT_NE(empty, nullptr);
  EXPECT_EQ(_msize(empty), sizeof(wchar_t));
  EXPECT_EQ(empty[0], 0);
  free(empty);
}

TEST(KrRxTextString, GenericOperationsCompareAndCopyTexts) {
  KrRxTextString apple(L"apple", -1), pear(L"pear", -1), apple2(L"apple", -1);
  const KrRxObject* a = &apple;
  EXPECT_EQ(a->comparedTo(&pear), KrRx::kLessThan);
  EXPECT_EQ(pear.comparedTo(a), KrRx::kGreaterThan);
  EXPECT_EQ(a->comparedTo(&apple2), KrRx::kEqual);
  EXPECT_TRUE(a->isEqualTo(&apple2));
  EXPECT_FALSE(a->isEqualTo(&pear));
  EXPECT_EQ(KrRxTextString(L"\xFFFF", -1).cmp(&apple), KrRx::kGreaterThan) << "units compare unsigned";

  KrRxObject* descriptor = KrRxTextString::desc();
  ASSERT_NE(descriptor, nullptr) << "the runtime registers KrRxTextString at start-up";
  EXPECT_EQ(a->comparedTo(descriptor), KrRx::kNotOrderable);
  EXPECT_EQ(a->comparedTo(nullptr), KrRx::kNotOrderable);
  EXPECT_FALSE(a->isEqualTo(descriptor));

  KrRxObject* target = &pear;
  EXPECT_EQ(target->copyFrom(descriptor), Kesu::eInvalidInput);
  EXPECT_STREQ(pear, L"pear");
  EXPECT_EQ(target->copyFrom(&apple), Kesu::eOk);
  EXPECT_STREQ(pear, L"apple");
}

TEST(KrRxTextString, CloneAndCreateMakeTextStrings) {
  KrRxTextString original(L"a text long enough for the heap", -1);
  std::unique_ptr<KrRxObject> clone(static_cast<const KrRxObject&>(original).clone());
  ASSERT_NE(clone, nullptr);
  EXPECT_EQ(clone->isA(), KrRxTextString::desc());
  EXPECT_TRUE(clone->isKindOf(KrRxObject::desc()));
  const KrRxTextString* text = KrRxTextString::cast(clone.get());
  ASSERT_NE(text, nullptr);
  EXPECT_NE(text->getAsciiPtr(), original.getAsciiPtr());
  EXPECT_TRUE(clone->isEqualTo(&original));

  std::unique_ptr<KrRxObject> created(KrRxTextString::desc()->create());
  ASSERT_NE(KrRxTextString::cast(created.get()), nullptr);
  EXPECT_EQ(KrRxTextString::cast(created.get())->size(), 0u);
}
