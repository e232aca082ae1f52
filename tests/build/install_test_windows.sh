#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
# Installs a Windows build, builds the consumers against it with the same cross compiler (the
# DLL's import library and the static library) and runs them and the tool through the emulator.
# usage: install_test_windows.sh BUILD_DIR SOURCE_DIR EMULATOR...
set -euo pipefail
build=$1 source=$2
shift 2
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
prefix=$work/prefix

cmake --install "$build" --prefix "$prefix" >/dev/null
for file in bin/fskit.dll bin/fskit.exe lib/libfskit.dll.a lib/libfskit.a include/fskit/fskit.h \
            lib/cmake/fskit/fskitConfig.cmake; do
  [ -f "$prefix/$file" ] || { echo "FAIL: $file not installed"; exit 1; }
done

arch=$(sed -n 's/^FSKIT_WINDOWS_ARCH:[A-Z]*=//p' "$build/CMakeCache.txt")
cmake -S "$source/tests/build/consumer" -B "$work/consumer" -G Ninja \
  --toolchain "$source/cmake/mingw-w64.cmake" -DFSKIT_WINDOWS_ARCH="$arch" \
  -DCMAKE_FIND_ROOT_PATH="$prefix" >/dev/null
cmake --build "$work/consumer" >/dev/null

# The programs find fskit.dll on the search path; the tool finds it beside itself.
export WINEPATH="Z:${prefix//\//\\}\\bin"
for program in consumer_c consumer_cxx consumer_static; do
  out=$("$@" "$work/consumer/$program.exe" | tr -d '\r')
  [ "$out" = 'consumer: fskit winnt little ieee' ] || { echo "FAIL $program: got '$out'"; exit 1; }
  echo "ok $program"
done
unset WINEPATH
version=$("$@" "$prefix/bin/fskit.exe" version | tr -d '\r')
[ -n "$version" ] || { echo "FAIL: the installed tool printed no version"; exit 1; }
echo "ok installed tool: $version"
