// Display texts to symbol names.

#include <gtest/gtest.h>

#include <cstdint>
#include <cstdlib>

#include "kr1st.h"

namespace {

const struct {
  const wchar_t* text;
  const wchar_t* name;
} kNames[] = {
    // Separators capitalise the next letter only; letters inside a word are lowered.
    {L"Hello World", L"helloWorld"}, {L"hello  world!", L"helloWorld"}, {L"HelloWorld", L"helloworld"},
    {L"  leading blanks", L"LeadingBlanks"}, {L"a-b.c,d", L"aBCD"}, {L"WIDTH of DOOR", L"widthOfDoor"},
    // Digits and underscores; a leading digit gets an underscore before it.
    {L"2nd value", L"_2ndValue"}, {L"_private", L"_private"}, {L"door 2 width", L"door2Width"},
    {L"a_b c", L"a_bC"}, {L"42", L"_42"},
    // Separators only, or nothing.
    {L" -!?. ", L""}, {L"", L""},
    // Accented letters become their base letters.
    {L"Größte Höhe", L"grosteHohe"}, {L"Élan vital", L"elanVital"}, {L"Çà et là", L"caEtLa"},
    {L"Łódź Ščř Ÿ", L"lodzScrY"}, {L"ǎ ȁ ȳ", L"aAY"},
    // Every multi-letter and non-letter replacement, each through a letter that yields it.
    {L"x\u00C6", L"xae"}, {L"x\u00DE", L"xth"}, {L"\u00E6x", L"aex"}, {L"\u00FEx", L"thx"},
    {L"x\u0149", L"xN"}, {L"x\u014A", L"xng"}, {L"x\u014B", L"xng"}, {L"x\u0152", L"xoe"},
    {L"\u0153x", L"oex"}, {L"\u0195", L"hv"}, {L"x\u01A2", L"xoi"}, {L"\u01A3", L"oi"},
    {L"x\u01A6", L"xyr"}, {L"x\u01C4", L"xdz"}, {L"\u01C6", L"dz"}, {L"x\u01C8", L"xlj"},
    {L"\u01C9", L"lj"}, {L"x\u01CA", L"xnj"}, {L"\u01CC", L"nj"}, {L"x\u0222", L"xou"},
    {L"\u0223", L"ou"}, {L"\u0184x", L"_6x"}, {L"x\u01A7", L"x2"}, {L"x\u01BCa", L"x5a"},
    {L"a\u02B9b", L"aB"}, {L"a\u01C3b", L"aB"},
    // Letters without a replacement are separators.
    {L"pi\u03C0radius", L"piRadius"}, {L"\u4E2D\u6587 text", L"Text"},
};

TEST(KrRfToCamelCase, TurnsDisplayTextsIntoSymbolNames) {
  for (const auto& row : kNames) {
    wchar_t* result = nullptr;
    EXPECT_EQ(krrfToCamelCase(row.text, result), Kesu::eOk) << row.text;
    EXPECT_STREQ(result, row.name) << row.text;
    free(result);
  }
}

TEST(KrRfToCamelCase, ReplacesTheCallersTextAndRefusesNone) {
  wchar_t* result = static_cast<wchar_t*>(malloc(4 * sizeof(wchar_t)));
  wcscpy(result, L"old");
  ASSERT_EQ(krrfToCamelCase(L"New Name", result), Kesu::eOk);
  EXPECT_STREQ(result, L"newName");
  free(result);
  result = nullptr;
  EXPECT_EQ(krrfToCamelCase(nullptr, result), Kesu::eInvalidInput);
  EXPECT_EQ(result, nullptr);
}


// A digest of the names of every code unit, alone and after a separator and
// before a letter, recorded from the table as it was first written; any change
// to a replacement row changes it.
TEST(KrRfToCamelCase, KeepsTheNameOfEveryCodeUnit) {
  uint64_t digest = 14695981039346656037ull;
  for (unsigned code = 1; code <= 0xFFFF; ++code) {
    const wchar_t alone[] = {wchar_t(code), 0};
    const wchar_t between[] = {L' ', wchar_t(code), L'z', 0};
    for (const wchar_t* text : {alone, between}) {
      wchar_t* name = nullptr;
      ASSERT_EQ(krrfToCamelCase(text, name), Kesu::eOk);
      for (const wchar_t* c = name;; ++c) {
        digest = (digest ^ uint16_t(*c)) * 1099511628211ull;
        if (!*c) break;
      }
      free(name);
    }
  }
  EXPECT_EQ(digest, 0x964f744f642476adull) << std::hex << digest;
}

}  // namespace
