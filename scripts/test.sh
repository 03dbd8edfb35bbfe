#!/bin/sh
# Builds the project and runs every test under Wine.
set -e
cd "$(dirname "$0")/.."
scripts/build.sh
cd build
ctest -j2 --output-on-failure --timeout 900
