// Module records: references, names, flags, application data, version
// information, the in-use test and calls made in a module's context.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <windows.h>

#include <stdexcept>

#include "KrAbortTrap.h"
#include "KrRxModuleTestSupport.h"
#include "runtime/KrRxImpClass.h"

namespace {

// Makes module current for the scope.
class AsCurrent {
 public:
  explicit AsCurrent(KrRxGenHand* module) : mPrevious(KrRxGenHand::setCurModule(module)) {}
  ~AsCurrent() { KrRxGenHand::setCurModule(mPrevious); }

 private:
  KrRxGenHand* mPrevious;
};

void deleteNow(KrRxClass* cls) {
  KrRxImpClass::deleteClass(cls);
  KrRxImpClass::clearDeletedClassesArray();
}

TEST(KrRxGenHandTest, ANewRecordIsLockedAndUnreferenced) {
  KrRxGenHand module;
  EXPECT_EQ(module.appStatusFlags(), unsigned(KrRxGenHand::kLocked));
  EXPECT_FALSE(module.isAppBusy());
  EXPECT_FALSE(module.uiValue());
  EXPECT_EQ(module.apiValue(), 0);
  EXPECT_EQ(module.getVal(), nullptr);
  EXPECT_EQ(module.entryPoint(), nullptr);
  EXPECT_EQ(module.versionInfo(), nullptr);
  EXPECT_EQ(module.logicalAppName(), nullptr);
  EXPECT_STREQ(module.FileName(), L"");
  ASSERT_NE(module.dictionary(), nullptr) << "made by the kernel service";
  EXPECT_TRUE(module.safeToUnload());
  EXPECT_TRUE(module.sendAppMessage(KrRx::kAppMsgInit, &module)) << "no entry point: nothing to refuse";

  module.setVetoed();
  module.setStatusFlag(KrRxGenHand::kMDIAware, true);
  EXPECT_EQ(module.appStatusFlags(), 0x7u);
  module.clrVetoFlag();
  EXPECT_EQ(module.appStatusFlags(), 0x5u);
  EXPECT_TRUE(module.uiAddRef());
  EXPECT_FALSE(module.safeToUnload());
  EXPECT_FALSE(module.uiRelease());
  EXPECT_FALSE(module.uiValue());
}

TEST(KrRxGenHandTest, TheApiReferenceCountHoldsSixteenBits) {
  KrRxGenHand module;
  EXPECT_EQ(krThrownText<std::underflow_error>([&] { module.apiRelease(); }), "KrRxGenHand::apiRelease underflow");
  for (int i = 1; i <= 65535; ++i) ASSERT_EQ(module.apiAddRef(), i);
  EXPECT_FALSE(module.safeToUnload());
  EXPECT_EQ(krThrownText<std::overflow_error>([&] { module.apiAddRef(); }), "KrRxGenHand::apiAddRef overflow");
  EXPECT_EQ(module.apiValue(), 65535);
  EXPECT_EQ(module.apiRelease(), 65534);
}

TEST(KrRxGenHandTest, LogicalApplicationNamesAreCountedIgnoringCase) {
  KrRxGenHand module;
  module.addLogicalAppName(L"Drawing");
  module.addLogicalAppName(L"DRAWING");
  module.addLogicalAppName(L"Plotting");
  EXPECT_STREQ(module.logicalAppName(), L"Drawing") << "the first form is kept";
  module.removeLogicalAppName(L"drawing");
  EXPECT_TRUE(module.hasLogicalAppName(L"Drawing")) << "counted twice, removed once";
  module.removeLogicalAppName(L"Drawing");
  EXPECT_FALSE(module.hasLogicalAppName(L"drawing"));
  EXPECT_STREQ(module.logicalAppName(), L"Plotting");
  module.removeLogicalAppName(L"Unknown");
  module.addLogicalAppName(nullptr);
  EXPECT_FALSE(module.hasLogicalAppName(nullptr));
}

TEST(KrRxGenHandTest, ApplicationDataNeedsACurrentModule) {
  KrRxTextString value(L"value", -1);
  EXPECT_FALSE(krrxAddAppData(L"key", &value)) << "outside any module's call";
  EXPECT_FALSE(krrxRemoveAppData(L"key", &value));
  KrRxGenHand module;
  {
    AsCurrent current(&module);
    EXPECT_TRUE(krrxAddAppData(L"key", &value));
  }
  EXPECT_EQ(module.dictionary()->at(L"key"), &value);
  EXPECT_EQ(krrxGetAppData(L"key", L"not-loaded.krx"), nullptr);
  {
    AsCurrent current(&module);
    EXPECT_TRUE(krrxRemoveAppData(L"key", &value));
  }
  EXPECT_EQ(module.dictionary()->at(L"key"), nullptr);
}

TEST(KrRxGenHandTest, TheVersionResourceComesWithTheModuleHandle) {
  KrRxGenHand module;
  module.setVal(GetModuleHandleW(L"kr1st20.dll"));
  ASSERT_NE(module.versionInfo(), nullptr);
  wchar_t* version = nullptr;
  UINT length = 0;
  ASSERT_TRUE(VerQueryValueW(module.versionInfo(), L"\\StringFileInfo\\040904b0\\FileVersion",
                             reinterpret_cast<void**>(&version), &length));
  EXPECT_STREQ(version, L"20.5.0.0");
  EXPECT_EQ(module.entryPoint(), nullptr) << "the runtime is no module";
  void* block = module.versionInfo();
  module.setVal(nullptr);
  EXPECT_EQ(module.versionInfo(), block) << "kept when the handle goes";
  EXPECT_EQ(module.getVal(), nullptr);
}

void appNameOfCallback(const KrRxClass*, wchar_t*& name, int) { name = const_cast<wchar_t*>(L"Called Back"); }

TEST(KrRxGenHandTest, ClassesNameTheirModulesApplicationsAndKeepItInUse) {
  KrRxGenHand base, derived;
  KrRxClass *baseClass, *derivedClass, *calledBack;
  {
    AsCurrent current(&base);
    baseClass = newKrRxClass(L"GenHandTestBase", L"KrRxObject", 0, nullptr, nullptr, L"Base App");
    calledBack = newKrRxClass(L"GenHandTestCalledBack", L"KrRxObject", 0, 0, 0, nullptr, nullptr, nullptr,
                              appNameOfCallback);
  }
  {
    AsCurrent current(&derived);
    derivedClass = newKrRxClass(L"GenHandTestDerived", L"GenHandTestBase", 0, nullptr, nullptr, nullptr);
  }
  krrxBuildClassHierarchy();
  EXPECT_TRUE(base.hasLogicalAppName(L"base app"));
  EXPECT_TRUE(base.hasLogicalAppName(L"Called Back"));
  EXPECT_EQ(derived.logicalAppName(), nullptr);
  EXPECT_FALSE(base.safeToUnload()) << "another module's class derives from its class";
  EXPECT_TRUE(derived.safeToUnload());

  deleteNow(derivedClass);
  EXPECT_EQ(krrxFindKrRxClass(L"GenHandTestDerived"), nullptr) << "deleted in its own module's context";
  EXPECT_EQ(KrRxGenHand::curModule(), nullptr) << "and the current module resumed";
  EXPECT_TRUE(base.safeToUnload());
  deleteNow(baseClass);
  deleteNow(calledBack);
  EXPECT_EQ(base.logicalAppName(), nullptr) << "disconnected classes take their names along";
}

KrRxGenHand* sCurrentInCall = nullptr;

TEST(KrRxGenHandTest, CodeRunsInAModulesContextAndFaultsAreCaughtOnRequest) {
  KrRxGenHand module;
  KrRxGenHand::mCurMsgCode = KrRx::kAppMsgUnload;
  EXPECT_TRUE(module.executeInAppContext([](void*) { sCurrentInCall = KrRxGenHand::curModule(); }, nullptr));
  EXPECT_EQ(sCurrentInCall, &module);
  EXPECT_EQ(KrRxGenHand::curMsgCode(), KrRx::kAppMsgUnload) << "the message stays";
  KrRxGenHand::mCurMsgCode = KrRx::kNullMsg;

  bCatchSendAppExceptions = true;
  EXPECT_FALSE(module.executeInAppContext([](void*) { *static_cast<volatile int*>(nullptr) = 1; }, nullptr));
  EXPECT_EQ(KrRxGenHand::curModule(), nullptr);
  bCatchSendAppExceptions = false;
}

}  // namespace
