#pragma once
// What a krhost command prints, built once and then written either as
// aligned plain text or as one JSON document. A report holds, in the order
// they were added, fields (a label and a value), tables (rows under named
// columns) and lists of child reports (one per module, say).
//
//   KrHostReport report;
//   report.field("count", L"Classes", KrHostValue::number(2));
//   KrHostTable& classes = report.table("classes", L"Class tree", {{"name", L"CLASS"}, {"parent", L"PARENT"}});
//   classes.row({L"KrRxObject", KrHostValue()});
//   krhostWrite(json ? report.json() : report.text());

#include <nlohmann/json_fwd.hpp>

#include <memory>
#include <string>
#include <vector>

// One cell or field: nothing, a text, a whole number, a truth value or a list of texts.
class KrHostValue {
 public:
  KrHostValue() = default;  // nothing: "-" in text, null in JSON
  KrHostValue(const wchar_t* text);
  KrHostValue(std::wstring text);
  static KrHostValue number(long long number);
  static KrHostValue truth(bool truth);
  static KrHostValue list(std::vector<std::wstring> texts);

  // The text form: lists joined with ", " ("none" when empty), truth values "yes" or "no".
  std::wstring text() const;
  // The text form as lines: a list's items one per line, anything else one line.
  std::vector<std::wstring> textLines() const;
  bool isEmptyList() const { return mKind == Kind::kList && mList.empty(); }
  // The JSON form: null, a string, a number, true or false, or an array of strings.
  nlohmann::ordered_json toJson() const;

 private:
  enum class Kind { kNothing, kText, kNumber, kTruth, kList };
  Kind mKind = Kind::kNothing;
  std::wstring mText;
  long long mNumber = 0;
  std::vector<std::wstring> mList;
};

// Rows of cells under named columns; a column may be left out of the text
// form (it is always in JSON), and a row may be indented in the text form.
class KrHostTable {
 public:
  struct Column {
    std::string key;      // the JSON member name
    std::wstring header;  // the text form's heading; no heading row when every header is empty
    bool inText = true;
  };

  explicit KrHostTable(std::vector<Column> columns) : mColumns(std::move(columns)) {}
  // One row, a cell per column. A note is a line of the text form only,
  // under the row's last column.
  void row(std::vector<KrHostValue> cells, int indent = 0, std::wstring note = L"");
  size_t size() const { return mRows.size(); }

  void appendText(std::wstring& out, const std::wstring& margin) const;
  // An array with one object per row, its members the columns in order.
  nlohmann::ordered_json toJson() const;

 private:
  struct Row {
    std::vector<KrHostValue> cells;
    int indent;
    std::wstring note;
  };
  std::vector<Column> mColumns;
  std::vector<Row> mRows;
};

class KrHostReport {
 public:
  KrHostReport() = default;
  KrHostReport(const KrHostReport&) = delete;
  KrHostReport& operator=(const KrHostReport&) = delete;

  void field(std::string key, std::wstring label, KrHostValue value);
  // A new table under key; its title (with the row count) heads it in text.
  KrHostTable& table(std::string key, std::wstring title, std::vector<KrHostTable::Column> columns);
  // A new child report appended to the list under key; its text form
  // follows the previous child's after a blank line.
  KrHostReport& child(std::string key);

  std::wstring text() const;
  // One JSON object in UTF-8, its members in the order added, closed by a line break.
  std::string json() const;

 private:
  struct Entry {
    std::string key;
    std::wstring label;
    KrHostValue value;
    std::unique_ptr<KrHostTable> table;
    std::vector<std::unique_ptr<KrHostReport>> children;
  };

  nlohmann::ordered_json toJson() const;
  size_t labelWidth() const;

  std::vector<Entry> mEntries;
};

// Text in UTF-8.
std::string krhostUtf8(const std::wstring& text);

// Writes text to standard output as UTF-8, unchanged line ends.
void krhostWrite(const std::wstring& text);
// Writes UTF-8 bytes to standard output as they are.
void krhostWriteUtf8(const std::string& bytes);
// Writes text to standard error as UTF-8.
void krhostWriteError(const std::wstring& text);
