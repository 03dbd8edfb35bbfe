// The running system right after load: registry, class dictionary, services.

#include <gtest/gtest.h>

#include <set>
#include <string>

#include "kr1st.h"

namespace {

std::set<std::wstring> keysOf(const KrRxDictionary* dictionary) {
  std::set<std::wstring> keys;
  KrRxDictionaryIterator* it = dictionary->newIterator(KrRx::kDictById);
  for (; !it->done(); it->next()) keys.insert(it->key());
  delete it;
  return keys;
}

KrRxDictionary* serviceDictionary() { return static_cast<KrRxDictionary*>(krrxSysRegistry()->at(L"ServiceDictionary")); }

}  // namespace

TEST(KrRxSystemTest, RegistryAndServicesHoldExactlyTheBuiltIns) {
  ASSERT_NE(krrxSysRegistry(), nullptr);
  EXPECT_EQ(krrxSysRegistry(), sysRegistry);
  EXPECT_EQ(keysOf(krrxSysRegistry()), (std::set<std::wstring>{L"ClassDictionary", L"DynamicLinker", L"ServiceDictionary"}));
  EXPECT_EQ(krrxSysRegistry()->at(L"ClassDictionary"), sysClasses);
  EXPECT_FALSE(krrxSysRegistry()->isSorted());
  EXPECT_FALSE(krrxSysRegistry()->deletesObjects());
  EXPECT_TRUE(krrxSysRegistry()->isCaseSensitive());
  EXPECT_TRUE(KrRxDynamicLinker::cast(krrxSysRegistry()->at(L"DynamicLinker")));

  EXPECT_EQ(keysOf(serviceDictionary()),
            (std::set<std::wstring>{L"KernelServices", L"ProtocolReactorManager", L"ReflectionServices"}));
  EXPECT_EQ(serviceDictionary()->at(L"KernelServices"), sysKernel);
  EXPECT_TRUE(krrxServiceIsRegistered(L"KernelServices"));
  EXPECT_FALSE(krrxServiceIsRegistered(L"NoSuchService"));
  EXPECT_EQ(KrRxService::cast(serviceDictionary()->at(L"ReflectionServices"))->getSysInfo(), nullptr);
}

TEST(KrRxSystemTest, ClassDictionaryIsSortedAndEveryClassIsLinked) {
  const KrRxDictionary* classes = krrxSysClasses();
  ASSERT_NE(classes, nullptr);
  EXPECT_TRUE(classes->isSorted());
  EXPECT_FALSE(classes->deletesObjects());
  std::wstring previous;
  unsigned int count = 0;
  KrRxDictionaryIterator* it = classes->newIterator(KrRx::kDictByKey);
  for (; !it->done(); it->next(), ++count) {
    std::wstring name = it->key();
    EXPECT_LT(previous, name) << "key order is code-unit order";
    previous = name;
    auto* cls = static_cast<KrRxClass*>(it->object());
    EXPECT_EQ(name, cls->name());
    EXPECT_TRUE(cls == KrRxObject::desc() || cls->myParent() != nullptr) << "unlinked: " << testing::PrintToString(name);
  }
  delete it;
  EXPECT_EQ(count, classes->numEntries());
  EXPECT_GE(count, 77u);
}

// Every built-in class stands under its parent, whichever subsystem made it.
TEST(KrRxSystemTest, BuiltInClassesHaveTheirParents) {
  const wchar_t* const kTree[][2] = {
      {L"KrRxObject", L"(none)"}, {L"KrRxImpKernel", L"KrRxKernel"}, {L"KrRxKernel", L"KrRxService"},
      {L"KrRxGenTypedSet", L"KrRxImpSet"}, {L"KrRxGenHand", L"KrRxGenVoid"}, {L"KrRxQueryXOverrule", L"KrRxOverrule"},
      {L"KrRxImpProtocolReactorManagerFactory", L"KrRxProtocolReactorManagerFactory"},
      {L"KrRxEvent", L"KrRxObject"}, {L"KrRxEventReactor", L"KrRxObject"}, {L"KesuAppInfo", L"KrRxObject"},
      {L"KesuAppRegistry", L"KrRxObject"},
      // Reflection.
      {L"KrRfReflectionService", L"KrRxService"}, {L"KrRfImpReflectionService", L"KrRfReflectionService"},
      {L"KrRfReflectionPE", L"KrRxObject"}, {L"KrRfImpReflectionPE", L"KrRfReflectionPE"},
      {L"KrRfReflectionReactor", L"KrRxObject"}, {L"KrRfSymbolIterator", L"KrRxIterator"},
      {L"KrRfImpSymbolIterator", L"KrRfSymbolIterator"}, {L"KrRfSymbol", L"KrRxObject"},
      {L"KrRfProperty", L"KrRfSymbol"}, {L"KrRxSymbolFilterPR", L"KrRxProtocolReactor"},
      {L"KrRfReflectionProviderPR", L"KrRxProtocolReactor"}, {L"KrRfPropertyEnumPE", L"KrRxObject"},
      {L"KrRfPropertyRangePE", L"KrRxObject"}, {L"KrRfPropertyDerivationPE", L"KrRxObject"},
      {L"KrRfArrayPropertyDetailsPE", L"KrRxObject"}, {L"KrRfArrayPropertyDerivationPE", L"KrRxObject"},
      // Values, proxies and formatting.
      {L"KrRfValue", L"KrRxObject"}, {L"KrRfNumber", L"KrRfValue"}, {L"KrVtBool", L"KrRfValue"},
      {L"KrVtChar", L"KrRfValue"}, {L"KrVtInt8", L"KrRfNumber"}, {L"KrVtUInt64", L"KrRfNumber"},
      {L"KrVtFloat32", L"KrRfNumber"}, {L"KrVtFloat64", L"KrRfNumber"}, {L"KrVtRatio", L"KrVtFloat64"},
      {L"KrVtDaytime", L"KrVtFloat64"}, {L"KrVtDateTime", L"KrVtDaytime"}, {L"KrVtDate", L"KrVtDaytime"},
      {L"KrVtTime", L"KrVtDaytime"}, {L"KrVtPercentage", L"KrVtRatio"}, {L"KrVtPermille", L"KrVtRatio"},
      {L"KrVtCurrency", L"KrVtFloat64"}, {L"KrVtFloat64Array", L"KrRfArray"},
      {L"KrVtPercentageArray", L"KrVtFloat64Array"}, {L"KrVtCurrencyArray", L"KrVtFloat64Array"},
      {L"KrVtDateTimeArray", L"KrVtFloat64Array"}, {L"KrRfArray", L"KrRxObject"},
      {L"KrRfRangeCheckPE", L"KrRxObject"}, {L"KrRfProxy", L"KrRxObject"}, {L"KrRfPointer", L"KrRfProxy"},
      {L"KrRfReference", L"KrRfProxy"}, {L"KrRxObjectPointer", L"KrRfPointer"},
      {L"KrRxClassPointer", L"KrRxObjectPointer"}, {L"KrRfValuePointer", L"KrRfPointer"},
      {L"KrRxFormattablePE", L"KrRxObject"}, {L"KrRxFormatContext", L"KrRxObject"},
      {L"KrRxNumberFormat", L"KrRxObject"}, {L"KrRxNumberFormat2", L"KrRxNumberFormat"},
  };
  for (const auto& row : kTree) {
    KrRxClass* cls = krrxFindKrRxClass(row[0]);
    ASSERT_NE(cls, nullptr) << row[0];
    EXPECT_STREQ(cls->myParent() ? cls->myParent()->name() : L"(none)", row[1]) << row[0];
  }
  EXPECT_EQ(KrRxClass::desc()->isA(), KrRxClass::desc()) << "a descriptor is a KrRxClass";
}

TEST(KrRxSystemTest, KernelMakesDictionariesAndSetsAsAsked) {
  KrRxDictionary* typed = sysKernel->newKrRxDictionary(KrRxService::desc());
  EXPECT_FALSE(typed->isSorted() || typed->deletesObjects() || !typed->isCaseSensitive());
  KrRxGenVoid notAService;
  EXPECT_EQ(typed->atPut(L"x", &notAService), nullptr);
  EXPECT_FALSE(typed->has(L"x")) << "the required class is enforced";
  delete typed;

  KrRxDictionary* flags = sysKernel->newKrRxDictionary(4, true, true, true);
  EXPECT_TRUE(flags->isSorted() && flags->deletesObjects() && !flags->isCaseSensitive());
  delete flags;
  KrRxDictionary* plain = sysKernel->newKrRxDictionary(true, false);
  EXPECT_TRUE(plain->isSorted() && !plain->deletesObjects() && plain->isCaseSensitive());
  delete plain;

  KrRxSet* owning = sysKernel->newKrRxSet(true);
  EXPECT_TRUE(owning->deletesObjects());
  delete owning;
  KrRxSet* typedSet = sysKernel->newKrRxSet(false, KrRxService::desc());
  EXPECT_FALSE(typedSet->add(&notAService));
  EXPECT_EQ(typedSet->isA()->name(), std::wstring(L"KrRxGenTypedSet"));
  delete typedSet;
  KrRxSet* set = sysKernel->newKrRxSet();
  EXPECT_FALSE(set->deletesObjects());
  EXPECT_EQ(set->isA()->name(), std::wstring(L"KrRxImpSet"));
  delete set;
}
