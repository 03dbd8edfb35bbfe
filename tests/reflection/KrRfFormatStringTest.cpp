// Template formatting, with and without a host's format context, and the
// property-path evaluator behind it.

#include <gtest/gtest.h>

#include <cstdlib>
#include <limits>
#include <memory>
#include <string>
#include <vector>

#include "KrRfTestDoor.h"
#include "KrRfTestSymbols.h"

namespace {

// A length in metres: a number whose text form follows the host's number format.
class Metres : public KrVtFloat64 {
  KRRX_DECLARE_MEMBERS(Metres);
};
KRRX_CONS_DEFINE_MEMBERS(Metres, KrVtFloat64)

// value with decimals in the C form, as a new text from malloc.
wchar_t* cForm(double value, int decimals) {
  wchar_t buffer[64];
  swprintf(buffer, 64, L"%.*f", decimals, value);
  return _wcsdup(buffer);
}

// Writes decimals with a comma, as a host's locale may.
class CommaFormat : public KrRxNumberFormat {
 public:
  Kesu::ErrorStatus formatDouble(double value, int decimals, wchar_t*& text) const override {
    text = cForm(value, decimals);
    if (wchar_t* point = wcschr(text, L'.')) *point = decimalSeparator();
    return Kesu::eOk;
  }
  Kesu::ErrorStatus parseDouble(const wchar_t*, double&) const override { return Kesu::eNotSupported; }
  Kesu::ErrorStatus formatInteger(__int64, wchar_t*&) const override { return Kesu::eNotSupported; }
  Kesu::ErrorStatus parseInteger(const wchar_t*, __int64&) const override { return Kesu::eNotSupported; }
  wchar_t decimalSeparator() const override { return L','; }
  wchar_t groupSeparator() const override { return L'.'; }
};

class CommaContext : public KrRxFormatContext {
 public:
  KrRxNumberFormat* numberFormat() const override { return const_cast<CommaFormat*>(&mFormat); }

 private:
  CommaFormat mFormat;
};

// The host's formattable of Metres: two decimals in the context's number
// format, in the C form without a context.
class MetresFormattable : public KrRxFormattablePE {
 public:
  Kesu::ErrorStatus toText(const KrRxObject* object, wchar_t*& text, const KrRxFormatContext* context) override {
    const double value = KrVtFloat64::cast(object)->value();
    if (context && context->numberFormat()) return context->numberFormat()->formatDouble(value, 2, text);
    text = cForm(value, 2);
    return Kesu::eOk;
  }
  Kesu::ErrorStatus fromText(KrRxObject*, const wchar_t*, const KrRxFormatContext*) override {
    return Kesu::eNotSupported;
  }
};

Kesu::ErrorStatus readLength(const KrRxObject* object, KrRxObject* value) {
  KrVtFloat64::cast(value)->value() = static_cast<const TestDoor*>(object)->mWidth;
  return Kesu::eOk;
}

// The door, with a length in metres besides its own properties.
class Described : public ::testing::Environment {
 public:
  void SetUp() override {
    describeTestDoor();
    Metres::rxInit();
    krrxBuildClassHierarchy();
    Metres::desc()->addX(KrRxFormattablePE::desc(), &mFormattable);
    mpLength = new TestProperty(L"length", Metres::desc(), readLength);
    ASSERT_EQ(krrfReflectionService()->reflectionPE(TestDoor::desc(), false)->addSymbol(mpLength), Kesu::eOk);
  }
  void TearDown() override {
    krrfReflectionService()->reflectionPE(TestDoor::desc(), false)->removeSymbol(mpLength);
    delete mpLength;
    Metres::desc()->delX(KrRxFormattablePE::desc());
  }

 private:
  MetresFormattable mFormattable;
  TestProperty* mpLength = nullptr;
};
const auto* const kEnvironment = ::testing::AddGlobalTestEnvironment(new Described);

std::wstring formatted(const wchar_t* text, const KrRxObject* object, const KrRxFormatContext* context = nullptr) {
  wchar_t* result = nullptr;
  EXPECT_EQ(context ? krrfFormatString(text, object, context, result) : krrfFormatString(text, object, result),
            Kesu::eOk);
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
  TestDoor front;
  KrRxObject* value = nullptr;
  ASSERT_EQ(krrfEvaluateString(L"width", &front, value), Kesu::eOk);
  ASSERT_NE(KrVtFloat64::cast(value), nullptr);
  EXPECT_EQ(KrVtFloat64::cast(value)->value(), 5.0);
  delete value;
}

TEST(KrRfEvaluateString, FailuresLeaveTheResultAlone) {
  TestDoor front;
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
  TestDoor front, frame, outer;
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
  TestDoor front;
  EXPECT_EQ(formatted(L"Width: %<width>%", &front), L"Width: " + textOf(KrVtFloat64(5.0)));
  EXPECT_EQ(formatted(L"%<count>% hinges", &front), L"3 hinges");
  EXPECT_EQ(formatted(L"%<name>% door, %<count>% hinges, %<width>% wide", &front),
            L"front door, " + textOf(KrVtInt32(3)) + L" hinges, " + textOf(KrVtFloat64(5.0)) + L" wide");
  EXPECT_EQ(formatted(L"%<name>%%<name>%", &front), L"frontfront");
  EXPECT_EQ(formatted(L"no placeholders", &front), L"no placeholders");
  EXPECT_EQ(formatted(L"", &front), L"");
}

TEST(KrRfFormatString, EveryKindOfValueIsWrittenByItsOwnFormattable) {
  TestDoor front;
  KrVtDate installed;
  ASSERT_EQ(installed.setDate(2023, 5, 17), Kesu::eOk);
  EXPECT_EQ(textOf(installed), L"2023-05-17");
  EXPECT_EQ(formatted(L"%<name>%, since %<installed>%: slope %<slope>%, share %<share>%, price %<price>%", &front),
            L"front, since 2023-05-17: slope " + textOf(KrVtRatio(0.75)) + L", share " +
                textOf(KrVtPercentage(0.125)) + L", price " + textOf(KrVtCurrency(1234.5)));
  EXPECT_NE(textOf(KrVtPercentage(0.125)), textOf(KrVtRatio(0.125)));
}

// A property of the number kind T whose reading insists on a fresh value of
// exactly T's class and writes T's extreme into it.
template <typename T>
TestProperty* extremeProperty(const wchar_t* name) {
  return new TestProperty(name, KrRfValueT<T>::desc(), [](const KrRxObject*, KrRxObject* value) {
    if (value->isA() != KrRfValueT<T>::desc()) return Kesu::eWrongObjectType;
    T& held = static_cast<KrRfValueT<T>*>(value)->value();
    if (held != T()) return Kesu::eInvalidInput;
    held = std::numeric_limits<T>::is_signed ? std::numeric_limits<T>::lowest() : std::numeric_limits<T>::max();
    return Kesu::eOk;
  });
}

TEST(KrRfFormatString, EveryNumberKindIsReadIntoAFreshValueOfItsOwnClass) {
  KrRfReflectionPE* pe = krrfReflectionService()->reflectionPE(TestDoor::desc(), false);
  std::vector<std::unique_ptr<TestProperty>> numbers;
  numbers.emplace_back(extremeProperty<signed char>(L"i8"));
  numbers.emplace_back(extremeProperty<unsigned char>(L"u8"));
  numbers.emplace_back(extremeProperty<short>(L"i16"));
  numbers.emplace_back(extremeProperty<unsigned short>(L"u16"));
  numbers.emplace_back(extremeProperty<int>(L"i32"));
  numbers.emplace_back(extremeProperty<unsigned int>(L"u32"));
  numbers.emplace_back(extremeProperty<__int64>(L"i64"));
  numbers.emplace_back(extremeProperty<unsigned __int64>(L"u64"));
  numbers.emplace_back(extremeProperty<double>(L"f64"));
  std::wstring text, expected;
  for (const auto& number : numbers) {
    ASSERT_EQ(pe->addSymbol(number.get()), Kesu::eOk);
    std::wstring placeholder = L"%<" + std::wstring(number->name()) + L">%";
    KrRxObject* value = nullptr;
    TestDoor front;
    ASSERT_EQ(krrfEvaluateString(number->name(), &front, value), Kesu::eOk);
    expected += textOf(*value) + L"," + textOf(*value) + L";";
    delete value;
    text += placeholder + L"," + placeholder + L";";
  }
  TestDoor front;
  EXPECT_EQ(formatted(text.c_str(), &front), expected);
  EXPECT_EQ(expected.substr(0, 9), L"-128,-128");
  for (const auto& number : numbers) pe->removeSymbol(number.get());
}

TEST(KrRfFormatString, PlaceholdersThatCannotBeFilledDisappear) {
  TestDoor front;
  EXPECT_EQ(formatted(L"[%<height>%] after", &front), L"[] after");
  EXPECT_EQ(formatted((L"[%<" + std::wstring(300, L'w') + L">%]%<name>%").c_str(), &front), L"[]front");
  EXPECT_EQ(formatted(L"[%<unreadable>%][%<plain>%][%<>%][%<frame.width>%]", &front), L"[][][][]");
}

TEST(KrRfFormatString, AnUnmatchedOpeningIsCopiedUnchanged) {
  TestDoor front;
  EXPECT_EQ(formatted(L"a %<name>% b %<width c", &front), L"a front b %<width c");
  EXPECT_EQ(formatted(L"%<width", &front), L"%<width");
  EXPECT_EQ(formatted(L"100 >% and %", &front), L"100 >% and %");
}

TEST(KrRfFormatString, ADottedPathReachesAnotherObject) {
  TestDoor front, frame;
  front.mpFrame = &frame;
  frame.mName = L"oak";
  EXPECT_EQ(formatted(L"frame of %<frame.name>%", &front), L"frame of oak");
}

TEST(KrRfFormatString, TheComposedTextStopsAtTheLimit) {
  TestDoor front;
  std::wstring exact(kKrrfFormatLimit, L'x');
  EXPECT_EQ(formatted(exact.c_str(), &front), exact);
  std::wstring filled(kKrrfFormatLimit - 5, L'y');
  EXPECT_EQ(formatted((filled + L"%<name>%").c_str(), &front), filled + L"front");
  EXPECT_EQ(formatted((filled + L"%<name>%%<name>%tail").c_str(), &front), filled + L"front");
  EXPECT_EQ(formatted((exact + L"more").c_str(), &front), exact);
  EXPECT_EQ(formatted((L"%<name>%" + filled + L"%<name>%").c_str(), &front), L"front" + filled);
}

TEST(KrRfFormatString, TheContextReachesEveryFormattable) {
  TestDoor front, frame;
  front.mpFrame = &frame;
  frame.mWidth = 0.75;
  CommaContext comma;
  EXPECT_EQ(formatted(L"%<length>% by %<frame.length>%", &front, &comma), L"5,00 by 0,75");
  EXPECT_EQ(formatted(L"%<length>% by %<frame.length>%", &front), L"5.00 by 0.75");
  // The library's own number forms do not ask the context.
  EXPECT_EQ(formatted(L"%<width>%", &front, &comma), textOf(KrVtFloat64(5.0)));
}

TEST(KrRfFormatString, NullArgumentsAreRefused) {
  TestDoor front;
  wchar_t* result = nullptr;
  EXPECT_EQ(krrfFormatString(nullptr, &front, result), Kesu::eInvalidInput);
  EXPECT_EQ(krrfFormatString(L"x", nullptr, nullptr, result), Kesu::eInvalidInput);
  EXPECT_EQ(result, nullptr);
}

}  // namespace
