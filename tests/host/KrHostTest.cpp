// krhost's commands, run as a user runs them: exit status, the text form's
// key lines and the JSON form read back, on the sample modules.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <windows.h>

#include <string>

#include "KrHostRun.h"
#include "KrRegistryTestSupport.h"
#include "KrTestFiles.h"

using ::testing::Contains;
using ::testing::ContainsRegex;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;

namespace {

std::wstring samplesFolder() { return krTestBinDirectory() + L"samples"; }

TEST(HostCommandTest, HelpListsEveryCommandAndUsageErrorsFail) {
  KrHostRun help = krRunHost(L"--help");
  EXPECT_EQ(help.exitCode, 0);
  for (const char* command : {"demo", "tree", "services", "registry", "load", "check", "apps", "describe"})
    EXPECT_THAT(help.out, HasSubstr(std::string("\n  ") + command + " ")) << command;
  EXPECT_THAT(help.out, ::testing::Not(HasSubstr("__version")));

  KrHostRun commandHelp = krRunHost(L"check --help");
  EXPECT_EQ(commandHelp.exitCode, 0);
  EXPECT_THAT(commandHelp.out, HasSubstr("Usage: krhost check [--json] <module>..."));

  KrHostRun unknown = krRunHost(L"frobnicate");
  EXPECT_EQ(unknown.exitCode, 1);
  EXPECT_THAT(unknown.err, HasSubstr("unknown command \"frobnicate\""));
  EXPECT_EQ(krRunHost(L"tree --bogus").exitCode, 1);
  EXPECT_EQ(krRunHost(L"describe").exitCode, 1);
  EXPECT_EQ(krRunHost(L"tree --with").exitCode, 1);
  EXPECT_EQ(krRunHost(L"demo --json").exitCode, 1);
  EXPECT_THAT(krRunHost(L"--version").out, ::testing::MatchesRegex("krhost \\d+\\.\\d+\\.\\d+\n"));
}

TEST(HostCommandTest, TreeShowsModuleClassesWithTheirProtocolExtensions) {
  KrHostForms tree = krRunHostForms(L"tree", L"--with shapes.krx", samplesFolder());
  ASSERT_EQ(tree.exitCode, 0);
  EXPECT_THAT(tree.text, HasSubstr("\n    KrSampleShape "));
  EXPECT_THAT(tree.text, HasSubstr("\n      KrSampleCircle "));
  EXPECT_EQ(tree.doc["with"][0]["loaded"], true);
  KrJson circle = krRowWith(tree.doc["classes"], "name", "KrSampleCircle");
  EXPECT_EQ(circle["parent"], "KrSampleShape");
  EXPECT_EQ(circle["depth"], 2);
  EXPECT_THAT(circle["extensions"], Contains("KrSampleDescriber: KrSampleShapeDescriber"));
  KrJson root = krRowWith(tree.doc["classes"], "name", "KrRxObject");
  ASSERT_TRUE(root.is_object());
  EXPECT_TRUE(root["parent"].is_null());
}

TEST(HostCommandTest, ServicesNameTheirOwnerModule) {
  KrHostRun run = krRunHost(L"services --json --with greeter.kra --with shapes.krx", samplesFolder());
  ASSERT_EQ(run.exitCode, 0);
  KrJson doc = run.json();
  EXPECT_EQ(krRowWith(doc["services"], "name", "SampleGreeterService")["owner"], "greeter.kra");
  EXPECT_EQ(krRowWith(doc["services"], "name", "SampleShapeService")["owner"], "shapes.krx");
  EXPECT_EQ(krRowWith(doc["services"], "name", "KernelServices")["owner"], "runtime");
  EXPECT_EQ(krRowWith(doc["services"], "name", "KernelServices")["hasDependants"], false);

  KrHostRun without = krRunHost(L"services --json", samplesFolder());
  EXPECT_TRUE(krRowWith(without.json()["services"], "name", "SampleShapeService").is_null());
}

TEST(HostCommandTest, RegistryListsTheSystemEntries) {
  KrHostRun run = krRunHost(L"registry --json");
  ASSERT_EQ(run.exitCode, 0);
  KrJson doc = run.json();
  EXPECT_EQ(krRowWith(doc["registry"], "key", "DynamicLinker")["class"], "KrRxImpDynamicLinker");
  EXPECT_EQ(krRowWith(doc["registry"], "key", "ClassDictionary")["class"], "KrRxImpDictionary");
}

TEST(HostCommandTest, DescribeTellsExtensionsAndPropertiesOwnAndInherited) {
  KrHostForms circle = krRunHostForms(L"describe", L"KrSampleCircle --with shapes.krx", samplesFolder());
  ASSERT_EQ(circle.exitCode, 0) << circle.text;
  EXPECT_EQ(circle.doc["parent"], "KrSampleShape");
  EXPECT_THAT(circle.doc["ancestors"], ElementsAre("KrSampleShape", "KrRxObject"));
  EXPECT_EQ(krRowWith(circle.doc["extensions"], "protocol", "KrSampleDescriber")["from"],
            "inherited from KrSampleShape");
  KrJson& symbols = circle.doc["symbols"];
  ASSERT_EQ(symbols.size(), 2u) << circle.text;
  const char* names[] = {"width", "height"};
  for (size_t i = 0; i < 2; ++i) {
    EXPECT_EQ(symbols[i]["name"], names[i]);
    EXPECT_EQ(symbols[i]["class"], "KrSampleShape") << "inherited from the shape class";
    EXPECT_EQ(symbols[i]["kind"], "property");
    EXPECT_EQ(symbols[i]["valueClass"], "KrVtFloat64");
  }

  KrHostRun shape = krRunHost(L"describe KrSampleShape --with shapes.krx", samplesFolder());
  EXPECT_EQ(shape.exitCode, 0);
  EXPECT_THAT(shape.out, HasSubstr("KrSampleDescriber      KrSampleShapeDescriber  own"));
  EXPECT_THAT(shape.out, HasSubstr("\nChildren:    KrSampleCircle, KrSampleSquare\n"));
  EXPECT_THAT(shape.out, HasSubstr("Symbols and properties (2)"));
  EXPECT_THAT(shape.out, HasSubstr("KrSampleShape  height  Height        property  KrVtFloat64"));

  KrHostRun wrongCase = krRunHost(L"describe krsamplecircle --json --with shapes.krx", samplesFolder());
  EXPECT_EQ(wrongCase.exitCode, 1);
  EXPECT_THAT(wrongCase.json()["similar"], ElementsAre("KrSampleCircle"));
}

// Format writes back what it read, or fails with the reason and writes nothing.
TEST(HostCommandTest, FormatWritesBackWhatItReadOrTellsWhyNot) {
  const struct {
    const wchar_t* arguments;
    const char* text;     // the text written back
    const char* problem;  // or the reason it was not
  } kRuns[] = {
      {L"KrVtDate 2023/05/17", "2023-05-17", nullptr},
      {L"KrVtRatio \"6 : 8\"", "3 : 4", nullptr},
      {L"KrVtPercentage 45", "45%", nullptr},
      {L"KrVtDate tomorrow", nullptr, "\"tomorrow\" does not read as a KrVtDate"},
      {L"KrVtDat 2023", nullptr, "no class named KrVtDat"},
      {L"KrRfValue 1", nullptr, "KrRfValue cannot be created"},
      {L"--with shapes.krx KrSampleCircle 1", nullptr, "KrSampleCircle has no text form"},
  };
  for (const auto& run : kRuns) {
    KrHostRun host = krRunHost(std::wstring(L"format --json ") + run.arguments, samplesFolder());
    EXPECT_EQ(host.exitCode, run.text ? 0 : 1) << host.out;
    KrJson doc = host.json();
    EXPECT_EQ(doc["ok"], run.text != nullptr) << host.out;
    if (run.text) {
      EXPECT_EQ(doc["text"], run.text) << host.out;
    } else {
      EXPECT_THAT(doc.value("problem", ""), HasSubstr(run.problem)) << host.out;
      EXPECT_FALSE(doc.contains("text")) << "nothing written";
    }
  }
  EXPECT_THAT(krRunHost(L"format KrVtDate 2023/05/17").out, HasSubstr("\nText:  2023-05-17\n"));
  EXPECT_EQ(krRunHost(L"format KrVtDate").exitCode, 1) << "the text is missing";
  EXPECT_THAT(krRunHost(L"format --help").out, HasSubstr("Usage: krhost format [--with <module>] [--json] <class> <text>"));
}

TEST(HostCommandTest, LoadTellsWhatEachModuleAddedAndUnloadsInReverse) {
  KrHostForms load = krRunHostForms(L"load", L"shapes.krx greeter.kra", samplesFolder());
  ASSERT_EQ(load.exitCode, 0) << load.text;
  KrJson& shapes = load.doc["modules"][0];
  EXPECT_EQ(shapes["loaded"], true);
  EXPECT_EQ(shapes["version"], "1.2.0") << "read through the module handle";
  EXPECT_EQ(shapes["description"], "Kestrune sample: shapes with an overrule, a reactor and properties");
  EXPECT_THAT(shapes["classes"],
              ElementsAre("KrSampleCircle", "KrSampleDescriber", "KrSampleLargeShapeDescriber",
                          "KrSampleLargeShapeOverrule", "KrSampleShape", "KrSampleShapeDescriber",
                          "KrSampleShapeReactor", "KrSampleSquare"));
  EXPECT_THAT(shapes["services"], ElementsAre("SampleShapeService"));
  KrJson& greeter = load.doc["modules"][1];
  EXPECT_THAT(greeter["appData"], ElementsAre("Motto (KrRxTextString)"));
  EXPECT_THAT(greeter["unloadMessages"], ElementsAre("'greeter.kra' succefuly unloaded."));
  EXPECT_EQ(load.doc["ok"], true);
  EXPECT_THAT(load.text, HasSubstr("Services added:   SampleShapeService\n"));
}

// Several modules: the command fails when one of them fails.
TEST(HostCommandTest, LoadAndCheckFailWhenOneModuleFails) {
  const struct {
    const wchar_t* arguments;
    const char* verdict;  // the member that tells whether a module loads
  } kRuns[] = {{L"load --json good.krx faultver.krx", "loaded"}, {L"check --json good.krx noentry.krx", "loads"}};
  KrJson docs[2];
  for (int i = 0; i < 2; ++i) {
    KrHostRun host = krRunHost(kRuns[i].arguments);
    EXPECT_EQ(host.exitCode, 1) << kRuns[i].arguments;
    docs[i] = host.json();
    EXPECT_EQ(docs[i]["modules"][0][kRuns[i].verdict], true) << kRuns[i].arguments;
    EXPECT_EQ(docs[i]["modules"][1][kRuns[i].verdict], false) << kRuns[i].arguments;
    EXPECT_EQ(docs[i]["ok"], false) << kRuns[i].arguments;
  }
  auto messages = docs[0]["modules"][1]["messages"].get<std::vector<std::string>>();
  EXPECT_THAT(messages, Contains(HasSubstr("krrxGetApiVersion faulted in faultver.krx")));
  EXPECT_THAT(messages, Contains("Failed to load 'faultver.krx'"));
}

// An application registered below a product key of the test's own.
class HostAppsTest : public ::testing::Test {
 protected:
  static constexpr const wchar_t* kProductKey = L"Software\\Kestrune\\KrhostTest";

  void SetUp() override {
    const std::wstring app = std::wstring(kProductKey) + L"\\Applications\\KrhostTestApp";
    ASSERT_TRUE(krWriteValue(HKEY_CURRENT_USER, app, L"LOADER", krTextValue(L"good.krx")));
    ASSERT_TRUE(krWriteValue(HKEY_CURRENT_USER, app, L"DESCRIPTION", krTextValue(L"An application of the krhost test")));
    ASSERT_TRUE(krWriteValue(HKEY_CURRENT_USER, app, L"PRODCODE", krTextValue(L"KR-42")));
    ASSERT_TRUE(krWriteValue(HKEY_CURRENT_USER, app, L"LOADCTRLS", {REG_DWORD, {0x0C, 0, 0, 0}}));
    ASSERT_TRUE(krWriteValue(HKEY_CURRENT_USER, app + L"\\Triggers", L"KrhostTrigger", krTextValue(L"")));
  }
  void TearDown() override {
    RegDeleteTreeW(HKEY_CURRENT_USER, kProductKey);
    RegDeleteKeyW(HKEY_CURRENT_USER, L"Software\\Kestrune");  // only once no other product key is left in it
  }
};

TEST_F(HostAppsTest, AppsShowLoaderReasonsTriggersAndProductCode) {
  KrHostRun run = krRunHost(std::wstring(L"apps --json --product-key ") + kProductKey);
  ASSERT_EQ(run.exitCode, 0);
  KrJson doc = run.json();
  EXPECT_EQ(doc["productKey"], "Software\\Kestrune\\KrhostTest");
  KrJson app = krRowWith(doc["apps"], "name", "KrhostTestApp");
  EXPECT_EQ(app["loader"], "good.krx");
  EXPECT_EQ(app["loadCtrls"], "0xC");
  EXPECT_THAT(app["loadReasons"], ElementsAre("by name or trigger (0x8)", "host reason 0x4"));
  EXPECT_THAT(app["triggers"], ElementsAre("KrhostTrigger"));
  EXPECT_EQ(app["productCode"], "KR-42");
  EXPECT_EQ(app["description"], "An application of the krhost test");
  EXPECT_EQ(app["loaded"], false);

  KrHostRun text = krRunHost(std::wstring(L"apps --product-key ") + kProductKey);
  EXPECT_THAT(text.out, HasSubstr("KrhostTestApp"));
  EXPECT_TRUE(krRowWith(krRunHost(L"apps --json").json()["apps"], "name", "KrhostTestApp").is_null())
      << "without the product key the application is not found";
}

// The member paths of a document, in the order they first appear: "modules[].checks[].check".
void collectPaths(const nlohmann::ordered_json& value, const std::string& path, std::string& paths) {
  if (value.is_array()) {
    for (const auto& item : value) collectPaths(item, path + "[]", paths);
    return;
  }
  if (!value.is_object()) return;
  for (const auto& member : value.items()) {
    std::string memberPath = path.empty() ? member.key() : path + "." + member.key();
    if ((" " + paths + " ").find(" " + memberPath + " ") == std::string::npos)
      paths += (paths.empty() ? "" : " ") + memberPath;
    collectPaths(member.value(), memberPath, paths);
  }
}

// Every command's JSON document keeps its members, in order: scripts read them.
TEST_F(HostAppsTest, EveryJsonDocumentKeepsItsMembersInOrder) {
  const struct {
    std::wstring arguments;
    const char* paths;
  } kDocuments[] = {
      {L"tree --with shapes.krx",
       "with with[].module with[].loaded with[].messages classes classes[].name classes[].parent classes[].depth "
       "classes[].extensions"},
      {L"services", "services services[].name services[].class services[].owner services[].hasDependants"},
      {L"registry", "registry registry[].key registry[].class"},
      {L"describe KrSampleCircle --with shapes.krx",
       "with with[].module with[].loaded with[].messages class parent ancestors children appName dxfName version "
       "proxyFlags extensions extensions[].protocol extensions[].extension extensions[].from symbols symbols[].class "
       "symbols[].name symbols[].displayName symbols[].kind symbols[].valueClass"},
      {L"describe krsamplecircle --with shapes.krx",
       "with with[].module with[].loaded with[].messages class found similar hint"},
      {L"format KrVtDate 2023/05/17", "class input ok text"},
      {L"format KrVtDate tomorrow", "class input ok problem"},
      {L"load shapes.krx nosuch.krx",
       "modules modules[].module modules[].loaded modules[].messages modules[].version modules[].description "
       "modules[].classes modules[].services modules[].appData modules[].dependencies modules[].unloaded "
       "modules[].unloadMessages ok"},
      {L"check shapes.krx nosuchmodule",
       "modules modules[].module modules[].checks modules[].checks[].check modules[].checks[].status "
       "modules[].checks[].detail modules[].checks[].fix modules[].path modules[].version modules[].description "
       "modules[].loads modules[].reason ok"},
      {std::wstring(L"apps --product-key ") + kProductKey,
       "productKey settableKey apps apps[].name apps[].loader apps[].loadCtrls apps[].loadReasons apps[].triggers "
       "apps[].productCode apps[].description apps[].loaded"},
  };
  for (const auto& document : kDocuments) {
    std::wstring command = document.arguments.substr(0, document.arguments.find(L' '));
    KrHostRun run = krRunHost(command + L" --json" + document.arguments.substr(command.size()), samplesFolder());
    std::string paths;
    collectPaths(nlohmann::ordered_json::parse(run.out, nullptr, false), "", paths);
    EXPECT_EQ(paths, document.paths) << run.out;
  }
}

TEST(HostDemoTest, DemoLoadsGreetsAndUnloadsTheSamples) {
  KrHostRun run = krRunHost(L"", samplesFolder());
  EXPECT_EQ(run.exitCode, 0) << run.out;
  EXPECT_THAT(run.out, HasSubstr("krrxProcessInitFile: every module loaded"));
  EXPECT_THAT(run.out, HasSubstr("reply \"Hello from greeter.kra\""));
  EXPECT_THAT(run.out, HasSubstr("3 : 4\n"));
  EXPECT_THAT(run.out, HasSubstr("08:30:05.250Z\n"));
  EXPECT_THAT(run.out, HasSubstr("KrSampleSquare  KrSampleLargeShapeDescriber  KrSampleLargeShapeOverrule\n"));
  EXPECT_THAT(run.out, HasSubstr("KrSampleShapeReactor  1\n"));
  EXPECT_THAT(run.out, HasSubstr("\"Width: 20.000, height: 20.000\""));
  size_t on = run.out.find("Overruling: on");
  EXPECT_NE(on, std::string::npos);
  EXPECT_NE(run.out.find("Overruling: off", on), std::string::npos) << "off again once shapes.krx is unloaded";
  EXPECT_THAT(run.out, HasSubstr("  greeter.kra: unloaded"));
  EXPECT_THAT(run.out, HasSubstr("  unloaded: shapes.krx"));

  size_t tree = run.out.find("Class tree (");
  EXPECT_GT(tree, run.out.find("every module loaded")) << "the tree is printed with the samples loaded";
  EXPECT_EQ(run.out.find("Class tree (", tree + 1), std::string::npos) << "and only once";
  EXPECT_THAT(run.out, ContainsRegex("\n    KrSampleGreeting +greeter\\.kra\n"));
  EXPECT_THAT(run.out, ContainsRegex("\n    KrRxTextString .* -\n")) << "a runtime class is marked by no module";
  EXPECT_THAT(run.out, ContainsRegex("\n  services +SampleGreeterService, SampleShapeService\n"));
}

}  // namespace
