#pragma once
// Allocation-failure injection for tests: the k-th allocation that
// kr1st20.dll asks of the C runtime (malloc, calloc, realloc,
// _aligned_malloc, _wcsdup, _strdup; the library's new operators and its
// standard library go through them) fails. The library's import table is
// redirected to counting wrappers, so the shipped binary is what is tested
// and release builds carry nothing of this.
//
//   KrFailurePoints points = krRunFailurePoints("atPut", [](KrAllocationFailure& failure) {
//     KrRxImpDictionary dictionary;
//     bool completed = failure.run([&] { dictionary.atPut(L"key", nullptr); });
//     EXPECT_EQ(dictionary.has(L"key"), completed && !failure.reached());
//   });

#include <functional>

// One try of a scenario: the allocation numbered k fails, once.
class KrAllocationFailure {
 public:
  explicit KrAllocationFailure(int k) : mK(k) {}

  // Runs operation with the injection armed; true when it returned, false
  // when it threw std::bad_alloc. Other exceptions pass through.
  bool run(const std::function<void()>& operation);
  // Whether the failing allocation was reached in run.
  bool reached() const { return mReached; }
  // Whether run ended silently although an allocation failed in it.
  bool failedSilently() const { return mReached && mCompleted; }

 private:
  int mK;
  bool mReached = false;
  bool mCompleted = false;
};

// What the failure points of one scenario came to.
struct KrFailurePoints {
  int tried = 0;   // failure points k for which an allocation failed
  int leaked = 0;  // tries that left the heap other than it was
  int broken = 0;  // tries after which a check of the scenario failed
};

// Runs scenario for k = 1, 2, ... until a try completes without reaching k,
// after two warm-up runs without failure. Every try is followed by a run
// without failure, after which the heap must be back where it was before the
// try; each run's scenario checks its structures itself.
// Prints and returns the tally (the sum over all scenarios is printed when
// the tests end); a crash ends the process naming the point.
// With KR_FAILURE_TRACE set, each point is named before it runs (for
// failures that end the process without a crash, such as an abort).
// designedBytes, when given, reads the bytes that a try may leave behind by
// design (tables that keep a position for every id handed out); only the
// growth beyond theirs counts.
KrFailurePoints krRunFailurePoints(const char* name, const std::function<void(KrAllocationFailure&)>& scenario,
                                   const std::function<long long()>& designedBytes = nullptr);
