// Formatting and parsing objects through their class's formattable.

#include <gtest/gtest.h>

#include <cmath>
#include <cstdlib>
#include <cstring>
#include <string>

#include "KrVtTextOf.h"
#include "kr1st.h"

namespace {

// A length: a double of its own class under KrVtFloat64, with no formattable of its own.
class Length : public KrVtFloat64 {
  KRRX_DECLARE_MEMBERS(Length);

 public:
  using KrVtFloat64::KrVtFloat64;
};
KRRX_CONS_DEFINE_MEMBERS(Length, KrVtFloat64)

// A formattable that records what it was handed and answers a status of its choosing.
class Recorder : public KrRxFormattablePE {
 public:
  Kesu::ErrorStatus toText(const KrRxObject* object, wchar_t*&, const KrRxFormatContext* context) override {
    seenObject = object;
    seenContext = context;
    return static_cast<Kesu::ErrorStatus>(77);
  }
  Kesu::ErrorStatus fromText(KrRxObject* object, const wchar_t* text, const KrRxFormatContext* context) override {
    seenObject = object;
    seenText = text;
    seenContext = context;
    return static_cast<Kesu::ErrorStatus>(78);
  }
  const KrRxObject* seenObject = nullptr;
  const wchar_t* seenText = nullptr;
  const KrRxFormatContext* seenContext = nullptr;
};

class Context : public KrRxFormatContext {
 public:
  KrRxNumberFormat* numberFormat() const override { return nullptr; }
};

// A class of its own with a Recorder attached, for the duration of a test.
class Recorded : public KrRxObject {
  KRRX_DECLARE_MEMBERS(Recorded);
};
KRRX_CONS_DEFINE_MEMBERS(Recorded, KrRxObject)

// Hands the Recorder out as the formattable of negative lengths only.
class NegativeLengthOverrule : public KrRxQueryXOverrule {
 public:
  explicit NegativeLengthOverrule(Recorder* recorder) : mRecorder(recorder) {}
  bool isApplicable(const KrRxObject* object) const override { return Length::cast(object)->value() < 0; }
  KrRxObject* queryX(const KrRxObject* object, const KrRxClass* protocolClass) const override {
    return protocolClass == KrRxFormattablePE::desc() ? mRecorder : KrRxQueryXOverrule::queryX(object, protocolClass);
  }

 private:
  Recorder* mRecorder;
};

class KrRxFormattableTest : public ::testing::Test {
 protected:
  static void SetUpTestSuite() {
    Length::rxInit();
    Recorded::rxInit();
    krrxBuildClassHierarchy();
  }
};

TEST_F(KrRxFormattableTest, ANullObjectIsBadInputAndLeavesTheTextAlone) {
  wchar_t keep[] = L"keep";
  wchar_t* text = keep;
  EXPECT_EQ(krrxFormatObject(nullptr, text, nullptr), Kesu::eInvalidInput);
  EXPECT_EQ(text, keep);
  EXPECT_EQ(krrxParseObject(nullptr, L"1", nullptr), Kesu::eInvalidInput);
}

TEST_F(KrRxFormattableTest, AClassWithoutFormattableIsNotSupported) {
  KrVtFloat32 single(1.0f);
  wchar_t keep[] = L"keep";
  wchar_t* text = keep;
  EXPECT_EQ(krrxFormatObject(&single, text, nullptr), Kesu::eNotSupported);
  EXPECT_EQ(text, keep);
  EXPECT_EQ(krrxParseObject(&single, L"1", nullptr), Kesu::eNotSupported);
  EXPECT_EQ(single.value(), 1.0f);
  KrRfPointer pointer;
  EXPECT_EQ(krrxFormatObject(&pointer, text, nullptr), Kesu::eNotSupported);
}

TEST_F(KrRxFormattableTest, ADescendantFormatsThroughItsAncestorsFormattable) {
  Length length(1234.5);
  EXPECT_STREQ(length.isA()->name(), L"Length");
  EXPECT_EQ(krvtTextOf(&length), L"1234.500");
  EXPECT_EQ(krrxParseObject(&length, L"2.25", nullptr), Kesu::eOk);
  EXPECT_EQ(length.value(), 2.25);
}

TEST_F(KrRxFormattableTest, TheFormattablesAnswerAndContextArePassedThroughUnchanged) {
  Recorder* recorder = new Recorder();
  EXPECT_EQ(Recorded::desc()->addX(KrRxFormattablePE::desc(), recorder), nullptr);
  Recorded object;
  Context context;
  wchar_t* text = nullptr;
  EXPECT_EQ(krrxFormatObject(&object, text, &context), 77);
  EXPECT_EQ(recorder->seenObject, &object);
  EXPECT_EQ(recorder->seenContext, &context);
  const wchar_t* input = L"input";
  EXPECT_EQ(krrxParseObject(&object, input, nullptr), 78);
  EXPECT_EQ(recorder->seenText, input);
  EXPECT_EQ(recorder->seenContext, nullptr);
  delete Recorded::desc()->delX(KrRxFormattablePE::desc());
  EXPECT_EQ(krrxFormatObject(&object, text, nullptr), Kesu::eNotSupported);
}

TEST_F(KrRxFormattableTest, AnOverruleChangesWhichFormattableAnswersForTheObjectsItSelects) {
  Recorder recorder;
  NegativeLengthOverrule overrule(&recorder);
  ASSERT_EQ(KrRxOverrule::addOverrule(Length::desc(), &overrule), Kesu::eOk);
  KrRxOverrule::setIsOverruling(true);
  Length negative(-1.5), positive(1.5);
  wchar_t* text = nullptr;
  EXPECT_EQ(krrxFormatObject(&negative, text, nullptr), 77);
  EXPECT_EQ(recorder.seenObject, &negative);
  EXPECT_EQ(krvtTextOf(&positive), L"1.500");
  KrRxOverrule::setIsOverruling(false);
  EXPECT_EQ(krvtTextOf(&negative), L"-1.500");
  EXPECT_EQ(KrRxOverrule::removeOverrule(Length::desc(), &overrule), Kesu::eOk);
}

TEST_F(KrRxFormattableTest, TextStringsAreWrittenAndReadAsTheyAre) {
  KrRxTextString string(L"Gr\u00fc\u00dfe", -1);
  EXPECT_EQ(krvtTextOf(&string), L"Gr\u00fc\u00dfe");
  EXPECT_EQ(krrxParseObject(&string, L" as is ", nullptr), Kesu::eOk);
  EXPECT_STREQ(static_cast<const wchar_t*>(string), L" as is ");
  EXPECT_EQ(krrxParseObject(&string, nullptr, nullptr), Kesu::eInvalidInput);
}

}  // namespace
