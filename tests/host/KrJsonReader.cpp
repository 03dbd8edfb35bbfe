#include "KrJsonReader.h"

#include <cstdlib>
#include <cstring>

namespace {

const KrJson kMissing;

void appendUtf8(std::string& out, unsigned codePoint) {
  if (codePoint < 0x80) {
    out += char(codePoint);
  } else if (codePoint < 0x800) {
    out += char(0xC0 | (codePoint >> 6));
    out += char(0x80 | (codePoint & 0x3F));
  } else {
    out += char(0xE0 | (codePoint >> 12));
    out += char(0x80 | ((codePoint >> 6) & 0x3F));
    out += char(0x80 | (codePoint & 0x3F));
  }
}

}  // namespace

// Recursive descent over the document; every failure leaves the result invalid.
class KrJsonParser {
 public:
  explicit KrJsonParser(const std::string& text) : mText(text) {}

  KrJson document() {
    KrJson value;
    if (!parseValue(value)) return KrJson();
    skipSpace();
    return mAt == mText.size() ? value : KrJson();
  }

 private:
  void skipSpace() {
    while (mAt < mText.size() && strchr(" \t\r\n", mText[mAt])) ++mAt;
  }

  bool take(char c) {
    skipSpace();
    if (mAt < mText.size() && mText[mAt] == c) return ++mAt, true;
    return false;
  }

  bool word(const char* w) {
    size_t length = strlen(w);
    if (mText.compare(mAt, length, w) != 0) return false;
    mAt += length;
    return true;
  }

  bool parseValue(KrJson& value) {
    skipSpace();
    if (mAt >= mText.size()) return false;
    char c = mText[mAt];
    if (c == '{') return parseObject(value);
    if (c == '[') return parseArray(value);
    if (c == '"') return (value.mKind = KrJson::kText, parseString(value.mText));
    if (word("true")) return (value.mKind = KrJson::kTruth, value.mTruth = true, true);
    if (word("false")) return (value.mKind = KrJson::kTruth, true);
    if (word("null")) return (value.mKind = KrJson::kNull, true);
    char* end = nullptr;
    value.mNumber = strtod(mText.c_str() + mAt, &end);
    if (end == mText.c_str() + mAt) return false;
    mAt = size_t(end - mText.c_str());
    value.mKind = KrJson::kNumber;
    return true;
  }

  bool parseString(std::string& out) {
    if (!take('"')) return false;
    while (mAt < mText.size()) {
      char c = mText[mAt++];
      if (c == '"') return true;
      if (c != '\\') {
        out += c;
        continue;
      }
      if (mAt >= mText.size()) return false;
      char escape = mText[mAt++];
      const char* plain = strchr("\"\\/bfnrt", escape);
      if (plain && escape != 'u') {
        out += "\"\\/\b\f\n\r\t"[plain - "\"\\/bfnrt"];
      } else if (escape == 'u' && mAt + 4 <= mText.size()) {
        appendUtf8(out, unsigned(strtoul(mText.substr(mAt, 4).c_str(), nullptr, 16)));
        mAt += 4;
      } else {
        return false;
      }
    }
    return false;
  }

  bool parseArray(KrJson& value) {
    take('[');
    value.mKind = KrJson::kArray;
    if (take(']')) return true;
    do {
      value.mItems.emplace_back();
      if (!parseValue(value.mItems.back())) return false;
    } while (take(','));
    return take(']');
  }

  bool parseObject(KrJson& value) {
    take('{');
    value.mKind = KrJson::kObject;
    if (take('}')) return true;
    do {
      std::string key;
      skipSpace();
      if (!parseString(key) || !take(':')) return false;
      value.mMembers.emplace_back(key, KrJson());
      if (!parseValue(value.mMembers.back().second)) return false;
    } while (take(','));
    return take('}');
  }

  const std::string& mText;
  size_t mAt = 0;
};

KrJson KrJson::parse(const std::string& document) { return KrJsonParser(document).document(); }

const KrJson& KrJson::operator[](int index) const {
  return mKind == kArray && index >= 0 && size_t(index) < mItems.size() ? mItems[size_t(index)] : kMissing;
}

const KrJson& KrJson::operator[](const char* key) const {
  for (const auto& member : mMembers)
    if (member.first == key) return member.second;
  return kMissing;
}

const KrJson& KrJson::rowWith(const char* key, const std::string& value) const {
  for (const KrJson& item : mItems)
    if (item[key].text() == value) return item;
  return kMissing;
}

std::vector<std::string> KrJson::texts() const {
  std::vector<std::string> texts;
  for (const KrJson& item : mItems) texts.push_back(item.text());
  return texts;
}
