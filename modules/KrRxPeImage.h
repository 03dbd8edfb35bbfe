#pragma once
// Reads a 64-bit PE image held in memory without loading it: its machine
// and kind, the libraries it imports and the names it exports. The reader
// is pure over the bytes (no file or system calls, no Windows headers), so
// the linker, the host's module check and the fuzzers share it. Every
// offset is checked against the bytes present: a malformed image yields
// nothing, never a read outside them.
//
//   std::string bytes = ...;  // a module file's contents
//   KrRxPeImage image(bytes.data(), bytes.size());
//   std::vector<std::string> imports, exports;
//   if (image.isX64Dll() && image.importNames(imports) && image.exportNames(exports)) ...

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

class KrRxPeImage {
 public:
  // Where the sections lie in the bytes: at their raw offsets, as in the
  // file, or at their relative virtual addresses, as the system maps them.
  enum Layout { kFileLayout, kMappedLayout };

  static constexpr uint16_t kMachineX64 = 0x8664;

  // Reads the headers and the section table of [data, data + size); the
  // bytes must stay in place while the reader is used.
  KrRxPeImage(const void* data, size_t size, Layout layout = kFileLayout);

  // True when the bytes carry the DOS and PE signatures, a 64-bit optional
  // header (magic 0x20B, at least 240 bytes) and a section table inside them.
  bool isValid() const { return mValid; }
  // The file header's machine field; 0 when the PE headers are unreadable.
  uint16_t machine() const { return mMachine; }
  // The file header marks the image as a DLL (readable headers needed).
  bool isDll() const { return mIsDll; }
  // Valid, machine x64 and a DLL: what the linker can load into this process.
  bool isX64Dll() const { return mValid && mMachine == kMachineX64 && mIsDll; }

  // Appends the imported library names in descriptor order. False, with no
  // names appended, when the image is invalid or its import descriptors or
  // names leave the sections; true with none when it imports nothing.
  bool importNames(std::vector<std::string>& names) const;
  // Appends the exported names in the export directory's order; false, with
  // none appended, when the image is invalid or the export data is damaged.
  bool exportNames(std::vector<std::string>& names) const;
  // Appends the names of the functions and data imported from library (its
  // name compared ignoring ASCII case, every descriptor of that name), in
  // lookup-table order; an import by ordinal appears as "#<ordinal>". False,
  // with none appended, when the image is invalid or its import data leaves
  // the sections.
  bool importedFunctionNames(const std::string& library, std::vector<std::string>& names) const;

 private:
  struct Section {
    uint32_t virtualAddress;
    uint32_t virtualSize;
    uint32_t rawSize;
    uint32_t rawOffset;
  };
  struct Directory {
    uint32_t rva;
    uint32_t size;
  };

  bool readHeaders();
  bool readDirectory(uint32_t index, Directory& directory) const;
  // The offset of rva in the bytes and how many bytes of its section follow.
  bool locate(uint32_t rva, size_t& offset, size_t& available) const;
  template <typename T>
  bool read(size_t offset, T& value) const;
  // The text at rva, ended by a zero inside its section.
  bool readText(uint32_t rva, std::string& text) const;
  // Calls visit(descriptor offset, library name) for each import descriptor
  // in order while it answers true; false when the descriptors leave the
  // sections or visit answered false.
  template <typename Visit>
  bool forEachImportDescriptor(Visit visit) const;
  bool readLookupTable(uint32_t rva, std::vector<std::string>& names) const;
  bool readImportNames(std::vector<std::string>& names) const;
  bool readImportedFunctionNames(const std::string& library, std::vector<std::string>& names) const;
  bool readExportNames(std::vector<std::string>& names) const;

  const unsigned char* mData;
  size_t mSize;
  Layout mLayout;
  bool mValid = false;
  bool mIsDll = false;
  uint16_t mMachine = 0;
  size_t mOptionalHeader = 0;
  uint32_t mDirectoryCount = 0;
  std::vector<Section> mSections;
};
