#pragma once
// A small benchmark harness on QueryPerformanceCounter: runs a body in
// batches until enough time has passed and reports nanoseconds per call,
// the best of several rounds.

#include <windows.h>

#include <cstdio>

// A runtime class CLASS under PARENT, for benchmarks that need class chains.
#define KR_BENCH_CLASS(CLASS, PARENT) \
  class CLASS : public PARENT {       \
    KRRX_DECLARE_MEMBERS(CLASS);      \
  };                                  \
  KRRX_CONS_DEFINE_MEMBERS(CLASS, PARENT)

namespace bench {

// Keeps the optimiser from dropping a computed value.
template <typename T>
inline void keep(const T& value) {
  asm volatile("" : : "g"(&value) : "memory");
}

template <typename Body>
double nsPerCall(Body body, long long batch = 100000, int rounds = 5) {
  LARGE_INTEGER frequency;
  QueryPerformanceFrequency(&frequency);
  double best = 1e300;
  for (int round = 0; round < rounds; ++round) {
    LARGE_INTEGER start, stop;
    QueryPerformanceCounter(&start);
    for (long long i = 0; i < batch; ++i) body(i);
    QueryPerformanceCounter(&stop);
    double ns = 1e9 * double(stop.QuadPart - start.QuadPart) / double(frequency.QuadPart) / double(batch);
    if (ns < best) best = ns;
  }
  return best;
}

// Ours and its peer measured in alternating rounds, so that both see the
// machine in the same states; each keeps its best round. Returns ours ÷ peer
// after printing the line.
template <typename Ours, typename Peer>
double sideBySide(const char* what, Ours ours, const char* peer, Peer theirs, long long batch = 100000,
                  int rounds = 7);

// One line: what was measured, our figure, the peer's figure and the ratio.
inline void report(const char* what, double ours, const char* peer, double theirs) {
  std::printf("%-44s %9.2f ns   %-34s %9.2f ns   ratio %.2f\n", what, ours, peer, theirs, ours / theirs);
}

}  // namespace bench

template <typename Ours, typename Peer>
double bench::sideBySide(const char* what, Ours ours, const char* peer, Peer theirs, long long batch, int rounds) {
  double bestOurs = 1e300, bestPeer = 1e300;
  for (int round = 0; round < rounds; ++round) {
    double a = nsPerCall(ours, batch, 1), b = nsPerCall(theirs, batch, 1);
    if (a < bestOurs) bestOurs = a;
    if (b < bestPeer) bestPeer = b;
  }
  report(what, bestOurs, peer, bestPeer);
  return bestOurs / bestPeer;
}
