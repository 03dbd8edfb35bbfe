// Display texts to symbol names.

#include <gtest/gtest.h>

#include <cstdlib>
#include <string>

#include "kr1st.h"

namespace {

std::wstring camel(const wchar_t* text) {
  wchar_t* result = nullptr;
  EXPECT_EQ(krrfToCamelCase(text, result), Kesu::eOk) << text;
  std::wstring name = result ? result : L"(null)";
  free(result);
  return name;
}

TEST(KrRfToCamelCase, SeparatorsCapitaliseTheNextLetterOnly) {
  EXPECT_EQ(camel(L"Hello World"), L"helloWorld");
  EXPECT_EQ(camel(L"hello  world!"), L"helloWorld");
  EXPECT_EQ(camel(L"HelloWorld"), L"helloworld");
  EXPECT_EQ(camel(L"  leading blanks"), L"LeadingBlanks");
  EXPECT_EQ(camel(L"a-b.c,d"), L"aBCD");
  EXPECT_EQ(camel(L"WIDTH of DOOR"), L"widthOfDoor");
}

TEST(KrRfToCamelCase, DigitsAndUnderscores) {
  EXPECT_EQ(camel(L"2nd value"), L"_2ndValue");
  EXPECT_EQ(camel(L"_private"), L"_private");
  EXPECT_EQ(camel(L"door 2 width"), L"door2Width");
  EXPECT_EQ(camel(L"a_b c"), L"a_bC");
  EXPECT_EQ(camel(L"42"), L"_42");
}

TEST(KrRfToCamelCase, SeparatorsOnlyOrNothingGiveTheEmptyText) {
  EXPECT_EQ(camel(L" -!?. "), L"");
  EXPECT_EQ(camel(L""), L"");
  wchar_t* result = nullptr;
  EXPECT_EQ(krrfToCamelCase(nullptr, result), Kesu::eInvalidInput);
  EXPECT_EQ(result, nullptr);
}

TEST(KrRfToCamelCase, ReplacesTheCallersPreviousText) {
  wchar_t* result = static_cast<wchar_t*>(malloc(4 * sizeof(wchar_t)));
  wcscpy(result, L"old");
  ASSERT_EQ(krrfToCamelCase(L"New Name", result), Kesu::eOk);
  EXPECT_STREQ(result, L"newName");
  free(result);
}

TEST(KrRfToCamelCase, AccentedLettersBecomeTheirBaseLetters) {
  EXPECT_EQ(camel(L"Größte Höhe"), L"grosteHohe");
  EXPECT_EQ(camel(L"Élan vital"), L"elanVital");
  EXPECT_EQ(camel(L"Çà et là"), L"caEtLa");
  EXPECT_EQ(camel(L"Łódź Ščř Ÿ"), L"lodzScrY");
  EXPECT_EQ(camel(L"ǎ ȁ ȳ"), L"aAY");
}

// Every multi-letter and non-letter replacement of the table, each through
// a letter that yields it.
TEST(KrRfToCamelCase, LigaturesAndSpecialLettersBecomePairs) {
  const struct {
    const wchar_t* text;
    const wchar_t* name;
  } kCases[] = {
      {L"x\u00C6", L"xae"},    {L"x\u00DE", L"xth"},    {L"\u00E6x", L"aex"},
      {L"\u00FEx", L"thx"},     {L"x\u0149", L"xN"},     {L"x\u014A", L"xng"},    {L"x\u014B", L"xng"},
      {L"x\u0152", L"xoe"},     {L"\u0153x", L"oex"},    {L"\u0195", L"hv"},      {L"x\u01A2", L"xoi"},
      {L"\u01A3", L"oi"},       {L"x\u01A6", L"xyr"},    {L"x\u01C4", L"xdz"},    {L"\u01C6", L"dz"},
      {L"x\u01C8", L"xlj"},     {L"\u01C9", L"lj"},      {L"x\u01CA", L"xnj"},    {L"\u01CC", L"nj"},
      {L"x\u0222", L"xou"},     {L"\u0223", L"ou"},      {L"\u0184x", L"_6x"},    {L"x\u01A7", L"x2"},
      {L"x\u01BCa", L"x5a"},    {L"a\u02B9b", L"aB"},    {L"a\u01C3b", L"aB"},
  };
  for (const auto& entry : kCases) EXPECT_EQ(camel(entry.text), entry.name) << entry.text;
}

TEST(KrRfToCamelCase, LettersWithoutReplacementAreSeparators) {
  EXPECT_EQ(camel(L"pi\u03C0radius"), L"piRadius");
  EXPECT_EQ(camel(L"\u4E2D\u6587 text"), L"Text");
}

}  // namespace
