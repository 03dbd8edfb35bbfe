// Reflection speed beside the standard library, measured in one run: symbol
// lookup by name, iteration over a class chain, template formatting and
// name conversion.

#include <cstdio>
#include <cstdlib>
#include <cwchar>
#include <map>
#include <string>
#include <vector>

#include "BenchArrayWalk.h"
#include "BenchHarness.h"
#include "kr1st.h"

namespace {

class Level1 : public KrRxObject {
  KRRX_DECLARE_MEMBERS(Level1);
};
class Level2 : public Level1 {
  KRRX_DECLARE_MEMBERS(Level2);
};
class Level3 : public Level2 {
  KRRX_DECLARE_MEMBERS(Level3);

 public:
  double mWidth = 900.0, mHeight = 2100.0, mDepth = 40.0;
};
KRRX_NO_CONS_DEFINE_MEMBERS(Level1, KrRxObject)
KRRX_NO_CONS_DEFINE_MEMBERS(Level2, Level1)
KRRX_CONS_DEFINE_MEMBERS(Level3, Level2)

// A property reading one double member of Level3.
class Member : public KrRfProperty {
 public:
  Member(std::wstring name, double Level3::*field) : mName(std::move(name)), mpField(field) {}
  KrRxClass* valueType() const override { return KrVtFloat64::desc(); }
  GUID* getGuid(GUID* buffer) const override {
    *buffer = GUID{};
    buffer->Data1 = static_cast<unsigned long>(std::hash<std::wstring>()(mName));
    return buffer;
  }
  const wchar_t* displayName() const override { return mName.c_str(); }
  const wchar_t* name() const override { return mName.c_str(); }
  const wchar_t* description() const override { return nullptr; }
  Kesu::ErrorStatus getValue(const KrRxObject* object, KrRxObject* value) const override {
    KrVtFloat64* number = KrVtFloat64::cast(value);
    if (!number) return Kesu::eWrongObjectType;
    *number = static_cast<const Level3*>(object)->*mpField;
    return Kesu::eOk;
  }

 private:
  std::wstring mName;
  double Level3::*mpField;
};

const int kPerClass = 100;

std::wstring symbolName(int level, int i) { return L"s" + std::to_wstring(level) + L"x" + std::to_wstring(i * 37 % 101); }

KrRxClass* levelClass(int level) {
  KrRxClass* classes[] = {Level1::desc(), Level2::desc(), Level3::desc()};
  return classes[level];
}

// The caller's loop of every symbol walk measured here.
void walk(KrRfSymbolIterator* it) {
  for (; !it->done(); it->next()) bench::keep(it->symbol());
}

// members receives kPerClass symbols for each level, level by level.
void benchSymbols(std::vector<Member*>& members) {
  KrRfReflectionService* service = krrfReflectionService();
  std::map<std::wstring, KrRfSymbol*> map;
  for (int level = 0; level < 3; ++level) {
    for (int i = 0; i < kPerClass; ++i) {
      members.push_back(new Member(symbolName(level, i), &Level3::mWidth));
      service->reflectionPE(levelClass(level), true)->addSymbol(members.back());
      if (level == 2) map.emplace(members.back()->name(), members.back());
    }
  }
  KrRfReflectionPE* pe = service->reflectionPE(Level3::desc(), false);
  std::vector<std::wstring> probes;
  for (int i = 0; i < kPerClass; ++i) probes.push_back(symbolName(2, (i * 53) % kPerClass));
  double ours = bench::nsPerCall([&](long long i) { bench::keep(pe->symbolAt(probes[i % kPerClass].c_str())); });
  double theirs = bench::nsPerCall([&](long long i) { bench::keep(map.find(probes[i % kPerClass])->second); });
  bench::report("symbolAt(name), 100 symbols", ours, "std::map<std::wstring,T*>::find", theirs);

  std::map<std::wstring, KrRfSymbol*> all;
  for (Member* member : members) all.emplace(member->name(), member);
  auto mapWalk = [&](long long) {
    for (const auto& entry : all) bench::keep(entry.second);
  };
  auto symbolWalk = [&](long long) {
    KrRfSymbolIterator* it = pe->newSymbolIterator(nullptr);
    walk(it);
    delete it;
  };
  bench::sideBySide("iteration, 3 levels x 100, whole walk", symbolWalk, "std::map walk, 300 entries", mapWalk, 2000);
  std::vector<KrRfSymbol*> array(members.begin(), members.end());
  auto arrayWalk = [&](long long) {
    KrRfSymbolIterator* it = newArrayWalk(array.data(), int(array.size()));
    walk(it);
    delete it;
  };
  bench::sideBySide("  floor: array iterator in the exe", arrayWalk, "std::map walk, 300 entries", mapWalk, 2000);
  bench::sideBySide("  of which newSymbolIterator + delete",
                    [&](long long) { delete pe->newSymbolIterator(nullptr); }, "new + delete of the array iterator",
                    [&](long long) { delete newArrayWalk(array.data(), int(array.size())); }, 20000);
}

void benchFormat() {
  KrRfReflectionService* service = krrfReflectionService();
  KrRfReflectionPE* pe = service->reflectionPE(Level3::desc(), false);
  Member width(L"width", &Level3::mWidth), height(L"height", &Level3::mHeight), depth(L"depth", &Level3::mDepth);
  pe->addSymbol(&width);
  pe->addSymbol(&height);
  pe->addSymbol(&depth);
  Level3 door;
  wchar_t* sample = nullptr;
  krrfFormatString(L"Door %<width>% x %<height>% x %<depth>%", &door, sample);
  std::printf("  template filled: %ls\n", sample);
  free(sample);
  auto printing = [&](long long) {
    wchar_t buffer[128];
    swprintf(buffer, 128, L"Door %g x %g x %g", door.mWidth, door.mHeight, door.mDepth);
    bench::keep(buffer);
  };
  bench::sideBySide("krrfFormatString, 3 placeholders", [&](long long) {
    wchar_t* text = nullptr;
    krrfFormatString(L"Door %<width>% x %<height>% x %<depth>%", &door, text);
    free(text);
  }, "swprintf, the same 3 doubles", printing, 20000);
  KrVtFloat64 values[] = {door.mWidth, door.mHeight, door.mDepth};
  bench::sideBySide("  of which 3 x krrxFormatObject", [&](long long) {
    for (const KrVtFloat64& value : values) {
      wchar_t* text = nullptr;
      krrxFormatObject(&value, text, nullptr);
      free(text);
    }
  }, "swprintf, the same 3 doubles", printing, 20000);
  pe->removeSymbol(&depth);
  pe->removeSymbol(&height);
  pe->removeSymbol(&width);
}

// The peer: the same folding on ASCII text alone, into a std::wstring.
std::wstring asciiCamel(const wchar_t* text) {
  std::wstring out;
  bool afterSeparator = false;
  for (const wchar_t* p = text; *p; ++p) {
    wchar_t c = *p;
    if (iswalnum(c) || c == L'_') {
      if (out.empty() && iswdigit(c)) out += L'_';
      out += afterSeparator ? wchar_t(towupper(c)) : wchar_t(towlower(c));
      afterSeparator = false;
    } else {
      afterSeparator = true;
    }
  }
  return out;
}

void benchCamelCase() {
  const wchar_t* text = L"Größte Höhe der äußeren Tür A2";  // 30 characters
  bench::sideBySide("krrfToCamelCase, 30 characters", [&](long long) {
    wchar_t* name = nullptr;
    krrfToCamelCase(text, name);
    free(name);
  }, "ASCII-only fold into std::wstring", [&](long long) { bench::keep(asciiCamel(text)); }, 20000);
}

}  // namespace

int main() {
  Level1::rxInit();
  Level2::rxInit();
  Level3::rxInit();
  krrxBuildClassHierarchy();
  std::vector<Member*> members;
  benchSymbols(members);
  benchFormat();
  benchCamelCase();
  for (size_t i = 0; i < members.size(); ++i) {
    krrfReflectionService()->reflectionPE(levelClass(int(i) / kPerClass), false)->removeSymbol(members[i]);
    delete members[i];
  }
  return 0;
}
