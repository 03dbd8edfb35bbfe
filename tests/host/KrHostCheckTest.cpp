// "krhost check" on a good module and on modules that fail each check:
// exit status, the verdict's key words in text, and the same verdicts in
// the JSON form read back.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>

#include "KrHostRun.h"
#include "KrRxModuleTestSupport.h"
#include "KrTestFiles.h"

using ::testing::HasSubstr;
using ::testing::StartsWith;

namespace {

struct Verdict {
  int exitCode;
  std::string text;
  KrJson module;  // the module's entry of the JSON form
};

Verdict check(const std::wstring& module) {
  KrHostForms forms = krRunHostForms(L"check", module);
  return {forms.exitCode, forms.text, forms.doc["modules"][0]};
}

// The check's row in the module's JSON entry.
KrJson row(const Verdict& verdict, const char* check) { return krRowWith(verdict.module.value("checks", KrJson()), "check", check); }

// The module fails exactly the one check, with detail starting with words.
void expectOnlyFailure(const Verdict& verdict, const char* check, const std::string& words) {
  EXPECT_EQ(verdict.exitCode, 1);
  EXPECT_EQ(verdict.module.value("loads", true), false);
  for (const KrJson& each : verdict.module.value("checks", KrJson::array()))
    EXPECT_EQ(each.value("status", ""), each.value("check", "") == check ? "FAIL" : "ok") << each;
  EXPECT_THAT(row(verdict, check)["detail"].get<std::string>(), StartsWith(words));
  EXPECT_NE(row(verdict, check)["fix"], "");
  EXPECT_THAT(verdict.text, HasSubstr(words));
  EXPECT_THAT(verdict.text, HasSubstr("fix: "));
  EXPECT_THAT(verdict.module.value("reason", ""), StartsWith(std::string(check) + ": " + words));
}

TEST(HostCheckTest, GoodModulePassesEveryCheck) {
  Verdict verdict = check(L"good.krx");
  EXPECT_EQ(verdict.exitCode, 0) << verdict.text;
  EXPECT_EQ(verdict.module["loads"], true);
  for (const char* name : {"name", "file", "exports", "API version", "signature", "imports", "runtime", "loads first"})
    EXPECT_EQ(row(verdict, name)["status"], "ok") << name;
  EXPECT_THAT(row(verdict, "API version")["detail"].get<std::string>(), StartsWith("20.5"));
  EXPECT_THAT(row(verdict, "imports")["detail"].get<std::string>(), HasSubstr("kr1st20.dll"));
  EXPECT_EQ(verdict.module["version"], "3.1.4") << "read from the file's version resource";
  EXPECT_EQ(verdict.module["description"], "Versioned probe module");
  EXPECT_THAT(verdict.text, HasSubstr("\nVersion:     3.1.4\nDescription: Versioned probe module\nWould load:  yes\n"));
}

TEST(HostCheckTest, SignatureVerdicts) {
  expectOnlyFailure(check(L"unsigned.krx"), "signature", "unsigned");
  std::string bytes = krReadFile(krTestBinDirectory() + L"good.krx");
  bytes[0x50] ^= 0x20;
  krWriteFile(krTestBinDirectory() + L"hosttampered.krx", bytes);
  expectOnlyFailure(check(L"hosttampered.krx"), "signature", "tampered");
}

TEST(HostCheckTest, EntryProtocolVerdicts) {
  expectOnlyFailure(check(L"noentry.krx"), "exports", "missing krrxEntryPoint");
  expectOnlyFailure(check(L"v140006.krx"), "API version", "20.6 (0x00140006): this runtime accepts 20.0 to 20.5");
  expectOnlyFailure(check(L"faultver.krx"), "API version",
                    "krrxGetApiVersion faulted when called (an access violation)");
}

TEST(HostCheckTest, ImportVerdicts) {
  expectOnlyFailure(check(L"missingimport.krx"), "imports", "not found: unreachable_helper.dll");
  expectOnlyFailure(check(L"newerruntime.krx"), "runtime",
                    "built against a newer runtime: this kr1st20.dll lacks krrxFunctionOfANewerRuntime");
  expectOnlyFailure(check(L"olderruntime.krx"), "runtime",
                    "this runtime lacks 1 names the module imports; they were removed or renamed: "
                    "krrxFunctionSinceRemoved");
}

TEST(HostCheckTest, ExtensionModulesItImportsLoadFirst) {
  Verdict verdict = check(L"user.krx");
  EXPECT_EQ(verdict.exitCode, 0) << verdict.text;
  EXPECT_EQ(row(verdict, "loads first")["detail"], "dependency.krx");
}

TEST(HostCheckTest, NamesThatResolveToNothing) {
  Verdict nothing = check(L"nosuchmodule");
  EXPECT_EQ(nothing.exitCode, 1);
  EXPECT_THAT(row(nothing, "name")["detail"].get<std::string>(), StartsWith("no file \"nosuchmodule.dll\"; looked in "));
  EXPECT_EQ(nothing.module["checks"].size(), 1u) << "nothing more to check";

  Verdict noExtension = check(L"good");
  EXPECT_THAT(row(noExtension, "name")["fix"].get<std::string>(), HasSubstr("good.krx"));
}

}  // namespace
