#!/usr/bin/env bash
# README.md and the pages in docs/ are true: their blocks of C++ are whole examples, their console blocks show what the
# commands print, and their Python runs, block after block, where the module is built.
# Usage: docs_test.sh PROGRAM [FOLDER_OF_THE_MODULE], from the root of the sources.
set -euo pipefail
program=$1 module=${2:-}
PATH=$(dirname "$program"):$PATH
mkdir -p build
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT

blocks() { awk -v start='```'"$1" '$0 == start { inside = 1; next } $0 == "```" && inside { inside = 0; print "\f" } inside' "$2"; }

is_example() {
  for example in examples/*.cpp; do cmp -s "$1" "$example" && return; done
}

for page in README.md docs/*.md; do
  blocks cpp "$page" | csplit -sz --suppress-matched -f "$work/example" - $'/^\f$/' '{*}'
  for block in "$work"/example*; do
    [ ! -s "$block" ] || is_example "$block" || { echo "$page: C++ that is no example:"; cat "$block"; exit 1; }
    rm -f "$block"
  done

  diff <(blocks console "$page" | sed '/^\f$/d') <(blocks console "$page" | sed -n 's/^\$ //p' | while IFS= read -r line; do
    echo "\$ $line"
    bash -c "${line//build\/program\/bin\/arbor/arbor}" 2>&1
  done) || { echo "^ $page"; exit 1; }

  [ -z "$module" ] || blocks python "$page" | tr -d '\f' | PYTHONPATH=$module /usr/bin/python3 -
done
