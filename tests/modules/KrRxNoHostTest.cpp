// The linker without the host's database library: no product key, the
// system locale, messages dropped, and the default start-up list file
// "krrx.rx" in the current directory.

#include <gtest/gtest.h>

#include <windows.h>

#include "KrRxModuleTestSupport.h"

namespace {

TEST(KrRxNoHostTest, WithoutHostServicesMessagesAreDroppedAndDefaultsApply) {
  ASSERT_EQ(GetModuleHandleW(L"KRDB20.DLL"), nullptr);
  EXPECT_EQ(KrRxImpDynamicLinker::hostMessage(L"dropped %d", 1), -5001);
  EXPECT_EQ(krrxProductKey(), nullptr);
  EXPECT_EQ(krrxProductLCID(), GetSystemDefaultLCID());
  EXPECT_FALSE(krrxLoadModule(L"absent.krx", true, true)) << "failing loudly with nobody to tell";
}

TEST(KrRxNoHostTest, TheDefaultStartUpListIsKrrxRxInTheCurrentDirectory) {
  DeleteFileW(L"krrx.rx");
  EXPECT_FALSE(krrxProcessInitFile()) << "no list file";
  krWriteFile(L"krrx.rx", krUtf16le(L"good.krx\r\n"));
  EXPECT_TRUE(krrxProcessInitFile());
  EXPECT_NE(krTestLinker()->moduleHandlePtr(L"good"), nullptr);
  EXPECT_TRUE(krrxUnloadModule(L"good", true));
  DeleteFileW(L"krrx.rx");
}

}  // namespace
