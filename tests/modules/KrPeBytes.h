#pragma once
// Fields of a module file's bytes, read and written in place, for the tests
// that build or damage images (any contiguous byte container).

#include <cstddef>
#include <cstring>

template <typename T, typename Bytes>
T krPeGet(const Bytes& bytes, size_t offset) {
  T value;
  memcpy(&value, &bytes[offset], sizeof value);
  return value;
}

template <typename T, typename Bytes>
void krPePut(Bytes& bytes, size_t offset, T value) {
  memcpy(&bytes[offset], &value, sizeof value);
}
