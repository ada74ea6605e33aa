#!/usr/bin/env bash
# An installed copy is found by find_package and used by a small program. Usage: install_test.sh BUILD_FOLDER [COMPILER_FLAGS]
set -euo pipefail
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT

cmake --install "$1" --prefix "$work/installed" >/dev/null
cat >"$work/CMakeLists.txt" <<'END'
cmake_minimum_required(VERSION 3.25)
project(user LANGUAGES CXX)
find_package(arbor REQUIRED)
add_executable(user user.cpp)
target_link_libraries(user PRIVATE arbor::arbor)
END
cat >"$work/user.cpp" <<'END'
#include <memory>
#include "arbor/model/column_bool.h"
#include "arbor/model/column_typed.h"
int main() {
  std::unique_ptr<arbor::impls::o_set> domain(arbor::impls::o_set::NEW_O_SET("integer", true, "?"));
  domain->insert("42");
  return domain->get_value(1) == "42" ? 0 : 1;
}
END
cmake -G Ninja -S "$work" -B "$work/build" -DCMAKE_PREFIX_PATH="$work/installed" -DCMAKE_CXX_FLAGS="${2:-}" >/dev/null
cmake --build "$work/build" >/dev/null
"$work/build/user"
