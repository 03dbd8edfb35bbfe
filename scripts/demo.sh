#!/bin/sh
# Builds the project and runs the demo host, krhost.exe, under Wine, in the
# folder of the sample modules.
set -e
cd "$(dirname "$0")/.."
scripts/build.sh
# The host loads the sample modules from its current directory.
cd build/bin/samples
KR_WINEPREFIX="$OLDPWD/build/wineprefix" "$OLDPWD/cmake/wine-run.sh" ../krhost.exe
