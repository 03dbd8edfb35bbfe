// Dictionary speed beside the standard containers, measured in one run:
// key lookup in a sorted dictionary of 10,000 entries, and insert + remove
// churn on it.

#include <algorithm>
#include <cstdio>
#include <cwctype>
#include <map>
#include <random>
#include <string>
#include <unordered_map>
#include <vector>

#include "BenchHarness.h"
#include "krrxgenvoid.h"
#include "runtime/KrRxImpDictionary.h"

namespace {

const int kEntries = 10000;

std::vector<std::wstring> makeKeys(int count, const wchar_t* stem) {
  std::vector<std::wstring> keys;
  for (int i = 0; i < count; ++i) keys.push_back(stem + std::to_wstring(i * 7919 % 100003));
  return keys;
}

// The same keys in a scrambled order, as separate copies so that no lookup
// finds its key by pointer.
std::vector<std::wstring> scrambled(const std::vector<std::wstring>& keys) {
  std::vector<std::wstring> order(keys);
  std::shuffle(order.begin(), order.end(), std::mt19937(42));
  return order;
}

void benchLookup(const std::vector<std::wstring>& keys, KrRxObject* value) {
  KrRxImpDictionary sorted(kEntries, false, true, false);
  KrRxDictionary& dictionary = sorted;  // called as clients call it
  std::map<std::wstring, KrRxObject*> map;
  for (const std::wstring& key : keys) {
    dictionary.atPut(key.c_str(), value);
    map.emplace(key, value);
  }
  std::vector<std::wstring> probes = scrambled(keys);
  double ours = bench::nsPerCall([&](long long i) { bench::keep(dictionary.at(probes[i % kEntries].c_str())); });
  double theirs = bench::nsPerCall([&](long long i) { bench::keep(map.find(probes[i % kEntries])->second); });
  bench::report("at(key), sorted, 10,000 entries", ours, "std::map::find", theirs);

  KrRxImpDictionary sortedNoCase(kEntries, false, true, true);
  KrRxDictionary& noCase = sortedNoCase;
  for (const std::wstring& key : keys) noCase.atPut(key.c_str(), value);
  double ignoringCase = bench::nsPerCall([&](long long i) { bench::keep(noCase.at(probes[i % kEntries].c_str())); });
  bench::report("at(key), sorted, ignoring case", ignoringCase, "std::map::find", theirs);
  std::vector<std::wstring> lowered = probes;
  for (std::wstring& probe : lowered)
    for (wchar_t& unit : probe) unit = wchar_t(towlower(unit));
  double otherCase = bench::nsPerCall([&](long long i) { bench::keep(noCase.at(lowered[i % kEntries].c_str())); });
  bench::report("at(key), ignoring case, probes in lower case", otherCase, "std::map::find", theirs);

  double byId = bench::nsPerCall([&](long long i) { bench::keep(dictionary.at(unsigned(i % kEntries + 1))); });
  std::vector<KrRxObject*> vector(kEntries + 1, value);
  double indexed = bench::nsPerCall([&](long long i) { bench::keep(vector[size_t(i % kEntries + 1)]); });
  bench::report("at(id)", byId, "std::vector::operator[]", indexed);
}

void benchChurn(const std::vector<std::wstring>& keys, KrRxObject* value) {
  std::vector<std::wstring> extra = scrambled(makeKeys(kEntries, L"KrRxBenchExtra"));
  const long long kBatch = 20000;

  // Ids are never used again, so every insert takes a new entry: the entries
  // array grows all along. A second dictionary, made large enough at the
  // start, shows the churn without that growth.
  auto churn = [&](unsigned int length) {
    KrRxImpDictionary sorted(length, false, true, false);
    KrRxDictionary& dictionary = sorted;
    for (const std::wstring& key : keys) dictionary.atPut(key.c_str(), value);
    return bench::nsPerCall(
        [&](long long i) {
          const wchar_t* key = extra[i % kEntries].c_str();
          dictionary.atPut(key, value);
          bench::keep(dictionary.remove(key));
        },
        kBatch);
  };
  double ours = churn(kEntries);
  double presized = churn(unsigned(kEntries + 6 * kBatch));

  // The same churn on a standard container filled with the same keys.
  auto standardChurn = [&](auto container) {
    for (const std::wstring& key : keys) container.emplace(key, value);
    return bench::nsPerCall(
        [&](long long i) {
          const std::wstring& key = extra[i % kEntries];
          container.emplace(key, value);
          bench::keep(container.erase(key));
        },
        kBatch);
  };
  double ordered = standardChurn(std::map<std::wstring, KrRxObject*>());
  double unordered = standardChurn(std::unordered_map<std::wstring, KrRxObject*>());

  bench::report("atPut + remove, sorted, 10,000 entries", ours, "std::map insert + erase", ordered);
  bench::report("atPut + remove, sorted, 10,000 entries", ours, "std::unordered_map insert + erase", unordered);
  bench::report("atPut + remove, entries made room for", presized, "std::map insert + erase", ordered);
}

}  // namespace

int main() {
  KrRxGenVoid value;
  std::vector<std::wstring> keys = makeKeys(kEntries, L"KrRxBenchClass");
  benchLookup(keys, &value);
  benchChurn(keys, &value);
  return 0;
}
