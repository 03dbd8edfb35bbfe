#include "runtime/KrRxGrowArray.h"

#include <algorithm>

int32_t krrxGrownCapacity(int32_t capacity, int32_t needed, int32_t growStep, size_t elementSize,
                          int32_t largeIncrement) {
  const size_t kLargeBlock = 64 * 1024;
  int32_t increment = capacity;
  if (static_cast<size_t>(capacity) * elementSize >= kLargeBlock) increment = std::min(capacity, largeIncrement);
  increment = std::max(increment, growStep);
  return std::max(needed, capacity + increment);
}
