#!/usr/bin/env bash
# An installed copy is found by find_package, and the example is built with it. Usage, from the root of the sources:
# install_test.sh BUILD_FOLDER [COMPILER_FLAGS]
set -euo pipefail
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT

cmake --install "$1" --prefix "$work/installed" >/dev/null
cp examples/rate_a_split.cpp "$work"
cat >"$work/CMakeLists.txt" <<'END'
cmake_minimum_required(VERSION 3.25)
project(user LANGUAGES CXX)
find_package(arbor REQUIRED)
add_executable(user rate_a_split.cpp)
target_compile_options(user PRIVATE "SHELL:-include arbor/model/column_bool.h" "SHELL:-include arbor/model/column_typed.h")
target_link_libraries(user PRIVATE arbor::arbor)
END
cmake -G Ninja -S "$work" -B "$work/build" -DCMAKE_PREFIX_PATH="$work/installed" -DCMAKE_CXX_FLAGS="${2:-}"
cmake --build "$work/build"
"$work/build/user" | grep -q '^gain'
