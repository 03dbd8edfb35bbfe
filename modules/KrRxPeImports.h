#pragma once
// Reads the names of the libraries that a 64-bit PE file imports, straight
// from the file, without loading it. Every offset in the file is checked
// against the bytes present: a malformed file yields no names at all,
// never a read outside the image.

#include <cstddef>
#include <string>
#include <vector>

// The imported library names of the PE image held in [image, image + size),
// in import-descriptor order. Empty unless the image carries the DOS and PE
// signatures, a 64-bit optional header (at least 240 bytes) with a non-empty
// import directory, and descriptors and names that lie wholly inside the
// image's sections, the descriptor list ending with a zero entry.
std::vector<std::string> krrxPeImportNames(const unsigned char* image, size_t size);

// The same for the file at path, mapped for reading; empty when it cannot be.
std::vector<std::string> krrxPeImportNamesOfFile(const wchar_t* path);
