// The runtime's heap: thin wrappers over the C runtime heap so that every
// module allocates and frees from the same place.

#include "krheap.h"

#include <cstdlib>
#include <cwchar>
#include <malloc.h>
#include <new>

extern "C" int __cdecl _callnewh(size_t size);

void* __krMalloc(size_t size) { return malloc(size); }
void* __krRealloc(void* ptr, size_t size) { return realloc(ptr, size); }
void __krFree(void* ptr) { free(ptr); }
size_t __krMsize(void* ptr) { return _msize(ptr); }
wchar_t* __krStrdup(const wchar_t* text) { return _wcsdup(text); }
void* __krCalloc(size_t count, size_t size) { return calloc(count, size); }

namespace {

// The allocation-failure object is built once and copied for each throw.
[[noreturn]] void throwBadAlloc() {
  static const std::bad_alloc failure;
  throw failure;
}

}  // namespace

void* KrHeapOperators::allocRawMem(size_t size) {
  for (;;) {
    if (void* block = malloc(size)) return block;
    if (!_callnewh(size)) throwBadAlloc();
  }
}

void* KrHeapOperators::allocRawMem(size_t size, const char*, int) { return allocRawMem(size); }
void KrHeapOperators::freeRawMem(void* p) { free(p); }
void KrHeapOperators::freeRawMem(void* p, const char*, int) { free(p); }

void* KrHeapOperators::operator new(size_t size) { return allocRawMem(size); }
void* KrHeapOperators::operator new[](size_t size) { return allocRawMem(size); }
void* KrHeapOperators::operator new(size_t size, const char* file, int line) {
  return allocRawMem(size, file, line);
}
void* KrHeapOperators::operator new[](size_t size, const char* file, int line) {
  return allocRawMem(size, file, line);
}
void KrHeapOperators::operator delete(void* p) { freeRawMem(p); }
void KrHeapOperators::operator delete[](void* p) { freeRawMem(p); }
void KrHeapOperators::operator delete(void* p, const char* file, int line) { freeRawMem(p, file, line); }
void KrHeapOperators::operator delete[](void* p, const char* file, int line) {
  freeRawMem(p, file, line);
}
