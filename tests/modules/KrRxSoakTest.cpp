// Soak: signed modules loaded and unloaded through the linker many times in
// one process leave the heap as the same count of bare LoadLibraryW +
// WinVerifyTrustEx + FreeLibrary cycles does, also when each load registers
// classes, a service and a system-registry entry and each unload removes
// them. KR_SOAK_CYCLES sets the count (default 1,000; the long run uses 10,000).

#include <gtest/gtest.h>

#include <windows.h>

#include <array>
#include <cstdio>
#include <cstdlib>
#include <string>

#include "KrHeapUsage.h"
#include "KrRxModuleTestSupport.h"
#include "runtime/KrRxImpClass.h"

namespace {

int soakCycles() {
  const char* text = getenv("KR_SOAK_CYCLES");
  return text && atoi(text) > 0 ? atoi(text) : 1000;
}

std::wstring binFile(const wchar_t* name) { return krTestBinDirectory() + name; }

// What registering.krx holds while it is loaded, and not after.
void expectRegistrations(bool loaded) {
  KrRxClass* circle = krrxFindKrRxClass(L"SoakCircle");
  ASSERT_EQ(circle != nullptr, loaded);
  ASSERT_EQ(krrxServiceIsRegistered(L"SoakService"), loaded);
  ASSERT_EQ(krrxSysRegistry()->has(L"SoakEntry"), loaded);
  if (loaded) {
    ASSERT_EQ(circle->myParent(), krrxFindKrRxClass(L"SoakShape"));
  }
}

void expectNothing(bool) {}

// Loads and unloads the module through the linker, then as bare loading,
// checking the module's registrations in every cycle, and compares the
// heap growth of the two.
void expectNoMoreGrowthThanBareLoading(const std::wstring& module, void (*check)(bool loaded)) {
  const wchar_t* path = module.c_str();
  const int cycles = soakCycles();
  const int warmUp = 50;
  long long ours = krHeapGrowth(warmUp, cycles, [&] {
    ASSERT_TRUE(krrxLoadModule(path, false, false));
    check(true);
    ASSERT_TRUE(krrxUnloadModule(path, false));
    check(false);
  });
  ASSERT_FALSE(testing::Test::HasFailure());
  long long bare = krHeapGrowth(warmUp, cycles, [&] {
    HMODULE handle = LoadLibraryW(path);
    ASSERT_NE(handle, nullptr);
    ASSERT_EQ(krVerifyTrust(path), 0);
    FreeLibrary(handle);
  });
  std::printf("%ls: heap growth over %d cycles: linker %lld bytes (%.2f per cycle), bare %lld bytes (%.2f per cycle)\n",
              module.c_str() + module.rfind(L'\\') + 1, cycles, ours, double(ours) / cycles, bare,
              double(bare) / cycles);
  // One leaked block of the smallest size per cycle would add 16 bytes a cycle.
  EXPECT_LE(ours, bare + 8 * cycles);
}

TEST(KrRxSoakTest, LoadUnloadCyclesGrowTheHeapNoMoreThanBareLoadingDoes) {
  // The smallest signed module: test modules with a C++ runtime of their own
  // grow the heap at every load and free even without the linker.
  expectNoMoreGrowthThanBareLoading(binFile(L"bench\\bench_module.krx"), expectNothing);
}

TEST(KrRxSoakTest, ModulesThatRegisterClassesAndServicesGrowTheHeapNoMoreEither) {
  expectNoMoreGrowthThanBareLoading(binFile(L"registering.krx"), expectRegistrations);
}

// The ids a module's entries had are free again once it is gone, so every
// load puts its classes, its service and its registry entry under the same ids.
TEST(KrRxSoakTest, EveryLoadOfARegisteringModuleGetsTheSameIds) {
  const std::wstring module = binFile(L"registering.krx");
  const KrRxDictionary* classes = krrxSysClasses();
  const auto* services = static_cast<const KrRxDictionary*>(krrxSysRegistry()->at(L"ServiceDictionary"));
  std::array<unsigned int, 4> first = {};
  for (int cycle = 0; cycle < 3; ++cycle) {
    ASSERT_TRUE(krrxLoadModule(module.c_str(), false, false));
    std::array<unsigned int, 4> ids = {classes->idAt(L"SoakShape"), classes->idAt(L"SoakCircle"),
                                       services->idAt(L"SoakService"), krrxSysRegistry()->idAt(L"SoakEntry")};
    ASSERT_TRUE(krrxUnloadModule(module.c_str(), false));
    EXPECT_NE(ids[0] * ids[1] * ids[2] * ids[3], 0u);
    if (cycle == 0) first = ids;
    EXPECT_EQ(ids, first) << "cycle " << cycle;
  }
}

// Reusing ids is safe only if nothing keeps the id of a removed entry. A
// class whose entry someone removed behind its back still has its id; when
// it goes, it must leave alone the class that has that id by then.
TEST(KrRxSoakTest, AClassRemovedBehindItsBackLeavesTheNextOwnerOfItsIdAlone) {
  const std::wstring module = binFile(L"registering.krx");
  const std::wstring bare = binFile(L"bench\\bench_module.krx");
  ASSERT_TRUE(krrxLoadModule(module.c_str(), false, false));
  unsigned int id = sysClasses->idAt(L"SoakCircle");
  ASSERT_NE(sysClasses->remove(id), nullptr);
  // Another module's going gives the freed id back.
  ASSERT_TRUE(krrxLoadModule(bare.c_str(), false, false));
  ASSERT_TRUE(krrxUnloadModule(bare.c_str(), false));
  KrRxClass* successor = newKrRxClass(L"SoakSuccessor", L"KrRxObject", 0, nullptr, nullptr, nullptr);
  krrxBuildClassHierarchy();
  EXPECT_EQ(sysClasses->idAt(L"SoakSuccessor"), id);

  ASSERT_TRUE(krrxUnloadModule(module.c_str(), false));
  EXPECT_EQ(krrxFindKrRxClass(L"SoakSuccessor"), successor);
  EXPECT_EQ(krrxFindKrRxClass(L"SoakShape"), nullptr);
  KrRxImpClass::deleteClass(successor);
  KrRxImpClass::clearDeletedClassesArray();
}

}  // namespace
