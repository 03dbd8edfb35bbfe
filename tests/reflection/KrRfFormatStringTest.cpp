// Template formatting and the property-path evaluator behind it.

#include <gtest/gtest.h>

#include <cstdlib>
#include <string>

#include "KrRfTestSymbols.h"

namespace {

// A door with a frame (another door) reached through a pointer property.
class Door : public KrRxObject {
  KRRX_DECLARE_MEMBERS(Door);

 public:
  double mWidth = 5.0;
  double mInstalled = 2460082.0;  // 2023-05-17
  double mSlope = 0.75;
  double mShare = 0.125;
  double mPrice = 1234.5;
  int mCount = 3;
  std::wstring mName = L"front";
  Door* mpFrame = nullptr;
};
KRRX_CONS_DEFINE_MEMBERS(Door, KrRxObject)

const Door* door(const KrRxObject* object) { return static_cast<const Door*>(object); }

// Every value class of a double (dates, ratios, currency) keeps it in the same place.
template <double Door::*field>
Kesu::ErrorStatus readDouble(const KrRxObject* object, KrRxObject* value) {
  static_cast<KrVtFloat64*>(value)->value() = door(object)->*field;
  return Kesu::eOk;
}
Kesu::ErrorStatus readCount(const KrRxObject* object, KrRxObject* value) {
  *KrVtInt32::cast(value) = door(object)->mCount;
  return Kesu::eOk;
}
Kesu::ErrorStatus readName(const KrRxObject* object, KrRxObject* value) {
  *KrRxTextString::cast(value) = door(object)->mName.c_str();
  return Kesu::eOk;
}
Kesu::ErrorStatus readFrame(const KrRxObject* object, KrRxObject* value) {
  return KrRfPointer::cast(value)->setObject(door(object)->mpFrame, false);
}
Kesu::ErrorStatus readNothing(const KrRxObject*, KrRxObject*) { return Kesu::eOk; }

// The properties of Door, added once for the whole test program.
class Described : public ::testing::Environment {
 public:
  void SetUp() override {
    Door::rxInit();
    krrxBuildClassHierarchy();
    mProperties[0] = new TestProperty(L"width", KrVtFloat64::desc(), readDouble<&Door::mWidth>);
    mProperties[1] = new TestProperty(L"count", KrVtInt32::desc(), readCount);
    mProperties[2] = new TestProperty(L"name", KrRxTextString::desc(), readName);
    mProperties[3] = new TestProperty(L"frame", KrRxObjectPointer::desc(), readFrame);
    mProperties[4] = new TestProperty(L"unreadable", KrVtFloat64::desc());
    mProperties[5] = new TestProperty(L"abstract", KrRfSymbol::desc(), readNothing);
    mProperties[6] = new TestProperty(L"plain", Plant::desc(), readNothing);
    mProperties[7] = new TestProperty(L"installed", KrVtDate::desc(), readDouble<&Door::mInstalled>);
    mProperties[8] = new TestProperty(L"slope", KrVtRatio::desc(), readDouble<&Door::mSlope>);
    mProperties[9] = new TestProperty(L"share", KrVtPercentage::desc(), readDouble<&Door::mShare>);
    mProperties[10] = new TestProperty(L"price", KrVtCurrency::desc(), readDouble<&Door::mPrice>);
    for (TestProperty* property : mProperties)
      ASSERT_EQ(reflection()->reflectionPE(Door::desc(), true)->addSymbol(property), Kesu::eOk);
  }
  void TearDown() override {
    for (TestProperty* property : mProperties) {
      reflection()->reflectionPE(Door::desc(), false)->removeSymbol(property);
      delete property;
    }
  }

 private:
  TestProperty* mProperties[11];
};
const auto* const kEnvironment = ::testing::AddGlobalTestEnvironment(new Described);

std::wstring formatted(const wchar_t* text, const KrRxObject* object) {
  wchar_t* result = nullptr;
  EXPECT_EQ(krrfFormatString(text, object, result), Kesu::eOk);
  std::wstring composed = result ? result : L"(null)";
  free(result);
  return composed;
}

// What the value's own formattable makes of it.
std::wstring textOf(const KrRxObject& value) {
  wchar_t* text = nullptr;
  EXPECT_EQ(krrxFormatObject(&value, text, nullptr), Kesu::eOk);
  std::wstring result = text ? text : L"(null)";
  free(text);
  return result;
}

TEST(KrRfEvaluateString, ReadsAPropertyIntoANewValue) {
  Door front;
  KrRxObject* value = nullptr;
  ASSERT_EQ(krrfEvaluateString(L"width", &front, value), Kesu::eOk);
  ASSERT_NE(KrVtFloat64::cast(value), nullptr);
  EXPECT_EQ(KrVtFloat64::cast(value)->value(), 5.0);
  delete value;
}

TEST(KrRfEvaluateString, FailuresLeaveTheResultAlone) {
  Door front;
  KrRxObject* untouched = &front;
  EXPECT_EQ(krrfEvaluateString(nullptr, &front, untouched), Kesu::eInvalidInput);
  EXPECT_EQ(krrfEvaluateString(L"width", nullptr, untouched), Kesu::eInvalidInput);
  EXPECT_EQ(krrfEvaluateString(L"", &front, untouched), Kesu::eInvalidInput);
  EXPECT_EQ(krrfEvaluateString(L"frame..width", &front, untouched), Kesu::eInvalidInput);
  EXPECT_EQ(krrfEvaluateString(L"height", &front, untouched), Kesu::eKeyNotFound);
  EXPECT_EQ(krrfEvaluateString(std::wstring(300, L'w').c_str(), &front, untouched), Kesu::eKeyNotFound);
  EXPECT_EQ(krrfEvaluateString(L"abstract", &front, untouched), Kesu::eNotSupported);
  EXPECT_EQ(krrfEvaluateString(L"unreadable", &front, untouched, false), Kesu::eNotApplicable);
  EXPECT_EQ(krrfEvaluateString(L"width.name", &front, untouched), Kesu::eInvalidInput);
  EXPECT_EQ(krrfEvaluateString(L"frame.width", &front, untouched), Kesu::eInvalidInput);
  Plant plant;
  EXPECT_EQ(krrfEvaluateString(L"width", &plant, untouched), Kesu::eKeyNotFound);
  EXPECT_EQ(untouched, &front);
}

TEST(KrRfEvaluateString, ADottedPathGoesOnThroughProxies) {
  Door front, frame, outer;
  front.mpFrame = &frame;
  frame.mpFrame = &outer;
  frame.mWidth = 7.5;
  outer.mName = L"outer";
  KrRxObject* value = nullptr;
  ASSERT_EQ(krrfEvaluateString(L"frame.frame.name", &front, value), Kesu::eOk);
  EXPECT_STREQ(static_cast<const wchar_t*>(*KrRxTextString::cast(value)), L"outer");
  delete value;
  ASSERT_EQ(krrfEvaluateString(L"frame.width", &front, value), Kesu::eOk);
  EXPECT_EQ(KrVtFloat64::cast(value)->value(), 7.5);
  delete value;
}

TEST(KrRfFormatString, FillsEveryPlaceholder) {
  Door front;
  EXPECT_EQ(formatted(L"Width: %<width>%", &front), L"Width: " + textOf(KrVtFloat64(5.0)));
  EXPECT_EQ(formatted(L"%<count>% hinges", &front), L"3 hinges");
  EXPECT_EQ(formatted(L"%<name>% door, %<count>% hinges, %<width>% wide", &front),
            L"front door, " + textOf(KrVtInt32(3)) + L" hinges, " + textOf(KrVtFloat64(5.0)) + L" wide");
  EXPECT_EQ(formatted(L"%<name>%%<name>%", &front), L"frontfront");
  EXPECT_EQ(formatted(L"no placeholders", &front), L"no placeholders");
  EXPECT_EQ(formatted(L"", &front), L"");
}

TEST(KrRfFormatString, EveryKindOfValueIsWrittenByItsOwnFormattable) {
  Door front;
  KrVtDate installed;
  ASSERT_EQ(installed.setDate(2023, 5, 17), Kesu::eOk);
  EXPECT_EQ(textOf(installed), L"2023-05-17");
  EXPECT_EQ(formatted(L"%<name>%, since %<installed>%: slope %<slope>%, share %<share>%, price %<price>%", &front),
            L"front, since 2023-05-17: slope " + textOf(KrVtRatio(0.75)) + L", share " +
                textOf(KrVtPercentage(0.125)) + L", price " + textOf(KrVtCurrency(1234.5)));
  EXPECT_NE(textOf(KrVtPercentage(0.125)), textOf(KrVtRatio(0.125)));
}

TEST(KrRfFormatString, PlaceholdersThatCannotBeFilledDisappear) {
  Door front;
  EXPECT_EQ(formatted(L"[%<height>%] after", &front), L"[] after");
  EXPECT_EQ(formatted((L"[%<" + std::wstring(300, L'w') + L">%]%<name>%").c_str(), &front), L"[]front");
  EXPECT_EQ(formatted(L"[%<unreadable>%][%<plain>%][%<>%][%<frame.width>%]", &front), L"[][][][]");
}

TEST(KrRfFormatString, AnUnmatchedOpeningIsCopiedUnchanged) {
  Door front;
  EXPECT_EQ(formatted(L"a %<name>% b %<width c", &front), L"a front b %<width c");
  EXPECT_EQ(formatted(L"%<width", &front), L"%<width");
  EXPECT_EQ(formatted(L"100 >% and %", &front), L"100 >% and %");
}

TEST(KrRfFormatString, ADottedPathReachesAnotherObject) {
  Door front, frame;
  front.mpFrame = &frame;
  frame.mName = L"oak";
  EXPECT_EQ(formatted(L"frame of %<frame.name>%", &front), L"frame of oak");
}

TEST(KrRfFormatString, TheComposedTextStopsAtTheLimit) {
  Door front;
  std::wstring exact(kKrrfFormatLimit, L'x');
  EXPECT_EQ(formatted(exact.c_str(), &front), exact);
  std::wstring filled(kKrrfFormatLimit - 5, L'y');
  EXPECT_EQ(formatted((filled + L"%<name>%").c_str(), &front), filled + L"front");
  EXPECT_EQ(formatted((filled + L"%<name>%%<name>%tail").c_str(), &front), filled + L"front");
  EXPECT_EQ(formatted((exact + L"more").c_str(), &front), exact);
}

TEST(KrRfFormatString, NullArgumentsAreRefused) {
  Door front;
  wchar_t* result = nullptr;
  EXPECT_EQ(krrfFormatString(nullptr, &front, result), Kesu::eInvalidInput);
  EXPECT_EQ(krrfFormatString(L"x", nullptr, nullptr, result), Kesu::eInvalidInput);
  EXPECT_EQ(result, nullptr);
}

}  // namespace
