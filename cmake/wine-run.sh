#!/bin/sh
# Runs a Windows program under Wine with a prefix private to the build tree.
# The prefix is made once (first use takes a few seconds); a lock keeps
# parallel first runs from racing.
set -e
prefix="${KR_WINEPREFIX:-$(pwd)/wineprefix}"
case "$prefix" in /*) ;; *) prefix="$(pwd)/$prefix" ;; esac
export WINEPREFIX="$prefix" WINEDEBUG=-all
if [ ! -f "$prefix/system.reg" ]; then
  mkdir -p "$(dirname "$prefix")"
  (
    flock 9
    [ -f "$prefix/system.reg" ] || { wineboot -i >/dev/null 2>&1; wineserver -w; }
  ) 9>"$prefix.lock"
fi
exec wine "$@"
