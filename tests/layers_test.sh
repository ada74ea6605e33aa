#!/usr/bin/env bash
# A folder includes only folders that stand before it in this list, and the rooms know nothing of the program: no options of
# its command line, no standard output. Run from the root of the sources.
set -uo pipefail
layers=(arbor/utils arbor/model arbor/model/measure arbor/csv arbor/formats arbor/table arbor/table/cells arbor/tree
        arbor/tree/growing arbor/tree/validation arbor/store arbor/report arbor/report/exports
        arbor/report/page arbor/processes python/core tools)
found=0
# Prints the lines, comments aside, that match a pattern.
forbid() { # WHAT PATTERN FILE...
  grep -nHE "$2" "${@:3}" | grep -vE '^[^:]*:[0-9]+: *//' && found=1 && echo "^ $1"
}
for i in "${!layers[@]}"; do
  folder=${layers[i]}
  sources=("$folder"/*.h "$folder"/*.cpp)
  [ -f "${sources[0]}" ] || found=1
  for above in "${layers[@]:i+1}"; do
    [[ "$above" = "$folder"/@(measure|cells|growing) ]] || # both folders are one room
      forbid "$folder stands below $above" "#include \"$above/[^/]*\"" "${sources[@]}"
  done
  [ "$folder" = tools ] && continue
  forbid 'an option of the program' '"([^"\\]|\\.)*--[a-z]' "${sources[@]}"
  forbid 'printed by a room' 'std::(cout|cerr|clog)|\b(printf|puts)\(|\b(stdout|stderr)\b' "${sources[@]}"
  forbid 'a package that its users would need' 'nlohmann' "$folder"/*.h
done
exit "$found"
