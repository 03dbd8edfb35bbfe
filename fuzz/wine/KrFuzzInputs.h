#pragma once
// The inputs of one fuzz target, each a pure function of (run seed, target,
// index), so that any input is made again from the printed seed alone.
// Index order: the fixed inputs first (the null text, the empty text, texts
// of 100,000 units, unpaired surrogates, numbers of every length), then the code-unit sweep (every
// unit 0..0xFFFF put into a seed text, 16 units per input), then mutations
// of the seeds (unit flips, inserts, deletes, splices, repeats).

#include <cstdint>
#include <string>
#include <vector>

#include "KrFuzzTargets.h"

// splitmix64: small, fast, and the same sequence on every machine.
class KrFuzzRandom {
 public:
  explicit KrFuzzRandom(uint64_t state) : mState(state) {}
  uint64_t next();
  // Uniform enough below n (n > 0).
  size_t below(size_t n) { return static_cast<size_t>(next() % n); }

 private:
  uint64_t mState;
};

class KrFuzzInputs {
 public:
  // Mutated texts stay at most this long; the fixed long texts are longer.
  static const size_t kMaxMutatedLength = 4096;
  static const size_t kLongLength = 100000;
  static const uint64_t kUnitsPerSweepInput = 16;
  static const uint64_t kSweepInputs = 0x10000 / kUnitsPerSweepInput;

  KrFuzzInputs(const KrFuzzTarget& target, uint64_t seed);

  // The fixed inputs, which come first and serve as the warm-up.
  uint64_t fixedCount() const { return mFixed.size() + 1; }
  // The text of input index (null for the null text), valid until the next
  // call; choice receives the input's own random number for the target.
  const wchar_t* text(uint64_t index, uint64_t& choice);

 private:
  KrFuzzRandom randomFor(uint64_t index) const;
  void makeSweep(uint64_t sweep, KrFuzzRandom& random);
  void mutate(KrFuzzRandom& random);
  wchar_t interestingUnit(KrFuzzRandom& random) const;

  const KrFuzzTarget& mTarget;
  uint64_t mTargetSeed;
  std::vector<std::wstring> mFixed;  // after the null text, which is input 0
  std::wstring mText;                // reserved once, so inputs allocate nothing
};
