#include "KrFailingAllocations.h"

#include <gtest/gtest.h>
#include <malloc.h>
#include <windows.h>

#include <atomic>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <new>

#include "KrAbortTrap.h"
#include "KrHeapUsage.h"
#include "krheap.h"

namespace {

// Allocations left until the failing one; 0 while disarmed.
std::atomic<int> gCountdown{0};
std::atomic<bool> gReached{false};

bool failThisOne() {
  int left = gCountdown.load(std::memory_order_relaxed);
  while (left > 0 && !gCountdown.compare_exchange_weak(left, left - 1)) {
  }
  if (left != 1) return false;
  gReached = true;
  return true;
}

void* (*realMalloc)(size_t);
void* (*realCalloc)(size_t, size_t);
void* (*realRealloc)(void*, size_t);
void* (*realAlignedMalloc)(size_t, size_t);
wchar_t* (*realWcsdup)(const wchar_t*);
char* (*realStrdup)(const char*);

void* failingMalloc(size_t size) { return failThisOne() ? nullptr : realMalloc(size); }
void* failingCalloc(size_t count, size_t size) { return failThisOne() ? nullptr : realCalloc(count, size); }
// A realloc to size 0 frees; only a growth or shrink can fail.
void* failingRealloc(void* block, size_t size) {
  return size && failThisOne() ? nullptr : realRealloc(block, size);
}
void* failingAlignedMalloc(size_t size, size_t alignment) {
  return failThisOne() ? nullptr : realAlignedMalloc(size, alignment);
}
wchar_t* failingWcsdup(const wchar_t* text) { return failThisOne() ? nullptr : realWcsdup(text); }
char* failingStrdup(const char* text) { return failThisOne() ? nullptr : realStrdup(text); }

struct Redirection {
  const char* name;
  void* wrapper;
  void** original;
};

// Points the library's import of each named C runtime function at its wrapper.
void redirectImports(HMODULE library) {
  const Redirection redirections[] = {
      {"malloc", reinterpret_cast<void*>(failingMalloc), reinterpret_cast<void**>(&realMalloc)},
      {"calloc", reinterpret_cast<void*>(failingCalloc), reinterpret_cast<void**>(&realCalloc)},
      {"realloc", reinterpret_cast<void*>(failingRealloc), reinterpret_cast<void**>(&realRealloc)},
      {"_aligned_malloc", reinterpret_cast<void*>(failingAlignedMalloc), reinterpret_cast<void**>(&realAlignedMalloc)},
      {"_wcsdup", reinterpret_cast<void*>(failingWcsdup), reinterpret_cast<void**>(&realWcsdup)},
      {"_strdup", reinterpret_cast<void*>(failingStrdup), reinterpret_cast<void**>(&realStrdup)},
  };
  auto* base = reinterpret_cast<BYTE*>(library);
  auto* headers = reinterpret_cast<IMAGE_NT_HEADERS64*>(base + reinterpret_cast<IMAGE_DOS_HEADER*>(base)->e_lfanew);
  const IMAGE_DATA_DIRECTORY& imports = headers->OptionalHeader.DataDirectory[IMAGE_DIRECTORY_ENTRY_IMPORT];
  int redirected = 0;
  for (auto* dll = reinterpret_cast<IMAGE_IMPORT_DESCRIPTOR*>(base + imports.VirtualAddress); dll->Name; ++dll) {
    if (_stricmp(reinterpret_cast<char*>(base + dll->Name), "msvcrt.dll") != 0) continue;
    auto* names = reinterpret_cast<IMAGE_THUNK_DATA64*>(base + dll->OriginalFirstThunk);
    auto* slots = reinterpret_cast<IMAGE_THUNK_DATA64*>(base + dll->FirstThunk);
    for (; names->u1.AddressOfData; ++names, ++slots) {
      if (IMAGE_SNAP_BY_ORDINAL64(names->u1.Ordinal)) continue;
      const char* name = reinterpret_cast<IMAGE_IMPORT_BY_NAME*>(base + names->u1.AddressOfData)->Name;
      for (const Redirection& redirection : redirections) {
        if (strcmp(name, redirection.name) != 0) continue;
        DWORD protection;
        VirtualProtect(&slots->u1.Function, sizeof(void*), PAGE_READWRITE, &protection);
        *redirection.original = reinterpret_cast<void*>(slots->u1.Function);
        slots->u1.Function = reinterpret_cast<ULONGLONG>(redirection.wrapper);
        VirtualProtect(&slots->u1.Function, sizeof(void*), protection, &protection);
        ++redirected;
      }
    }
  }
  if (redirected != int(sizeof(redirections) / sizeof(redirections[0]))) {
    std::fprintf(stderr, "kr1st20.dll imports %d of the allocation functions, not all\n", redirected);
    std::abort();
  }
}

// The first failure of the process builds what every later one reuses (the
// library's failure object, the test framework's trace stack): not a leak.
void warmUpFailurePath() {
  SCOPED_TRACE("warm-up");
  KrAllocationFailure first(1);
  first.run([] { delete new KrHeapOperators; });
}

void installOnce() {
  static const bool installed =
      (redirectImports(GetModuleHandleW(L"kr1st20.dll")), krEchoMessageBoxesToStderr(), warmUpFailurePath(), true);
  (void)installed;
}

// Where the scenario stands, so that a crash names its failure point.
const char* gScenario = nullptr;
int gPoint = 0;

LONG CALLBACK reportCrash(EXCEPTION_POINTERS* exception) {
  if (gScenario && exception->ExceptionRecord->ExceptionCode == EXCEPTION_ACCESS_VIOLATION)
    std::fprintf(stderr, "access violation in scenario %s at failure point %d\n", gScenario, gPoint);
  return EXCEPTION_CONTINUE_SEARCH;
}

KrFailurePoints gTotals;

// The tally over every scenario, once the tests are over; a crash would have
// ended the process before.
class TotalsReport : public testing::Environment {
 public:
  void TearDown() override {
    if (gTotals.tried)
      std::printf("all scenarios: %d failure points, none crashed, %d leaked, %d broke a structure\n", gTotals.tried,
                  gTotals.leaked, gTotals.broken);
  }
};
testing::Environment* const gTotalsReport = testing::AddGlobalTestEnvironment(new TotalsReport);

// The failures gtest recorded in the running test so far.
int recordedFailures() { return testing::UnitTest::GetInstance()->current_test_info()->result()->total_part_count(); }

}  // namespace

bool KrAllocationFailure::run(const std::function<void()>& operation) {
  gReached = false;
  gCountdown = mK;
  try {
    operation();
    mCompleted = true;
  } catch (const std::bad_alloc&) {
    mCompleted = false;
  }
  gCountdown = 0;
  mReached = mReached || gReached;
  return mCompleted;
}

KrFailurePoints krRunFailurePoints(const char* name, const std::function<void(KrAllocationFailure&)>& scenario,
                                   const std::function<long long()>& designedBytes) {
  installOnce();
  static void* handler = AddVectoredExceptionHandler(1, reportCrash);
  (void)handler;
  for (int warmUp = 0; warmUp < 2; ++warmUp) {
    KrAllocationFailure none(0);
    scenario(none);
  }
  gScenario = name;
  const bool trace = getenv("KR_FAILURE_TRACE") != nullptr;
  KrFailurePoints points;
  const int kMostPoints = 100000;
  // Runs the scenario with allocation k failing, then once more without
  // failure, which brings every cache back to where the warm-up left it:
  // the heap growth that remains is a leak.
  auto growthAt = [&](int k, bool& reached) {
    long long designedBefore = designedBytes ? designedBytes() : 0;
    size_t heapBefore = krBusyHeapBytes();
    KrAllocationFailure failure(k);
    scenario(failure);
    KrAllocationFailure none(0);
    scenario(none);
    reached = failure.reached();
    long long growth = static_cast<long long>(krBusyHeapBytes()) - static_cast<long long>(heapBefore);
    return growth - ((designedBytes ? designedBytes() : 0) - designedBefore);
  };
  for (int k = 1; k <= kMostPoints; ++k) {
    gPoint = k;
    if (trace) std::fprintf(stderr, "%s: failure point %d\n", name, k);
    SCOPED_TRACE(testing::Message() << name << ", allocation " << k << " failing");
    int failuresBefore = recordedFailures();
    bool reached = false;
    long long growth = growthAt(k, reached);
    if (!reached) break;
    ++points.tried;
    // A leak comes back when the point is tried again. Growth that does not
    // is the process's own (Wine now and then allocates a few blocks of its
    // own at a random moment), not the operation's.
    if (growth != 0 && recordedFailures() == failuresBefore) growth = growthAt(k, reached);
    // A recorded failure keeps its message on the heap: the growth then says nothing.
    if (recordedFailures() > failuresBefore)
      ++points.broken;
    else if (growth != 0) {
      ++points.leaked;
      ADD_FAILURE() << "the heap changed by " << growth << " bytes";
    }
  }
  gScenario = nullptr;
  std::printf("%s: %d failure points, %d leaked, %d broke a structure\n", name, points.tried, points.leaked,
              points.broken);
  gTotals.tried += points.tried;
  gTotals.leaked += points.leaked;
  gTotals.broken += points.broken;
  return points;
}
