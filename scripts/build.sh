#!/bin/sh
# Configures and builds the project into ./build (cross build for Windows x64).
set -e
cd "$(dirname "$0")/.."
"$(dirname "$0")/setup.sh"
[ -f build/build.ninja ] || cmake -S . -B build -G Ninja -DCMAKE_TOOLCHAIN_FILE=cmake/toolchain-mingw64.cmake >/dev/null
cmake --build build -j2
