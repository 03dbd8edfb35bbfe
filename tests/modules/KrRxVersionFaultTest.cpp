// A module whose version function faults while it is only probed is
// refused with a message, whatever bCatchSendAppExceptions says; the
// process goes on and later modules load.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <windows.h>

#include "KrRxModuleTestSupport.h"
#include "krdb20.h"

using ::testing::ElementsAre;

namespace {

class VersionFaultTest : public ::testing::TestWithParam<bool> {
 protected:
  void SetUp() override {
    mSavedCatch = bCatchSendAppExceptions;
    bCatchSendAppExceptions = GetParam();
    krdbTestClearMessages();
  }
  void TearDown() override { bCatchSendAppExceptions = mSavedCatch; }

  bool mSavedCatch = false;
};

TEST_P(VersionFaultTest, RefusedWithMessageUnmappedAndTheNextModuleLoads) {
  EXPECT_FALSE(krrxLoadModule(L"faultver.krx", true, true));
  EXPECT_THAT(krdbTestTakeMessages(),
              ElementsAre(L"krrxGetApiVersion faulted in faultver.krx\nIt must return a constant and read nothing "
                          L"imported: define it with KRRX_DEFINE_API_VERSION().\n",
                          L"Failed to load 'faultver.krx'\n"));
  EXPECT_EQ(krTestLinker()->moduleHandlePtr(L"faultver.krx"), nullptr);
  EXPECT_EQ(GetModuleHandleW(L"faultver.krx"), nullptr) << "the probe mapping is released";
  EXPECT_EQ(bCatchSendAppExceptions, GetParam()) << "the flag is left as it was";

  ASSERT_TRUE(krrxLoadModule(L"good.krx", true, true));
  EXPECT_TRUE(krrxUnloadModule(L"good.krx", true));
  EXPECT_EQ(krTestLinker()->numberOfAppsLoaded(), 0u);
}

INSTANTIATE_TEST_SUITE_P(WhateverTheCatchFlag, VersionFaultTest, ::testing::Bool());

// A module whose version comes from KRRX_DEFINE_API_VERSION() (added by
// kestrune_add_module) loads like one that spells it out.
TEST(SdkVersionTest, ModuleWithTheSdkVersionFunctionLoads) {
  using GetApiVersion = unsigned int (*)();
  ASSERT_TRUE(krrxLoadModule(L"sdkversion.krx", false, false));
  auto version = krModuleSymbol<GetApiVersion>(L"sdkversion.krx", "krrxGetApiVersion");
  ASSERT_NE(version, nullptr);
  EXPECT_EQ(version(), KRRX_CUR_API_VERSION);
  EXPECT_TRUE(krrxUnloadModule(L"sdkversion.krx", false));
}

}  // namespace
