#include "host/KrHostOutput.h"

#include <windows.h>

#include <fcntl.h>
#include <io.h>

#include <nlohmann/json.hpp>

#include <algorithm>
#include <cstdio>

namespace {

constexpr wchar_t kIndent[] = L"  ";
// A field longer than this shows a list's items one per line.
constexpr size_t kLongLine = 100;

std::wstring oneLine(std::wstring text) {
  for (wchar_t& unit : text)
    if (unit == L'\n' || unit == L'\r' || unit == L'\t') unit = L' ';
  while (!text.empty() && text.back() == L' ') text.pop_back();
  return text;
}

void pad(std::wstring& out, size_t width, size_t used) { out.append(width > used ? width - used : 0, L' '); }

// Bytes as they are: no line-end translation.
void writeTo(FILE* stream, const std::string& bytes) {
  _setmode(_fileno(stream), _O_BINARY);
  fwrite(bytes.data(), 1, bytes.size(), stream);
  fflush(stream);
}

}  // namespace

// ---- Values ----

KrHostValue::KrHostValue(const wchar_t* text) : mKind(text ? Kind::kText : Kind::kNothing), mText(text ? text : L"") {}

KrHostValue::KrHostValue(std::wstring text) : mKind(Kind::kText), mText(std::move(text)) {}

KrHostValue KrHostValue::number(long long number) {
  KrHostValue value;
  value.mKind = Kind::kNumber;
  value.mNumber = number;
  return value;
}

KrHostValue KrHostValue::truth(bool truth) {
  KrHostValue value;
  value.mKind = Kind::kTruth;
  value.mNumber = truth;
  return value;
}

KrHostValue KrHostValue::list(std::vector<std::wstring> texts) {
  KrHostValue value;
  value.mKind = Kind::kList;
  value.mList = std::move(texts);
  return value;
}

std::wstring KrHostValue::text() const {
  switch (mKind) {
    case Kind::kNothing:
      return L"-";
    case Kind::kText:
      return oneLine(mText);
    case Kind::kNumber:
      return std::to_wstring(mNumber);
    case Kind::kTruth:
      return mNumber ? L"yes" : L"no";
    case Kind::kList:
      break;
  }
  if (mList.empty()) return L"none";
  std::wstring joined;
  for (const std::wstring& item : mList) joined += (joined.empty() ? L"" : L", ") + oneLine(item);
  return joined;
}

std::vector<std::wstring> KrHostValue::textLines() const {
  if (mKind != Kind::kList || mList.empty()) return {text()};
  std::vector<std::wstring> lines;
  for (const std::wstring& item : mList) lines.push_back(oneLine(item));
  return lines;
}

nlohmann::ordered_json KrHostValue::toJson() const {
  switch (mKind) {
    case Kind::kNothing:
      return nullptr;
    case Kind::kText:
      return krhostUtf8(mText);
    case Kind::kNumber:
      return mNumber;
    case Kind::kTruth:
      return mNumber != 0;
    case Kind::kList:
      break;
  }
  nlohmann::ordered_json list = nlohmann::ordered_json::array();
  for (const std::wstring& item : mList) list.push_back(krhostUtf8(item));
  return list;
}

// ---- Tables ----

void KrHostTable::row(std::vector<KrHostValue> cells, int indent, std::wstring note) {
  cells.resize(mColumns.size());
  mRows.push_back({std::move(cells), indent, std::move(note)});
}

void KrHostTable::appendText(std::wstring& out, const std::wstring& margin) const {
  std::vector<size_t> shown;
  bool headed = false;
  for (size_t c = 0; c < mColumns.size(); ++c) {
    if (!mColumns[c].inText) continue;
    shown.push_back(c);
    headed = headed || !mColumns[c].header.empty();
  }
  std::vector<std::vector<std::wstring>> lines;
  if (headed) {
    lines.emplace_back();
    for (size_t c : shown) lines.back().push_back(mColumns[c].header);
  }
  for (const Row& row : mRows) {
    lines.emplace_back();
    for (size_t i = 0; i < shown.size(); ++i)
      lines.back().push_back(std::wstring(i ? 0 : size_t(row.indent) * 2, L' ') +
                             (row.cells[shown[i]].isEmptyList() ? L"" : row.cells[shown[i]].text()));
  }
  std::vector<size_t> widths(shown.size(), 0);
  for (const auto& line : lines)
    for (size_t i = 0; i < line.size(); ++i) widths[i] = std::max(widths[i], line[i].size());
  size_t lastColumn = margin.size();
  for (size_t i = 0; i + 1 < widths.size(); ++i) lastColumn += widths[i] + 2;
  for (size_t l = 0; l < lines.size(); ++l) {
    std::wstring text = margin;
    for (size_t i = 0; i < lines[l].size(); ++i) {
      text += lines[l][i];
      if (i + 1 < lines[l].size()) pad(text, widths[i] + 2, lines[l][i].size());
    }
    out += oneLine(text) + L"\n";
    const Row* row = l >= (headed ? 1u : 0u) ? &mRows[l - (headed ? 1 : 0)] : nullptr;
    if (row && !row->note.empty()) out += std::wstring(lastColumn, L' ') + oneLine(row->note) + L"\n";
  }
  if (mRows.empty()) out += margin + L"(none)\n";
}

nlohmann::ordered_json KrHostTable::toJson() const {
  nlohmann::ordered_json rows = nlohmann::ordered_json::array();
  for (const Row& row : mRows) {
    nlohmann::ordered_json object = nlohmann::ordered_json::object();
    for (size_t c = 0; c < mColumns.size(); ++c) object[mColumns[c].key] = row.cells[c].toJson();
    rows.push_back(std::move(object));
  }
  return rows;
}

// ---- Reports ----

void KrHostReport::field(std::string key, std::wstring label, KrHostValue value) {
  mEntries.push_back({std::move(key), std::move(label), std::move(value), nullptr, {}});
}

KrHostTable& KrHostReport::table(std::string key, std::wstring title, std::vector<KrHostTable::Column> columns) {
  mEntries.push_back({std::move(key), std::move(title), KrHostValue(), std::make_unique<KrHostTable>(std::move(columns)), {}});
  return *mEntries.back().table;
}

KrHostReport& KrHostReport::child(std::string key) {
  Entry* list = nullptr;
  for (Entry& entry : mEntries)
    if (entry.key == key && !entry.table && !entry.children.empty()) list = &entry;
  if (!list) {
    mEntries.push_back({key, L"", KrHostValue(), nullptr, {}});
    list = &mEntries.back();
  }
  list->children.push_back(std::make_unique<KrHostReport>());
  return *list->children.back();
}

size_t KrHostReport::labelWidth() const {
  size_t width = 0;
  for (const Entry& entry : mEntries)
    if (!entry.table && entry.children.empty()) width = std::max(width, entry.label.size() + 1);
  return width;
}

std::wstring KrHostReport::text() const {
  std::wstring out;
  size_t width = labelWidth();
  bool previousWasField = true;
  for (const Entry& entry : mEntries) {
    bool isField = !entry.table && entry.children.empty();
    if (&entry != &mEntries.front() && (!isField || !previousWasField)) out += L"\n";
    previousWasField = isField;
    if (entry.table) {
      out += entry.label + L" (" + std::to_wstring(entry.table->size()) + L")\n";
      entry.table->appendText(out, kIndent);
    } else if (isField) {
      std::wstring line = entry.label + L":";
      size_t valueColumn = width + 1;
      pad(line, valueColumn, line.size());
      std::wstring joined = entry.value.text();
      std::vector<std::wstring> values = line.size() + joined.size() > kLongLine ? entry.value.textLines()
                                                                                 : std::vector<std::wstring>{joined};
      for (size_t v = 0; v < values.size(); ++v)
        out += (v ? std::wstring(valueColumn, L' ') : line) + values[v] + L"\n";
    } else {
      for (size_t i = 0; i < entry.children.size(); ++i) out += (i ? L"\n" : L"") + entry.children[i]->text();
    }
  }
  return out;
}

nlohmann::ordered_json KrHostReport::toJson() const {
  nlohmann::ordered_json object = nlohmann::ordered_json::object();
  for (const Entry& entry : mEntries) {
    nlohmann::ordered_json& member = object[entry.key];
    if (entry.table) {
      member = entry.table->toJson();
    } else if (!entry.children.empty()) {
      member = nlohmann::ordered_json::array();
      for (const auto& child : entry.children) member.push_back(child->toJson());
    } else {
      member = entry.value.toJson();
    }
  }
  return object;
}

std::string KrHostReport::json() const {
  // Texts are converted from UTF-16, so they are valid UTF-8 (lone surrogates become U+FFFD).
  return toJson().dump() + "\n";
}

std::string krhostUtf8(const std::wstring& text) {
  if (text.empty()) return {};
  int size = WideCharToMultiByte(CP_UTF8, 0, text.data(), int(text.size()), nullptr, 0, nullptr, nullptr);
  std::string bytes(size_t(size), '\0');
  WideCharToMultiByte(CP_UTF8, 0, text.data(), int(text.size()), &bytes[0], size, nullptr, nullptr);
  return bytes;
}

void krhostWrite(const std::wstring& text) { writeTo(stdout, krhostUtf8(text)); }

void krhostWriteUtf8(const std::string& bytes) { writeTo(stdout, bytes); }

void krhostWriteError(const std::wstring& text) { writeTo(stderr, krhostUtf8(text)); }
