#!/bin/sh
# Builds the native fuzz targets (clang, libFuzzer, address and undefined-
# behaviour sanitizers) into build/fuzz and runs each one, starting from its
# committed corpus and after replaying its committed regression inputs.
#
#   fuzz/run.sh              each target for 30 seconds
#   fuzz/run.sh 600          each target for 10 minutes
#   fuzz/run.sh 0 10000000   each target for ten million executions
#
# Prints one line per target: executions, edges covered of those
# instrumented, and corpus size. A finding stops the script with the
# fuzzer's report; the input is kept in build/fuzz/findings (KR_FUZZ_OUT
# names another folder than build/fuzz).
set -e
cd "$(dirname "$0")/.."
seconds=${1:-30}
runs=${2:--1}
out=${KR_FUZZ_OUT:-build/fuzz}
mkdir -p "$out/findings"
flags="-std=c++17 -O1 -g -fsanitize=fuzzer,address,undefined -fno-sanitize-recover=all -I."

for target in pe_image list_file; do
  case $target in
    pe_image) parser=modules/KrRxPeImage.cpp ;;
    list_file) parser=modules/KrRxListFileReader.cpp ;;
  esac
  binary="$out/fuzz_$target"
  sources="fuzz/fuzz_$target.cpp $parser"
  if [ ! -x "$binary" ] || [ -n "$(find $sources ${parser%.cpp}.h -newer "$binary")" ]; then
    clang++ $flags $sources -o "$binary"
  fi
  log="$out/$target.log"
  regressions=$(find "fuzz/regressions/$target" -type f 2>/dev/null || true)
  if [ -n "$regressions" ] && ! "$binary" $regressions >"$log" 2>&1; then
    cat "$log"
    exit 1
  fi
  mkdir -p "$out/corpus/$target"
  if ! "$binary" -max_total_time="$seconds" -runs="$runs" -print_final_stats=1 \
       -artifact_prefix="$out/findings/$target-" "$out/corpus/$target" "fuzz/corpus/$target" >"$log" 2>&1; then
    tail -n 60 "$log"
    exit 1
  fi
  edges=$(sed -n 's/.*Loaded [0-9]* modules *(\([0-9]*\) inline 8-bit counters).*/\1/p' "$log" | head -n 1)
  sed -n "s/^#\([0-9]*\)[[:space:]]*DONE[[:space:]]*cov: \([0-9]*\) ft: \([0-9]*\) corp: \([0-9]*\)\/.*/fuzz $target: \1 executions, \2 of $edges edges covered, \3 features, corpus \4/p" "$log"
done
