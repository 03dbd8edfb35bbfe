#include "KrFuzzInputs.h"

#include <algorithm>

namespace {

// Units that steer the parsers: digits, signs, separators, exponent and hex
// markers, the special texts, and the per cent and per mille signs.
const wchar_t kSyntaxUnits[] = L"0123456789+-.:eExXT Z*%/,\t\n\u221E\u2030";

uint64_t nameHash(const char* name) {
  uint64_t hash = 0xCBF29CE484222325ULL;  // FNV-1a
  for (; *name; ++name) hash = (hash ^ static_cast<unsigned char>(*name)) * 0x100000001B3ULL;
  return hash;
}

std::wstring repeatedTo(const std::wstring& piece, size_t length) {
  std::wstring text;
  text.reserve(length);
  while (text.size() < length) text += piece;
  text.resize(length);
  return text;
}

}  // namespace

uint64_t KrFuzzRandom::next() {
  uint64_t z = (mState += 0x9E3779B97F4A7C15ULL);
  z = (z ^ (z >> 30)) * 0xBF58476D1CE4E5B9ULL;
  z = (z ^ (z >> 27)) * 0x94D049BB133111EBULL;
  return z ^ (z >> 31);
}

KrFuzzInputs::KrFuzzInputs(const KrFuzzTarget& target, uint64_t seed)
    : mTarget(target), mTargetSeed(KrFuzzRandom(seed).next() ^ nameHash(target.name)) {
  mText.reserve(kMaxMutatedLength + kUnitsPerSweepInput);
  std::wstring allSeeds;
  for (const std::wstring& s : target.seeds) allSeeds += s + L" ";
  KrFuzzRandom random(mTargetSeed);
  std::wstring noise(kLongLength, L'x');
  for (wchar_t& unit : noise) unit = static_cast<wchar_t>(1 + random.below(0xFFFF));
  mFixed = {
      L"",
      std::wstring(kLongLength, L'9'),
      L"-" + std::wstring(kLongLength - 1, L'9'),
      std::wstring(kLongLength - 1, L' ') + L"5",
      L"0." + std::wstring(kLongLength - 3, L'0') + L"1",
      repeatedTo(allSeeds, kLongLength),
      std::wstring(kLongLength, wchar_t(0xD800)),
      std::wstring(kLongLength, wchar_t(0xDC00)),
      repeatedTo(L"\xDBFF" L"1", kLongLength),
      noise,
  };
  for (const std::wstring& s : target.seeds) {
    mFixed.push_back(s + L"\xD800");
    mFixed.push_back(L"\xDFFF" + s);
  }
  // Decimal numbers of every length class and far exponents: the C
  // runtime's decimal reader keeps the big-number blocks it once needed for
  // reuse, so the warm-up fills that cache before the heap is counted.
  for (size_t digits = 1; digits <= kMaxMutatedLength; digits *= 2)
    for (const wchar_t* exponent : {L"", L"e-400", L"e-324", L"e-308", L"e-200", L"e-22", L"e22", L"e200", L"e308",
                                    L"e400", L"e3012", L"e-3012"})
      for (const wchar_t* head : {L"", L".", L"1."})
        for (wchar_t digit : {L'1', L'5', L'9'}) mFixed.push_back(head + std::wstring(digits, digit) + exponent);
}

KrFuzzRandom KrFuzzInputs::randomFor(uint64_t index) const {
  KrFuzzRandom random(mTargetSeed ^ (index * 0xD1B54A32D192ED03ULL));
  random.next();
  return random;
}

const wchar_t* KrFuzzInputs::text(uint64_t index, uint64_t& choice) {
  KrFuzzRandom random = randomFor(index);
  choice = random.next();
  if (index == 0) return nullptr;
  if (index <= mFixed.size()) return mFixed[index - 1].c_str();
  uint64_t sweep = index - 1 - mFixed.size();
  if (sweep < kSweepInputs) {
    makeSweep(sweep, random);
  } else {
    mutate(random);
  }
  return mText.c_str();
}

// Puts units 16 * sweep .. 16 * sweep + 15 into a seed text, each inserted
// or written over a unit at a random place.
void KrFuzzInputs::makeSweep(uint64_t sweep, KrFuzzRandom& random) {
  mText = mTarget.seeds[sweep % mTarget.seeds.size()];
  for (uint64_t k = 0; k < kUnitsPerSweepInput; ++k) {
    wchar_t unit = static_cast<wchar_t>(sweep * kUnitsPerSweepInput + k);
    size_t at = random.below(mText.size() + 1);
    if (at < mText.size() && random.below(2))
      mText[at] = unit;
    else
      mText.insert(at, 1, unit);
  }
}

wchar_t KrFuzzInputs::interestingUnit(KrFuzzRandom& random) const {
  switch (random.below(8)) {
    case 0:
    case 1:
    case 2:
      return kSyntaxUnits[random.below(sizeof kSyntaxUnits / sizeof *kSyntaxUnits - 1)];
    case 3:
      return static_cast<wchar_t>(0xD800 + random.below(0x800));  // a lone surrogate
    case 4:
      return static_cast<wchar_t>(random.below(0x80));
    case 5: {
      const std::wstring& seed = mTarget.seeds[random.below(mTarget.seeds.size())];
      return seed.empty() ? L'0' : seed[random.below(seed.size())];
    }
    default:
      return static_cast<wchar_t>(random.below(0x10000));
  }
}

// One to four edits of a seed text, kept within kMaxMutatedLength units.
void KrFuzzInputs::mutate(KrFuzzRandom& random) {
  const std::vector<std::wstring>& seeds = mTarget.seeds;
  mText = seeds[random.below(seeds.size())];
  for (size_t edits = 1 + random.below(4); edits > 0; --edits) {
    size_t at = random.below(mText.size() + 1);
    size_t room = kMaxMutatedLength - mText.size();
    switch (random.below(7)) {
      case 0:  // flip one bit of a unit
        if (at < mText.size()) mText[at] = static_cast<wchar_t>(mText[at] ^ (1u << random.below(16)));
        break;
      case 1:  // overwrite a unit
        if (at < mText.size()) mText[at] = interestingUnit(random);
        break;
      case 2:  // insert a few units
        for (size_t n = 1 + random.below(4); n > 0 && room > 0; --n, --room) mText.insert(at, 1, interestingUnit(random));
        break;
      case 3:  // delete a run
        mText.erase(at, 1 + random.below(8));
        break;
      case 4: {  // splice: this text's head, another seed's tail
        const std::wstring& other = seeds[random.below(seeds.size())];
        mText.replace(at, std::wstring::npos, other, random.below(other.size() + 1), std::wstring::npos);
        mText.resize(std::min(mText.size(), kMaxMutatedLength));
        break;
      }
      case 5: {  // repeat a run up to 64 times
        size_t length = std::min<size_t>(1 + random.below(8), mText.size() - std::min(at, mText.size()));
        for (size_t n = random.below(64); n > 0 && length > 0 && room >= length; --n, room -= length)
          mText.insert(at, mText, at, length);
        break;
      }
      default:  // cut the tail
        mText.resize(at);
        break;
    }
  }
}
