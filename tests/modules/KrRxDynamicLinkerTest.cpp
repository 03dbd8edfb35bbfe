// The dynamic linker with real, signed modules (built beside this test):
// loading, probing, refusing, unloading, reactors, flags, list files,
// dependencies, faults and every message it writes, compared verbatim.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <windows.h>

#include <stdexcept>
#include <string>
#include <vector>

#include "KrAbortTrap.h"
#include "KrRxModuleTestSupport.h"
#include "krdb20.h"
#include "modules/KrRxGuardedCall.h"
#include "runtime/KrRxImpClass.h"

using ::testing::ElementsAre;
using ::testing::IsEmpty;

namespace {

const KrRx::AppMsgCode kHostMessage = static_cast<KrRx::AppMsgCode>(100);

// The messages a loaded test module has received.
std::vector<int> receivedBy(const wchar_t* module) {
  auto count = krModuleSymbol<int (*)()>(module, "testModuleMessageCount");
  auto message = krModuleSymbol<int (*)(int)>(module, "testModuleMessage");
  std::vector<int> received;
  for (int i = 0; count && i < count(); ++i) received.push_back(message(i));
  return received;
}

KrRxGenHand* handleOf(const wchar_t* module) { return static_cast<KrRxGenHand*>(krTestLinker()->moduleHandlePtr(module)); }

// The notifications expected, each given with who hears it, in order ("M"
// the monitor, "R" the reactor): L"MR loaded good.krx" stands for
// "monitor loaded good.krx", "reactor loaded good.krx".
std::vector<std::wstring> heard(std::initializer_list<std::wstring> events) {
  std::vector<std::wstring> expected;
  for (const std::wstring& event : events) {
    size_t space = event.find(L' ');
    for (wchar_t who : event.substr(0, space))
      expected.push_back((who == L'M' ? L"monitor" : L"reactor") + event.substr(space));
  }
  return expected;
}

// A copy of good.krx with one byte of its DOS stub changed: still a loadable
// image, but its signature no longer matches.
std::wstring makeTamperedCopy() {
  std::string bytes = krReadFile(krTestBinDirectory() + L"good.krx");
  bytes[0x50] ^= 0x20;
  std::wstring path = krTestBinDirectory() + L"tampered.krx";
  krWriteFile(path, bytes);
  return path;
}

class LinkerTest : public ::testing::Test {
 protected:
  void SetUp() override {
    krdbTestClearMessages();
    ASSERT_TRUE(krrxAddDbAppMonitor(&mMonitor));
    krTestLinker()->addReactor(&mReactor);
  }
  void TearDown() override {
    krTestLinker()->removeReactor(&mReactor);
    krrxRemoveDbAppMonitor(&mMonitor);
    EXPECT_EQ(krTestLinker()->numberOfAppsLoaded(), 0u) << "every test unloads what it loaded";
    EXPECT_EQ(KrRxImpDynamicLinker::mLoadModuleFailReason, nullptr);
  }

  // The notifications seen, as "monitor|reactor <event> <name>"; cleared.
  std::vector<std::wstring> takeEvents() { return std::move(mEvents); }

  std::vector<std::wstring> mEvents;
  KrRecordingReactor mMonitor{L"monitor", mEvents};
  KrRecordingReactor mReactor{L"reactor", mEvents};
};

TEST_F(LinkerTest, AWellBehavedModuleAddsItsClassesAndServicesAndTakesThemAlong) {
  ASSERT_TRUE(krrxLoadModule(L"good.krx", true, true));
  KrRxGenHand* module = handleOf(L"good.krx");
  ASSERT_NE(module, nullptr);
  EXPECT_STREQ(module->FileName(), L"good.krx");
  EXPECT_EQ(module->getVal(), GetModuleHandleW(L"good.krx"));
  EXPECT_EQ(module->appStatusFlags(), 0u) << "it unlocked itself";
  EXPECT_TRUE(module->uiValue());
  EXPECT_EQ(module->apiValue(), 0);
  EXPECT_EQ(krModuleSymbol<void* (*)()>(L"good", "testModulePacket")(), module) << "the packet is the handle";
  EXPECT_EQ(krModuleSymbol<void* (*)()>(L"good", "testModuleCurrentAtInit")(), module);
  EXPECT_TRUE(krModuleSymbol<bool (*)()>(L"good", "testModuleAppDataAdded")());
  EXPECT_EQ(KrRxGenHand::curModule(), nullptr);

  KrRxClass* thing = krrxFindKrRxClass(L"goodThing");
  ASSERT_NE(thing, nullptr);
  EXPECT_EQ(thing->impObj()->mpModule, module);
  EXPECT_EQ(thing->myParent(), KrRxObject::desc());
  EXPECT_TRUE(module->hasLogicalAppName(L"GOODAPP")) << "named by its class's information";
  EXPECT_TRUE(krrxAppIsLoaded(L"goodapp"));
  auto* service = KrRxService::cast(static_cast<KrRxDictionary*>(krrxSysRegistry()->at(L"ServiceDictionary"))->at(L"goodService"));
  ASSERT_NE(service, nullptr);
  EXPECT_EQ(service->getSysInfo(), module);
  auto* data = KrRxTextString::cast(krrxGetAppData(L"goodData", L"good"));
  ASSERT_NE(data, nullptr);
  EXPECT_STREQ(data->getAsciiPtr(), L"good");

  EXPECT_EQ(takeEvents(), heard({L"MR willBeLoaded good.krx", L"MR couldBeLoaded good.krx", L"MR loaded good.krx"}));
  EXPECT_THAT(krdbTestTakeMessages(), IsEmpty());

  EXPECT_TRUE(krrxSendAppMessage(L"good", kHostMessage, nullptr));
  EXPECT_FALSE(krTestLinker()->sendAppMessage(L"good", kHostMessage, nullptr, module)) << "not to itself";
  EXPECT_FALSE(krrxSendAppMessage(L"absent", kHostMessage, nullptr));
  EXPECT_THAT(receivedBy(L"good"), ElementsAre(1, 100));

  ASSERT_TRUE(krrxUnloadModule(L"good.krx", true));
  EXPECT_EQ(handleOf(L"good.krx"), nullptr);
  EXPECT_EQ(GetModuleHandleW(L"good.krx"), nullptr) << "really released";
  EXPECT_EQ(krrxFindKrRxClass(L"goodThing"), nullptr);
  EXPECT_FALSE(krrxServiceIsRegistered(L"goodService"));
  EXPECT_FALSE(krrxAppIsLoaded(L"goodApp"));
  EXPECT_EQ(takeEvents(), heard({L"RM willBeUnloaded good.krx", L"MR unloaded good.krx"}));
  EXPECT_THAT(krdbTestTakeMessages(), ElementsAre(L"\n'good.krx' succefuly unloaded.\n"));

  EXPECT_FALSE(krrxUnloadModule(L"good.krx", true));
  EXPECT_THAT(krdbTestTakeMessages(),
              ElementsAre(L"\nUnable to unload application 'good.krx' because it's not loaded.\n"));
}

TEST_F(LinkerTest, OnlyApiVersions20Point0To20Point5AreAccepted) {
  EXPECT_FALSE(krrxLoadModule(L"v13ffff.krx", true, true));
  EXPECT_THAT(krdbTestTakeMessages(),
              ElementsAre(L"Incompatible API version in v13ffff.krx\n", L" Kestrune version = 20.5\n",
                          L" v13ffff.krx version = 19.65535\n", L"Failed to load 'v13ffff.krx'\n"));
  EXPECT_EQ(takeEvents(), heard({L"MR willBeLoaded v13ffff.krx", L"MR loadAborted v13ffff.krx"}));
  EXPECT_FALSE(krrxLoadModule(L"v140006.krx", true, true));
  EXPECT_THAT(krdbTestTakeMessages(),
              ElementsAre(L"Incompatible API version in v140006.krx\n", L" Kestrune version = 20.5\n",
                          L" v140006.krx version = 20.6\n", L"Failed to load 'v140006.krx'\n"));
  EXPECT_EQ(GetModuleHandleW(L"v140006.krx"), nullptr) << "the probe is released";

  EXPECT_TRUE(krrxLoadModule(L"v140000.krx", true, true));
  EXPECT_TRUE(krrxUnloadModule(L"v140000.krx", true));
  krdbTestTakeMessages();
}

TEST_F(LinkerTest, ModulesWithoutTheEntryProtocolOrFileAreRefused) {
  EXPECT_FALSE(krrxLoadModule(L"noversion.krx", true, true));
  EXPECT_THAT(krdbTestTakeMessages(),
              ElementsAre(L"GetApiVersion function not found in noversion.krx\nMake sure the app export the symbol.",
                          L"Failed to load 'noversion.krx'\n"));
  EXPECT_FALSE(krrxLoadModule(L"noentry.krx", true, true));
  EXPECT_THAT(krdbTestTakeMessages(),
              ElementsAre(L"Entry point not found in noentry.krx\n", L"Failed to load 'noentry.krx'\n"));
  EXPECT_FALSE(krrxLoadModule(L"absent.krx", true, true));
  EXPECT_THAT(krdbTestTakeMessages(), ElementsAre(krSystemText(ERROR_MOD_NOT_FOUND), L"Failed to load 'absent.krx'\n"));
  EXPECT_FALSE(krrxLoadModule(L"absent.krx", false, true));
  EXPECT_FALSE(krrxLoadModule(nullptr, true, true));
  EXPECT_THAT(krdbTestTakeMessages(), IsEmpty()) << "messages only when asked for";
}

TEST_F(LinkerTest, TheSigningFactsHoldOnThisPlatform) {
  EXPECT_EQ(krVerifyTrust((krTestBinDirectory() + L"good.krx").c_str()), 0);
  EXPECT_EQ(ULONG(krVerifyTrust((krTestBinDirectory() + L"unsigned.krx").c_str())), 0x800B0100u);
  EXPECT_EQ(ULONG(krVerifyTrust(makeTamperedCopy().c_str())), 0x80096010u);
}

// Wine would bind the missing import to a stub that ends the process at the
// first call; the linker refuses the module first, as Windows does.
TEST_F(LinkerTest, AModuleImportingAFunctionTheRuntimeLacksIsRefused) {
  EXPECT_FALSE(krrxLoadModule(L"newerruntime.krx", true, true));
  EXPECT_THAT(krdbTestTakeMessages(),
              ElementsAre(krSystemText(ERROR_PROC_NOT_FOUND), L"Failed to load 'newerruntime.krx'\n"));
  EXPECT_EQ(takeEvents(), heard({L"MR willBeLoaded newerruntime.krx", L"MR loadAborted newerruntime.krx"}));
  EXPECT_EQ(krTestLinker()->moduleHandlePtr(L"newerruntime.krx"), nullptr);
}

TEST_F(LinkerTest, UnsignedAndTamperedModulesAreRefused) {
  EXPECT_FALSE(krrxLoadModule(L"unsigned.krx", true, true));
  EXPECT_THAT(krdbTestTakeMessages(), ElementsAre(L"Runtime Extension 'unsigned.krx' could not been loaded\n",
                                              L"Failed to load 'unsigned.krx'\n"));
  makeTamperedCopy();
  EXPECT_FALSE(krrxLoadModule(L"tampered.krx", true, true));
  EXPECT_THAT(krdbTestTakeMessages(), ElementsAre(L"Runtime Extension 'tampered.krx' could not been loaded\n",
                                              L"Failed to load 'tampered.krx'\n"));
  EXPECT_EQ(takeEvents(), heard({L"MR willBeLoaded unsigned.krx", L"MR loadAborted unsigned.krx",
                                 L"MR willBeLoaded tampered.krx", L"MR loadAborted tampered.krx"}))
      << "a refused signature is not offered to anyone";
  DeleteFileW((krTestBinDirectory() + L"tampered.krx").c_str());
}

TEST_F(LinkerTest, AReactorCanVetoWithTheStandardTextOrItsOwnReason) {
  mReactor.vetoOffers = true;
  EXPECT_FALSE(krrxLoadModule(L"good.krx", true, true));
  EXPECT_THAT(krdbTestTakeMessages(), ElementsAre(L"Runtime Extension 'good.krx' could not been loaded\n",
                                              L"Failed to load 'good.krx'\n"));
  mReactor.vetoReason = L"Not now, please.\n";
  EXPECT_FALSE(krrxLoadModule(L"good.krx", true, true));
  EXPECT_THAT(krdbTestTakeMessages(), ElementsAre(L"Not now, please.\n", L"Failed to load 'good.krx'\n"));
  EXPECT_EQ(GetModuleHandleW(L"good.krx"), nullptr) << "the module's code never ran";

  takeEvents();
  mMonitor.vetoOffers = true;
  EXPECT_FALSE(krrxLoadModule(L"good.krx", false, true));
  EXPECT_EQ(takeEvents(), heard({L"MR willBeLoaded good.krx", L"M couldBeLoaded good.krx",
                                 L"MR loadAborted good.krx"}))
      << "the first veto ends the offers";

  KrRxDLinkerReactor2 plain;
  plain.veto(nullptr);
  ASSERT_NE(KrRxImpDynamicLinker::mLoadModuleFailReason, nullptr);
  EXPECT_STREQ(KrRxImpDynamicLinker::mLoadModuleFailReason, L"");
  free(KrRxImpDynamicLinker::mLoadModuleFailReason);
  KrRxImpDynamicLinker::mLoadModuleFailReason = nullptr;
}

TEST_F(LinkerTest, LoadingAgainCountsAReferenceOrRefusesACommand) {
  ASSERT_TRUE(krrxLoadModule(L"good.krx", false, false));
  KrRxGenHand* module = handleOf(L"good");
  EXPECT_EQ(module->apiValue(), 1);
  EXPECT_FALSE(module->uiValue());
  EXPECT_TRUE(krrxLoadModule(L"good.krx", true, false));
  EXPECT_EQ(module->apiValue(), 2);
  EXPECT_FALSE(krrxLoadModule(L"good.krx", true, true));
  EXPECT_TRUE(module->uiValue());
  EXPECT_THAT(krdbTestTakeMessages(), ElementsAre(L"Runtime Extension 'good.krx' is already loaded.\n"));

  EXPECT_TRUE(krrxUnloadModule(L"good.krx", true)) << "the command's reference goes";
  EXPECT_TRUE(krrxUnloadModule(L"good.krx", false));
  EXPECT_EQ(handleOf(L"good"), module) << "one reference left";
  EXPECT_TRUE(krrxUnloadModule(L"good.krx", false));
  EXPECT_EQ(handleOf(L"good"), nullptr);
  EXPECT_THAT(krdbTestTakeMessages(), IsEmpty()) << "no command, no message";

  ASSERT_TRUE(krrxLoadModule(L"good.krx", false, true));
  EXPECT_THROW(krrxUnloadModule(L"good.krx", false), std::underflow_error) << "no reference to drop";
  EXPECT_TRUE(krrxUnloadModule(L"good.krx", true));
}

TEST_F(LinkerTest, AFailingInitialisationUnloadsTheModuleWithForce) {
  EXPECT_FALSE(krrxLoadModule(L"initfails.krx", true, true));
  EXPECT_THAT(krdbTestTakeMessages(), ElementsAre(L"Failed to load 'initfails.krx'\n"));
  EXPECT_EQ(takeEvents(), heard({L"MR willBeLoaded initfails.krx", L"MR couldBeLoaded initfails.krx",
                                 L"RM willBeUnloaded initfails.krx", L"MR unloaded initfails.krx",
                                 L"MR loadAborted initfails.krx"}));
  EXPECT_EQ(krrxFindKrRxClass(L"initfailsThing"), nullptr) << "it took its class back on kAppMsgUnload";
  EXPECT_EQ(GetModuleHandleW(L"initfails.krx"), nullptr);
}

TEST_F(LinkerTest, AMonitorCanVetoAModuleOnceItIsLoaded) {
  mMonitor.markVetoedWhenLoaded = true;
  EXPECT_FALSE(krrxLoadModule(L"good.krx", true, false));
  EXPECT_EQ(takeEvents(), heard({L"MR willBeLoaded good.krx", L"MR couldBeLoaded good.krx", L"M loaded good.krx",
                                 L"RM willBeUnloaded good.krx", L"MR unloaded good.krx", L"MR loadAborted good.krx"}));
  EXPECT_THAT(krdbTestTakeMessages(), ElementsAre(L"Failed to load 'good.krx'\n"));
}

TEST_F(LinkerTest, AModuleMayRefuseToBeUnloadedButNotAForcedUnload) {
  ASSERT_TRUE(krrxLoadModule(L"stays.krx", true, true));
  takeEvents();
  EXPECT_FALSE(krrxUnloadModule(L"stays.krx", true));
  EXPECT_NE(handleOf(L"stays"), nullptr);
  EXPECT_EQ(takeEvents(), heard({L"RM willBeUnloaded stays.krx", L"MR unloadAborted stays.krx"}));
  EXPECT_THAT(krdbTestTakeMessages(), IsEmpty());
  EXPECT_THAT(receivedBy(L"stays"), ElementsAre(1, 2));

  handleOf(L"stays")->setVetoed();
  EXPECT_FALSE(krTestLinker()->unloadModuleEx(L"stays.krx", true, false, true)) << "vetoed: not even asked";
  EXPECT_EQ(handleOf(L"stays")->appStatusFlags() & KrRxGenHand::kVetoed, 0u) << "the veto is used up";
  EXPECT_THAT(receivedBy(L"stays"), ElementsAre(1, 2));
  EXPECT_TRUE(krTestLinker()->unloadModuleEx(L"stays.krx", true, true, true));
  EXPECT_EQ(handleOf(L"stays"), nullptr);
  EXPECT_THAT(krdbTestTakeMessages(), ElementsAre(L"\n'stays.krx' succefuly unloaded.\n"));
}

TEST_F(LinkerTest, ALockedModuleResistsCommandsButNotForceOrReferences) {
  ASSERT_TRUE(krrxLoadModule(L"locked.krx", true, true));
  KrRxGenHand* module = handleOf(L"locked");
  EXPECT_TRUE(krrxApplicationIsLocked(L"locked.krx"));
  EXPECT_FALSE(krrxUnloadModule(L"locked.krx", true));
  EXPECT_THAT(krdbTestTakeMessages(), ElementsAre(L"\nApplication 'locked.krx' is locked and could not be unloaded.\n"));
  EXPECT_TRUE(module->uiValue()) << "a refused command keeps its reference";

  EXPECT_TRUE(krrxLoadModule(L"locked.krx", false, false));
  EXPECT_TRUE(krrxUnloadModule(L"locked.krx", false)) << "only drops the reference";
  EXPECT_EQ(handleOf(L"locked"), module);

  EXPECT_TRUE(krrxUnlockApplication(module));
  EXPECT_FALSE(krrxApplicationIsLocked(L"locked"));
  EXPECT_TRUE(krrxLockApplication(module));
  EXPECT_TRUE(krrxApplicationIsLocked(L"locked"));
  KrRxGenHand stranger;
  EXPECT_FALSE(krrxLockApplication(&stranger));
  EXPECT_FALSE(krrxUnlockApplication(nullptr));
  EXPECT_FALSE(krrxApplicationIsLocked(L"absent"));

  EXPECT_FALSE(krrxIsAppMDIAware(L"locked"));
  EXPECT_TRUE(krrxRegisterAppMDIAware(module));
  EXPECT_TRUE(krrxIsAppMDIAware(L"locked.krx"));
  EXPECT_EQ(module->appStatusFlags(), unsigned(KrRxGenHand::kLocked | KrRxGenHand::kMDIAware));
  EXPECT_TRUE(krrxRegisterAppNotMDIAware(module));
  EXPECT_FALSE(krrxIsAppMDIAware(L"locked"));
  EXPECT_FALSE(krrxRegisterAppMDIAware(&stranger));

  EXPECT_FALSE(krTestLinker()->isAppBusy(L"locked"));
  krTestLinker()->setAppBusy(L"locked", true);
  EXPECT_TRUE(krTestLinker()->isAppBusy(L"locked.krx"));
  krTestLinker()->setAppBusy(L"absent", true);
  EXPECT_FALSE(krTestLinker()->isAppBusy(L"absent"));

  EXPECT_TRUE(krTestLinker()->unloadModuleEx(L"locked.krx", true, true, true));
  EXPECT_THAT(krdbTestTakeMessages(), ElementsAre(L"\n'locked.krx' succefuly unloaded.\n"));
}

TEST_F(LinkerTest, NamesWithoutExtensionPreferKraThenKrxThenDll) {
  for (const wchar_t* file : {L"abc.dll", L"abc.krx", L"abc.kra"}) ASSERT_TRUE(krrxLoadModule(file, true, true));
  KrRxGenHand* kra = handleOf(L"abc.kra");
  KrRxGenHand* krx = handleOf(L"abc.krx");
  KrRxGenHand* dll = handleOf(L"abc.dll");
  ASSERT_TRUE(kra && krx && dll);
  EXPECT_EQ(handleOf(L"abc"), kra);
  EXPECT_EQ(handleOf(L"some/dir/abc"), kra);
  EXPECT_EQ(handleOf(L"dir/abc.krx"), krx);
  EXPECT_EQ(handleOf(L"C:\\dir\\abc.krx"), krx);
  EXPECT_EQ(handleOf(L"dir\\sub/ABC.DLL"), dll) << "file names ignore case";
  EXPECT_EQ(handleOf(L"abc."), nullptr);
  EXPECT_TRUE(krrxUnloadModule(L"abc", true));
  EXPECT_EQ(handleOf(L"abc"), krx);
  EXPECT_TRUE(krrxUnloadModule(L"abc", true));
  EXPECT_EQ(handleOf(L"abc"), dll);
  EXPECT_TRUE(krrxUnloadModule(L"abc", true));
  EXPECT_EQ(handleOf(L"abc"), nullptr);
  krdbTestTakeMessages();
}

TEST_F(LinkerTest, AModuleLoadsWithItsOwnDirectoryAsDllDirectoryAndEitherSeparator) {
  ASSERT_EQ(LoadLibraryW(L"beside\\beside.krx"), nullptr) << "on its own, its helper DLL is not found";
  std::wstring currentBefore(MAX_PATH, L'\0');
  currentBefore.resize(GetCurrentDirectoryW(MAX_PATH, &currentBefore[0]));
  for (const wchar_t* name : {L"beside/beside.krx", L"beside\\beside.krx"}) {
    ASSERT_TRUE(krrxLoadModule(name, true, true)) << "its helper DLL is found only beside it";
    EXPECT_EQ(krModuleSymbol<int (*)()>(L"beside", "testModuleDependencyValue")(), 5);
    EXPECT_STREQ(handleOf(name)->FileName(), L"beside.krx");
    std::wstring currentAfter(MAX_PATH, L'\0');
    currentAfter.resize(GetCurrentDirectoryW(MAX_PATH, &currentAfter[0]));
    EXPECT_EQ(currentAfter, currentBefore) << "the current directory is restored";
    EXPECT_TRUE(krrxUnloadModule(name, true));
  }
  EXPECT_THAT(krdbTestTakeMessages(), ElementsAre(L"\n'beside.krx' succefuly unloaded.\n", L"\n'beside.krx' succefuly unloaded.\n"));
}

TEST_F(LinkerTest, AnImportedExtensionModuleIsRegisteredFirstAndReleasedWithItsUser) {
  ASSERT_TRUE(krrxLoadModule(L"user.krx", true, true));
  KrRxGenHand* dependency = handleOf(L"dependency.krx");
  ASSERT_NE(dependency, nullptr);
  EXPECT_EQ(dependency->apiValue(), 1) << "the user's reference";
  EXPECT_FALSE(dependency->uiValue());
  EXPECT_EQ(krModuleSymbol<int (*)()>(L"user", "testModuleDependencyValue")(), 7);
  std::wstring dependencyPath = krTestBinDirectory() + L"dependency.krx";
  EXPECT_EQ(takeEvents(), heard({L"MR willBeLoaded user.krx", L"MR couldBeLoaded user.krx",
                                 L"MR willBeLoaded " + dependencyPath, L"MR couldBeLoaded dependency.krx",
                                 L"MR loaded " + dependencyPath, L"MR loaded user.krx"}));

  EXPECT_TRUE(krrxUnloadModule(L"dependency", true));
  EXPECT_EQ(handleOf(L"dependency"), dependency) << "a command drops its own reference only; the user's stays";
  EXPECT_TRUE(krrxUnloadModule(L"user.krx", true));
  EXPECT_EQ(handleOf(L"dependency"), nullptr);
  EXPECT_EQ(GetModuleHandleW(L"dependency.krx"), nullptr);
  EXPECT_EQ(takeEvents(), heard({L"RM willBeUnloaded user.krx", L"RM willBeUnloaded dependency.krx",
                                 L"MR unloaded dependency.krx", L"MR unloaded user.krx"}));
  krdbTestTakeMessages();
}

TEST_F(LinkerTest, AFaultInAnEntryPointIsAFailedMessageWhileCatchingIsOn) {
  bCatchSendAppExceptions = true;
  EXPECT_FALSE(krrxLoadModule(L"faults.krx", true, true));
  EXPECT_THAT(krdbTestTakeMessages(), ElementsAre(L"Failed to load 'faults.krx'\n"));
  EXPECT_EQ(handleOf(L"faults"), nullptr);
  EXPECT_EQ(KrRxGenHand::curModule(), nullptr);

  HMODULE faults = LoadLibraryW(L"faults.krx");
  auto entryPoint = reinterpret_cast<KrRxAppEntryPoint>(reinterpret_cast<void*>(GetProcAddress(faults, "krrxEntryPoint")));
  EXPECT_EQ(krrxGuardedEntryPointCall(entryPoint, KrRx::kAppMsgInit, nullptr), KrRx::kRetError);
  EXPECT_EQ(krrxGuardedEntryPointCall(entryPoint, kHostMessage, nullptr), KrRx::kRetOK) << "the guard stays usable";
  FreeLibrary(faults);
  bCatchSendAppExceptions = false;
}

TEST_F(LinkerTest, CxxExceptionsAlwaysPassTheGuard) {
  bCatchSendAppExceptions = true;
  EXPECT_THROW(krrxGuardedCall([](void*) { throw std::runtime_error("from the module"); }, nullptr),
               std::runtime_error);
  bCatchSendAppExceptions = false;
}

using LinkerDeathTest = LinkerTest;

TEST_F(LinkerDeathTest, AFaultReachesTheHostWhileCatchingIsOff) {
  EXPECT_EXIT(
      {
        SetUnhandledExceptionFilter([](EXCEPTION_POINTERS* exception) -> LONG {
          std::fprintf(stderr, "unhandled %08lX\n", exception->ExceptionRecord->ExceptionCode);
          std::fflush(stderr);
          ExitProcess(77);
        });
        krrxLoadModule(L"faults.krx", false, true);
      },
      ::testing::ExitedWithCode(77), "unhandled C0000005");
}

TEST_F(LinkerDeathTest, ModulesStillLoadedAtShutdownAreUnloaded) {
  EXPECT_EXIT(
      {
        _putenv("KR_TEST_MODULE_TRACE=1");
        krrxLoadModule(L"locked.krx", false, true);
        std::fflush(stderr);
        ExitProcess(0);
      },
      ::testing::ExitedWithCode(0), "locked hears kAppMsgUnload");
}

TEST_F(LinkerTest, ListFilesLoadEveryLineAndReportWhetherAllLoaded) {
  std::wstring list = krTestBinDirectory() + L"linker-test.rx";
  krWriteFile(list, krUtf16le(L"good.krx\r\n\r\nabsent.krx\r\nv140000.krx"));
  EXPECT_FALSE(krTestLinker()->initListedModules(list.c_str())) << "absent.krx is missing";
  EXPECT_NE(handleOf(L"good"), nullptr);
  EXPECT_NE(handleOf(L"v140000"), nullptr) << "the last line needs no CR LF";
  EXPECT_TRUE(handleOf(L"good")->uiValue()) << "loaded as by command";
  EXPECT_THAT(krdbTestTakeMessages(), IsEmpty());
  EXPECT_TRUE(krrxUnloadModule(L"good", true));
  EXPECT_TRUE(krrxUnloadModule(L"v140000", true));

  // A line far beyond the limit, a lone CR inside a name, and a stray last byte.
  krWriteFile(list, krUtf16le(std::wstring(40000, L'x') + L"\r\nbad\rname.krx\r\ngood.krx") + "Z");
  takeEvents();
  EXPECT_FALSE(krTestLinker()->initListedModules(list.c_str()));
  EXPECT_NE(handleOf(L"good"), nullptr) << "an odd byte count ends the file, not the name";
  std::vector<std::wstring> events = takeEvents();
  ASSERT_GE(events.size(), 4u);
  EXPECT_EQ(events[0], L"monitor willBeLoaded " + std::wstring(32767, L'x')) << "a line keeps 32767 characters";
  EXPECT_THAT(events, ::testing::Contains(L"monitor willBeLoaded bad\rname.krx"));
  EXPECT_TRUE(krrxUnloadModule(L"good", true));

  krWriteFile(list, "");
  EXPECT_TRUE(krTestLinker()->initListedModules(list.c_str())) << "nothing to load";
  krWriteFile(list, krUtf16le(L"\r\n\r\n"));
  EXPECT_TRUE(krTestLinker()->initListedModules(list.c_str()));
  DeleteFileW(list.c_str());
  EXPECT_FALSE(krTestLinker()->initListedModules(list.c_str()));
  krdbTestTakeMessages();
}

TEST_F(LinkerTest, TheStartUpListFileIsNamedByTheHost) {
  std::wstring base = krTestBinDirectory() + L"host-named";
  krWriteFile(base + L".rx", krUtf16le(L"good.krx\r\n"));
  krdbTestSetListFileBaseName(base.c_str());
  EXPECT_TRUE(krrxProcessInitFile());
  EXPECT_NE(handleOf(L"good"), nullptr);
  EXPECT_TRUE(krrxUnloadModule(L"good", true));
  krdbTestSetListFileBaseName(nullptr);
  DeleteFileW((base + L".rx").c_str());
  krdbTestTakeMessages();
}

TEST_F(LinkerTest, AModuleTheHostMappedCanBeRegistered) {
  HMODULE mapped = LoadLibraryW(L"good.krx");
  ASSERT_TRUE(krTestLinker()->loadApp(mapped, KesuApp::kLoadByName, true, true));
  std::wstring path = krTestBinDirectory() + L"good.krx";
  std::vector<std::wstring> events = takeEvents();
  ASSERT_GE(events.size(), 2u);
  EXPECT_EQ(events[0], L"reactor willBeLoaded " + path) << "reactors hear first here";
  EXPECT_EQ(events[1], L"monitor willBeLoaded " + path);
  EXPECT_EQ(handleOf(L"good")->getVal(), mapped);
  EXPECT_TRUE(krrxUnloadModule(L"good", true));
  FreeLibrary(mapped);
  krdbTestTakeMessages();
}

TEST_F(LinkerTest, ApplicationsUnloadByTheirLogicalNames) {
  ASSERT_TRUE(krrxLoadModule(L"good.krx", false, true));
  handleOf(L"good")->addLogicalAppName(L"Second Name");
  EXPECT_TRUE(krrxAppIsLoaded(L"second name"));
  EXPECT_FALSE(krrxAppIsLoaded(L"Third Name"));
  EXPECT_TRUE(krrxUnloadApp(L"SECOND NAME", true));
  EXPECT_EQ(handleOf(L"good"), nullptr);
  EXPECT_FALSE(krrxUnloadApp(L"Second Name", true));
  EXPECT_THAT(krdbTestTakeMessages(), IsEmpty());
}

TEST_F(LinkerTest, MessagesGoToEveryModuleOrToTheNamedOnes) {
  ASSERT_TRUE(krrxLoadModule(L"good.krx", false, true));
  ASSERT_TRUE(krrxLoadModule(L"v140000.krx", false, true));
  krTestLinker()->sendAllAppsMessage(kHostMessage, nullptr);
  std::vector<const wchar_t*> names = {L"v140000", L"absent"};
  krTestLinker()->sendAllAppsMessage(KrRx::AppMsgCode(101), &names);
  EXPECT_THAT(receivedBy(L"good"), ElementsAre(1, 100));
  EXPECT_THAT(receivedBy(L"v140000"), ElementsAre(1, 100, 101));
  EXPECT_EQ(krTestLinker()->numberOfAppsLoaded(), 2u);
  krTestLinker()->unloadAllModules(false);
  EXPECT_EQ(krTestLinker()->numberOfAppsLoaded(), 0u);
}

TEST_F(LinkerTest, UnloadingEverythingReleasesUsersBeforeTheirDependenciesAndForceBreaksLocks) {
  ASSERT_TRUE(krrxLoadModule(L"user.krx", false, true));
  ASSERT_TRUE(krrxLoadModule(L"locked.krx", false, true));
  krTestLinker()->unloadAllModules(false);
  EXPECT_EQ(krTestLinker()->numberOfAppsLoaded(), 1u);
  EXPECT_NE(handleOf(L"locked"), nullptr);
  krTestLinker()->unloadAllModules(true);
  EXPECT_EQ(krTestLinker()->numberOfAppsLoaded(), 0u);
}

TEST_F(LinkerTest, SymbolsAreFoundInLoadedModulesOnly) {
  ASSERT_TRUE(krrxLoadModule(L"good.krx", false, true));
  void* expected = reinterpret_cast<void*>(GetProcAddress(GetModuleHandleW(L"good.krx"), "testModulePacket"));
  EXPECT_EQ(krTestLinker()->getSymbolAddress(L"good", "testModulePacket"), expected);
  EXPECT_EQ(krTestLinker()->getSymbolAddress(L"good", L"testModulePacket"), expected);
  EXPECT_EQ(krTestLinker()->getSymbolAddress(L"good", L"testModul\u00e9Packet"), nullptr);
  EXPECT_EQ(krTestLinker()->getSymbolAddress(L"good", "noSuchSymbol"), nullptr);
  EXPECT_EQ(krTestLinker()->getSymbolAddress(L"absent", "testModulePacket"), nullptr);
  EXPECT_TRUE(krrxUnloadModule(L"good", true));
}

// Applications registered below a settable key of this test's own.
class RegisteredAppTest : public LinkerTest {
 protected:
  void SetUp() override {
    LinkerTest::SetUp();
    mSavedKey = krrxKestruneRegistryKey();
    krrxSetKestruneRegistryKey(kKey);
  }
  void TearDown() override {
    for (const std::wstring& name : mRegistered) krrxUnregisterApp(name.c_str(), true);
    RegDeleteTreeW(HKEY_CURRENT_USER, kTestRoot);
    RegDeleteKeyW(HKEY_CURRENT_USER, L"SOFTWARE\\KestruneTests");  // once no other test's key is left in it
    krrxSetKestruneRegistryKey(mSavedKey.c_str());
    LinkerTest::TearDown();
  }

  void registerApp(const wchar_t* name, const wchar_t* loader, unsigned int loadCtrls) {
    KesuAppInfo app(name, loadCtrls);
    app.setModuleName(loader);
    ASSERT_EQ(app.writeToRegistry(true, true), KesuApp::eOk);
    mRegistered.push_back(name);
  }

  // Makes loading trigger load app too.
  void addTrigger(const wchar_t* app, const wchar_t* trigger) {
    std::wstring key = std::wstring(kKey) + L"\\Applications\\" + app + L"\\Triggers";
    ASSERT_EQ(RegSetKeyValueW(HKEY_CURRENT_USER, key.c_str(), trigger, REG_SZ, L"", sizeof(wchar_t)), ERROR_SUCCESS);
  }

  static constexpr const wchar_t* kTestRoot = L"SOFTWARE\\KestruneTests\\Linker";
  static constexpr const wchar_t* kKey = L"SOFTWARE\\KestruneTests\\Linker\\R20.5";
  std::wstring mSavedKey;
  std::vector<std::wstring> mRegistered;
};

TEST_F(RegisteredAppTest, AnApplicationLoadsByNameWithTheApplicationsItTriggers) {
  registerApp(L"KrLinkerTestApp", L"good.krx", KesuApp::kLoadByName);
  registerApp(L"KrLinkerTestTriggered", L"v140000.krx", KesuApp::kLoadByName);
  addTrigger(L"KrLinkerTestTriggered", L"KrLinkerTestApp");
  registerApp(L"KrLinkerTestDisabled", L"abc.krx", KesuApp::kLoadByName | KesuApp::kLoadDisabled);
  EXPECT_FALSE(krrxAppIsLoaded(L"KrLinkerTestApp"));

  ASSERT_TRUE(krrxLoadApp(L"KrLinkerTestApp", true));
  KrRxGenHand* app = handleOf(L"good");
  ASSERT_NE(app, nullptr);
  EXPECT_TRUE(app->hasLogicalAppName(L"KrLinkerTestApp"));
  EXPECT_EQ(app->loadReason(), KesuApp::kLoadByName);
  EXPECT_TRUE(krrxAppIsLoaded(L"KrLinkerTestApp")) << "its loader module is loaded";
  ASSERT_NE(handleOf(L"v140000"), nullptr) << "loaded because KrLinkerTestApp triggers it";
  EXPECT_TRUE(handleOf(L"v140000")->hasLogicalAppName(L"KrLinkerTestTriggered"));

  EXPECT_FALSE(krrxLoadApp(L"KrLinkerTestDisabled", true)) << "bit 0x10 wins over bit 8";
  EXPECT_EQ(handleOf(L"abc"), nullptr);
  EXPECT_FALSE(krrxLoadApp(L"KrLinkerTestUnregistered", true));
  EXPECT_FALSE(krrxLoadApp(nullptr, true));

  EXPECT_TRUE(krrxUnloadApp(L"krlinkertesttriggered", true));
  EXPECT_TRUE(krrxUnloadApp(L"KrLinkerTestApp", true));
  EXPECT_FALSE(krrxAppIsLoaded(L"KrLinkerTestApp"));
  EXPECT_THAT(krdbTestTakeMessages(), IsEmpty());
}

TEST_F(RegisteredAppTest, LoadingForAReasonLoadsEveryApplicationSharingABitWithIt) {
  registerApp(L"KrLinkerTestAtStart", L"good.krx", 0x20);
  registerApp(L"KrLinkerTestByName", L"v140000.krx", KesuApp::kLoadByName);
  EXPECT_FALSE(krTestLinker()->loadApps(KesuApp::LoadReasons(0x40)));
  EXPECT_TRUE(krTestLinker()->loadApps(KesuApp::LoadReasons(0x20)));
  EXPECT_NE(handleOf(L"good"), nullptr);
  EXPECT_EQ(handleOf(L"v140000"), nullptr);
  EXPECT_FALSE(krTestLinker()->loadApps(KesuApp::LoadReasons(0x20))) << "already loaded by command";
  EXPECT_TRUE(krrxUnloadApp(L"KrLinkerTestAtStart", true));
  EXPECT_FALSE(krTestLinker()->loadApps(L"NoSuchTrigger"));
}

TEST(HostMessageTest, MessagesAreFormattedOntoTheHostsOutput) {
  krdbTestClearMessages();
  EXPECT_EQ(KrRxImpDynamicLinker::hostMessage(L"%ls has %d modules\n", L"host", 3), 5100);
  EXPECT_EQ(KrRxImpDynamicLinker::hostMessage(nullptr), -5003);
  EXPECT_EQ(KrRxImpDynamicLinker::hostMessage(L""), 5100);
  EXPECT_THAT(krdbTestTakeMessages(), ElementsAre(L"host has 3 modules\n", L""));
  EXPECT_STREQ(krrxProductKey(), L"Software\\Kestrune\\TestProduct");
  krdbTestSetProductKey(L"Software\\Other");
  EXPECT_STREQ(krTestLinker()->ProductKey(), L"Software\\Other");
  krdbTestSetProductKey(nullptr);
  EXPECT_EQ(krrxProductLCID(), 0x407u);
}

}  // namespace
