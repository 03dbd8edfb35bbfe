// Loading and freeing the library again and again: every start-up is undone
// by its shutdown, so the process's heaps do not grow.

#include <gtest/gtest.h>

#include <windows.h>

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
  for (int i = 0; i < 5; ++i) loadAndFree();
  size_t before = busyHeapBytes();
  for (int i = 0; i < 200; ++i) {
    loadAndFree();
    if (HasFatalFailure()) return;
  }
  size_t after = busyHeapBytes();
  // A leak of even one small block per cycle would add 200 blocks.
  EXPECT_LT(after, before + 4096) << "heap grew from " << before << " to " << after << " bytes";
}
