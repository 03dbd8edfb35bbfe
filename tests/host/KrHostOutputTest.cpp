// krhost's report: the text form aligns and the JSON form reads back to the
// same values, special characters included.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "KrHostRun.h"
#include "host/KrHostOutput.h"

using ::testing::ElementsAre;

namespace {

void fill(KrHostReport& report) {
  report.field("name", L"Name", L"quote \" backslash \\ tab \t bell \x07 end \x221E");
  report.field("count", L"A longer label", KrHostValue::number(-3));
  KrHostTable& table = report.table("rows", L"Rows", {{"a", L"A"}, {"b", L"BEE"}, {"hidden", L"H", false}});
  table.row({L"x", KrHostValue::list({L"one", L"two"}), KrHostValue::truth(true)});
  table.row({L"longer", KrHostValue(), KrHostValue::truth(false)}, 1, L"a note");
  report.child("items").field("n", L"N", KrHostValue::number(1));
  report.child("items").field("n", L"N", KrHostValue::number(2));
}

TEST(HostOutputTest, JsonReadsBackToTheSameValues) {
  KrHostReport report;
  fill(report);
  std::string json = report.json();
  KrJson doc = KrJson::parse(json);
  EXPECT_EQ(doc["name"], "quote \" backslash \\ tab \t bell \x07 end \xE2\x88\x9E");
  EXPECT_EQ(doc["count"], -3);
  EXPECT_THAT(doc["rows"][0]["b"], ElementsAre("one", "two"));
  EXPECT_EQ(doc["rows"][0]["hidden"], true);
  EXPECT_TRUE(doc["rows"][1]["b"].is_null());
  EXPECT_EQ(doc["items"].size(), 2u);
  EXPECT_EQ(doc["items"][1]["n"], 2);
  EXPECT_EQ(json.substr(0, 21), "{\"name\":\"quote \\\" bac") << "members in the order added, no spaces";
  EXPECT_EQ(json.back(), '\n');
}

TEST(HostOutputTest, TextAlignsLabelsAndColumns) {
  KrHostReport report;
  fill(report);
  std::wstring text = report.text();
  EXPECT_NE(text.find(L"Name:           quote"), std::wstring::npos) << krhostUtf8(text);
  EXPECT_NE(text.find(L"A longer label: -3\n"), std::wstring::npos);
  EXPECT_NE(text.find(L"\nRows (2)\n  A         BEE\n  x         one, two\n    longer  -\n            a note\n"),
            std::wstring::npos)
      << krhostUtf8(text);
  EXPECT_NE(text.find(L"a note\n\nN: 1\n\nN: 2\n"), std::wstring::npos) << krhostUtf8(text);
}

}  // namespace
