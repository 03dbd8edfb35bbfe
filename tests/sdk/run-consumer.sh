#!/bin/sh
# Installs the SDK from the build tree into a fresh prefix, then configures,
# builds and runs the consumer project against it, as a module author would.
set -e
build="$1"
source="$2"
work="$build/sdk-consumer"
rm -rf "$work"
cmake --install "$build" --prefix "$work/sdk" >/dev/null
cmake -S "$source/tests/sdk/consumer" -B "$work/build" -G Ninja \
  -DCMAKE_TOOLCHAIN_FILE="$work/sdk/lib/cmake/Kestrune/toolchain-mingw64.cmake" \
  -DCMAKE_PREFIX_PATH="$work/sdk" >/dev/null
cmake --build "$work/build" >/dev/null
cp "$work/sdk/bin/kr1st20.dll" "$work/build/"
cd "$work/build"
KR_WINEPREFIX="$build/wineprefix" "$work/sdk/lib/cmake/Kestrune/wine-run.sh" consumer.exe | grep "runtime is up"
