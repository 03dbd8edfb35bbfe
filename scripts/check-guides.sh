#!/bin/bash
# Runs every shell block of the two guides in order, as a reader would: in
# one shell, with a fresh home folder, from the root of this clone (built in
# ./build), so the guides install the SDK and work in that home. Each shell
# block followed directly by a plain block must print what that block
# shows, with paths and file sizes masked; a shell block without one must
# succeed. A guide that drifts from the code fails.
set -e
cd "$(dirname "$0")/.."
work=$(mktemp -d /tmp/kestrune-guides.XXXXXX)
mkdir "$work/home" "$work/blocks"

# blocks/N.sh for the N-th shell block, blocks/N.expected for its output block.
awk -v dir="$work/blocks" '
  mode == "" && /^```sh$/ { n++; file = dir "/" n ".sh"; mode = "sh"; next }
  mode == "" && /^```$/ && last == "sh" { file = dir "/" n ".expected"; mode = "out"; next }
  mode == "" && /^```/ { mode = "other"; next }
  mode != "" && /^```$/ { last = (mode == "sh") ? "sh" : ""; mode = ""; next }
  mode == "sh" || mode == "out" { print > file }
' docs/module-authors.md docs/host-developers.md

# One shell runs them all, so that functions, variables and the folder carry over.
count=$(ls "$work/blocks"/*.sh | wc -l)
{
  for n in $(seq 1 "$count"); do
    echo "{ . '$work/blocks/$n.sh'; } >'$work/blocks/$n.actual' 2>&1; echo \$? >'$work/blocks/$n.status'"
  done
} >"$work/run.sh"
(HOME="$work/home" bash "$work/run.sh")

# Paths and sizes differ from machine to machine; Windows programs end lines with CR LF.
mask() {
  sed -e 's/\r//g' -e 's/[A-Za-z]:\\[^ ]*/<path>/g' -e 's#/[^ ]*/[^ ]*#<path>#g' -e 's/[0-9][0-9]* bytes/<size> bytes/g' "$1"
}

status=0
for n in $(seq 1 "$count"); do
  if [ -f "$work/blocks/$n.expected" ]; then
    if ! diff -u <(mask "$work/blocks/$n.expected") <(mask "$work/blocks/$n.actual") >"$work/diff"; then
      echo "Shell block $n prints other than its guide shows:"
      sed -n 1,3p "$work/blocks/$n.sh"
      cat "$work/diff"
      status=1
    fi
  elif [ "$(cat "$work/blocks/$n.status")" != 0 ]; then
    echo "Shell block $n failed:"
    cat "$work/blocks/$n.sh" "$work/blocks/$n.actual"
    status=1
  fi
done
if [ $status -eq 0 ]; then
  rm -rf "$work"
  echo "guides: $count shell blocks ran as written"
else
  echo "Each block's output is kept in $work/blocks (N.actual)."
fi
exit $status
