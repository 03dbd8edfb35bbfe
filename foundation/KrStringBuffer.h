#pragma once
// The shared text buffers behind KrString's two forms. A buffer is one block
// from the C runtime's aligned allocator (alignment 4): a 16-bit reference
// count, then the text and its terminator. A string keeps a pointer to the
// text; the count sits just before it. The capacity is not stored: it is the
// block's size as the allocator reports it, less 4 bytes.

#include <malloc.h>

#include <cstddef>
#include <cstdint>
#include <cstring>

// The size of a block from _aligned_malloc, as _aligned_msize(block, 4, 0)
// reports it (the msvcrt import library does not provide that function).
// The allocator keeps the address of the underlying malloc block in the
// pointer-sized slot just below the aligned block, and asks malloc for the
// requested size plus a fixed overhead that differs between C runtimes;
// that overhead is measured once on a probe block.
inline size_t krAlignedBlockSize(const void* block) {
  struct Slot {
    static void* underlying(const void* aligned) {
      uintptr_t slot = (reinterpret_cast<uintptr_t>(aligned) - sizeof(void*)) & ~(sizeof(void*) - 1);
      return *reinterpret_cast<void* const*>(slot);
    }
    static size_t measureOverhead() {
      void* probe = _aligned_malloc(1, 4);
      size_t overhead = _msize(underlying(probe)) - 1;
      _aligned_free(probe);
      return overhead;
    }
  };
  static const size_t overhead = Slot::measureOverhead();
  return _msize(Slot::underlying(block)) - overhead;
}

template <typename Char>
struct KrStringBuffer {
  // Bytes of a buffer beyond its characters: the count, the terminator and,
  // for the narrow form, one spare byte.
  static constexpr size_t kOverhead = 4;

  static uint16_t* countOf(const Char* text) {
    return reinterpret_cast<uint16_t*>(const_cast<char*>(reinterpret_cast<const char*>(text)) - sizeof(uint16_t));
  }

  // A new buffer for chars characters, held once and holding the empty
  // text; null when memory is short.
  static Char* allocate(size_t chars) {
    void* block = _aligned_malloc(chars * sizeof(Char) + kOverhead, 4);
    if (!block) return nullptr;
    memset(block, 0, sizeof(uint16_t) + sizeof(Char));
    __atomic_fetch_add(static_cast<uint16_t*>(block), 1, __ATOMIC_RELAXED);
    return reinterpret_cast<Char*>(static_cast<char*>(block) + sizeof(uint16_t));
  }

  // A new buffer holding the first chars characters of text, terminated.
  static Char* copyOf(const Char* text, size_t chars) {
    Char* copy = allocate(chars);
    if (!copy) return nullptr;
    memcpy(copy, text, chars * sizeof(Char));
    copy[chars] = 0;
    return copy;
  }

  static void retain(Char* text) {
    if (text) __atomic_fetch_add(countOf(text), 1, __ATOMIC_RELAXED);
  }

  // Drops one holder (an add of 65,535 to the 16-bit count); the holder that
  // takes the count from 1 to 0 frees the buffer.
  static void release(Char* text) {
    if (text && __atomic_fetch_add(countOf(text), 0xFFFF, __ATOMIC_ACQ_REL) == 1) _aligned_free(countOf(text));
  }

  static uint16_t holders(const Char* text) { return __atomic_load_n(countOf(text), __ATOMIC_ACQUIRE); }

  // Characters the buffer has room for, terminator excluded.
  static size_t capacity(const Char* text) {
    return (krAlignedBlockSize(countOf(text)) - kOverhead) / sizeof(Char);
  }

  // Gives *text a buffer of its own before an in-place edit. The copy is
  // capacity bytes long: the whole narrow text, but only the first half of a
  // wide buffer; the rest of a wide copy is left as the allocator returned
  // it, bounded by a terminator at the end of the capacity.
  static void makeUnshared(Char*& text) {
    if (!text || holders(text) < 2) return;
    size_t chars = capacity(text);
    Char* own = allocate(chars);
    if (own) {
      memcpy(own, text, chars);
      own[chars] = 0;
    }
    release(text);
    text = own;
  }
};
