#pragma once
// The growable arrays inside the runtime: a heap block of elements with a
// signed 32-bit capacity, count and grow step. Elements are moved by raw
// copy, so T must be trivially copyable.

#include <cstdint>
#include <cstring>
#include <type_traits>

#include "krheap.h"

// The capacity that holds needed elements: the larger of needed and the old
// capacity plus an increment. The increment is the old capacity while the
// block is below 64 KiB and min(old capacity, largeIncrement) from then on,
// but never less than growStep.
int32_t krrxGrownCapacity(int32_t capacity, int32_t needed, int32_t growStep, size_t elementSize,
                          int32_t largeIncrement);

template <typename T>
struct KrRxGrowArray {
  static_assert(std::is_trivially_copyable<T>::value, "elements move by raw copy");

  T* data = nullptr;
  int32_t capacity = 0;
  int32_t count = 0;
  int32_t growStep = 8;

  // The cap on the increment once the block is 64 KiB or more, in elements.
  // The class arrays cap at 8192 elements; dictionaries pass 64 KiB worth.
  static constexpr int32_t kClassArrayLargeIncrement = 8192;

  void release() {
    __krFree(data);
    data = nullptr;
    capacity = count = 0;
  }

  // Makes room for needed elements; false when memory is short.
  bool reserve(int32_t needed, int32_t largeIncrement = kClassArrayLargeIncrement) {
    if (needed <= capacity) return true;
    int32_t grown = krrxGrownCapacity(capacity, needed, growStep, sizeof(T), largeIncrement);
    T* block = static_cast<T*>(__krMalloc(static_cast<size_t>(grown) * sizeof(T)));
    if (!block) return false;
    if (count) memcpy(static_cast<void*>(block), data, static_cast<size_t>(count) * sizeof(T));
    __krFree(data);
    data = block;
    capacity = grown;
    return true;
  }

  bool append(const T& element, int32_t largeIncrement = kClassArrayLargeIncrement) {
    if (!reserve(count + 1, largeIncrement)) return false;
    data[count++] = element;
    return true;
  }

  bool insertAt(int32_t index, const T& element, int32_t largeIncrement = kClassArrayLargeIncrement) {
    if (!reserve(count + 1, largeIncrement)) return false;
    memmove(static_cast<void*>(data + index + 1), data + index, static_cast<size_t>(count - index) * sizeof(T));
    data[index] = element;
    ++count;
    return true;
  }

  void removeAt(int32_t index) {
    memmove(static_cast<void*>(data + index), data + index + 1, static_cast<size_t>(count - index - 1) * sizeof(T));
    --count;
  }
};
