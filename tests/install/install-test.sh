#!/usr/bin/env bash
# install-test.sh SOURCE BUILD: installs the registry layer, builds the example against what was
# installed, and runs it; then each installed header alone, and the example with the layer's sources in
# the same build.
set -eu
source_dir=$1
build_dir=$2
work=$(mktemp -d "$build_dir/install-test.XXXXXX")
trap 'rm -rf "$work"' EXIT

cmake --install "$build_dir" --component KORRegistry --prefix "$work/prefix" >"$work/log" ||
    { cat "$work/log"; exit 1; }
cmake -S "$source_dir/examples/registry" -B "$work/example" -G Ninja \
    --toolchain "$source_dir/cmake/mingw-w64.cmake" \
    -DCMAKE_PREFIX_PATH="$work/prefix" >"$work/log" || { cat "$work/log"; exit 1; }
cmake --build "$work/example"

for header in "$work"/prefix/include/KORRegistry/*/*.h; do
    x86_64-w64-mingw32-g++-posix -std=c++17 -Wall -Wextra -Werror -fsyntax-only \
        -I"$work/prefix/include/KORRegistry" -include "$header" -x c++ /dev/null
    echo "self-contained: ${header##*/include/KORRegistry/}"
done

mkdir "$work/inside"
cat >"$work/inside/CMakeLists.txt" <<END
cmake_minimum_required(VERSION 3.25)
project(Inside LANGUAGES CXX)
add_subdirectory($source_dir layer)
add_executable(inside $source_dir/examples/registry/RegistryExample.cpp)
target_link_libraries(inside PRIVATE KORRegistry::registry)
END
cmake -S "$work/inside" -B "$work/inside/build" -G Ninja \
    --toolchain "$source_dir/cmake/mingw-w64.cmake" >"$work/log" || { cat "$work/log"; exit 1; }
cmake --build "$work/inside/build"

output=$("$source_dir/wine/in-prefix.py" "$work/example/registry_example.exe" | tr -d '\r')
printf '%s\n' "$output"
expected='camera left, gain 12
  Left
  Right
2 runs since the system started: done'
[ "$output" = "$expected" ]
