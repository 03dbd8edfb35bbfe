#pragma once
/// @file
/// One heap for the library and every module: all blocks come from the
/// process's C runtime heap, so a block allocated on one side of a module
/// boundary may be freed on the other.

#include <cstddef>
#include "krexport.h"

extern "C" {
/// The C runtime heap functions (malloc, realloc, free, _msize, wcsdup, calloc) as the runtime and every module share them.
///@{
KR1ST_API void* __krMalloc(size_t size);
KR1ST_API void* __krRealloc(void* ptr, size_t size);
KR1ST_API void __krFree(void* ptr);
KR1ST_API size_t __krMsize(void* ptr);
KR1ST_API wchar_t* __krStrdup(const wchar_t* text);
KR1ST_API void* __krCalloc(size_t count, size_t size);
///@}
}

/// Base for classes that are to live on the runtime's heap. The new
/// operators throw std::bad_alloc when memory stays short after the C
/// runtime's new handler had its chance; every delete is free().
class KR1ST_API KrHeapOperators {
 public:
  /// Allocation from the runtime's heap (the file and line forms are for debug builds and ignore both); release with free().
  ///@{
  static void* operator new(size_t size);
  static void* operator new[](size_t size);
  static void* operator new(size_t size, const char* file, int line);
  static void* operator new[](size_t size, const char* file, int line);
  static void operator delete(void* p);
  static void operator delete[](void* p);
  static void operator delete(void* p, const char* file, int line);
  static void operator delete[](void* p, const char* file, int line);
  ///@}

 private:
  static void* allocRawMem(size_t size);
  static void* allocRawMem(size_t size, const char* file, int line);
  static void freeRawMem(void* p);
  static void freeRawMem(void* p, const char* file, int line);
};
