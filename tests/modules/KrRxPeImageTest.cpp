// The PE image reader: a small well-formed image and a dozen ways to break
// it, real module files and mapped modules. Malformed input yields no names.
// (Random damage, with every read checked, is the native fuzz target's job.)

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <windows.h>

#include <cstdint>
#include <cstring>
#include <string>
#include <vector>

#include "KrPeBytes.h"
#include "KrRxModuleTestSupport.h"
#include "modules/KrRxPeImage.h"

using ::testing::AllOf;
using ::testing::Contains;
using ::testing::AnyOf;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

namespace {

// Offsets in the image that buildImage makes.
constexpr size_t kPeOffset = 0x40;
constexpr size_t kFileHeader = kPeOffset + 4;
constexpr size_t kOptionalHeader = kFileHeader + 20;
constexpr size_t kImportDirectory = kOptionalHeader + 120;
constexpr size_t kSectionHeader = kOptionalHeader + 240;
constexpr size_t kSectionData = 0x200;
constexpr uint32_t kSectionRva = 0x1000;

struct Layout {
  bool namesFirst = false;     // names before the descriptors instead of after them
  bool zeroEntry = true;       // the descriptor list ends with a zero entry
  bool terminateLast = true;   // the last name has its terminator
};

// A minimal 64-bit PE image with one section that holds the import
// descriptors of "a.dll" and "b.dll" and their names, ending with the section.
std::vector<unsigned char> buildImage(const Layout& layout = {}) {
  const std::vector<std::string> names = {"a.dll", "b.dll"};
  std::string nameBytes;
  std::vector<uint32_t> nameRvas;
  size_t descriptorBytes = (names.size() + (layout.zeroEntry ? 1 : 0)) * 20;
  uint32_t namesRva = kSectionRva + uint32_t(layout.namesFirst ? 0 : descriptorBytes);
  for (const std::string& name : names) {
    nameRvas.push_back(namesRva + uint32_t(nameBytes.size()));
    nameBytes += name;
    nameBytes.push_back('\0');
  }
  if (!layout.terminateLast) nameBytes.pop_back();
  uint32_t descriptorsRva = kSectionRva + uint32_t(layout.namesFirst ? nameBytes.size() : 0);
  size_t sectionSize = descriptorBytes + nameBytes.size();

  std::vector<unsigned char> image(kSectionData + sectionSize, 0);
  krPePut<uint16_t>(image, 0, 0x5A4D);
  krPePut<uint32_t>(image, 0x3C, kPeOffset);
  krPePut<uint32_t>(image, kPeOffset, 0x00004550);
  krPePut<uint16_t>(image, kFileHeader, 0x8664);
  krPePut<uint16_t>(image, kFileHeader + 2, 1);
  krPePut<uint16_t>(image, kFileHeader + 16, 240);
  krPePut<uint16_t>(image, kOptionalHeader, 0x20B);
  krPePut<uint32_t>(image, kOptionalHeader + 108, 16);
  krPePut<uint32_t>(image, kImportDirectory, descriptorsRva);
  krPePut<uint32_t>(image, kImportDirectory + 4, uint32_t(descriptorBytes));
  krPePut<uint32_t>(image, kSectionHeader + 8, uint32_t(sectionSize));
  krPePut<uint32_t>(image, kSectionHeader + 12, kSectionRva);
  krPePut<uint32_t>(image, kSectionHeader + 16, uint32_t(sectionSize));
  krPePut<uint32_t>(image, kSectionHeader + 20, uint32_t(kSectionData));
  size_t descriptors = kSectionData + (descriptorsRva - kSectionRva);
  for (size_t i = 0; i < names.size(); ++i) krPePut<uint32_t>(image, descriptors + i * 20 + 12, nameRvas[i]);
  memcpy(&image[kSectionData + (namesRva - kSectionRva)], nameBytes.data(), nameBytes.size());
  return image;
}

std::vector<std::string> importsOf(const void* bytes, size_t size,
                                   KrRxPeImage::Layout layout = KrRxPeImage::kFileLayout) {
  std::vector<std::string> names;
  KrRxPeImage(bytes, size, layout).importNames(names);
  return names;
}

std::vector<std::string> exportsOf(const void* bytes, size_t size,
                                   KrRxPeImage::Layout layout = KrRxPeImage::kFileLayout) {
  std::vector<std::string> names;
  KrRxPeImage(bytes, size, layout).exportNames(names);
  return names;
}

std::vector<std::string> namesOf(const std::vector<unsigned char>& image) { return importsOf(image.data(), image.size()); }

TEST(KrRxPeImageTest, AWellFormedImageNamesItsImports) {
  EXPECT_THAT(namesOf(buildImage()), ElementsAre("a.dll", "b.dll"));
  Layout namesFirst;
  namesFirst.namesFirst = true;
  EXPECT_THAT(namesOf(buildImage(namesFirst)), ElementsAre("a.dll", "b.dll"));
}

TEST(KrRxPeImageTest, EveryTruncationYieldsNothing) {
  std::vector<unsigned char> image = buildImage();
  for (size_t size = 0; size < image.size(); ++size)
    ASSERT_THAT(importsOf(image.data(), size), IsEmpty()) << "cut at " << size;
  EXPECT_THAT(importsOf(nullptr, 100), IsEmpty());
}

TEST(KrRxPeImageTest, MalformedHeadersYieldNothing) {
  struct Damage {
    const char* what;
    void (*apply)(std::vector<unsigned char>&);
  };
  const Damage damages[] = {
      {"no DOS signature", [](std::vector<unsigned char>& i) { krPePut<uint16_t>(i, 0, 0x4D5A); }},
      {"e_lfanew past the end", [](std::vector<unsigned char>& i) { krPePut<uint32_t>(i, 0x3C, uint32_t(i.size() - 2)); }},
      {"e_lfanew at 4 GiB", [](std::vector<unsigned char>& i) { krPePut<uint32_t>(i, 0x3C, 0xFFFFFFFCu); }},
      {"no PE signature", [](std::vector<unsigned char>& i) { krPePut<uint32_t>(i, kPeOffset, 0x00004551); }},
      {"32-bit optional header size", [](std::vector<unsigned char>& i) { krPePut<uint16_t>(i, kFileHeader + 16, 224); }},
      {"32-bit magic", [](std::vector<unsigned char>& i) { krPePut<uint16_t>(i, kOptionalHeader, 0x10B); }},
      {"empty import directory", [](std::vector<unsigned char>& i) { krPePut<uint32_t>(i, kImportDirectory + 4, 0); }},
      {"import directory outside every section",
       [](std::vector<unsigned char>& i) { krPePut<uint32_t>(i, kImportDirectory, 0x7000); }},
      {"section table past the end", [](std::vector<unsigned char>& i) { krPePut<uint16_t>(i, kFileHeader + 2, 0xFFFF); }},
      {"optional header size pushing the section table out",
       [](std::vector<unsigned char>& i) { krPePut<uint16_t>(i, kFileHeader + 16, 0xFFF0); }},
      {"section data past the end", [](std::vector<unsigned char>& i) { krPePut<uint32_t>(i, kSectionHeader + 20, 0x7FFFFFF0); }},
      {"descriptor cut by the section's end",
       [](std::vector<unsigned char>& i) {
         krPePut<uint32_t>(i, kImportDirectory, kSectionRva + krPeGet<uint32_t>(i, kSectionHeader + 16) - 8);
       }},
      {"name outside every section",
       [](std::vector<unsigned char>& i) { krPePut<uint32_t>(i, kSectionData + 20 + 12, 0x9000); }},
  };
  for (const Damage& damage : damages) {
    std::vector<unsigned char> image = buildImage();
    damage.apply(image);
    EXPECT_THAT(namesOf(image), IsEmpty()) << damage.what;
  }
}

TEST(KrRxPeImageTest, UnterminatedNamesAndEndlessDescriptorListsYieldNothing) {
  Layout unterminated;
  unterminated.terminateLast = false;
  EXPECT_THAT(namesOf(buildImage(unterminated)), IsEmpty());
  Layout endless;
  endless.namesFirst = true;
  endless.zeroEntry = false;
  EXPECT_THAT(namesOf(buildImage(endless)), IsEmpty());
}

TEST(KrRxPeImageTest, AnImageWithoutImportsIsWellFormed) {
  std::vector<unsigned char> image = buildImage();
  krPePut<uint32_t>(image, kImportDirectory, 0);
  std::vector<std::string> names;
  EXPECT_TRUE(KrRxPeImage(image.data(), image.size()).importNames(names));
  EXPECT_THAT(names, IsEmpty());
  std::vector<unsigned char> noSlot = buildImage();
  krPePut<uint32_t>(noSlot, kOptionalHeader + 108, 1);
  EXPECT_TRUE(KrRxPeImage(noSlot.data(), noSlot.size()).importNames(names));
  EXPECT_THAT(names, IsEmpty()) << "the directory count leaves the import slot out";
}

TEST(KrRxPeImageTest, RealModulesNameTheirImportsExportsAndMachine) {
  std::string user = krReadFile(krTestBinDirectory() + L"user.krx");
  EXPECT_THAT(importsOf(user.data(), user.size()), AllOf(Contains("dependency.krx"), Contains("kr1st20.dll")));
  EXPECT_THAT(exportsOf(user.data(), user.size()), AllOf(Contains("krrxGetApiVersion"), Contains("krrxEntryPoint")));
  KrRxPeImage image(user.data(), user.size());
  EXPECT_TRUE(image.isValid());
  EXPECT_EQ(image.machine(), KrRxPeImage::kMachineX64);
  EXPECT_TRUE(image.isX64Dll());

  std::string program = krReadFile(krTestBinDirectory() + L"modules_linker_tests.exe");
  KrRxPeImage exe(program.data(), program.size());
  EXPECT_TRUE(exe.isValid());
  EXPECT_FALSE(exe.isX64Dll()) << "a program, not a DLL";
  EXPECT_FALSE(KrRxPeImage(user.data(), 0x100).isValid());
  EXPECT_FALSE(KrRxPeImage(nullptr, 4096).isX64Dll());
}

// What krhost check's runtime verdict rests on: the functions a module imports from the runtime.
TEST(KrRxPeImageTest, RealModulesNameTheFunctionsTheyImportFromTheRuntime) {
  auto runtimeImportsOf = [](const std::string& bytes, bool& readable) {
    std::vector<std::string> names;
    readable = KrRxPeImage(bytes.data(), bytes.size()).importedFunctionNames("KR1ST20.DLL", names);
    return names;
  };
  bool readable = false;
  std::string newer = krReadFile(krTestBinDirectory() + L"newerruntime.krx");
  EXPECT_THAT(runtimeImportsOf(newer, readable), ElementsAre("krrxFunctionOfANewerRuntime"));
  EXPECT_TRUE(readable);

  std::string good = krReadFile(krTestBinDirectory() + L"good.krx");
  EXPECT_THAT(runtimeImportsOf(good, readable), Contains("_Z21krrxUnlockApplicationPv"));
  std::vector<std::string> none;
  EXPECT_TRUE(KrRxPeImage(good.data(), good.size()).importedFunctionNames("nosuch.dll", none));
  EXPECT_TRUE(none.empty());
  EXPECT_THAT(runtimeImportsOf(good.substr(0, 1024), readable), IsEmpty());
  EXPECT_FALSE(readable) << "the import data lies beyond the bytes given";
}

TEST(KrRxPeImageTest, AMappedModuleReadsAtItsVirtualAddresses) {
  HMODULE module = GetModuleHandleW(L"KRDB20.DLL");
  ASSERT_NE(module, nullptr);
  auto* base = reinterpret_cast<const unsigned char*>(module);
  auto* headers = reinterpret_cast<const IMAGE_NT_HEADERS64*>(base + reinterpret_cast<const IMAGE_DOS_HEADER*>(base)->e_lfanew);
  size_t size = headers->OptionalHeader.SizeOfImage;
  EXPECT_THAT(exportsOf(base, size, KrRxPeImage::kMappedLayout), Contains("krdbTestMessageCount"));
  EXPECT_THAT(importsOf(base, size, KrRxPeImage::kMappedLayout), Contains(AnyOf("KERNEL32.dll", "kernel32.dll")));
}

}  // namespace
