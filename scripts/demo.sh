#!/bin/sh
# Builds the project and runs the demo host, krhost.exe, under Wine.
set -e
cd "$(dirname "$0")/.."
scripts/build.sh
KR_WINEPREFIX="$PWD/build/wineprefix" cmake/wine-run.sh build/bin/krhost.exe
