#!/usr/bin/env bash
# The README is true: its C++ is the example, and its console blocks show what the commands print.
# Usage: readme_test.sh PROGRAM, from the root of the sources.
set -euo pipefail
program=$1
mkdir -p build

block() { awk -v start='```'"$1" '$0 == start { inside = 1; next } $0 == "```" { inside = 0 } inside' README.md; }

diff <(block cpp) examples/rate_a_split.cpp
commands=$(block console | sed -n 's/^\$ //p')
[ -n "$commands" ]
diff <(block console) <(while IFS= read -r line; do
  echo "\$ $line"
  bash -c "${line//build\/program\/bin\/arbor/$program}"
done <<<"$commands")
