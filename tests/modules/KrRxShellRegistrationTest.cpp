// Shell registration of the module file types, installed and removed by
// Wine's own regsvr32.exe (which calls DllInstall) and checked in the real
// registry. Wine can tell one program that it runs on another Windows
// version, so each version branch is exercised by a real regsvr32 run.

#include <gtest/gtest.h>

#include <windows.h>

#include <cstdint>
#include <cwchar>
#include <initializer_list>
#include <ostream>
#include <string>

#include "KrRegistryTestSupport.h"

namespace {

struct ModuleFileType {
  const wchar_t* extension;
  const wchar_t* identifier;
  const wchar_t* friendlyName;
  const wchar_t* icon;
  const wchar_t* classicIcon;
  const wchar_t* oldIdentifier;
};

const ModuleFileType kModuleFileTypes[] = {
    {L".kra", L"Kestrune.Application.Extension", L"Kestrune Application", L"imageres.dll,63", L"shell32.dll,169",
     L"KestruneApplicationFile"},
    {L".krx", L"Kestrune.Model.Extension", L"Kestrune Extension", L"imageres.dll,62", L"shell32.dll,165",
     L"KestruneModuleFile"},
};

// A property list as Explorer reads it: "prop:" and the names, separated by ';'.
std::wstring propertyList(std::initializer_list<const wchar_t*> names) {
  std::wstring list = L"prop:";
  for (const wchar_t* name : names) list += (list.size() > 5 ? L";" : L"") + std::wstring(name);
  return list;
}

const std::wstring kFullDetails = propertyList(
    {L"System.PropGroup.Description", L"System.FileDescription", L"System.ItemType", L"System.FileVersion",
     L"System.Software.ProductName", L"System.Software.ProductVersion", L"System.Copyright", L"*System.Category",
     L"*System.Comment", L"System.Size", L"System.DateModified", L"System.Language", L"*System.Trademarks"});
const std::wstring kInfoTip = propertyList(
    {L"System.FileDescription", L"System.Company", L"System.FileVersion", L"System.DateCreated", L"System.Size"});
const std::wstring kPreviewDetails = propertyList(
    {L"System.FileDescription", L"System.FileVersion", L"System.Software.ProductName",
     L"System.Software.ProductVersion", L"System.Copyright", L"*System.Category", L"*System.Comment", L"System.Size",
     L"System.DateCreated", L"System.DateModified", L"System.Language", L"*System.Trademarks"});
const std::wstring kTileInfo = propertyList({L"System.FileVersion", L"System.FileDescription"});
const std::wstring kClassicTileInfo = propertyList({L"FileVersion", L"FileDescription"});
const wchar_t kPropertyHandler[] = L"{66742402-F9B9-11D1-A202-0000F81FEDEE}";

const wchar_t kRegsvr32VersionKey[] = L"Software\\Wine\\AppDefaults\\regsvr32.exe";

std::wstring associationsKey(const ModuleFileType& type) {
  return std::wstring(L"SystemFileAssociations\\") + type.extension;
}

std::wstring propertyHandlerKey(const ModuleFileType& type) {
  return std::wstring(L"SOFTWARE\\Microsoft\\Windows\\CurrentVersion\\PropertySystem\\PropertyHandlers\\") +
         type.extension;
}

std::wstring libraryPath() {
  wchar_t path[MAX_PATH] = {};
  GetModuleFileNameW(GetModuleHandleW(L"kr1st20.dll"), path, MAX_PATH);
  return path;
}

bool valueExists(HKEY hive, const std::wstring& key, const wchar_t* name) {
  return krReadValue(hive, key, name).type != REG_NONE;
}

// Runs Wine's regsvr32 on the library, told to run on windowsVersion (a Wine
// version name such as "winxp"); returns its exit code.
int runRegsvr32(const wchar_t* options, const wchar_t* windowsVersion) {
  krWriteValue(HKEY_CURRENT_USER, kRegsvr32VersionKey, L"Version", krTextValue(windowsVersion));
  int exitCode = krRunProgram(L"regsvr32.exe " + std::wstring(options) + L" \"" + libraryPath() + L"\"");
  RegDeleteTreeW(HKEY_CURRENT_USER, kRegsvr32VersionKey);
  return exitCode;
}

// Starts and ends every test with none of the keys that registration touches.
class ShellRegistrationTest : public ::testing::Test {
 protected:
  void SetUp() override { removeShellKeys(); }
  void TearDown() override { removeShellKeys(); }

 private:
  static void removeShellKeys() {
    for (const ModuleFileType& type : kModuleFileTypes) {
      for (const std::wstring& key : {std::wstring(type.extension), std::wstring(type.identifier),
                                      std::wstring(type.oldIdentifier), associationsKey(type)})
        RegDeleteTreeW(HKEY_CLASSES_ROOT, key.c_str());
      RegDeleteTreeW(HKEY_LOCAL_MACHINE, propertyHandlerKey(type).c_str());
    }
    RegDeleteTreeW(HKEY_CURRENT_USER, kRegsvr32VersionKey);
  }
};

struct WindowsVersion {
  const wchar_t* wineName;
  bool classicTileInfo;   // 5.1 up to 6.0
  bool propertySystem;    // 6.0 and later
  bool imageresIcons;     // 6.1 and later
};

void PrintTo(const WindowsVersion& version, std::ostream* out) {
  *out << std::string(version.wineName, version.wineName + wcslen(version.wineName));
}

class ShellRegistrationOnWindows : public ShellRegistrationTest, public ::testing::WithParamInterface<WindowsVersion> {};

}  // namespace

TEST_P(ShellRegistrationOnWindows, InstallWritesTheFileTypesForThatVersion) {
  const WindowsVersion& windows = GetParam();
  ASSERT_EQ(runRegsvr32(L"/n /i", windows.wineName), 0);

  for (const ModuleFileType& type : kModuleFileTypes) {
    EXPECT_EQ(krReadValue(HKEY_CLASSES_ROOT, type.identifier, nullptr), krTextValue(type.friendlyName));
    if (windows.classicTileInfo)
      EXPECT_EQ(krReadValue(HKEY_CLASSES_ROOT, type.identifier, L"TileInfo"), krTextValue(kClassicTileInfo.c_str()));
    else
      EXPECT_FALSE(valueExists(HKEY_CLASSES_ROOT, type.identifier, L"TileInfo"));
    EXPECT_EQ(krReadValue(HKEY_CLASSES_ROOT, std::wstring(type.identifier) + L"\\DefaultIcon", nullptr),
              krTextValue(windows.imageresIcons ? type.icon : type.classicIcon));
    if (windows.propertySystem) {
      EXPECT_EQ(krReadValue(HKEY_CLASSES_ROOT, associationsKey(type), L"FullDetails"), krTextValue(kFullDetails.c_str()));
      EXPECT_EQ(krReadValue(HKEY_CLASSES_ROOT, associationsKey(type), L"InfoTip"), krTextValue(kInfoTip.c_str()));
      EXPECT_EQ(krReadValue(HKEY_CLASSES_ROOT, associationsKey(type), L"PreviewDetails"), krTextValue(kPreviewDetails.c_str()));
      EXPECT_EQ(krReadValue(HKEY_CLASSES_ROOT, associationsKey(type), L"TileInfo"), krTextValue(kTileInfo.c_str()));
      EXPECT_EQ(krReadValue(HKEY_LOCAL_MACHINE, propertyHandlerKey(type), nullptr), krTextValue(kPropertyHandler));
    } else {
      EXPECT_FALSE(krKeyExists(HKEY_CLASSES_ROOT, associationsKey(type)));
      EXPECT_FALSE(krKeyExists(HKEY_LOCAL_MACHINE, propertyHandlerKey(type)));
    }
    EXPECT_EQ(krReadValue(HKEY_CLASSES_ROOT, type.extension, nullptr), krTextValue(type.identifier));
  }
}

INSTANTIATE_TEST_SUITE_P(Versions, ShellRegistrationOnWindows,
                         ::testing::Values(WindowsVersion{L"win2k", false, false, false},
                                           WindowsVersion{L"winxp", true, false, false},
                                           WindowsVersion{L"vista", false, true, false},
                                           WindowsVersion{L"win7", false, true, true},
                                           WindowsVersion{L"win10", false, true, true}),
                         [](const ::testing::TestParamInfo<WindowsVersion>& info) {
                           return std::string(info.param.wineName, info.param.wineName + wcslen(info.param.wineName));
                         });

TEST_F(ShellRegistrationTest, InstallReplacesTheIdentifiersOfTheEarlierLayout) {
  for (const ModuleFileType& type : kModuleFileTypes)
    ASSERT_TRUE(krWriteValue(HKEY_CLASSES_ROOT, std::wstring(type.oldIdentifier) + L"\\DefaultIcon", nullptr,
                             krTextValue(L"old.dll,1")));
  ASSERT_EQ(runRegsvr32(L"/n /i", L"win7"), 0);
  for (const ModuleFileType& type : kModuleFileTypes) {
    EXPECT_FALSE(krKeyExists(HKEY_CLASSES_ROOT, type.oldIdentifier));
    EXPECT_TRUE(krKeyExists(HKEY_CLASSES_ROOT, type.identifier));
  }
}

TEST_F(ShellRegistrationTest, UninstallRemovesOnlyTheIdentifiersAndThePointersToThem) {
  ASSERT_EQ(runRegsvr32(L"/u /n /i", L"win7"), 0);
  EXPECT_FALSE(krKeyExists(HKEY_CLASSES_ROOT, L".kra"));

  ASSERT_EQ(runRegsvr32(L"/n /i", L"win7"), 0);
  ASSERT_TRUE(krWriteValue(HKEY_CLASSES_ROOT, L".krx", nullptr, krTextValue(L"Other.Program")));
  ASSERT_EQ(runRegsvr32(L"/u /n /i", L"win7"), 0);

  EXPECT_TRUE(krKeyExists(HKEY_CLASSES_ROOT, L".kra"));
  EXPECT_FALSE(valueExists(HKEY_CLASSES_ROOT, L".kra", nullptr));
  EXPECT_EQ(krReadValue(HKEY_CLASSES_ROOT, L".krx", nullptr), krTextValue(L"Other.Program"));
  for (const ModuleFileType& type : kModuleFileTypes) {
    EXPECT_FALSE(krKeyExists(HKEY_CLASSES_ROOT, type.identifier));
    EXPECT_TRUE(krKeyExists(HKEY_CLASSES_ROOT, associationsKey(type)));
    EXPECT_TRUE(krKeyExists(HKEY_LOCAL_MACHINE, propertyHandlerKey(type)));
  }
}

TEST_F(ShellRegistrationTest, DllInstallNeedsACommandLineButDoesNotReadIt) {
  using DllInstallFunction = HRESULT(WINAPI*)(BOOL install, const wchar_t* commandLine);
  auto dllInstall = reinterpret_cast<DllInstallFunction>(
      reinterpret_cast<void*>(GetProcAddress(GetModuleHandleW(L"kr1st20.dll"), "DllInstall")));
  ASSERT_NE(dllInstall, nullptr);

  EXPECT_EQ(static_cast<uint32_t>(dllInstall(TRUE, nullptr)), 0x80070057u);
  EXPECT_FALSE(krKeyExists(HKEY_CLASSES_ROOT, L".kra"));
  EXPECT_EQ(dllInstall(TRUE, L"any text"), S_OK);
  EXPECT_EQ(krReadValue(HKEY_CLASSES_ROOT, L".kra", nullptr), krTextValue(L"Kestrune.Application.Extension"));

  EXPECT_EQ(static_cast<uint32_t>(dllInstall(FALSE, nullptr)), 0x80070057u);
  EXPECT_TRUE(krKeyExists(HKEY_CLASSES_ROOT, L"Kestrune.Application.Extension"));
  EXPECT_EQ(dllInstall(FALSE, L""), S_OK);
  EXPECT_FALSE(krKeyExists(HKEY_CLASSES_ROOT, L"Kestrune.Application.Extension"));
}
