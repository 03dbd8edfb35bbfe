// Loading and freeing the library again and again: every start-up is undone
// by its shutdown, so the process's heaps do not grow.

#include <gtest/gtest.h>

#include <windows.h>

#include <cstdio>
#include <vector>

namespace {

// Bytes in use over every heap of the process.
size_t busyHeapBytes() {
  std::vector<HANDLE> heaps(GetProcessHeaps(0, nullptr) + 16);
  heaps.resize(GetProcessHeaps(static_cast<DWORD>(heaps.size()), heaps.data()));
  size_t busy = 0;
  for (HANDLE heap : heaps) {
    HeapLock(heap);
    PROCESS_HEAP_ENTRY entry = {};
    while (HeapWalk(heap, &entry))
      if (entry.wFlags & PROCESS_HEAP_ENTRY_BUSY) busy += entry.cbData;
    HeapUnlock(heap);
  }
  return busy;
}

// Heap growth over 200 load-and-free cycles of a module, after a warm-up.
template <typename Cycle>
long long heapGrowthOver200(Cycle cycle) {
  for (int i = 0; i < 20; ++i) cycle();
  size_t before = busyHeapBytes();
  for (int i = 0; i < 200; ++i) cycle();
  return static_cast<long long>(busyHeapBytes()) - static_cast<long long>(before);
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
