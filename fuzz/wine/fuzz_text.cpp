// fuzz_text: feeds mutated texts to every text parser of the library, on its
// real code paths under Wine, and fails on an answer outside the defined ones
// or on heap growth after warm-up. A crash names the input that caused it.
//
//   fuzz_text [--seed N] [--count N] [--target NAME] [--input I]
//
// --count is the number of inputs per target (fixed inputs and the
// code-unit sweep first, then mutations); --input runs that one input only.
// Without --seed the run takes a new seed and prints it.

#include <windows.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <string>
#include <vector>

#include "KrFuzzInputs.h"
#include "KrFuzzTargets.h"
#include "KrHeapUsage.h"

namespace {

struct Options {
  uint64_t seed = 0;
  uint64_t count = 10000;
  const char* target = nullptr;
  bool oneInput = false;
  uint64_t input = 0;
};

// What is being fed, for the crash report.
struct Current {
  uint64_t seed;
  const char* target;
  uint64_t input;
} gCurrent;

const int kMaxReportsPerTarget = 10;

LONG WINAPI reportCrash(EXCEPTION_POINTERS* exception) {
  fprintf(stderr, "CRASH 0x%08lx on %s input %llu; again with: --seed %llu --target %s --input %llu\n",
          exception->ExceptionRecord->ExceptionCode, gCurrent.target, gCurrent.input, gCurrent.seed,
          gCurrent.target, gCurrent.input);
  fflush(stderr);
  return EXCEPTION_CONTINUE_SEARCH;
}

// The head of a text, with every unit outside printable ASCII as \uXXXX.
std::string shown(const wchar_t* text) {
  if (!text) return "(null)";
  std::string out = "\"";
  size_t length = wcslen(text);
  for (size_t i = 0; i < length && i < 80; ++i) {
    char unit[8];
    if (text[i] >= 0x20 && text[i] < 0x7F && text[i] != '\\')
      snprintf(unit, sizeof unit, "%c", static_cast<char>(text[i]));
    else
      snprintf(unit, sizeof unit, "\\u%04X", static_cast<unsigned>(text[i]));
    out += unit;
  }
  out += "\"";
  if (length > 80) out += " ... (" + std::to_string(length) + " units)";
  return out;
}

// Tallies of one target's run.
struct Tally {
  uint64_t taken = 0;
  uint64_t wrong = 0;
};

// Runs inputs [first, last) of one target.
void feed(const KrFuzzTarget& target, KrFuzzInputs& inputs, uint64_t first, uint64_t last, Tally& tally) {
  for (uint64_t index = first; index < last; ++index) {
    gCurrent.input = index;
    uint64_t choice = 0;
    const wchar_t* text = inputs.text(index, choice);
    KrFuzzVerdict verdict = target.feed(text, choice);
    tally.taken += verdict.taken;
    if (verdict.wrong && tally.wrong++ < kMaxReportsPerTarget)
      printf("FAIL %s input %llu: %s; text %s\n", target.name, index, verdict.wrong, shown(text).c_str());
  }
}

// Runs one target: a warm-up, then the rest between two heap counts.
bool run(const KrFuzzTarget& target, const Options& options) {
  gCurrent.target = target.name;
  KrFuzzInputs inputs(target, options.seed);
  Tally tally;
  if (options.oneInput) {
    feed(target, inputs, options.input, options.input + 1, tally);
    return tally.wrong == 0;
  }

  const uint64_t warmUp = std::min(options.count, inputs.fixedCount());
  auto start = std::chrono::steady_clock::now();
  feed(target, inputs, 0, warmUp, tally);
  long long before = static_cast<long long>(krBusyHeapBytes());
  feed(target, inputs, warmUp, options.count, tally);
  long long growth = static_cast<long long>(krBusyHeapBytes()) - before;
  double seconds = std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
  printf("%-22s %llu inputs (%llu taken) in %.2f s, heap growth %lld bytes after %llu fixed inputs, %llu wrong\n",
         target.name, options.count, tally.taken, seconds, growth, warmUp, tally.wrong);
  fflush(stdout);
  return tally.wrong == 0 && growth <= 0;
}

bool parse(int argc, char** argv, Options& options) {
  bool seeded = false;
  for (int i = 1; i < argc; ++i) {
    const char* value = i + 1 < argc ? argv[i + 1] : nullptr;
    if (!value) return false;
    if (strcmp(argv[i], "--seed") == 0) {
      options.seed = strtoull(value, nullptr, 10);
      seeded = true;
    } else if (strcmp(argv[i], "--count") == 0) {
      options.count = strtoull(value, nullptr, 10);
    } else if (strcmp(argv[i], "--target") == 0) {
      options.target = value;
    } else if (strcmp(argv[i], "--input") == 0) {
      options.input = strtoull(value, nullptr, 10);
      options.oneInput = true;
    } else {
      return false;
    }
    ++i;
  }
  if (!seeded) options.seed = static_cast<uint64_t>(time(nullptr)) ^ GetCurrentProcessId();
  return true;
}

}  // namespace

int main(int argc, char** argv) {
  Options options;
  if (!parse(argc, argv, options)) {
    fprintf(stderr, "usage: fuzz_text [--seed N] [--count N] [--target NAME] [--input I]\n");
    return 2;
  }
  gCurrent.seed = options.seed;
  SetUnhandledExceptionFilter(reportCrash);
  if (options.oneInput)
    printf("fuzz_text --seed %llu --input %llu\n", options.seed, options.input);
  else
    printf("fuzz_text --seed %llu --count %llu\n", options.seed, options.count);

  bool right = true;
  int matched = 0;
  for (const KrFuzzTarget& target : krfuzzTargets()) {
    if (options.target && strcmp(options.target, target.name) != 0) continue;
    ++matched;
    right = run(target, options) && right;
  }
  if (matched == 0) {
    fprintf(stderr, "no target named %s\n", options.target);
    return 2;
  }
  printf(right ? "all answers defined, no heap growth\n" : "FAILED\n");
  return right ? 0 : 1;
}
