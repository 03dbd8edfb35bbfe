#include "modules/KrRxPeImage.h"

#include <cctype>
#include <cstring>

namespace {

constexpr uint16_t kDosSignature = 0x5A4D;
constexpr uint32_t kPeSignature = 0x00004550;
constexpr uint16_t kPe32PlusMagic = 0x20B;
constexpr uint16_t kFileIsDll = 0x2000;
constexpr uint16_t kMinOptionalHeaderSize = 240;
// In the 64-bit optional header: the directory count and the directories.
constexpr size_t kDirectoryCountOffset = 108;
constexpr size_t kDirectoriesOffset = 112;
constexpr uint32_t kExportDirectory = 0;
constexpr uint32_t kImportDirectory = 1;
constexpr size_t kSectionHeaderSize = 40;
constexpr size_t kImportDescriptorSize = 20;
constexpr size_t kImportDescriptorNameOffset = 12;
constexpr size_t kImportDescriptorAddressOffset = 16;
constexpr size_t kLookupEntrySize = 8;
constexpr uint64_t kImportByOrdinal = 1ull << 63;
constexpr uint32_t kHintSize = 2;
constexpr size_t kExportNameCountOffset = 24;
constexpr size_t kExportNameTableOffset = 32;

// Runs read into a list of its own and appends that list to names only
// when read succeeds: a damaged image adds no partial list.
template <typename Read>
bool appendAllOrNothing(std::vector<std::string>& names, Read read) {
  std::vector<std::string> found;
  if (!read(found)) return false;
  names.insert(names.end(), found.begin(), found.end());
  return true;
}

bool sameAsciiName(const std::string& a, const std::string& b) {
  if (a.size() != b.size()) return false;
  for (size_t i = 0; i < a.size(); ++i)
    if (tolower(static_cast<unsigned char>(a[i])) != tolower(static_cast<unsigned char>(b[i]))) return false;
  return true;
}

}  // namespace

KrRxPeImage::KrRxPeImage(const void* data, size_t size, Layout layout)
    : mData(static_cast<const unsigned char*>(data)), mSize(data ? size : 0), mLayout(layout) {
  mValid = readHeaders();
  if (!mValid) mSections.clear();
}

template <typename T>
bool KrRxPeImage::read(size_t offset, T& value) const {
  if (offset > mSize || sizeof(T) > mSize - offset) return false;
  memcpy(&value, mData + offset, sizeof(T));
  return true;
}

bool KrRxPeImage::readHeaders() {
  uint16_t dosSignature, sectionCount, optionalHeaderSize, characteristics, magic;
  uint32_t peOffset, peSignature;
  if (!read(0, dosSignature) || dosSignature != kDosSignature) return false;
  if (!read(0x3C, peOffset) || !read(peOffset, peSignature) || peSignature != kPeSignature) return false;
  size_t fileHeader = size_t(peOffset) + 4;
  if (!read(fileHeader, mMachine) || !read(fileHeader + 2, sectionCount) ||
      !read(fileHeader + 16, optionalHeaderSize) || !read(fileHeader + 18, characteristics))
    return false;
  mIsDll = characteristics & kFileIsDll;
  mOptionalHeader = fileHeader + 20;
  if (optionalHeaderSize < kMinOptionalHeaderSize || !read(mOptionalHeader, magic) || magic != kPe32PlusMagic ||
      !read(mOptionalHeader + kDirectoryCountOffset, mDirectoryCount))
    return false;
  size_t table = mOptionalHeader + optionalHeaderSize;
  if (table > mSize || size_t(sectionCount) * kSectionHeaderSize > mSize - table) return false;
  mSections.resize(sectionCount);
  for (uint16_t i = 0; i < sectionCount; ++i) {
    size_t header = table + i * kSectionHeaderSize;
    Section& section = mSections[i];
    read(header + 8, section.virtualSize);
    read(header + 12, section.virtualAddress);
    read(header + 16, section.rawSize);
    read(header + 20, section.rawOffset);
  }
  return true;
}

// Directories beyond the header's count are absent; the first 16 lie inside
// the 240 bytes that every accepted optional header has.
bool KrRxPeImage::readDirectory(uint32_t index, Directory& directory) const {
  directory = {0, 0};
  return index >= mDirectoryCount || read(mOptionalHeader + kDirectoriesOffset + index * 8, directory);
}

bool KrRxPeImage::locate(uint32_t rva, size_t& offset, size_t& available) const {
  for (const Section& section : mSections) {
    // Mapped, a section spans its virtual size (its raw size when that is unset).
    uint32_t extent = mLayout == kFileLayout || !section.virtualSize ? section.rawSize : section.virtualSize;
    if (rva < section.virtualAddress || rva - section.virtualAddress >= extent) continue;
    uint32_t delta = rva - section.virtualAddress;
    offset = mLayout == kFileLayout ? size_t(section.rawOffset) + delta : size_t(rva);
    available = extent - delta;
    return offset < mSize;
  }
  return false;
}

bool KrRxPeImage::readText(uint32_t rva, std::string& text) const {
  size_t offset, available;
  if (!locate(rva, offset, available)) return false;
  if (available > mSize - offset) available = mSize - offset;
  const void* end = memchr(mData + offset, 0, available);
  if (!end) return false;
  text.assign(reinterpret_cast<const char*>(mData + offset), static_cast<const unsigned char*>(end) - (mData + offset));
  return true;
}

template <typename Visit>
bool KrRxPeImage::forEachImportDescriptor(Visit visit) const {
  Directory imports;
  if (!readDirectory(kImportDirectory, imports)) return false;
  if (!imports.rva || !imports.size) return true;
  size_t descriptor, available;
  if (!locate(imports.rva, descriptor, available)) return false;
  for (;; descriptor += kImportDescriptorSize, available -= kImportDescriptorSize) {
    uint32_t nameRva;
    if (available < kImportDescriptorSize || !read(descriptor + kImportDescriptorNameOffset, nameRva)) return false;
    if (!nameRva) return true;
    std::string name;
    if (!readText(nameRva, name) || !visit(descriptor, name)) return false;
  }
}

bool KrRxPeImage::readImportNames(std::vector<std::string>& names) const {
  return forEachImportDescriptor([&names](size_t, const std::string& name) {
    names.push_back(name);
    return true;
  });
}

// A lookup table's 64-bit entries end with zero; the top bit marks an import
// by ordinal, otherwise the low 31 bits locate a 2-byte hint and the name.
bool KrRxPeImage::readLookupTable(uint32_t rva, std::vector<std::string>& names) const {
  size_t entry, available;
  if (!locate(rva, entry, available)) return false;
  for (;; entry += kLookupEntrySize, available -= kLookupEntrySize) {
    uint64_t value;
    if (available < kLookupEntrySize || !read(entry, value)) return false;
    if (!value) return true;
    std::string name;
    if (value & kImportByOrdinal)
      name = "#" + std::to_string(value & 0xFFFF);
    else if (!readText(uint32_t(value & 0x7FFFFFFF) + kHintSize, name))
      return false;
    names.push_back(name);
  }
}

bool KrRxPeImage::readImportedFunctionNames(const std::string& library, std::vector<std::string>& names) const {
  return forEachImportDescriptor([&](size_t descriptor, const std::string& name) {
    if (!sameAsciiName(name, library)) return true;
    uint32_t lookupRva, addressRva;
    if (!read(descriptor, lookupRva) || !read(descriptor + kImportDescriptorAddressOffset, addressRva)) return false;
    return readLookupTable(lookupRva ? lookupRva : addressRva, names);
  });
}

bool KrRxPeImage::readExportNames(std::vector<std::string>& names) const {
  Directory exports;
  if (!readDirectory(kExportDirectory, exports)) return false;
  if (!exports.rva || !exports.size) return true;
  size_t directory, available;
  uint32_t nameCount, nameTableRva;
  if (!locate(exports.rva, directory, available) || available < kExportNameTableOffset + 4 ||
      !read(directory + kExportNameCountOffset, nameCount) || !read(directory + kExportNameTableOffset, nameTableRva))
    return false;
  if (!nameCount) return true;
  size_t table;
  if (!locate(nameTableRva, table, available) || available / 4 < nameCount) return false;
  for (uint32_t i = 0; i < nameCount; ++i) {
    uint32_t nameRva;
    std::string name;
    if (!read(table + size_t(i) * 4, nameRva) || !readText(nameRva, name)) return false;
    names.push_back(name);
  }
  return true;
}

bool KrRxPeImage::importNames(std::vector<std::string>& names) const {
  return mValid && appendAllOrNothing(names, [&](std::vector<std::string>& found) { return readImportNames(found); });
}

bool KrRxPeImage::importedFunctionNames(const std::string& library, std::vector<std::string>& names) const {
  return mValid && appendAllOrNothing(names, [&](std::vector<std::string>& found) {
           return readImportedFunctionNames(library, found);
         });
}

bool KrRxPeImage::exportNames(std::vector<std::string>& names) const {
  return mValid && appendAllOrNothing(names, [&](std::vector<std::string>& found) { return readExportNames(found); });
}
