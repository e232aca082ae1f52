#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
# Installs the built tree into a temporary prefix, then builds and runs small
# C and C++ programs against it, through find_package and through pkg-config,
# with the shared and with the static library.
# usage: install_test.sh BUILD_DIR SOURCE_DIR
# A build for another word size gives its compiler flags in FSKIT_ARCH_FLAGS
# (-m32) and its toolchain file in CMAKE_TOOLCHAIN_FILE, which the consumers'
# cmake reads from the environment.
set -euo pipefail
build=$1 source=$2
read -ra arch <<<"${FSKIT_ARCH_FLAGS:-}"
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
prefix=$work/prefix
expected='consumer: fskit winnt little ieee'

check() {  # check NAME PROGRAM...
  local name=$1 out; shift
  out=$("$@")
  [ "$out" = "$expected" ] || { echo "FAIL $name: got '$out', expected '$expected'"; exit 1; }
  echo "ok $name"
}

static() {  # static NAME PROGRAM: as check, and the program holds the library itself
  if objdump -p "$2" | grep -q 'NEEDED.*libfskit'; then
    echo "FAIL $1: linked with the shared library"; exit 1
  fi
  check "$1" "$2"
}

cmake --install "$build" --prefix "$prefix" >/dev/null
for file in include/fskit/{fskit,frame,export,version}.h share/man/man1/fskit.1 share/fskit/kw_elements.tbl; do
  [ -f "$prefix/$file" ] || { echo "FAIL: $file not installed"; exit 1; }
done
cmp -s "$source/LICENSE" "$prefix/share/doc/fskit/LICENSE" || { echo "FAIL: LICENSE not installed"; exit 1; }
[ -x "$prefix/bin/fskit" ] || { echo "FAIL: bin/fskit not installed"; exit 1; }
# The installed tool finds its library and the shipped element table by its
# own place, without LD_LIBRARY_PATH.
masses=$(env -u LD_LIBRARY_PATH "$prefix/bin/fskit" formula C6H12O6 | tail -n 1)
[ "$masses" = "$(printf 'C6H12O6\tC6H12O6\t180\t180.063388\t180.1560\t1.0')" ] ||
  { echo "FAIL: installed fskit formula gave '$masses'"; exit 1; }
# The Python package, when the build has it: imported from the prefix's
# Python directory, in a directory without an element table; it finds its
# own table beside itself.
package=$(find "$prefix" -path '*-packages/fskit/__init__.py' | head -n 1)
if [ -n "${FSKIT_PYTHON_EXECUTABLE:-}" ]; then
  [ -n "$package" ] || { echo "FAIL: the Python package is not installed"; exit 1; }
  mass=$(cd "$work" && PYTHONPATH=$(dirname "$(dirname "$package")") "$FSKIT_PYTHON_EXECUTABLE" -c \
    "import fskit; print(fskit.Formula('C6H12O6').monoisotopic_mass)")
  [ "$mass" = 180.06338810418 ] || { echo "FAIL: the installed Python package gave '$mass'"; exit 1; }
  echo "ok python package"
fi
libdir=$(dirname "$(find "$prefix" -name 'libfskit.so.1' | head -n 1)")
[ -L "$libdir/libfskit.so" ] && [ -f "$libdir/libfskit.a" ] || { echo "FAIL: library files"; exit 1; }
soname=$(objdump -p "$libdir/libfskit.so" | awk '/SONAME/ {print $2}')
[ "$soname" = libfskit.so.1 ] || { echo "FAIL: SONAME is '$soname'"; exit 1; }

cmake -S "$source/tests/build/consumer" -B "$work/consumer" -DCMAKE_PREFIX_PATH="$prefix" >/dev/null
cmake --build "$work/consumer" >/dev/null
check find_package-c "$work/consumer/consumer_c"
check find_package-c++ "$work/consumer/consumer_cxx"
static find_package-static "$work/consumer/consumer_static"
# A project of C alone: the static library brings its C++ runtime with it.
cmake -S "$source/tests/build/consumer_c" -B "$work/consumer_c" -DCMAKE_PREFIX_PATH="$prefix" >/dev/null
cmake --build "$work/consumer_c" >/dev/null || { echo "FAIL: C-only find_package consumer does not build"; exit 1; }
check find_package-c-only-shared "$work/consumer_c/consumer_shared"
static find_package-c-only-static "$work/consumer_c/consumer_static"

export PKG_CONFIG_PATH=$libdir/pkgconfig
cc "${arch[@]}" -o "$work/pc_c" "$source/tests/build/consumer/consumer.c" $(pkg-config --cflags --libs fskit)
c++ "${arch[@]}" -std=c++20 -o "$work/pc_cxx" "$source/tests/build/consumer/consumer.cpp" $(pkg-config --cflags --libs fskit)
LD_LIBRARY_PATH=$libdir check pkg-config-c "$work/pc_c"
LD_LIBRARY_PATH=$libdir check pkg-config-c++ "$work/pc_cxx"
# --static adds what libfskit.a needs; -l:libfskit.a picks it over libfskit.so.
static_libs=$(pkg-config --static --libs fskit)
static_libs=${static_libs/-lfskit/-l:libfskit.a}
cc "${arch[@]}" -o "$work/pc_static" "$source/tests/build/consumer/consumer.c" $(pkg-config --cflags fskit) $static_libs ||
  { echo "FAIL: C program does not link with pkg-config --static"; exit 1; }
static pkg-config-c-static "$work/pc_static"
