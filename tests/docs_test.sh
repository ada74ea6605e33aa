#!/usr/bin/env bash
# README.md and the pages in docs/ are true: their blocks of C++ are whole examples, and their console blocks show what the
# commands print. Usage: docs_test.sh PROGRAM, from the root of the sources.
set -euo pipefail
PATH=$(dirname "$1"):$PATH
mkdir -p build
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT

blocks() { # LANGUAGE PAGE; each ends with a form feed
  awk -v start='```'"$1" '
    $0 == start { inside = 1; next }
    $0 == "```" && inside { inside = 0; print "\f" }
    inside' "$2"
}

run_commands() {
  sed -n 's/^\$ //p' | while IFS= read -r line; do
    echo "\$ $line"
    bash -c "${line//build\/program\/bin\/arbor/arbor}" 2>&1
  done
}

is_example() {
  for example in examples/*.cpp; do cmp -s "$1" "$example" && return; done
}

for page in README.md docs/*.md; do
  blocks cpp "$page" | csplit -sz --suppress-matched -f "$work/example" - $'/^\f$/' '{*}'
  for block in "$work"/example*; do
    [ ! -s "$block" ] || is_example "$block" || { echo "$page: C++ that is no example:"; cat "$block"; exit 1; }
    rm -f "$block"
  done

  diff <(blocks console "$page" | sed '/^\f$/d') <(blocks console "$page" | run_commands) ||
    { echo "^ $page"; exit 1; }
done
