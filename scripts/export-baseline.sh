#!/bin/sh
# The export baseline of kr1st20.dll: abi/kr1st20.exports lists every name
# that a 20.x release exported, one a line, sorted.
#
#   scripts/export-baseline.sh check  [dll] [baseline]
#     Fails when a listed name is no longer exported (naming it demangled) or
#     when the library exports a name the list lacks.
#   scripts/export-baseline.sh update [dll] [baseline]
#     Adds the library's new exports to the list; it never drops a name.
#
# dll defaults to build/bin/kr1st20.dll, baseline to abi/kr1st20.exports.
set -e
root="$(cd "$(dirname "$0")/.." && pwd)"
mode="$1"
dll="${2:-$root/build/bin/kr1st20.dll}"
baseline="${3:-$root/abi/kr1st20.exports}"
[ -f "$dll" ] || { echo "no library at $dll: build first" >&2; exit 2; }

work="$(mktemp -d)"
trap 'rm -rf "$work"' EXIT
x86_64-w64-mingw32-objdump -p "$dll" |
  awk '/\[Ordinal\/Name Pointer\] Table/ { inTable = 1; next }
       inTable && /^\t\[/ { print $NF; next }
       inTable { inTable = 0 }' | LC_ALL=C sort -u > "$work/built"
touch "$baseline"
LC_ALL=C sort -u "$baseline" > "$work/listed"

case "$mode" in
  update)
    LC_ALL=C sort -u "$work/listed" "$work/built" > "$baseline"
    echo "$(wc -l < "$baseline") names in $baseline"
    ;;
  check)
    LC_ALL=C comm -23 "$work/listed" "$work/built" > "$work/gone"
    LC_ALL=C comm -13 "$work/listed" "$work/built" > "$work/new"
    status=0
    if [ -s "$work/gone" ]; then
      echo "kr1st20.dll no longer exports $(wc -l < "$work/gone") name(s) that a 20.x release exported:"
      x86_64-w64-mingw32-c++filt < "$work/gone" | sed 's/^/  /'
      status=1
    fi
    if [ -s "$work/new" ]; then
      echo "kr1st20.dll exports $(wc -l < "$work/new") name(s) not in $baseline:"
      x86_64-w64-mingw32-c++filt < "$work/new" | sed 's/^/  /'
      echo "record them with: scripts/export-baseline.sh update"
      status=1
    fi
    [ "$status" = 0 ] && echo "all $(wc -l < "$work/listed") names of $baseline exported, none unlisted"
    exit "$status"
    ;;
  *)
    echo "usage: scripts/export-baseline.sh check|update [dll] [baseline]" >&2
    exit 2
    ;;
esac
