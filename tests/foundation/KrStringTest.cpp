// KrString: form creation and caching, buffer sharing and sizing, the search,
// cut and edit rules, number conversions, resources, and threads sharing
// buffers.

#include "krstring.h"

#include <gtest/gtest.h>
#include <malloc.h>
#include <windows.h>

#include <cstring>
#include <string>

#include "foundation/KrStringBuffer.h"
#include "foundation_test_resources.h"

namespace {

// The two form pointers of a string, read through its fixed layout.
struct Forms {
  const char* narrow;
  const wchar_t* wide;
};

Forms formsOf(const KrString& s) {
  Forms forms;
  memcpy(&forms, &s, sizeof forms);
  return forms;
}

template <typename Char>
uint16_t holders(const Char* text) {
  return KrStringBuffer<Char>::holders(text);
}

template <typename Char>
size_t blockBytes(const Char* text) {
  return krAlignedBlockSize(KrStringBuffer<Char>::countOf(text));
}

std::wstring wide(const KrString& s) { return s.kwszPtr(); }
std::string narrow(const KrString& s) { return s.kszPtr(); }

}  // namespace

TEST(KrStringBuffer, SizeQueryGivesTheRequestedSizeOfEveryAlignedBlock) {
  for (size_t size = 0; size < 300; ++size) {
    void* block = _aligned_malloc(size, 4);
    ASSERT_NE(block, nullptr);
    EXPECT_EQ(krAlignedBlockSize(block), size);
    _aligned_free(block);
  }
}

TEST(KrStringBuffer, BuffersAreAllocatedExactlyToSize) {
  for (size_t chars = 0; chars < 40; ++chars) {
    std::string text(chars, 'x');
    KrString s(text.c_str());
    s.kwszPtr();
    EXPECT_EQ(blockBytes(formsOf(s).narrow), chars + 4);
    if (chars) {
      EXPECT_EQ(blockBytes(formsOf(s).wide), 2 * chars + 4);
    }
  }
  KrString joined(L"abc");
  joined += L"de";
  EXPECT_EQ(blockBytes(formsOf(joined).wide), 2u * 5 + 4);
}

TEST(KrString, EmptyStringsGiveStaticEmptyTextsAndCreateNothing) {
  KrString none;
  EXPECT_STREQ(none.kszPtr(), "");
  EXPECT_STREQ(none.kwszPtr(), L"");
  EXPECT_TRUE(none.isEmpty());
  EXPECT_EQ(none.length(), 0u);
  EXPECT_EQ(none.find(L'x'), -1);
  EXPECT_EQ(formsOf(none).narrow, nullptr);
  EXPECT_EQ(formsOf(none).wide, nullptr);

  KrString emptyWide(L"");
  EXPECT_STREQ(emptyWide.kszPtr(), "");
  EXPECT_EQ(formsOf(emptyWide).narrow, nullptr);
}

TEST(KrString, MissingFormIsMadeOnceAndKept) {
  KrString s("abc");
  EXPECT_EQ(formsOf(s).wide, nullptr);
  EXPECT_EQ(s.find(L'b'), -1) << "a character search looks at the wide form only";
  const char* narrowBefore = formsOf(s).narrow;
  const wchar_t* made = s.kwszPtr();
  EXPECT_STREQ(made, L"abc");
  EXPECT_EQ(s.kwszPtr(), made);
  EXPECT_EQ(formsOf(s).narrow, narrowBefore);
  EXPECT_EQ(s.find(L'b'), 1);
}

TEST(KrString, PropertiesOfAMissingFormAreMeasuredWithoutMakingIt) {
  KrString narrowOnly("caf\xE9!");
  EXPECT_EQ(narrowOnly.length(), 5u);
  EXPECT_EQ(narrowOnly.lengthW(), 5u);
  EXPECT_FALSE(narrowOnly.isAscii());
  EXPECT_EQ(formsOf(narrowOnly).wide, nullptr);

  KrString wideOnly(L"\x20AC uro");
  EXPECT_EQ(wideOnly.lengthA(), 5u);
  EXPECT_EQ(formsOf(wideOnly).narrow, nullptr);

  EXPECT_TRUE(KrString().isAscii());
  EXPECT_TRUE(KrString("plain text~").isAscii());
  EXPECT_FALSE(KrString(L"tab\there").isAscii());
}

TEST(KrString, CopiesShareBothBuffers) {
  KrString original(L"shared text");
  original.kszPtr();
  {
    KrString copy(original);
    EXPECT_EQ(formsOf(copy).narrow, formsOf(original).narrow);
    EXPECT_EQ(formsOf(copy).wide, formsOf(original).wide);
    EXPECT_EQ(holders(formsOf(original).narrow), 2);
    EXPECT_EQ(holders(formsOf(original).wide), 2);

    KrString assigned(L"old");
    const wchar_t* old = formsOf(assigned).wide;
    KrString oldHolder(assigned);
    assigned = original;
    EXPECT_EQ(formsOf(assigned).wide, formsOf(original).wide);
    EXPECT_EQ(holders(old), 1) << "assignment releases the old forms";
    EXPECT_EQ(holders(formsOf(original).wide), 3);
  }
  EXPECT_EQ(holders(formsOf(original).narrow), 1);
  EXPECT_EQ(holders(formsOf(original).wide), 1);
}

TEST(KrString, SetEmptySharesOneProcessWideEmptyText) {
  KrString a(L"a"), b("b");
  a.setEmpty();
  b.setEmpty();
  ASSERT_NE(formsOf(a).wide, nullptr);
  EXPECT_EQ(formsOf(a).wide, formsOf(b).wide);
  EXPECT_EQ(formsOf(b).narrow, nullptr);
  EXPECT_TRUE(a.isEmpty());
}

TEST(KrString, InPlaceEditsUnshareFirst) {
  KrString narrowOriginal("abcdef");
  KrString narrowCopy(narrowOriginal);
  narrowCopy.makeUpper();
  EXPECT_NE(formsOf(narrowCopy).narrow, formsOf(narrowOriginal).narrow);
  EXPECT_EQ(narrow(narrowOriginal), "abcdef");
  EXPECT_EQ(narrow(narrowCopy), "ABCDEF");
  EXPECT_EQ(holders(formsOf(narrowOriginal).narrow), 1);

  // The copy of a shared wide buffer carries capacity bytes: half the text.
  // The rest is what the heap hands back, here a just-freed block of the
  // same size that was filled with a known unit.
  KrString wideOriginal(L"abcdefgh");
  KrString wideCopy(wideOriginal);
  void* freed = _aligned_malloc(2 * 8 + 4, 4);
  wmemset(static_cast<wchar_t*>(freed), L'\x5A5A', 10);
  _aligned_free(freed);
  wideCopy.makeUpper();
  ASSERT_NE(formsOf(wideCopy).wide, formsOf(wideOriginal).wide);
  EXPECT_EQ(wide(wideCopy), L"ABCD\x5A5A\x5A5A\x5A5A\x5A5A");
  EXPECT_EQ(wide(wideOriginal), L"abcdefgh");

  const wchar_t* own = formsOf(wideOriginal).wide;
  EXPECT_EQ(wideOriginal.replace(L'a', L'o'), 1);
  EXPECT_EQ(formsOf(wideOriginal).wide, own) << "an unshared buffer is edited where it is";
}

TEST(KrString, EditsPreferTheWideForm) {
  KrString both("Hello");
  both.kwszPtr();
  both.makeUpper();
  EXPECT_EQ(formsOf(both).narrow, nullptr);
  EXPECT_EQ(narrow(both), "HELLO");

  KrString narrowOnly("Hello");
  narrowOnly.makeLower().makeReverse();
  EXPECT_EQ(formsOf(narrowOnly).wide, nullptr);
  EXPECT_EQ(narrow(narrowOnly), "olleh");

  KrString replaced("banana");
  EXPECT_EQ(replaced.replace(L'a', L'o'), 3);
  EXPECT_EQ(formsOf(replaced).narrow, nullptr);
}

TEST(KrString, AppendKeepsTheFormOfItsArgument) {
  KrString s(L"ab");
  s += "c";
  EXPECT_EQ(formsOf(s).wide, nullptr);
  EXPECT_EQ(narrow(s), "abc");
  s.append('d', 'e');
  s += L'f';
  EXPECT_EQ(formsOf(s).narrow, nullptr);
  EXPECT_EQ(wide(s), L"abcdef");
  s.append(s);
  EXPECT_EQ(wide(s), L"abcdefabcdef");

  KrString narrowBoth("x"), narrowArgument("y");
  narrowBoth.kwszPtr();
  narrowBoth += narrowArgument;
  EXPECT_EQ(formsOf(narrowBoth).wide, nullptr) << "both have a narrow form, not both a wide one";
  EXPECT_EQ(narrow(narrowBoth), "xy");

  KrString mixed("x");
  mixed += KrString(L"y");
  EXPECT_EQ(formsOf(mixed).narrow, nullptr);
  EXPECT_EQ(wide(mixed), L"xy");
}

TEST(KrString, ConcatAndPrecatLeaveTheStringUnchanged) {
  const KrString base(L"mid");
  EXPECT_EQ(wide(base + L"dle"), L"middle");
  EXPECT_EQ(narrow(base.concat('a', 'b')), "midab");
  KrString joined = base.precat(KrString("x"));
  EXPECT_EQ(formsOf(joined).narrow, nullptr);
  EXPECT_EQ(wide(joined), L"xmid");
  EXPECT_EQ(narrow(base.precat('<')), "<mid");
  EXPECT_EQ(wide(base), L"mid");
}

TEST(KrString, SearchesFollowTheirWalkRules) {
  KrString s(L"abcabc");
  EXPECT_EQ(s.find(L"ca"), 2);
  EXPECT_EQ(s.find(KrString("bc")), 1);
  EXPECT_EQ(s.find(L""), -1);
  EXPECT_EQ(s.find(L"abcabcx"), -1);
  EXPECT_EQ(s.findRev(L'b'), 4);
  EXPECT_EQ(s.findRev(L"ab"), 3);
  EXPECT_EQ(KrString(L"abb").findRev(L"ab"), -1) << "the pattern restarts after a near miss";
  EXPECT_EQ(KrString("abab").findRev(L"ab"), -1) << "no wide form, nothing found";

  EXPECT_EQ(KrString(L"abc").findOneOf(L"cb"), 2) << "set order decides, not position";
  EXPECT_EQ(KrString(L"abab").findOneOfRev(L"ba"), 3);
  EXPECT_EQ(KrString("abc").findOneOf(L"a"), -1);

  KrString euro(L"price \x20AC 5");
  EXPECT_EQ(euro.findW('\x20', '\xAC'), 6);
  EXPECT_EQ(euro.find('\x00', 'z'), 9) << "no such unit: the length";
  EXPECT_EQ(KrString("ab").findW('\0', 'a'), -1);

  KrString bytes("xyAB");
  EXPECT_EQ(bytes.findA('B', 'A'), 2) << "c2 first, then c1";
  EXPECT_EQ(bytes.findA('A', 'B'), 4);
  EXPECT_EQ(KrString(L"AB").findA('B', 'A'), -1);
}

TEST(KrString, PartsAreCutFromEachFormByCapacity) {
  KrString s("abcd");
  s.kwszPtr();
  EXPECT_EQ(wide(s.substrRev(2)), L"cd");
  EXPECT_EQ(narrow(s.substr(-3, 2)), "ab");
  KrString rest = s.substr(1, -1);
  EXPECT_STREQ(formsOf(rest).narrow, "bcd");
  EXPECT_STREQ(formsOf(rest).wide, L"bcd");

  KrString past = s.substr(4, 2);
  ASSERT_NE(formsOf(past).narrow, nullptr);
  EXPECT_STREQ(formsOf(past).narrow, "");
  EXPECT_STREQ(formsOf(past).wide, L"");

  KrString narrowOnly("abcd");
  EXPECT_EQ(formsOf(narrowOnly.substr(1, 2)).wide, nullptr);
}

TEST(KrString, ComparisonsChooseTheirForm) {
  EXPECT_EQ(KrString("a").compare("b"), -1);
  EXPECT_EQ(KrString(L"b").compare(L'a'), 1);
  EXPECT_EQ(KrString("ab").compare('a', 'b'), 0);
  EXPECT_EQ(KrString("ABC").compareNoCase(KrString("abc")), 0);
  EXPECT_LT(KrString(L"abc").compareNoCase(L"ABD"), 0);
  EXPECT_TRUE(KrString("abc") < L"abd");

  // After a text replacement the narrow form keeps the old text, which shows
  // which form a comparison used.
  KrString stale("old");
  stale.kwszPtr();
  EXPECT_EQ(stale.replace(L"old", L"new"), 1);
  EXPECT_STREQ(stale.kszPtr(), "old");
  EXPECT_EQ(stale.compare(KrString("old")), 0) << "narrow against narrow";
  EXPECT_EQ(stale.compare(KrString(L"new")), 0) << "wide against wide";
  EXPECT_EQ(stale.match(KrString("oXd")), 1);

  EXPECT_EQ(KrString("abc").match(KrString("abX")), 2);
  EXPECT_EQ(KrString(L"ABC").matchNoCase(KrString("abd")), 2);
}

TEST(KrString, ReplaceOfTextsSearchesFromTheStartEachTime) {
  KrString s(L"aXbXc");
  EXPECT_EQ(s.replace(L"X", L"--"), 2);
  EXPECT_EQ(wide(s), L"a--b--c");
  EXPECT_EQ(s.replace(L"--", L"--"), 0);
  KrString nested(L"aaa");
  EXPECT_EQ(nested.replace(L"aa", L"a"), 2);
}

TEST(KrString, FormatUsesTheRuntimesOwnWidePrintf) {
  KrString s("old");
  s.format(L"%d-%s-%ls", 42, L"wide", L"too");
  EXPECT_EQ(formsOf(s).narrow, nullptr);
  EXPECT_EQ(wide(s), L"42-wide-too");
  EXPECT_EQ(blockBytes(formsOf(s).wide), 2u * 11 + 4);
  s.format(nullptr);
  EXPECT_TRUE(s.isEmpty());
}

namespace {

// The outcome of one number conversion: the value, or whether the integer 0 was thrown.
template <typename Convert>
std::string outcomeOf(Convert convert) {
  try {
    return std::to_string(convert());
  } catch (int thrown) {
    return thrown == 0 ? "throws 0" : "throws other";
  }
}

}  // namespace

TEST(KrString, NumberConversionsHonourEveryFlagCombination) {
  struct Case {
    int flags;
    const char* onEmpty;
    const char* onInvalid;
  };
  const Case cases[] = {
      {0, "0", "0"},           {1, "-1", "-1"},         {4, "0", "throws 0"},         {5, "-1", "throws 0"},
      {8, "0", "0"},           {9, "-1", "-1"},         {12, "throws 0", "throws 0"}, {13, "throws 0", "throws 0"},
  };
  KrString empty, invalid(L"x"), invalidNarrow("x");
  for (const Case& c : cases) {
    SCOPED_TRACE(c.flags);
    EXPECT_EQ(outcomeOf([&] { return empty.asDeci(c.flags); }), c.onEmpty);
    EXPECT_EQ(outcomeOf([&] { return invalid.asDeci(c.flags); }), c.onInvalid);
    EXPECT_EQ(outcomeOf([&] { return invalidNarrow.asDeci(c.flags); }), c.onInvalid);
    EXPECT_EQ(outcomeOf([&] { return KrString(L"-17").asDeci(c.flags); }), "-17");
  }
  EXPECT_EQ(empty.asUDeci64(KrString::kFailAllBits), ~uint64_t(0));
  EXPECT_EQ(empty.asUHex(KrString::kFailAllBits), ~0u);
}

TEST(KrString, NumberConversionsReadEachFormat) {
  EXPECT_EQ(KrString("1f").asHex(0), 31);
  EXPECT_EQ(KrString(L"4294967295").asUDeci(0), 4294967295u);
  EXPECT_EQ(KrString(L"FFFFFFFF").asUHex(0), 0xFFFFFFFFu);
  EXPECT_EQ(KrString("-9000000000").asDeci64(0), -9000000000LL);
  EXPECT_EQ(KrString(L"1ffffffff").asHex64(0), 0x1FFFFFFFFLL);
  EXPECT_EQ(KrString(L"18446744073709551615").asUDeci64(0), 18446744073709551615ULL);
  EXPECT_EQ(KrString("fedcba9876543210").asUHex64(0), 0xFEDCBA9876543210ULL);
  EXPECT_EQ(KrString(L"12abc").asDeci(4), 12) << "one converted field is success";
}

TEST(KrString, HandlesPrintAndReadAsHexadecimal) {
  KrDbHandle handle(0x1122334455667788ULL);
  uint32_t halves[2];
  memcpy(halves, &handle, sizeof halves);
  EXPECT_EQ(halves[0], 0x55667788u) << "low half first";
  EXPECT_EQ(halves[1], 0x11223344u);

  EXPECT_EQ(wide(KrString(KrDbHandle(0x1F))), L"1F");
  EXPECT_EQ(wide(KrString(KrDbHandle())), L"0");
  EXPECT_EQ(wide(KrString(KrDbHandle(0x100000000ULL))), L"100000000");
  KrString text;
  text = KrDbHandle(0xFEDCBA9876543210ULL);
  EXPECT_EQ(wide(text), L"FEDCBA9876543210");
  EXPECT_EQ(uint64_t(text.asKrDbHandle(0)), 0xFEDCBA9876543210ULL);

  EXPECT_EQ(uint64_t(KrString(L"123456789ABCDEF0zz").asKrDbHandle(4)), 0x123456789ABCDEF0ULL)
      << "reading stops after 16 digits";
  EXPECT_EQ(uint64_t(KrString(L"0x1F").asKrDbHandle(1)), ~uint64_t(0));
  EXPECT_EQ(outcomeOf([] { return uint64_t(KrString(L"12G4").asKrDbHandle(4)); }), "throws 0");
  EXPECT_EQ(outcomeOf([] { return uint64_t(KrString().asKrDbHandle(12)); }), "throws 0");
}

TEST(KrString, ResourcesAndPrintedValues) {
  KrString s("before");
  ASSERT_TRUE(s.loadString(IDS_FIRST_TEXT));
  EXPECT_EQ(formsOf(s).narrow, nullptr);
  EXPECT_EQ(wide(s), L"First resource text");

  const wchar_t* held = formsOf(s).wide;
  EXPECT_FALSE(s.loadString(IDS_MISSING_TEXT));
  EXPECT_EQ(formsOf(s).wide, held);

  EXPECT_EQ(wide(KrString(KrString::kResource, IDS_SECOND_TEXT)), L"Second");
  EXPECT_EQ(wide(KrString(GetModuleHandleW(nullptr), IDS_SECOND_TEXT)), L"Second");

  EXPECT_EQ(wide(KrString(KrString::kDecimal, 0xFFFFFFFFu)), L"-1");
  EXPECT_EQ(wide(KrString(KrString::kUnsigned, 0xFFFFFFFFu)), L"4294967295");
  EXPECT_EQ(wide(KrString(KrString::kHex, 0xBEEFu)), L"beef");
  KrString other(7, 1u);
  EXPECT_EQ(formsOf(other).wide, nullptr);
  EXPECT_EQ(formsOf(other).narrow, nullptr);
}

TEST(KrString, NarrowTextUsesCodePage1252) {
  ASSERT_EQ(GetACP(), 1252u);
  EXPECT_EQ(wide(KrString("\xE9t\xE9")), L"\x00E9t\x00E9");
  EXPECT_STREQ(KrString(L"\x20AC").kszPtr(), "\x80");
  EXPECT_EQ(KrString("\xE9").compare("a"), 1) << "bytes compare unsigned";
  EXPECT_EQ(KrString("\xE9").compare(KrString("\xE8")), 1);
}

namespace {

size_t busyHeapBytes() {
  _HEAPINFO entry = {};
  size_t busy = 0;
  int status;
  while ((status = _heapwalk(&entry)) == _HEAPOK)
    if (entry._useflag == _USEDENTRY) busy += entry._size;
  EXPECT_EQ(status, _HEAPEND);
  return busy;
}

struct SharedSources {
  KrString both;
  KrString narrowOnly;
};

DWORD WINAPI shareAndDrop(void* parameter) {
  const SharedSources& sources = *static_cast<SharedSources*>(parameter);
  for (int i = 0; i < 20000; ++i) {
    KrString copy(sources.both);
    KrString other(sources.narrowOnly);
    other.kwszPtr();  // a wide form of this copy's own
    copy = other;
    other = sources.both;
    swap(copy, other);
  }
  return 0;
}

}  // namespace

TEST(KrString, ThreadsSharingBuffersNeitherLeakNorFreeTwice) {
  SharedSources sources{KrString(L"a text shared by every thread"), KrString("narrow only")};
  sources.both.kszPtr();
  size_t before = busyHeapBytes();

  HANDLE threads[4];
  for (HANDLE& thread : threads) thread = CreateThread(nullptr, 0, shareAndDrop, &sources, 0, nullptr);
  ASSERT_EQ(WaitForMultipleObjects(4, threads, TRUE, INFINITE), WAIT_OBJECT_0);
  for (HANDLE thread : threads) CloseHandle(thread);

  EXPECT_EQ(_heapchk(), _HEAPOK);
  EXPECT_EQ(busyHeapBytes(), before);
  EXPECT_EQ(holders(formsOf(sources.both).narrow), 1);
  EXPECT_EQ(holders(formsOf(sources.both).wide), 1);
  EXPECT_EQ(holders(formsOf(sources.narrowOnly).narrow), 1);
  EXPECT_EQ(formsOf(sources.narrowOnly).wide, nullptr);
}
