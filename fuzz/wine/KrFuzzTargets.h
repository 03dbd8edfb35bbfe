#pragma once
// The text parsers that fuzz_text feeds, one table entry each. An entry names
// the parser, lists typical texts that the mutations start from, and gives
// the function that feeds one text and judges every answer it gets back.

#include <cstdint>
#include <string>
#include <vector>

// What one input got: whether the parser took the text, and what was wrong
// with its answers (null when every answer was a defined one).
struct KrFuzzVerdict {
  bool taken;
  const char* wrong;
};

struct KrFuzzTarget {
  const char* name;
  // Texts the mutated inputs are made from.
  std::vector<std::wstring> seeds;
  // Feeds text (null for the null text) to the parser; choice picks what
  // else the input varies (start value, flags). Frees whatever the parser
  // handed out.
  KrFuzzVerdict (*feed)(const wchar_t* text, uint64_t choice);
};

// Every target, in the order the driver runs them.
const std::vector<KrFuzzTarget>& krfuzzTargets();
