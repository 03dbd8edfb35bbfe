// Loading and unloading a module that registers classes, a service and a
// registry entry, with each allocation failing in turn: the linker reports
// failure instead of throwing, and a module is mapped exactly while the
// loaded-module table holds it.

#include <gtest/gtest.h>

#include <windows.h>

#include <string>
#include <vector>

#include "KrFailingAllocations.h"
#include "KrRxModuleTestSupport.h"
#include "krdb20.h"

namespace {

const wchar_t kModule[] = L"registering.krx";

std::wstring modulePath() { return krTestBinDirectory() + kModule; }

// The module's table entry, its mapping and its registrations agree with loaded.
void expectModuleState(bool loaded) {
  EXPECT_EQ(krTestLinker()->moduleHandlePtr(kModule) != nullptr, loaded);
  EXPECT_EQ(GetModuleHandleW(kModule) != nullptr, loaded) << "mapped while the table says otherwise";
  KrRxClass* circle = krrxFindKrRxClass(L"SoakCircle");
  EXPECT_EQ(circle != nullptr, loaded);
  if (circle) { EXPECT_EQ(circle->myParent(), krrxFindKrRxClass(L"SoakShape")); }
  EXPECT_EQ(krrxServiceIsRegistered(L"SoakService"), loaded);
  EXPECT_EQ(krTestLinker()->numberOfAppsLoaded(), loaded ? 1u : 0u);
}

// A load that reports failure said so, and left nothing behind.
void expectLoadOutcome(bool loaded, bool completed, const std::wstring& name) {
  EXPECT_TRUE(completed) << "the load threw";
  std::vector<std::wstring> messages = krdbTestTakeMessages();
  if (!loaded) {
    ASSERT_FALSE(messages.empty());
    EXPECT_EQ(messages.back(), L"Failed to load '" + name + L"'\n");
  }
  expectModuleState(loaded);
}

// The host keeps the messages it receives: room for a few is made before
// the heap is watched.
void makeRoomForMessages() {
  for (int i = 0; i < 8; ++i) KrRxImpDynamicLinker::hostMessage(L"%ls", L"room");
  krdbTestClearMessages();
}

// Unloads the module the way it was loaded: by command or by reference.
void unloadForGood() {
  if (auto* module = static_cast<KrRxGenHand*>(krTestLinker()->moduleHandlePtr(kModule))) {
    EXPECT_TRUE(krrxUnloadModule(kModule, module->uiValue()));
  }
  krdbTestClearMessages();
  expectModuleState(false);
}

TEST(KrRxModuleFailureTest, ALoadThatRunsOutOfMemoryFailsAndLeavesNothingMapped) {
  const std::wstring path = modulePath();
  makeRoomForMessages();
  krRunFailurePoints("load", [&](KrAllocationFailure& failure) {
    bool loaded = false;
    bool completed = failure.run([&] { loaded = krrxLoadModule(path.c_str(), true, false); });
    expectLoadOutcome(loaded, completed, path);
    if (!failure.reached()) { EXPECT_TRUE(loaded); }
    unloadForGood();
  }, krSystemTableBytes);
}

TEST(KrRxModuleFailureTest, AnUnloadThatRunsOutOfMemoryKeepsTheModuleWhole) {
  const std::wstring path = modulePath();
  krRunFailurePoints("unload", [&](KrAllocationFailure& failure) {
    ASSERT_TRUE(krrxLoadModule(path.c_str(), false, false));
    bool unloaded = false;
    EXPECT_TRUE(failure.run([&] { unloaded = krrxUnloadModule(kModule, false); }));
    expectModuleState(!unloaded);
    unloadForGood();
  }, krSystemTableBytes);
}

TEST(KrRxModuleFailureTest, ApplicationData) {
  ASSERT_TRUE(krrxLoadModule(modulePath().c_str(), false, false));
  auto* module = static_cast<KrRxGenHand*>(krTestLinker()->moduleHandlePtr(kModule));
  KrRxObject data;
  krRunFailurePoints("application data", [&](KrAllocationFailure& failure) {
    KrRxGenHand* resumed = KrRxGenHand::setCurModule(module);
    bool added = false;
    EXPECT_TRUE(failure.run([&] { added = krrxAddAppData(L"FailureData", &data); }));
    EXPECT_EQ(krrxGetAppData(L"FailureData", kModule), added ? &data : nullptr);
    krrxRemoveAppData(L"FailureData", &data);
    KrRxGenHand::setCurModule(resumed);
  });
  unloadForGood();
}

// An application registered below a registry key of this test's own, for
// the life of the object.
class RegisteredApplication {
 public:
  RegisteredApplication() : mSavedKey(krrxKestruneRegistryKey()) {
    krrxSetKestruneRegistryKey(L"SOFTWARE\\KestruneTests\\Failure\\R20.5");
    KesuAppInfo app(kName, KesuApp::kLoadByName);
    app.setModuleName(modulePath().c_str());
    EXPECT_EQ(app.writeToRegistry(true, true), KesuApp::eOk);
  }
  ~RegisteredApplication() {
    krrxUnregisterApp(kName, true);
    RegDeleteTreeW(HKEY_CURRENT_USER, L"SOFTWARE\\KestruneTests\\Failure");
    RegDeleteKeyW(HKEY_CURRENT_USER, L"SOFTWARE\\KestruneTests");  // once no other test's key is left in it
    krrxSetKestruneRegistryKey(mSavedKey.c_str());
  }
  static constexpr const wchar_t* kName = L"KrFailureApp";

 private:
  std::wstring mSavedKey;
};

TEST(KrRxModuleFailureTest, DemandLoading) {
  RegisteredApplication registered;
  makeRoomForMessages();
  krRunFailurePoints("demand loading", [&](KrAllocationFailure& failure) {
    bool loaded = false;
    EXPECT_TRUE(failure.run([&] { loaded = krrxLoadApp(RegisteredApplication::kName, true); }));
    expectModuleState(loaded);
    if (loaded) { EXPECT_TRUE(krrxUnloadApp(RegisteredApplication::kName, true)); }
    unloadForGood();
  }, krSystemTableBytes);
}

TEST(KrRxModuleFailureTest, ListFiles) {
  const std::wstring list = krTestBinDirectory() + L"failure_points.rx";
  krWriteFile(list, krUtf16le(modulePath() + L"\r\n"));
  makeRoomForMessages();
  krRunFailurePoints("list file", [&](KrAllocationFailure& failure) {
    bool loaded = false;
    EXPECT_TRUE(failure.run([&] { loaded = krTestLinker()->initListedModules(list.c_str()); }));
    expectModuleState(loaded);
    unloadForGood();
  }, krSystemTableBytes);
  DeleteFileW(list.c_str());
}

}  // namespace
