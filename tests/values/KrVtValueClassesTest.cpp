// The value-type classes as start-up leaves them: the pseudo-constructors
// and the extensions attached.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>

#include "KrAbortTrap.h"
#include "kr1st.h"

namespace {

TEST(KrVtValueClassesTest, TheConcreteClassesMakeDefaultInstances) {
  for (const wchar_t* name : {L"KrVtInt16", L"KrVtChar", L"KrVtFloat64Array", L"KrRfValuePointer"}) {
    KrRxObject* made = krrxFindKrRxClass(name)->create();
    ASSERT_NE(made, nullptr) << krUtf8(name);
    EXPECT_STREQ(made->isA()->name(), name);
    delete made;
  }
  EXPECT_EQ(KrRfNumber::desc()->create(), nullptr) << "abstract";
}

TEST(KrVtValueClassesTest, ExtensionsAreAttachedWhereTheTextFormsAre) {
  KrRxClass* formattable = KrRxFormattablePE::desc();
  for (const wchar_t* name : {L"KrVtBool", L"KrVtInt8", L"KrVtUInt8", L"KrVtInt16", L"KrVtUInt16", L"KrVtInt32",
                              L"KrVtUInt32", L"KrVtInt64", L"KrVtUInt64", L"KrVtFloat64", L"KrRxTextString",
                              L"KrVtRatio", L"KrVtPercentage", L"KrVtPermille", L"KrVtCurrency", L"KrVtDateTime",
                              L"KrVtDate", L"KrVtTime"})
    EXPECT_NE(krrxFindKrRxClass(name)->queryX(formattable), nullptr) << krUtf8(name);
  for (const wchar_t* name : {L"KrVtFloat32", L"KrVtChar", L"KrRfValue", L"KrRxObject"})
    EXPECT_EQ(krrxFindKrRxClass(name)->queryX(formattable), nullptr) << krUtf8(name);
  EXPECT_NE(krrxFindKrRxClass(L"KrVtRatio")->queryX(formattable), krrxFindKrRxClass(L"KrVtFloat64")->queryX(formattable));
  EXPECT_EQ(krrxFindKrRxClass(L"KrVtDaytime")->queryX(formattable), krrxFindKrRxClass(L"KrVtFloat64")->queryX(formattable))
      << "a plain day value has no text form of its own";
  KrRxObject* rangeCheck = KrRfNumber::desc()->queryX(KrRfRangeCheckPE::desc());
  EXPECT_NE(KrRfNumberRangeCheckPE::cast(rangeCheck), nullptr);
  // Every proxy, of whatever kind, answers the proxy interface.
  KrRxObject* proxyInterface = KrRfProxy::desc()->queryX(KrRfProxyInterfacePE::desc());
  EXPECT_NE(KrRfProxyInterfacePE::cast(proxyInterface), nullptr);
  KrRxClassPointer pointer;
  EXPECT_EQ(pointer.queryX(KrRfProxyInterfacePE::desc()), proxyInterface);
}

TEST(KrVtValueClassesTest, RegisteringAValueClassTwiceIsFatal) {
  EXPECT_EQ(krAbortMessageOf([] { KrVtInt32::rxInit(); }), L"KrVtInt32::rxInit() called twice!");
  EXPECT_EQ(krAbortMessageOf([] { KrRxClassPointer::rxInit(); }), L"KrRxClassPointer::rxInit() called twice!");
  EXPECT_EQ(krAbortMessageOf([] { KrVtFloat64Array::rxInit(); }), L"KrVtFloat64Array::rxInit() called twice!");
  EXPECT_EQ(krAbortMessageOf([] { KrVtDateTimeArray::rxInit(); }), L"KrVtDateTimeArray::rxInit() called twice!");
}

}  // namespace
