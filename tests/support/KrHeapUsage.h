#pragma once
// How much of the process's heaps is in use, for tests that prove a loop
// leaves the heap as it found it.

#include <cstddef>

// Bytes in busy blocks over every heap of the process.
size_t krBusyHeapBytes();

// The growth of the busy heap bytes over cycles runs of cycle, after warmUp runs.
template <typename Cycle>
long long krHeapGrowth(int warmUp, int cycles, Cycle cycle) {
  for (int i = 0; i < warmUp; ++i) cycle();
  size_t before = krBusyHeapBytes();
  for (int i = 0; i < cycles; ++i) cycle();
  return static_cast<long long>(krBusyHeapBytes()) - static_cast<long long>(before);
}
