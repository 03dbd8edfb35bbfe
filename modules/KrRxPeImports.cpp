#include "modules/KrRxPeImports.h"

#include <windows.h>

#include <cstdint>
#include <cstring>

namespace {

constexpr uint16_t kDosSignature = 0x5A4D;
constexpr uint32_t kPeSignature = 0x00004550;
constexpr uint16_t kPe32PlusMagic = 0x20B;
constexpr uint16_t kMinOptionalHeaderSize = 240;
constexpr size_t kImportDirectoryOffset = 120;  // DataDirectory[1] in the 64-bit optional header
constexpr size_t kSectionHeaderSize = 40;
constexpr size_t kImportDescriptorSize = 20;
constexpr size_t kImportDescriptorNameOffset = 12;

// Bounds-checked reads from the image.
class Image {
 public:
  Image(const unsigned char* data, size_t size) : mData(data), mSize(size) {}

  template <typename T>
  bool read(size_t offset, T& value) const {
    if (offset > mSize || sizeof(T) > mSize - offset) return false;
    memcpy(&value, mData + offset, sizeof(T));
    return true;
  }

  // The zero-terminated text at offset whose terminator lies before offset + limit.
  bool readText(size_t offset, size_t limit, std::string& text) const {
    if (offset >= mSize) return false;
    size_t available = mSize - offset < limit ? mSize - offset : limit;
    const void* end = memchr(mData + offset, 0, available);
    if (!end) return false;
    text.assign(reinterpret_cast<const char*>(mData + offset), static_cast<const unsigned char*>(end) - (mData + offset));
    return true;
  }

 private:
  const unsigned char* mData;
  size_t mSize;
};

struct Section {
  uint32_t virtualAddress;
  uint32_t rawSize;
  uint32_t rawOffset;
};

// The file bytes behind the relative addresses of the image's sections.
class SectionMap {
 public:
  bool load(const Image& image, size_t tableOffset, uint16_t count) {
    for (uint16_t i = 0; i < count; ++i) {
      size_t header = tableOffset + i * kSectionHeaderSize;
      Section section;
      if (!image.read(header + 12, section.virtualAddress) || !image.read(header + 16, section.rawSize) ||
          !image.read(header + 20, section.rawOffset))
        return false;
      mSections.push_back(section);
    }
    return true;
  }

  // The file offset of rva and the number of the section's bytes from there on.
  bool locate(uint32_t rva, size_t& offset, size_t& available) const {
    for (const Section& section : mSections) {
      if (rva < section.virtualAddress || rva - section.virtualAddress >= section.rawSize) continue;
      uint32_t delta = rva - section.virtualAddress;
      offset = size_t(section.rawOffset) + delta;
      available = section.rawSize - delta;
      return true;
    }
    return false;
  }

 private:
  std::vector<Section> mSections;
};

bool readImportNames(const Image& image, std::vector<std::string>& names) {
  uint16_t dosSignature;
  uint32_t peOffset, peSignature;
  if (!image.read(0, dosSignature) || dosSignature != kDosSignature) return false;
  if (!image.read(0x3C, peOffset) || !image.read(peOffset, peSignature) || peSignature != kPeSignature) return false;
  size_t fileHeader = size_t(peOffset) + 4;
  uint16_t sectionCount, optionalHeaderSize, magic;
  if (!image.read(fileHeader + 2, sectionCount) || !image.read(fileHeader + 16, optionalHeaderSize)) return false;
  size_t optionalHeader = fileHeader + 20;
  if (optionalHeaderSize < kMinOptionalHeaderSize || !image.read(optionalHeader, magic) || magic != kPe32PlusMagic)
    return false;
  uint32_t importRva, importSize;
  if (!image.read(optionalHeader + kImportDirectoryOffset, importRva) ||
      !image.read(optionalHeader + kImportDirectoryOffset + 4, importSize) || !importRva || !importSize)
    return false;

  SectionMap sections;
  if (!sections.load(image, optionalHeader + optionalHeaderSize, sectionCount)) return false;
  size_t descriptor, available;
  if (!sections.locate(importRva, descriptor, available)) return false;
  for (;; descriptor += kImportDescriptorSize, available -= kImportDescriptorSize) {
    uint32_t nameRva;
    if (available < kImportDescriptorSize || !image.read(descriptor + kImportDescriptorNameOffset, nameRva))
      return false;
    if (!nameRva) return true;
    size_t nameOffset, nameAvailable;
    std::string name;
    if (!sections.locate(nameRva, nameOffset, nameAvailable) || !image.readText(nameOffset, nameAvailable, name))
      return false;
    names.push_back(name);
  }
}

// A read-only view of a whole file, unmapped when it goes.
class MappedFile {
 public:
  explicit MappedFile(const wchar_t* path) {
    HANDLE file = CreateFileW(path, GENERIC_READ, FILE_SHARE_READ, nullptr, OPEN_EXISTING, 0, nullptr);
    if (file == INVALID_HANDLE_VALUE) return;
    LARGE_INTEGER size;
    if (GetFileSizeEx(file, &size) && size.QuadPart > 0) {
      if (HANDLE mapping = CreateFileMappingW(file, nullptr, PAGE_READONLY, 0, 0, nullptr)) {
        mView = static_cast<const unsigned char*>(MapViewOfFile(mapping, FILE_MAP_READ, 0, 0, 0));
        if (mView) mSize = size_t(size.QuadPart);
        CloseHandle(mapping);
      }
    }
    CloseHandle(file);
  }
  MappedFile(const MappedFile&) = delete;
  MappedFile& operator=(const MappedFile&) = delete;
  ~MappedFile() {
    if (mView) UnmapViewOfFile(mView);
  }

  const unsigned char* data() const { return mView; }
  size_t size() const { return mSize; }

 private:
  const unsigned char* mView = nullptr;
  size_t mSize = 0;
};

}  // namespace

std::vector<std::string> krrxPeImportNames(const unsigned char* image, size_t size) {
  std::vector<std::string> names;
  if (!image || !readImportNames(Image(image, size), names)) names.clear();
  return names;
}

std::vector<std::string> krrxPeImportNamesOfFile(const wchar_t* path) {
  if (!path) return {};
  MappedFile file(path);
  return krrxPeImportNames(file.data(), file.size());
}
