#!/usr/bin/env bash
# An installed copy, and the sources as a part of another project, are what other projects build with. Usage, from the root
# of the sources: install_test.sh BUILD_FOLDER shared|static [COMPILER_FLAGS]
set -euo pipefail
build=$1 form=$2 flags=${3:-}
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
installed=$work/installed

cmake --install "$build" --prefix "$installed" >/dev/null
cp examples/*.cpp "$work"
sed 's/"85"/"8O"/' examples/rate_a_split.cpp >"$work/wrong_number.cpp"
ln -s "$PWD/data" "$work/data"
sources=$PWD
cd "$work"
export LD_LIBRARY_PATH=$installed/lib

none() { # GREP_OPTIONS... : whether no line of the input matches; prints those that do
  ! grep "$@"
}

run_consumers() { # FOLDER
  "$1/rate_a_split" | grep -q '^gain 0.6541'
  "$1/grow_and_classify" | grep -q 'errors on the 14 training cases: 0'
  rm golf.model
  local status=0
  "$1/wrong_number" 2>error || status=$?
  [ "$status: $(cat error)" = "2: 8O: _not an int" ] || { cat error; return 1; }
}

echo "== find_package, $form"
cat >CMakeLists.txt <<'END'
cmake_minimum_required(VERSION 3.25)
project(user LANGUAGES CXX)
find_package(arbor 0.1 REQUIRED COMPONENTS core tree)
add_executable(rate_a_split rate_a_split.cpp)
target_compile_options(rate_a_split PRIVATE "SHELL:-include arbor/model/column_typed.h")
target_link_libraries(rate_a_split PRIVATE arbor::arbor)
add_executable(wrong_number wrong_number.cpp)
target_link_libraries(wrong_number PRIVATE arbor::arbor)
add_executable(grow_and_classify grow_and_classify.cpp)
target_link_libraries(grow_and_classify PRIVATE arbor::tree)
END
cmake -G Ninja -S . -B found -DCMAKE_PREFIX_PATH="$installed" -DCMAKE_CXX_FLAGS="$flags" >/dev/null
cmake --build found
run_consumers found

echo "== pkg-config, $form"
export PKG_CONFIG_PATH=$installed/lib/pkgconfig
mkdir packaged
static=()
[ "$form" = shared ] || static=(--static)
for example in rate_a_split:arbor wrong_number:arbor grow_and_classify:arbor-tree; do
  # shellcheck disable=SC2046,SC2086  # lists of options
  c++ -std=c++17 $flags "${example%:*}.cpp" -o "packaged/${example%:*}" \
    $(pkg-config --cflags --libs "${static[@]}" "${example#*:}")
done
run_consumers packaged
[ "$form" = shared ] || exit 0

echo "== what the libraries export"
for library in "$installed"/lib/libarbor.so.0 "$installed"/lib/libarbor-tree.so.0; do
  readelf -d "$library" | grep -q "SONAME.*\[$(basename "$library")\]"
  nm -D --defined-only -C "$library" | cut -d' ' -f3- |
    none -vE '^(void )?(typeinfo (name )?for |vtable for )?(arbor|strata)::'
done

echo "== each header alone, and all together"
cd "$installed/include"
warnings=(-fsyntax-only -Wall -Wextra -Wconversion -Wshadow -Werror)
find arbor -name '*.h' -print0 | xargs -0 -P 2 -I{} clang++ -std=c++17 -x c++ -I. "${warnings[@]}" {}
find arbor -name '*.h' -printf '#include "%p"\n' >"$work/all.cpp"
for compiler in g++ clang++; do
  for standard in c++17 c++20; do "$compiler" "-std=$standard" -I. "${warnings[@]}" "$work/all.cpp"; done
done

echo '== add_subdirectory'
cd "$work"
mkdir part
cat >part/CMakeLists.txt <<END
cmake_minimum_required(VERSION 3.25)
project(user LANGUAGES CXX)
set(CMAKE_UNITY_BUILD ON)
add_subdirectory("$sources" arbor)
add_executable(rate_a_split ../rate_a_split.cpp)
target_link_libraries(rate_a_split PRIVATE arbor::arbor)
END
cmake -G Ninja -S part -B whole >/dev/null
cmake --build whole --target rate_a_split
whole/rate_a_split | grep -q '^gain 0.6541'
grep -q 'arbor-tree' whole/build.ninja
none -E 'arbor_program|core_test' whole/build.ninja
cmake --install whole --prefix "$work/nothing" >/dev/null
[ ! -e nothing ] || [ -z "$(find nothing -type f)" ]
