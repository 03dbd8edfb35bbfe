#pragma once
// A small JSON reader for the tests: parses one document into a tree of
// values. Strings stay UTF-8; numbers are doubles. A malformed document
// gives a value of kind kInvalid.
//
//   KrJson doc = KrJson::parse(R"({"ok":true,"modules":[{"module":"good.krx"}]})");
//   doc["modules"][0]["module"].text();   // "good.krx"

#include <string>
#include <utility>
#include <vector>

class KrJson {
 public:
  enum Kind { kInvalid, kNull, kTruth, kNumber, kText, kArray, kObject };

  static KrJson parse(const std::string& document);

  Kind kind() const { return mKind; }
  bool truth() const { return mTruth; }
  double number() const { return mNumber; }
  const std::string& text() const { return mText; }
  size_t size() const { return mKind == kArray ? mItems.size() : mMembers.size(); }
  // The index-th item of an array; an invalid value when there is none.
  const KrJson& operator[](int index) const;
  // The member named key of an object; an invalid value when there is none.
  const KrJson& operator[](const char* key) const;
  const std::vector<KrJson>& items() const { return mItems; }
  // The first item of an array whose member key has the text value; an
  // invalid value when there is none.
  const KrJson& rowWith(const char* key, const std::string& value) const;
  // An array of texts as a vector.
  std::vector<std::string> texts() const;

 private:
  friend class KrJsonParser;
  Kind mKind = kInvalid;
  bool mTruth = false;
  double mNumber = 0;
  std::string mText;
  std::vector<KrJson> mItems;
  std::vector<std::pair<std::string, KrJson>> mMembers;
};
