// Loading and freeing the library again and again: every start-up is undone
// by its shutdown, so the process's heaps do not grow.

#include <gtest/gtest.h>

#include <windows.h>

#include <cstdio>

#include "KrHeapUsage.h"

namespace {

// Heap growth over 200 load-and-free cycles of a module, after a warm-up.
template <typename Cycle>
long long heapGrowthOver200(Cycle cycle) {
  return krHeapGrowth(20, 200, cycle);
}

// The thread-local-storage slots that cycles runs of cycle leave taken: the
// lowest free slot moves up by one for each slot that stays allocated.
template <typename Cycle>
int tlsSlotsKept(int cycles, Cycle cycle) {
  auto lowestFreeSlot = [] {
    DWORD slot = TlsAlloc();
    TlsFree(slot);
    return int(slot);
  };
  int before = lowestFreeSlot();
  for (int i = 0; i < cycles; ++i) cycle();
  return lowestFreeSlot() - before;
}

void loadAndFreeEmptyModule() {
  HMODULE module = LoadLibraryW(L"empty_module.dll");
  ASSERT_NE(module, nullptr);
  FreeLibrary(module);
}

// Loads the library, checks that the runtime came up, and frees it again.
void loadAndFree() {
  HMODULE library = LoadLibraryW(L"kr1st20.dll");
  ASSERT_NE(library, nullptr);
  auto* registry = reinterpret_cast<void**>(GetProcAddress(library, "sysRegistry"));
  auto* classes = reinterpret_cast<void**>(GetProcAddress(library, "sysClasses"));
  auto* kernel = reinterpret_cast<void**>(GetProcAddress(library, "sysKernel"));
  ASSERT_TRUE(registry && classes && kernel);
  EXPECT_NE(*registry, nullptr);
  EXPECT_NE(*classes, nullptr);
  EXPECT_NE(*kernel, nullptr);
  ASSERT_TRUE(FreeLibrary(library));
  EXPECT_EQ(GetModuleHandleW(L"kr1st20.dll"), nullptr) << "the library is really gone";
}

}  // namespace

TEST(KrRxLoadCycleTest, TwoHundredLoadsLeaveTheHeapAsItWas) {
  ASSERT_EQ(GetModuleHandleW(L"kr1st20.dll"), nullptr) << "this test must load the library itself";
  long long runtime = heapGrowthOver200(loadAndFree);
  ASSERT_FALSE(HasFailure());
  // The loader and the thread library keep a little per load of any module
  // with a thread-safe static; a module that does only that shows how much.
  long long peer = heapGrowthOver200(loadAndFreeEmptyModule);
  std::printf("heap growth over 200 cycles: runtime %lld bytes, empty module %lld bytes\n", runtime, peer);
  // The thread library's bookkeeping grows in steps of a few KiB; a leak of
  // one block of 80 bytes or more per cycle would still show.
  EXPECT_LT(runtime, peer + 16384);
}

// The thread library linked into every module of this toolchain takes one
// slot at its first use in each loaded copy and never gives it back, so any
// such module (the library as much as an empty C++ DLL) can be loaded and
// freed only about a thousand times in one process: the system has 1,088
// slots. The library itself must take no slot beyond that one.
TEST(KrRxLoadCycleTest, EachLoadKeepsOnlyTheThreadLibrarysSlot) {
  ASSERT_EQ(GetModuleHandleW(L"kr1st20.dll"), nullptr);
  int runtime = tlsSlotsKept(50, loadAndFree);
  int peer = tlsSlotsKept(50, loadAndFreeEmptyModule);
  std::printf("TLS slots kept over 50 cycles: runtime %d, empty module %d\n", runtime, peer);
  EXPECT_EQ(runtime, peer);
}
