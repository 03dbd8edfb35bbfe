// Soak: signed modules loaded and unloaded through the linker many times in
// one process grow the heap no more than the same count of bare LoadLibraryW
// + WinVerifyTrustEx + FreeLibrary cycles does, plus the growth of the
// tables' entry arrays: ids are never reused, so every load takes fresh ids
// in the loaded-module table and, when the module registers classes, a
// service and a system-registry entry, in the system's dictionaries too.
// KR_SOAK_CYCLES sets the count (default 1,000; the long run uses 10,000).

#include <gtest/gtest.h>

#include <windows.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <memory>
#include <string>

#include "KrAbortTrap.h"
#include "KrHeapUsage.h"
#include "KrRxModuleTestSupport.h"
#include "modules/KrRxImpDynamicLinker.h"
#include "runtime/KrRxImpDictionary.h"

namespace {

int soakCycles() {
  const char* text = getenv("KR_SOAK_CYCLES");
  return text && atoi(text) > 0 ? atoi(text) : 1000;
}

std::wstring binFile(const wchar_t* name) { return krTestBinDirectory() + name; }

const KrRxDictionary* serviceDictionary() {
  return static_cast<const KrRxDictionary*>(krrxSysRegistry()->at(L"ServiceDictionary"));
}

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

// Uses what everything.krx registers while it is loaded: a part of its class
// formatted, evaluated and walked through reflection, its overrule and
// reactor in place; and finds none of it after.
void useEverything(bool loaded) {
  ASSERT_EQ(krrxServiceIsRegistered(L"EverythingService"), loaded);
  ASSERT_EQ(krrxSysRegistry()->has(L"EverythingEntry"), loaded);
  ASSERT_EQ(krrxFindKrRxClass(L"SoakPart") != nullptr, loaded);
  if (!loaded) return;
  auto newPart = krModuleSymbol<KrRxObject* (*)()>(L"everything.krx", "soakNewPart");
  ASSERT_NE(newPart, nullptr);
  std::unique_ptr<KrRxObject> part(newPart());
  wchar_t* text = nullptr;
  ASSERT_EQ(krrfFormatString(L"%<label>%: %<width>%", part.get(), text), Kesu::eOk);
  EXPECT_EQ(std::wstring(text).rfind(L"soak part: 2.5", 0), 0u) << text;
  free(text);
  KrRxObject* width = nullptr;
  ASSERT_EQ(krrfEvaluateString(L"width", part.get(), width), Kesu::eOk);
  EXPECT_EQ(KrVtFloat64::cast(width)->value(), 2.5);
  delete width;
  std::unique_ptr<KrRfSymbolIterator> symbols(
      krrfReflectionService()->reflectionPE(part->isA(), false)->newSymbolIterator(part->isA()));
  int count = 0;
  for (; !symbols->done(); symbols->next()) ++count;
  EXPECT_EQ(count, 3);
  KrRxOverrule::setIsOverruling(true);
  EXPECT_TRUE(KrRxOverrule::hasOverrule(part.get(), KrRxQueryXOverrule::desc()));
  KrRxOverrule::setIsOverruling(false);
}

// Loads and unloads the module through the linker, then as bare loading,
// checking the module's registrations in every cycle, and compares the
// heap growth of the two, allowing the linker the growth of the tables.
void expectNoMoreGrowthThanBareLoadingAndTables(const std::wstring& module, void (*check)(bool loaded)) {
  const wchar_t* path = module.c_str();
  const int cycles = soakCycles();
  auto cycle = [&] {
    ASSERT_TRUE(krrxLoadModule(path, false, false));
    check(true);
    ASSERT_TRUE(krrxUnloadModule(path, false));
    check(false);
  };
  krHeapGrowth(50, 0, cycle);
  const long long tablesBefore = krSystemTableBytes();
  const long long ours = krHeapGrowth(0, cycles, cycle);
  const long long tables = krSystemTableBytes() - tablesBefore;
  ASSERT_FALSE(testing::Test::HasFailure());
  const long long bare = krHeapGrowth(50, cycles, [&] {
    HMODULE handle = LoadLibraryW(path);
    ASSERT_NE(handle, nullptr);
    ASSERT_EQ(krVerifyTrust(path), 0);
    FreeLibrary(handle);
  });
  std::printf("%ls: heap growth per cycle over %d cycles: linker %.2f bytes, of which the tables' entry arrays "
              "account for %.2f; bare loading %.2f\n",
              module.c_str() + module.rfind(L'\\') + 1, cycles, double(ours) / cycles, double(tables) / cycles,
              double(bare) / cycles);
  // Beyond the tables, the linker may grow the heap no more than bare loading does.
  EXPECT_LE(ours - tables, std::max(bare, 0LL));
}

TEST(KrRxSoakTest, LoadUnloadCyclesGrowTheHeapNoMoreThanBareLoadingAndTheTablesDo) {
  // The smallest signed module: test modules with a C++ runtime of their own
  // grow the heap at every load and free even without the linker.
  expectNoMoreGrowthThanBareLoadingAndTables(binFile(L"bench\\bench_module.krx"), expectNothing);
}

TEST(KrRxSoakTest, ModulesThatRegisterClassesAndServicesGrowTheHeapNoMoreEither) {
  expectNoMoreGrowthThanBareLoadingAndTables(binFile(L"registering.krx"), expectRegistrations);
}

TEST(KrRxSoakTest, AModuleThatRegistersEverythingAndIsUsedGrowsTheHeapNoMoreEither) {
  expectNoMoreGrowthThanBareLoadingAndTables(binFile(L"everything.krx"), useEverything);
}

// An id, once handed out, names its entry or nothing: a module loaded again
// puts its classes, its service and its registry entry under new ids, and
// the ids of its first load stay free.
TEST(KrRxSoakTest, AModuleLoadedAgainTakesNewIdsAndItsOldOnesStayFree) {
  const std::wstring module = binFile(L"registering.krx");
  struct Registration {
    const KrRxDictionary* table;
    const wchar_t* key;
    unsigned int firstId;
  } registrations[] = {{krrxSysClasses(), L"SoakShape", 0},
                       {krrxSysClasses(), L"SoakCircle", 0},
                       {serviceDictionary(), L"SoakService", 0},
                       {krrxSysRegistry(), L"SoakEntry", 0}};
  for (int load = 0; load < 2; ++load) {
    ASSERT_TRUE(krrxLoadModule(module.c_str(), false, false));
    for (Registration& entry : registrations) {
      unsigned int id = entry.table->idAt(entry.key);
      EXPECT_NE(id, 0u) << krUtf8(entry.key);
      if (load == 0) entry.firstId = id;
      else EXPECT_GT(id, entry.firstId) << krUtf8(entry.key);
    }
    ASSERT_TRUE(krrxUnloadModule(module.c_str(), false));
    for (const Registration& entry : registrations) EXPECT_FALSE(entry.table->has(entry.firstId)) << krUtf8(entry.key);
  }
}

}  // namespace
