// Module records: references, names, flags, application data, version
// information, the in-use test and calls made in a module's context.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <windows.h>

#include <cwchar>
#include <stdexcept>
#include <string>
#include <vector>

#include "KrAbortTrap.h"
#include "KrRxModuleTestSupport.h"
#include "KrTestFiles.h"
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

// One text of a version resource block, "" when absent. Blocks are built
// with a single US English, UTF-16 table.
std::wstring versionText(const void* block, const wchar_t* name) {
  wchar_t* text = nullptr;
  UINT length = 0;
  std::wstring path = std::wstring(L"\\StringFileInfo\\040904b0\\") + name;
  if (!VerQueryValueW(block, path.c_str(), reinterpret_cast<void**>(&text), &length)) return L"";
  return std::wstring(text, wcsnlen(text, length));
}

// The texts a module's version resource gives Windows' file properties.
std::vector<std::wstring> versionTexts(const void* block) {
  std::vector<std::wstring> texts;
  for (const wchar_t* name : {L"FileVersion", L"ProductVersion", L"FileDescription", L"CompanyName",
                              L"LegalCopyright", L"OriginalFilename"})
    texts.push_back(versionText(block, name));
  return texts;
}

// The runtime's resource comes from the build's version; a module's from
// kestrune_add_module(), which gives 0.0.0 and the target name by default.
// The handle's block and the file's read with GetFileVersionInfoW agree.
TEST(KrRxGenHandTest, TheVersionResourceComesWithTheModuleHandle) {
  const struct {
    const wchar_t* file;
    std::vector<std::wstring> texts;
    DWORD fixedVersionHigh, fixedVersionLow;
  } kModules[] = {
      {L"kr1st20.dll",
       {KESTRUNE_VERSION, KESTRUNE_VERSION, L"Kestrune runtime object model", L"Kestrune", L"", L"kr1st20.dll"},
       MAKELONG(KESTRUNE_VERSION_MINOR, KESTRUNE_VERSION_MAJOR), MAKELONG(0, KESTRUNE_VERSION_PATCH)},
      {L"good.krx",
       {L"3.1.4", L"3.1.4", L"Versioned probe module", L"Kestrune tests", L"\u00A9 \"Kestrune\" tests \\ 2026", L"good.krx"},
       MAKELONG(1, 3), MAKELONG(0, 4)},
      {L"user.krx", {L"0.0.0", L"0.0.0", L"tm_user", L"", L"", L"user.krx"}, 0, 0},
  };
  for (const auto& expected : kModules) {
    HMODULE loaded = LoadLibraryW(expected.file);
    ASSERT_NE(loaded, nullptr) << expected.file;
    KrRxGenHand module;
    module.setVal(loaded);
    ASSERT_NE(module.versionInfo(), nullptr) << expected.file;
    EXPECT_EQ(versionTexts(module.versionInfo()), expected.texts) << expected.file;
    VS_FIXEDFILEINFO* fixed = nullptr;
    UINT length = 0;
    ASSERT_TRUE(VerQueryValueW(module.versionInfo(), L"\\", reinterpret_cast<void**>(&fixed), &length));
    EXPECT_EQ(fixed->dwFileVersionMS, expected.fixedVersionHigh) << expected.file;
    EXPECT_EQ(fixed->dwFileVersionLS, expected.fixedVersionLow) << expected.file;

    std::wstring path = krTestBinDirectory() + expected.file;
    std::vector<char> file(GetFileVersionInfoSizeW(path.c_str(), nullptr));
    ASSERT_TRUE(GetFileVersionInfoW(path.c_str(), 0, DWORD(file.size()), file.data())) << expected.file;
    EXPECT_EQ(versionTexts(file.data()), expected.texts) << expected.file;

    void* block = module.versionInfo();
    module.setVal(nullptr);
    EXPECT_EQ(module.versionInfo(), block) << "kept when the handle goes";
    EXPECT_EQ(module.getVal(), nullptr);
    FreeLibrary(loaded);
  }
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
