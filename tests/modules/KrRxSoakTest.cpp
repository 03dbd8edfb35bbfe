// Soak: a signed module loaded and unloaded through the linker many times in
// one process leaves the heap as the same count of bare LoadLibraryW +
// WinVerifyTrustEx + FreeLibrary cycles does. KR_SOAK_CYCLES sets the count
// (default 1,000; the long run uses 10,000).

#include <gtest/gtest.h>

#include <windows.h>

#include <cstdio>
#include <cstdlib>
#include <string>

#include "KrHeapUsage.h"
#include "KrRxModuleTestSupport.h"

namespace {

int soakCycles() {
  const char* text = getenv("KR_SOAK_CYCLES");
  return text && atoi(text) > 0 ? atoi(text) : 1000;
}

TEST(KrRxSoakTest, LoadUnloadCyclesGrowTheHeapNoMoreThanBareLoadingDoes) {
  // The smallest signed module: test modules with a C++ runtime of their own
  // grow the heap at every load and free even without the linker.
  const std::wstring module = krTestBinDirectory() + L"bench\\bench_module.krx";
  const wchar_t* path = module.c_str();
  const int cycles = soakCycles();
  const int warmUp = 50;
  long long ours = krHeapGrowth(warmUp, cycles, [&] {
    ASSERT_TRUE(krrxLoadModule(path, false, false));
    ASSERT_TRUE(krrxUnloadModule(path, false));
  });
  ASSERT_FALSE(HasFailure());
  long long bare = krHeapGrowth(warmUp, cycles, [&] {
    HMODULE handle = LoadLibraryW(path);
    ASSERT_NE(handle, nullptr);
    ASSERT_EQ(krVerifyTrust(path), 0);
    FreeLibrary(handle);
  });
  std::printf("heap growth over %d cycles: linker %lld bytes (%.2f per cycle), bare %lld bytes (%.2f per cycle)\n",
              cycles, ours, double(ours) / cycles, bare, double(bare) / cycles);
  // One leaked block of the smallest size per cycle would add 16 bytes a cycle.
  EXPECT_LE(ours, bare + 8 * cycles);
}

}  // namespace
