// Services: registration, dependency counting and the owning module's messages.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <windows.h>

#include <cstdint>
#include <stdexcept>
#include <utility>
#include <vector>

#include "KrAbortTrap.h"
#include "kr1st.h"

namespace {

// Messages that reached this executable's own entry point.
std::vector<std::pair<int, void*>> sReceived;
KrRxGenHand* sCurrentDuringCall = nullptr;

}  // namespace

// This test executable plays a module: the runtime finds this export by name.
extern "C" __declspec(dllexport) KrRx::AppRetCode krrxEntryPoint(KrRx::AppMsgCode message, void* packet) {
  sReceived.emplace_back(message, packet);
  sCurrentDuringCall = KrRxGenHand::curModule();
  return KrRx::kRetOK;
}

namespace {

// A module handle for this executable.
class ThisModule : public ::testing::Test {
 protected:
  void SetUp() override {
    sReceived.clear();
    mHandle.setVal(GetModuleHandleW(nullptr));
    ASSERT_NE(mHandle.entryPoint(), nullptr);
  }
  KrRxGenHand mHandle;
};

// Overwrites a service's dependency count through its private record (three words).
void setDependencyCount(KrRxService* service, uint32_t count) {
  struct Record {
    KrRxObject* sysInfo;
    void* dependencyFunction;
    uint32_t dependencyCount;
  };
  (*reinterpret_cast<Record**>(reinterpret_cast<char*>(service) + sizeof(void*)))->dependencyCount = count;
}

}  // namespace

TEST_F(ThisModule, FirstAndLastDependantsAreAnnouncedOnce) {
  KrRxService service;
  service.setSysInfo(&mHandle);
  EXPECT_TRUE(service.unloadable());
  service.addDependency();
  ASSERT_EQ(sReceived.size(), 1u);
  EXPECT_EQ(sReceived[0], std::make_pair(10, static_cast<void*>(&service)));
  EXPECT_EQ(sCurrentDuringCall, &mHandle) << "the module is current while it hears the message";
  EXPECT_EQ(KrRxGenHand::curModule(), nullptr) << "and no longer afterwards";
  service.addDependency();
  EXPECT_EQ(sReceived.size(), 1u);
  EXPECT_FALSE(service.unloadable());
  service.removeDependency();
  EXPECT_EQ(sReceived.size(), 1u);
  service.removeDependency();
  ASSERT_EQ(sReceived.size(), 2u);
  EXPECT_EQ(sReceived[1], std::make_pair(11, static_cast<void*>(&service)));
  EXPECT_TRUE(service.unloadable());
}

TEST_F(ThisModule, ServicesOwnedByNoModuleCountSilently) {
  KrRxService service;
  KrRxGenVoid notAModule(GetModuleHandleW(nullptr));
  service.setSysInfo(&notAModule);
  service.addDependency();
  service.removeDependency();
  EXPECT_TRUE(sReceived.empty());
}

TEST(KrRxServiceTest, CounterMisuseThrowsTheStandardErrors) {
  KrRxService service;
  EXPECT_EQ(krThrownText<std::underflow_error>([&] { service.removeDependency(); }),
            "KrRxService dependency counter underflowed");
  EXPECT_TRUE(service.unloadable()) << "the count stays 0";
  setDependencyCount(&service, UINT32_MAX);
  EXPECT_EQ(krThrownText<std::overflow_error>([&] { service.addDependency(); }),
            "KrRxService dependency counter overflowed");
  setDependencyCount(&service, 0);
}

TEST(KrRxServiceTest, RegisteredServicesAreFoundByNameAndOwnedByTheCurrentModule) {
  KrRxObject* service = krrxRegisterService(L"TestPlainService");
  ASSERT_NE(service, nullptr);
  EXPECT_TRUE(krrxServiceIsRegistered(L"TestPlainService"));
  EXPECT_EQ(KrRxService::cast(service)->getSysInfo(), nullptr);

  KrRxGenHand module;
  KrRxGenHand* previous = KrRxGenHand::setCurModule(&module);
  auto* owned = KrRxService::cast(krrxRegisterService(L"TestOwnedService"));
  KrRxGenHand::setCurModule(previous);
  EXPECT_EQ(owned->getSysInfo(), &module);

  auto* services = static_cast<KrRxDictionary*>(krrxSysRegistry()->at(L"ServiceDictionary"));
  delete services->remove(L"TestPlainService");
  delete services->remove(L"TestOwnedService");
  EXPECT_FALSE(krrxServiceIsRegistered(L"TestPlainService"));
}

TEST(KrRxServiceTest, RegisteringANameTwiceIsFatal) {
  KrRxObject* first = krrxRegisterService(L"TestTwice");
  EXPECT_EQ(krAbortMessageOf([] { krrxRegisterService(L"TestTwice"); }), L"ERROR: TestTwice service already registered");
  auto* services = static_cast<KrRxDictionary*>(krrxSysRegistry()->at(L"ServiceDictionary"));
  delete services->remove(L"TestTwice");
  delete first;
}

TEST(KrRxServiceTest, ServiceSymbolsNeedALoadedModule) {
  wchar_t name[] = L"KernelServices";
  char symbol[] = "krrxEntryPoint";
  EXPECT_EQ(krrxGetServiceSymbolAddr(name, symbol), nullptr);
}
