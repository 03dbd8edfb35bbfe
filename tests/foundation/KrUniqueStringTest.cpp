// KrUniqueString::Intern: serial identities, case folding, the empty name,
// a large table and concurrent callers.

#include "kruniquestring.h"

#include <gtest/gtest.h>
#include <windows.h>

#include <cstdlib>
#include <locale>
#include <set>
#include <string>

namespace {

uintptr_t numberOf(const wchar_t* name) { return reinterpret_cast<uintptr_t>(KrUniqueString::Intern(name)); }

}  // namespace

TEST(KrUniqueStringDeathTest, NumbersStartPastTheLastCodePoint) {
  // In a fresh process nothing has been interned yet.
  EXPECT_EXIT(
      {
        bool first = numberOf(L"Layer") == 0x110000 && numberOf(L"Linetype") == 0x110001;
        std::exit(first ? 0 : 1);
      },
      ::testing::ExitedWithCode(0), "");
}

TEST(KrUniqueString, SpellingsThatDifferInCaseShareOneIdentity) {
  uintptr_t layer = numberOf(L"Case Layer");
  EXPECT_GE(layer, 0x110000u);
  EXPECT_EQ(numberOf(L"CASE LAYER"), layer);
  EXPECT_EQ(numberOf(L"case layer"), layer);
  EXPECT_EQ(numberOf(L"Case Layer 2"), layer + 1) << "known spellings use no number";
}

TEST(KrUniqueString, NamesFoldExactlyAsTheClassicLocaleLowersThem) {
  const auto& classic = std::use_facet<std::ctype<wchar_t>>(std::locale::classic());
  std::set<uintptr_t> identities;
  std::set<wchar_t> lowered;
  for (wchar_t c = 1; c < 0x250; ++c) {
    const wchar_t name[] = {L'#', c, 0}, lowerName[] = {L'#', classic.tolower(c), 0};
    ASSERT_EQ(numberOf(name), numberOf(lowerName)) << int(c);
    identities.insert(numberOf(name));
    lowered.insert(classic.tolower(c));
  }
  EXPECT_EQ(identities.size(), lowered.size()) << "no two names share a key unless the locale lowers them alike";
}

TEST(KrUniqueString, EmptyNameHasNoIdentity) {
  uintptr_t before = numberOf(L"before the empty name");
  EXPECT_EQ(KrUniqueString::Intern(L""), nullptr);
  EXPECT_EQ(KrUniqueString::Intern(nullptr), nullptr);
  EXPECT_EQ(numberOf(L"after the empty name"), before + 1);
}

TEST(KrUniqueString, HundredThousandNamesGetConsecutiveNumbers) {
  const int kNames = 100000;
  uintptr_t first = numberOf(L"bulk 0");
  for (int i = 1; i < kNames; ++i) ASSERT_EQ(numberOf((L"bulk " + std::to_wstring(i)).c_str()), first + i);
  for (int i = 0; i < kNames; i += 997)
    ASSERT_EQ(numberOf((L"BULK " + std::to_wstring(i)).c_str()), first + i);
}

namespace {

const int kSharedNames = 5000;

DWORD WINAPI internSharedNames(void* parameter) {
  const wchar_t* prefix = static_cast<const wchar_t*>(parameter);
  for (int i = 0; i < kSharedNames; ++i) numberOf((prefix + std::to_wstring(i)).c_str());
  return 0;
}

}  // namespace

TEST(KrUniqueString, ThreadsInterningAtOnceAgreeOnIdentities) {
  const wchar_t* spellings[] = {L"thread name ", L"THREAD NAME ", L"Thread Name ", L"tHREAD nAME "};
  uintptr_t before = numberOf(L"before the threads");
  HANDLE threads[4];
  for (int i = 0; i < 4; ++i)
    threads[i] = CreateThread(nullptr, 0, internSharedNames, const_cast<wchar_t*>(spellings[i]), 0, nullptr);
  ASSERT_EQ(WaitForMultipleObjects(4, threads, TRUE, INFINITE), WAIT_OBJECT_0);
  for (HANDLE thread : threads) CloseHandle(thread);
  EXPECT_EQ(numberOf(L"after the threads"), before + kSharedNames + 1);
  for (int i = 0; i < kSharedNames; i += 499) {
    std::wstring suffix = std::to_wstring(i);
    EXPECT_EQ(numberOf((L"thread name " + suffix).c_str()), numberOf((L"THREAD NAME " + suffix).c_str()));
  }
}
