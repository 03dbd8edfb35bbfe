#!/bin/sh
# Builds the project, runs each native fuzz target for 30 seconds, runs every
# test under Wine and checks that the tests left nothing behind in the Wine
# registry.
set -e
cd "$(dirname "$0")/.."
scripts/build.sh
prefix="$PWD/build/wineprefix"

# The registry of the prefix as sorted lines, one per key and per value,
# without the time stamps Wine keeps. Left out: the display driver's date,
# which Wine rewrites at every start, and two keys that every Windows has
# but a new Wine prefix lacks (shell registration writes below them).
registry() {
  WINEPREFIX="$prefix" wineserver -k 2>/dev/null || true
  WINEPREFIX="$prefix" wineserver -w
  awk '
    FNR == 1 { hive = FILENAME; sub(/.*\//, "", hive) }
    /^\[/ { key = $0; sub(/\] [0-9]+$/, "]", key); print hive " " key; next }
    /^#/ || /^$/ || /^WINE REGISTRY/ { next }
    { print hive " " key " " $0 }' "$prefix/system.reg" "$prefix/user.reg" |
    grep -v -e '"DriverDateData"=' -e '^system.reg \[Software\\\\Classes\\\\SystemFileAssociations\]$' \
      -e '^system.reg \[Software\\\\Microsoft\\\\Windows\\\\CurrentVersion\\\\PropertySystem\\\\PropertyHandlers\]$' |
    LC_ALL=C sort
}

# Wine makes a new prefix's certificate stores and trust-provider state at
# the first signature check: one check runs before the first snapshot.
(cd build/bin && KR_WINEPREFIX="$prefix" ../../cmake/wine-run.sh modules_linker_tests.exe \
   --gtest_filter=LinkerTest.TheSigningFactsHoldOnThisPlatform >/dev/null)
registry >build/registry-before.txt
# One server for the whole run: Wine programs that start together while no
# server runs can race to start one, and the loser waits forever. Its
# service processes are started here with no output of ours, so that no
# test's output pipe stays open in them; the server goes down at the end.
trap 'WINEPREFIX="$prefix" wineserver -k 2>/dev/null || true' EXIT
WINEPREFIX="$prefix" wineserver -p </dev/null >/dev/null 2>&1
WINEPREFIX="$prefix" WINEDEBUG=-all wine cmd /c exit </dev/null >/dev/null 2>&1
fuzz/run.sh 30
cd build
if ! ctest -j2 --output-on-failure --timeout 900 --output-junit ctest-results.xml; then
  # Wine now and then ends a program before any of its code runs: a failure
  # with no output in a few milliseconds, where the quickest test program
  # takes 50 ms. When every failure is of that kind, those tests run once
  # more; any other failure stands.
  unstarted=$(awk -F'"' '
    /<testcase / { name = $2; time = $6; status = $8 }
    /<failure/ { failed++ }
    /<system-out><\/system-out>/ && status == "fail" && time < 0.03 { print name; unstarted++ }
    END { if (unstarted != failed) print "!" }' ctest-results.xml)
  case "$unstarted" in "" | *!*) exit 1 ;; esac
  echo "Wine ended these tests before they started; running them again:" $unstarted
  ctest --output-on-failure --timeout 900 -R "^($(echo $unstarted | tr ' ' '|'))\$"
fi
cd ..
registry >build/registry-after.txt
if ! diff build/registry-before.txt build/registry-after.txt >build/registry-changes.txt; then
  echo "The tests left changes in the Wine registry (< before, > after):"
  cat build/registry-changes.txt
  exit 1
fi
