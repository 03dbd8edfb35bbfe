// The runtime's thread contracts under load, from 8 threads at once: the
// one-time statics on first use, key-order iterators over one unsorted
// dictionary, and strings whose shared buffers are copied and dropped on
// different threads. Each stress runs for KR_STRESS_SECONDS (default 1).

#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <cwchar>
#include <memory>
#include <new>
#include <string>
#include <thread>
#include <vector>

#include "KrHeapUsage.h"
#include "kr1st.h"
#include "runtime/KrRxImpDictionary.h"

namespace {

constexpr int kThreads = 8;

double stressSeconds() {
  const char* text = getenv("KR_STRESS_SECONDS");
  return text && atof(text) > 0 ? atof(text) : 1.0;
}

// Runs body(thread) on kThreads threads released together; returns when all are done.
template <typename Body>
void onAllThreads(Body body) {
  std::atomic<bool> go{false};
  std::vector<std::thread> threads;
  for (int thread = 0; thread < kThreads; ++thread)
    threads.emplace_back([&, thread] {
      while (!go) std::this_thread::yield();
      body(thread);
    });
  go = true;
  for (std::thread& thread : threads) thread.join();
}

// Repeats round() until the stress time is over; returns the rounds run.
template <typename Round>
int repeatForStressTime(Round round) {
  const auto end = std::chrono::steady_clock::now() + std::chrono::duration<double>(stressSeconds());
  int rounds = 0;
  for (; std::chrono::steady_clock::now() < end; ++rounds) round();
  return rounds;
}

// The count of holders of the shared buffer whose text begins at text.
uint16_t shareCount(const void* text) {
  uint16_t count;
  memcpy(&count, static_cast<const char*>(text) - sizeof(count), sizeof(count));
  return count;
}

// Must run first in this program: every static it touches is still unmade.
TEST(KrRxThreadStressTest, OneTimeStaticsAreMadeOnceWhenManyThreadsUseThemFirst) {
  const KrUniqueString* interned[kThreads];
  const wchar_t* empty[kThreads];
  const KrRxClass* ratio[kThreads];
  bool threw[kThreads];
  onAllThreads([&](int thread) {
    interned[thread] = KrUniqueString::Intern(L"StressName");
    KrString text(L"x");
    text.setEmpty();
    empty[thread] = text.kwszPtr();
    ratio[thread] = KrVtRatio::desc();
    try {
      KrHeapOperators::operator delete(KrHeapOperators::operator new(size_t(1) << 60));
      threw[thread] = false;
    } catch (const std::bad_alloc&) {
      threw[thread] = true;
    }
  });
  for (int thread = 0; thread < kThreads; ++thread) {
    EXPECT_EQ(interned[thread], interned[0]);
    EXPECT_EQ(empty[thread], empty[0]);
    EXPECT_EQ(ratio[thread], krrxFindKrRxClass(L"KrVtRatio"));
    EXPECT_TRUE(threw[thread]);
  }
  EXPECT_NE(interned[0], nullptr);
  EXPECT_EQ(KrUniqueString::Intern(L"stressname"), interned[0]);
}

TEST(KrRxThreadStressTest, KeyOrderIteratorsOverOneUnsortedDictionaryFromManyThreads) {
  constexpr int kKeys = 200;
  KrRxImpDictionary dictionary;
  for (int i = 0; i < kKeys; ++i) dictionary.atPut((L"Key" + std::to_wstring((i * 37) % kKeys)).c_str(), nullptr);
  std::atomic<int> wrongWalks{0};
  auto walks = [&] {
    onAllThreads([&](int) {
      for (int walk = 0; walk < 20; ++walk) {
        std::unique_ptr<KrRxDictionaryIterator> it(dictionary.newIterator(KrRx::kDictByKey));
        int seen = 0;
        std::wstring previous;
        for (; !it->done(); it->next(), ++seen) {
          if (seen && wcscmp(previous.c_str(), it->key()) >= 0) ++wrongWalks;
          previous = it->key();
        }
        if (seen != kKeys) ++wrongWalks;
      }
    });
  };
  walks();
  size_t heapBefore = krBusyHeapBytes();
  int rounds = repeatForStressTime(walks);
  long long growth = static_cast<long long>(krBusyHeapBytes()) - static_cast<long long>(heapBefore);
  std::printf("key-order iterators: %d walks on %d threads, heap growth %lld bytes\n", rounds * 20 * kThreads,
              kThreads, growth);
  EXPECT_EQ(wrongWalks, 0);
  EXPECT_EQ(dictionary.sortState(), 0) << "the last iterator drops the shared index";
  EXPECT_EQ(growth, 0);
}

TEST(KrRxThreadStressTest, SharedStringBuffersCopiedAndDroppedOnDifferentThreads) {
  KrString source(L"Layer 0 of the drawing");
  source.kszPtr();
  std::vector<std::vector<KrString>> copies(kThreads);
  // Each thread copies the source and its own copies into its slot, then
  // drops the copies another thread made.
  auto round = [&] {
    for (std::vector<KrString>& slot : copies) slot.push_back(source);
    onAllThreads([&](int thread) {
      for (int i = 0; i < 500; ++i) copies[thread].push_back(i % 2 ? KrString(copies[thread].back()) : source);
    });
    onAllThreads([&](int thread) { copies[(thread + 1) % kThreads].clear(); });
  };
  round();
  size_t heapBefore = krBusyHeapBytes();
  int rounds = repeatForStressTime(round);
  long long growth = static_cast<long long>(krBusyHeapBytes()) - static_cast<long long>(heapBefore);
  std::printf("shared strings: %d copies on %d threads, heap growth %lld bytes\n", rounds * 500 * kThreads, kThreads,
              growth);
  EXPECT_EQ(shareCount(source.kwszPtr()), 1);
  EXPECT_EQ(shareCount(source.kszPtr()), 1);
  EXPECT_STREQ(source.kwszPtr(), L"Layer 0 of the drawing");
  EXPECT_EQ(growth, 0);
}

}  // namespace
