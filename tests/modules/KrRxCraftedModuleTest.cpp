// Malformed module files, made here from a good one: the linker refuses
// each with a message, keeps no trace of it, and the process goes on.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <windows.h>

#include <cstdint>
#include <cstring>
#include <functional>
#include <string>
#include <vector>

#include "KrPeBytes.h"
#include "KrRxModuleTestSupport.h"
#include "krdb20.h"

using ::testing::ElementsAre;

namespace {

// Field offsets of the 64-bit headers, from the PE signature on.
constexpr size_t kMachine = 4;
constexpr size_t kSectionCount = 6;
constexpr size_t kCharacteristics = 22;
constexpr size_t kOptionalHeader = 24;
constexpr size_t kEntryPoint = kOptionalHeader + 16;
constexpr size_t kSizeOfImage = kOptionalHeader + 56;
constexpr size_t kImportDirectory = kOptionalHeader + 120;

size_t peOffset(const std::string& bytes) { return krPeGet<uint32_t>(bytes, 0x3C); }

// The file offset of rva in a well-formed file, and the end of its section's raw data.
size_t fileOffset(const std::string& bytes, uint32_t rva, size_t* sectionEnd = nullptr) {
  size_t pe = peOffset(bytes);
  size_t table = pe + kOptionalHeader + krPeGet<uint16_t>(bytes, pe + 20);
  for (uint16_t i = 0; i < krPeGet<uint16_t>(bytes, pe + kSectionCount); ++i) {
    size_t header = table + i * 40;
    uint32_t start = krPeGet<uint32_t>(bytes, header + 12), size = krPeGet<uint32_t>(bytes, header + 16);
    uint32_t raw = krPeGet<uint32_t>(bytes, header + 20);
    if (rva >= start && rva - start < size) {
      if (sectionEnd) *sectionEnd = raw + size;
      return raw + (rva - start);
    }
  }
  ADD_FAILURE() << "rva " << rva << " lies in no section";
  return 0;
}

// The first import name of good.krx runs on, without terminator, to the end of its section.
void unterminateFirstImportName(std::string& bytes) {
  size_t pe = peOffset(bytes);
  size_t descriptor = fileOffset(bytes, krPeGet<uint32_t>(bytes, pe + kImportDirectory));
  size_t end = 0;
  size_t name = fileOffset(bytes, krPeGet<uint32_t>(bytes, descriptor + 12), &end);
  memset(&bytes[name], 'A', end - name);
}

// How the linker refuses a file: the loader finds no image in it, or the
// probe maps it and the broken signature stops it before any of its code runs.
enum Refusal { kNoImage, kBrokenSignature };

struct Crafted {
  const char* what;
  Refusal refusal;
  std::function<void(std::string&)> craft;
};

std::wstring widen(const char* text) { return std::wstring(text, text + strlen(text)); }

class CraftedModuleTest : public ::testing::Test {
 protected:
  void SetUp() override {
    CreateDirectoryW(mFolder.c_str(), nullptr);
    krdbTestClearMessages();
  }
  void TearDown() override {
    for (const std::wstring& path : mMade) DeleteFileW(path.c_str()) || RemoveDirectoryW(path.c_str());
    RemoveDirectoryW(mFolder.c_str());
  }

  std::wstring write(const char* name, const std::string& bytes) {
    std::wstring path = mFolder + widen(name) + L".krx";
    krWriteFile(path, bytes);
    mMade.push_back(path);
    return path;
  }

  std::wstring mFolder = krTestBinDirectory() + L"crafted\\";
  std::vector<std::wstring> mMade;
};

TEST_F(CraftedModuleTest, EachMalformedFileIsRefusedWithAMessage) {
  const std::string good = krReadFile(krTestBinDirectory() + L"good.krx");
  ASSERT_GT(good.size(), 4096u);
  const size_t pe = peOffset(good);
  const Crafted crafted[] = {
      {"zero-byte", kNoImage, [](std::string& b) { b.clear(); }},
      {"plain-text", kNoImage, [](std::string& b) { b = "This is not a module.\r\n"; }},
      {"dos-header-only", kNoImage, [](std::string& b) { b.resize(64); }},
      {"truncated-headers", kNoImage, [pe](std::string& b) { b.resize(pe + 100); }},
      {"truncated-sections", kNoImage, [](std::string& b) { b.resize(b.size() / 2); }},
      {"no-pe-signature", kNoImage, [pe](std::string& b) { krPePut<uint32_t>(b, pe, 0x00004551); }},
      {"pe-header-past-the-end", kNoImage, [](std::string& b) { krPePut<uint32_t>(b, 0x3C, 0x7FFFFFF0); }},
      {"section-table-past-the-end", kNoImage, [pe](std::string& b) { krPePut<uint16_t>(b, pe + kSectionCount, 0xFFFF); }},
      {"32-bit-machine", kNoImage, [pe](std::string& b) { krPePut<uint16_t>(b, pe + kMachine, 0x014C); }},
      {"arm64-machine", kNoImage, [pe](std::string& b) { krPePut<uint16_t>(b, pe + kMachine, 0xAA64); }},
      {"size-of-image-zero", kNoImage, [pe](std::string& b) { krPePut<uint32_t>(b, pe + kSizeOfImage, 0); }},
      {"import-directory-outside-the-file", kBrokenSignature,
       [pe](std::string& b) { krPePut<uint32_t>(b, pe + kImportDirectory, 0x7FFF0000); }},
      {"import-name-without-terminator", kBrokenSignature, unterminateFirstImportName},
      {"a-program", kBrokenSignature,
       [pe](std::string& b) { krPePut<uint16_t>(b, pe + kCharacteristics, krPeGet<uint16_t>(b, pe + kCharacteristics) & ~0x2000); }},
      {"entry-point-outside-the-image", kBrokenSignature,
       [pe](std::string& b) { krPePut<uint32_t>(b, pe + kEntryPoint, 0x7FFFFFF0); }},
  };
  for (const Crafted& module : crafted) {
    std::string bytes = good;
    module.craft(bytes);
    std::wstring path = write(module.what, bytes);
    EXPECT_FALSE(krrxLoadModule(path.c_str(), true, true)) << module.what;
    std::wstring reason = module.refusal == kNoImage
                              ? krSystemText(ERROR_BAD_EXE_FORMAT)
                              : L"Runtime Extension '" + path + L"' could not been loaded\n";
    EXPECT_THAT(krdbTestTakeMessages(), ElementsAre(reason, L"Failed to load '" + path + L"'\n")) << module.what;
    EXPECT_EQ(krTestLinker()->numberOfAppsLoaded(), 0u) << module.what;
    EXPECT_EQ(GetModuleHandleW(path.c_str()), nullptr) << module.what;
  }

  std::wstring folder = mFolder + L"folder.krx";
  ASSERT_TRUE(CreateDirectoryW(folder.c_str(), nullptr));
  mMade.push_back(folder);
  EXPECT_FALSE(krrxLoadModule(folder.c_str(), true, true)) << "a directory named like a module";
  EXPECT_THAT(krdbTestTakeMessages(),
              ElementsAre(krSystemText(ERROR_ACCESS_DENIED), L"Failed to load '" + folder + L"'\n"));

  ASSERT_TRUE(krrxLoadModule(L"good.krx", false, true)) << "the linker goes on";
  EXPECT_TRUE(krrxUnloadModule(L"good.krx", true));
  krdbTestTakeMessages();
}

}  // namespace
