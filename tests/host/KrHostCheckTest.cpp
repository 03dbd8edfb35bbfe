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
const KrJson& row(const Verdict& verdict, const char* check) { return verdict.module["checks"].rowWith("check", check); }

// The module fails exactly the one check, with detail starting with words.
void expectOnlyFailure(const Verdict& verdict, const char* check, const std::string& words) {
  EXPECT_EQ(verdict.exitCode, 1);
  EXPECT_FALSE(verdict.module["loads"].truth());
  for (const KrJson& each : verdict.module["checks"].items())
    EXPECT_EQ(each["status"].text(), each["check"].text() == check ? "FAIL" : "ok") << each["check"].text();
  EXPECT_THAT(row(verdict, check)["detail"].text(), StartsWith(words));
  EXPECT_FALSE(row(verdict, check)["fix"].text().empty());
  EXPECT_THAT(verdict.text, HasSubstr(words));
  EXPECT_THAT(verdict.text, HasSubstr("fix: "));
  EXPECT_THAT(verdict.module["reason"].text(), StartsWith(std::string(check) + ": " + words));
}

TEST(HostCheckTest, GoodModulePassesEveryCheck) {
  Verdict verdict = check(L"good.krx");
  EXPECT_EQ(verdict.exitCode, 0) << verdict.text;
  EXPECT_TRUE(verdict.module["loads"].truth());
  for (const char* name : {"name", "file", "exports", "API version", "signature", "imports", "runtime", "loads first"})
    EXPECT_EQ(row(verdict, name)["status"].text(), "ok") << name;
  EXPECT_THAT(row(verdict, "API version")["detail"].text(), StartsWith("20.5"));
  EXPECT_THAT(row(verdict, "imports")["detail"].text(), HasSubstr("kr1st20.dll"));
  EXPECT_THAT(verdict.text, HasSubstr("Would load: yes"));
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
  EXPECT_EQ(row(verdict, "loads first")["detail"].text(), "dependency.krx");
}

TEST(HostCheckTest, NamesThatResolveToNothing) {
  Verdict nothing = check(L"nosuchmodule");
  EXPECT_EQ(nothing.exitCode, 1);
  EXPECT_THAT(row(nothing, "name")["detail"].text(), StartsWith("no file \"nosuchmodule.dll\"; looked in "));
  EXPECT_EQ(nothing.module["checks"].size(), 1u) << "nothing more to check";

  Verdict noExtension = check(L"good");
  EXPECT_THAT(row(noExtension, "name")["fix"].text(), HasSubstr("good.krx"));
}

}  // namespace
