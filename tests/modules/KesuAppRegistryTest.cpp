// The application registry against Wine's real registry: the key layout,
// statuses, the search order (host key, settable key, earlier minor
// releases; per-user before machine-wide), triggers, product codes and
// enumeration. Every test works below a settable key of its own and uses
// application names of its own under the host's product key.

#include <gtest/gtest.h>

#include <windows.h>

#include <cwchar>
#include <initializer_list>
#include <string>
#include <vector>

#include "KrRegistryTestSupport.h"
#include "kr1st.h"

namespace {

// The product key that the KRDB20.DLL stand-in reports, and its locale.
const wchar_t kHostProductKey[] = L"Software\\Kestrune\\TestProduct";
const unsigned int kHostLcid = 0x407;

// This executable plays a host whose database library supplies the product key.
class HostWithDatabaseLibrary : public ::testing::Environment {
 public:
  void SetUp() override { ASSERT_NE(LoadLibraryW(L"KRDB20.DLL"), nullptr); }
};
::testing::Environment* const sHost = ::testing::AddGlobalTestEnvironment(new HostWithDatabaseLibrary);

const HKEY HKCU = HKEY_CURRENT_USER;
const HKEY HKLM = HKEY_LOCAL_MACHINE;

std::wstring widen(const std::string& text) { return std::wstring(text.begin(), text.end()); }

KrRegValue typed(DWORD type, const void* data, size_t size) {
  const BYTE* bytes = static_cast<const BYTE*>(data);
  return {type, std::vector<BYTE>(bytes, bytes + size)};
}

KrRegValue dwordValue(DWORD value) { return typed(REG_DWORD, &value, sizeof value); }

void put(HKEY hive, const std::wstring& key, const wchar_t* name, const KrRegValue& value) {
  ASSERT_TRUE(krWriteValue(hive, key, name, value));
}

// A loadable registration: a module file and load-control flags.
void putRecord(HKEY hive, const std::wstring& key, const wchar_t* loader, DWORD flags = KesuApp::kLoadByName) {
  put(hive, key, LOADER, krTextValue(loader));
  put(hive, key, LOADCTRLS, dwordValue(flags));
}

class AppRegistryTest : public ::testing::Test {
 protected:
  void SetUp() override {
    std::string testName = ::testing::UnitTest::GetInstance()->current_test_info()->name();
    mRoot = L"SOFTWARE\\KestruneTest\\" + widen(testName);
    mAppPrefix = L"KrTest." + widen(testName) + L".";
    removeTestKeys();
    mSavedKey = krrxKestruneRegistryKey();
    krrxSetKestruneRegistryKey(releaseKey(L"20.5").c_str());
  }

  void TearDown() override {
    krrxSetKestruneRegistryKey(mSavedKey.c_str());
    removeTestKeys();
  }

  // This test's product key of a release ("20.3": ...\R20.3).
  std::wstring releaseKey(const wchar_t* release) const { return mRoot + L"\\R" + release; }
  // An application key below this test's product key of a release.
  std::wstring appKey(const wchar_t* release, const std::wstring& app) const {
    return releaseKey(release) + L"\\Applications\\" + app;
  }
  std::wstring hostAppKey(const std::wstring& app) const {
    return std::wstring(kHostProductKey) + L"\\Applications\\" + app;
  }
  // An application name of this test's own.
  std::wstring app(const wchar_t* name) const { return mAppPrefix + name; }

  // Loadable registrations of this test's applications: hive, release, name and module file.
  struct Record {
    HKEY hive;
    const wchar_t* release;
    const wchar_t* name;
    const wchar_t* loader;
  };
  void putRecords(std::initializer_list<Record> records) const {
    for (const Record& r : records) putRecord(r.hive, appKey(r.release, app(r.name)), r.loader);
  }

  KesuAppInfo readRecord(const std::wstring& app) const {
    KesuAppInfo record(app.c_str());
    record.readFromRegistry();
    return record;
  }

  // This test's own names among the registered applications, in list order.
  std::vector<std::wstring> ownRegisteredApps(const KesuAppRegistry& registry) const {
    std::vector<std::wstring> own;
    for (int i = 0; i < registry.keyCount(); ++i)
      if (std::wstring(registry.keyName(i)).rfind(mAppPrefix, 0) == 0) own.push_back(registry.keyName(i));
    return own;
  }

 private:
  void removeTestKeys() const {
    for (HKEY hive : {HKEY_CURRENT_USER, HKEY_LOCAL_MACHINE}) {
      RegDeleteTreeW(hive, mRoot.c_str());
      RegDeleteKeyW(hive, L"SOFTWARE\\KestruneTest");  // only once no test key is left below it
      for (const wchar_t* name : {L"Tool", L"Shared"}) RegDeleteTreeW(hive, hostAppKey(app(name)).c_str());
      // The host's keys above them, once empty: they were made for this test.
      RegDeleteKeyW(hive, (std::wstring(kHostProductKey) + L"\\Applications").c_str());
      RegDeleteKeyW(hive, kHostProductKey);
      RegDeleteKeyW(hive, L"Software\\Kestrune");
    }
  }

  std::wstring mRoot;
  std::wstring mAppPrefix;
  std::wstring mSavedKey;
};

}  // namespace

TEST(AppRegistryStartUp, RecordsAreCreatableAndTheSettableKeyHasItsDefault) {
  KrRxObject* made = KesuAppInfo::desc()->create();
  EXPECT_NE(KesuAppInfo::cast(made), nullptr);
  delete made;
  // Every registry test restores the key it sets.
  EXPECT_STREQ(krrxKestruneRegistryKey(), L"SOFTWARE\\OrvanCAD\\Kestrune\\R20.5");
}

TEST_F(AppRegistryTest, WriteLaysOutTheKeyAndReadBringsItBack) {
  KesuAppInfo written(app(L"Tool").c_str(), 0x18);
  written.setAppDesc(L"Drawing tools");
  written.setModuleName(L"C:\\Tools\\tools.krx");
  EXPECT_EQ(written.writeToRegistry(true, false), KesuApp::eOk);
  EXPECT_EQ(written.status(), KesuApp::eOk);

  // Machine-wide first; texts carry their terminating zero.
  std::wstring key = appKey(L"20.5", app(L"Tool"));
  EXPECT_EQ(krReadValue(HKLM, key, DESCRIPTION), krTextValue(L"Drawing tools"));
  EXPECT_EQ(krReadValue(HKLM, key, LOADER), krTextValue(L"C:\\Tools\\tools.krx"));
  EXPECT_EQ(krReadValue(HKLM, key, LOADCTRLS), dwordValue(0x18));
  EXPECT_FALSE(krKeyExists(HKCU, key));
  std::string listing;
  ASSERT_EQ(krRunProgram(L"reg.exe query \"HKLM\\" + key + L"\"", &listing), 0);
  EXPECT_NE(listing.find("    DESCRIPTION    REG_SZ    Drawing tools\r\n"), std::string::npos) << listing;
  EXPECT_NE(listing.find("    LOADER    REG_SZ    C:\\Tools\\tools.krx\r\n"), std::string::npos) << listing;
  EXPECT_NE(listing.find("    LOADCTRLS    REG_DWORD    0x18\r\n"), std::string::npos) << listing;

  KesuAppInfo read(app(L"Tool").c_str());
  EXPECT_EQ(read.status(), KesuApp::eAppNotFound);
  EXPECT_EQ(read.loadCtrls(), 0x10u);
  EXPECT_EQ(read.readFromRegistry(), KesuApp::eOk);
  EXPECT_STREQ(read.appDesc(), L"Drawing tools");
  EXPECT_STREQ(read.moduleName(), L"C:\\Tools\\tools.krx");
  // Bit 8 would allow loading by name, but bit 0x10 forbids any loading on demand.
  EXPECT_EQ(read.loadCtrls(), 0x18u);
  EXPECT_NE(read.loadCtrls() & KesuApp::kLoadDisabled, 0u);
}

TEST_F(AppRegistryTest, PerUserRecordHidesTheMachineWideOne) {
  KesuAppInfo record(app(L"Tool").c_str(), KesuApp::kLoadByName);
  record.setModuleName(L"machine.krx");
  ASSERT_EQ(record.writeToRegistry(true, false), KesuApp::eOk);
  record.setModuleName(L"user.krx");
  ASSERT_EQ(record.writeToRegistry(true, true), KesuApp::eOk);
  EXPECT_EQ(krReadValue(HKCU, appKey(L"20.5", app(L"Tool")), LOADER), krTextValue(L"user.krx"));

  EXPECT_STREQ(readRecord(app(L"Tool")).moduleName(), L"user.krx");
  ASSERT_EQ(RegDeleteTreeW(HKCU, appKey(L"20.5", app(L"Tool")).c_str()), ERROR_SUCCESS);
  EXPECT_STREQ(readRecord(app(L"Tool")).moduleName(), L"machine.krx");
}

TEST_F(AppRegistryTest, EmptyTextsDeleteValuesAndZeroFlagsKeepTheOldValue) {
  KesuAppInfo full(app(L"Tool").c_str(), KesuApp::kLoadByName);
  full.setAppDesc(L"Drawing tools");
  full.setModuleName(L"tools.krx");
  ASSERT_EQ(full.writeToRegistry(true, false), KesuApp::eOk);
  std::wstring key = appKey(L"20.5", app(L"Tool"));
  put(HKLM, key + L"\\LOADCTRLS", L"note", krTextValue(L"a subkey of that name"));

  // Registering with flags 0 writes a record with only the name.
  EXPECT_EQ(krrxRegisterApp(KesuApp::LoadReasons(0), app(L"Tool").c_str(), true), KesuApp::eOk);
  EXPECT_EQ(krReadValue(HKLM, key, DESCRIPTION).type, DWORD(REG_NONE));
  EXPECT_EQ(krReadValue(HKLM, key, LOADER).type, DWORD(REG_NONE));
  EXPECT_EQ(krReadValue(HKLM, key, LOADCTRLS), dwordValue(KesuApp::kLoadByName));
  EXPECT_FALSE(krKeyExists(HKLM, key + L"\\LOADCTRLS"));

  KesuAppInfo read = readRecord(app(L"Tool"));
  EXPECT_EQ(read.status(), KesuApp::eIncompleteRecord);
  EXPECT_EQ(read.loadCtrls(), unsigned(KesuApp::kLoadByName));
  EXPECT_STREQ(read.moduleName(), L"");
  EXPECT_STREQ(read.appDesc(), L"");
}

TEST_F(AppRegistryTest, MalformedRecordsReadAsNeverLoadedWithStatus6) {
  const DWORD eight = 8;
  const ULONGLONG eightWide = 8;
  struct Case {
    const wchar_t* name;
    KrRegValue flags;  // REG_NONE: no "LOADCTRLS"
    bool withLoader;
    unsigned int expectedFlags;
  };
  const Case cases[] = {
      {L"FlagsAsText", krTextValue(L"8"), true, 0x10},
      {L"FlagsTwoBytes", typed(REG_DWORD, &eight, 2), true, 0x10},
      {L"FlagsAsQword", typed(REG_QWORD, &eightWide, 8), true, 0x10},
      {L"FlagsAsBinary", typed(REG_BINARY, &eight, 4), true, 0x10},
      {L"NoFlags", KrRegValue(), true, 0x10},
      {L"NoLoader", dwordValue(8), false, 8},
      {L"OnlyDescription", KrRegValue(), false, 0x10},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(std::string(c.name, c.name + wcslen(c.name)));
    std::wstring key = appKey(L"20.5", app(c.name));
    put(HKCU, key, DESCRIPTION, krTextValue(L"malformed"));
    if (c.flags.type != REG_NONE) put(HKCU, key, LOADCTRLS, c.flags);
    if (c.withLoader) put(HKCU, key, LOADER, krTextValue(L"tools.krx"));

    KesuAppInfo read = readRecord(app(c.name));
    EXPECT_EQ(read.status(), KesuApp::eIncompleteRecord);
    EXPECT_EQ(read.loadCtrls(), c.expectedFlags);
    EXPECT_STREQ(read.moduleName(), c.withLoader ? L"tools.krx" : L"");
    EXPECT_STREQ(read.appDesc(), L"malformed");
  }
}

TEST_F(AppRegistryTest, UnknownAndUnnamedApplications) {
  EXPECT_EQ(readRecord(app(L"Unknown")).status(), KesuApp::eAppNotFound);

  KesuAppInfo unnamed;
  EXPECT_EQ(unnamed.readFromRegistry(), KesuApp::eNoAppName);
  EXPECT_EQ(unnamed.writeToRegistry(true, false), KesuApp::eNoAppName);
  EXPECT_EQ(unnamed.delFromRegistry(true), KesuApp::eNoAppName);
  EXPECT_EQ(krrxRegisterApp(KesuApp::kLoadByName, nullptr, true), KesuApp::eNoAppName);
  EXPECT_EQ(krrxUnregisterApp(L"", true), KesuApp::eNoAppName);
  EXPECT_FALSE(krKeyExists(HKLM, releaseKey(L"20.5")));
}

TEST_F(AppRegistryTest, DeleteTriesBothHivesAndReportsTheLastOne) {
  putRecord(HKCU, appKey(L"20.5", app(L"Both")), L"user.krx");
  put(HKCU, appKey(L"20.5", app(L"Both")) + L"\\Triggers", L"DRAW", krTextValue(L""));
  putRecord(HKLM, appKey(L"20.5", app(L"Both")), L"machine.krx");
  KesuAppInfo both(app(L"Both").c_str());
  EXPECT_EQ(both.delFromRegistry(true), KesuApp::eOk);
  EXPECT_FALSE(krKeyExists(HKCU, appKey(L"20.5", app(L"Both"))));
  EXPECT_FALSE(krKeyExists(HKLM, appKey(L"20.5", app(L"Both"))));

  // Deleted per-user, then missing machine-wide: the machine hive has the last word.
  putRecord(HKCU, appKey(L"20.5", app(L"User")), L"user.krx");
  EXPECT_EQ(krrxUnregisterApp(app(L"User").c_str(), true), KesuApp::eKeyPathNotFound);
  EXPECT_FALSE(krKeyExists(HKCU, appKey(L"20.5", app(L"User"))));

  putRecord(HKLM, appKey(L"20.5", app(L"Machine")), L"machine.krx");
  EXPECT_EQ(krrxUnregisterApp(app(L"Machine").c_str(), true), KesuApp::eOk);
  EXPECT_EQ(krrxUnregisterApp(app(L"Machine").c_str(), true), KesuApp::eKeyPathNotFound);
}

TEST_F(AppRegistryTest, EarlierMinorReleasesAreFoundAfterTheCurrentOne) {
  // The release order comes before the hive order (Hives).
  putRecords({{HKLM, L"20.3", L"Old", L"old.krx"}, {HKLM, L"20.3", L"Both", L"old.krx"},
              {HKLM, L"20.5", L"Both", L"current.krx"}, {HKCU, L"20.3", L"Hives", L"user-20.3.krx"},
              {HKLM, L"20.4", L"Hives", L"machine-20.4.krx"}, {HKLM, L"20.0", L"Oldest", L"oldest.krx"}});

  KesuAppInfo old = readRecord(app(L"Old"));
  EXPECT_EQ(old.status(), KesuApp::eOk);
  EXPECT_STREQ(old.moduleName(), L"old.krx");
  EXPECT_STREQ(readRecord(app(L"Both")).moduleName(), L"current.krx");
  EXPECT_STREQ(readRecord(app(L"Hives")).moduleName(), L"machine-20.4.krx");
  EXPECT_STREQ(readRecord(app(L"Oldest")).moduleName(), L"oldest.krx");

  // A settable key without "20.5" in it has no earlier releases.
  krrxSetKestruneRegistryKey(releaseKey(L"21.0").c_str());
  EXPECT_EQ(readRecord(app(L"Old")).status(), KesuApp::eAppNotFound);
}

TEST_F(AppRegistryTest, HostProductKeyComesBeforeTheSettableKey) {
  EXPECT_STREQ(krrxProductKey(), kHostProductKey);
  EXPECT_EQ(krrxProductLCID(), kHostLcid);

  KesuAppInfo host(app(L"Shared").c_str(), KesuApp::kLoadByName);
  host.setModuleName(L"host.krx");
  ASSERT_EQ(host.writeToRegistry(false, true), KesuApp::eOk);
  EXPECT_TRUE(krKeyExists(HKCU, hostAppKey(app(L"Shared"))));
  EXPECT_FALSE(krKeyExists(HKCU, appKey(L"20.5", app(L"Shared"))));
  putRecord(HKCU, appKey(L"20.5", app(L"Shared")), L"settable.krx");

  EXPECT_STREQ(readRecord(app(L"Shared")).moduleName(), L"host.krx");
  EXPECT_EQ(krrxUnregisterApp(app(L"Shared").c_str(), false), KesuApp::eKeyPathNotFound);
  EXPECT_FALSE(krKeyExists(HKCU, hostAppKey(app(L"Shared"))));
  EXPECT_STREQ(readRecord(app(L"Shared")).moduleName(), L"settable.krx");
}

TEST_F(AppRegistryTest, TriggersComeFromTheFirstTriggersKeyThatOpens) {
  put(HKCU, appKey(L"20.5", app(L"Tool")) + L"\\Triggers", L"DRAWCMD", krTextValue(L""));
  EXPECT_TRUE(krrxIsAppTriggeredBy(app(L"Tool").c_str(), L"DRAWCMD"));
  EXPECT_FALSE(krrxIsAppTriggeredBy(app(L"Tool").c_str(), L"OTHERCMD"));
  EXPECT_FALSE(krrxIsAppTriggeredBy(app(L"Tool").c_str(), nullptr));
  EXPECT_FALSE(krrxIsAppTriggeredBy(app(L"Unknown").c_str(), L"DRAWCMD"));
  EXPECT_FALSE(krrxIsAppTriggeredBy(nullptr, L"DRAWCMD"));

  // A current Triggers key answers alone; an application key without one lets earlier releases answer.
  put(HKLM, appKey(L"20.3", app(L"Tool")) + L"\\Triggers", L"OLDCMD", krTextValue(L""));
  EXPECT_FALSE(krrxIsAppTriggeredBy(app(L"Tool").c_str(), L"OLDCMD"));
  putRecord(HKCU, appKey(L"20.5", app(L"Late")), L"late.krx");
  put(HKLM, appKey(L"20.3", app(L"Late")) + L"\\Triggers", L"OLDCMD", krTextValue(L""));
  EXPECT_TRUE(krrxIsAppTriggeredBy(app(L"Late").c_str(), L"OLDCMD"));
}

TEST_F(AppRegistryTest, ProductCodeIsAHeapCopyFromTheFirstApplicationKey) {
  put(HKLM, appKey(L"20.5", app(L"Tool")), PRODCODE, krTextValue(L"KR-2024-TOOLS"));
  wchar_t* code = nullptr;
  ASSERT_TRUE(krrxGetAppProdCode(app(L"Tool").c_str(), code));
  ASSERT_NE(code, nullptr);
  EXPECT_STREQ(code, L"KR-2024-TOOLS");
  __krFree(code);

  // The first application key answers even without a code; earlier releases are not asked.
  putRecord(HKCU, appKey(L"20.5", app(L"Late")), L"late.krx");
  put(HKLM, appKey(L"20.3", app(L"Late")), PRODCODE, krTextValue(L"KR-OLD"));
  EXPECT_FALSE(krrxGetAppProdCode(app(L"Late").c_str(), code));
  EXPECT_EQ(code, nullptr);

  put(HKCU, appKey(L"20.5", app(L"Numeric")), PRODCODE, dwordValue(7));
  EXPECT_FALSE(krrxGetAppProdCode(app(L"Numeric").c_str(), code));
  EXPECT_FALSE(krrxGetAppProdCode(app(L"Unknown").c_str(), code));
  EXPECT_FALSE(krrxGetAppProdCode(nullptr, code));
}

TEST_F(AppRegistryTest, EnumerationListsEveryNameOnceInSearchOrder) {
  putRecords({{HKCU, L"20.5", L"A", L"a.krx"}, {HKLM, L"20.5", L"B", L"b.krx"}, {HKLM, L"20.3", L"C", L"c.krx"},
              {HKLM, L"20.3", L"a", L"a-again.krx"}, {HKCU, L"20.0", L"D", L"d.krx"},
              {HKCU, L"20.0", L"B", L"b-again.krx"}});

  KesuAppRegistry registry;
  int count = registry.enumerate();
  EXPECT_EQ(count, registry.keyCount());
  EXPECT_EQ(ownRegisteredApps(registry), (std::vector<std::wstring>{app(L"A"), app(L"B"), app(L"C"), app(L"D")}));
  EXPECT_EQ(registry.keyName(-1), nullptr);
  EXPECT_EQ(registry.keyName(count), nullptr);

  // A record can be read by its place in the list.
  int indexOfC = -1;
  for (int i = 0; i < count; ++i)
    if (app(L"C") == registry.keyName(i)) indexOfC = i;
  KesuAppInfo listed;
  ASSERT_EQ(listed.enumerateFromRegistry(indexOfC), KesuApp::eOk);
  EXPECT_STREQ(listed.appName(), app(L"C").c_str());
  EXPECT_STREQ(listed.moduleName(), L"c.krx");
  EXPECT_EQ(listed.enumerateFromRegistry(count), KesuApp::eAppNotFound);

  // Enumerating again replaces the list.
  ASSERT_EQ(RegDeleteTreeW(HKLM, appKey(L"20.3", app(L"C")).c_str()), ERROR_SUCCESS);
  registry.enumerate();
  EXPECT_EQ(ownRegisteredApps(registry), (std::vector<std::wstring>{app(L"A"), app(L"B"), app(L"D")}));
}

TEST_F(AppRegistryTest, RecordsWrittenByRegExeAreRead) {
  std::wstring added = L"\"HKCU\\" + appKey(L"20.5", app(L"Added")) + L"\"";
  ASSERT_EQ(krRunProgram(L"reg.exe add " + added + L" /v LOADER /d added.krx /f"), 0);
  ASSERT_EQ(krRunProgram(L"reg.exe add " + added + L" /v LOADCTRLS /t REG_DWORD /d 9 /f"), 0);
  KesuAppInfo read = readRecord(app(L"Added"));
  EXPECT_EQ(read.status(), KesuApp::eOk);
  EXPECT_STREQ(read.moduleName(), L"added.krx");
  EXPECT_EQ(read.loadCtrls(), 9u);

  // reg.exe's default type is REG_SZ: not a valid flags value.
  ASSERT_EQ(krRunProgram(L"reg.exe add " + added + L" /v LOADCTRLS /d 9 /f"), 0);
  EXPECT_EQ(readRecord(app(L"Added")).loadCtrls(), 0x10u);

  EXPECT_EQ(krrxUnregisterApp(app(L"Added").c_str(), true), KesuApp::eKeyPathNotFound);
  EXPECT_NE(krRunProgram(L"reg.exe query " + added), 0);
}
