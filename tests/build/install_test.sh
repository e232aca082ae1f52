#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
# Installs the built tree into a temporary prefix, then builds and runs small C and C++ programs
# against it through find_package and pkg-config, with the shared and the static library; with
# "examples", runs the examples against it instead (run_examples.sh).
# usage: install_test.sh BUILD_DIR SOURCE_DIR [install_and_consume|examples]
# FSKIT_ARCH_FLAGS (-m32) and CMAKE_TOOLCHAIN_FILE: a build for another word size.
set -euo pipefail
build=$1 source=$2
read -ra arch <<<"${FSKIT_ARCH_FLAGS:-}"
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
prefix=$work/prefix
expected='consumer: fskit winnt little ieee'
fail() { echo "FAIL: $*"; exit 1; }
check() {  # check NAME PROGRAM
  local out
  out=$("$2")
  [ "$out" = "$expected" ] || fail "$1: got '$out', expected '$expected'"
  echo "ok $1"
}
static() {  # static NAME PROGRAM: as check, and the program holds the library itself
  ! objdump -p "$2" | grep 'NEEDED.*libfskit' >/dev/null ||
    fail "$1: linked with the shared library"
  check "$1" "$2"
}

cmake --install "$build" --prefix "$prefix" >/dev/null
if [ "${3:-}" = examples ]; then
  "$source/tests/build/run_examples.sh" "$prefix" "$source" "$work/examples"
  exit
fi
for file in include/fskit/{fskit,frame,export,version}.h share/man/man1/fskit.1 share/fskit/kw_elements.tbl; do
  [ -f "$prefix/$file" ] || fail "$file not installed"
done
cmp -s "$source/LICENSE" "$prefix/share/doc/fskit/LICENSE" || fail "LICENSE not installed"
[ -x "$prefix/bin/fskit" ] || fail "bin/fskit not installed"
# The installed tool finds its library and the shipped element table by its own place.
masses=$(env -u LD_LIBRARY_PATH "$prefix/bin/fskit" formula C6H12O6 | tail -n 1)
[ "$masses" = "$(printf 'C6H12O6\tC6H12O6\t180\t180.063388\t180.1560\t1.0')" ] ||
  fail "installed fskit formula gave '$masses'"
# The Python package, when built: imported from the prefix, in a directory without an element
# table, it finds its own table beside itself.
package=$(find "$prefix" -path '*-packages/fskit/__init__.py' | head -n 1)
if [ -n "${FSKIT_PYTHON_EXECUTABLE:-}" ]; then
  [ -n "$package" ] || fail "the Python package is not installed"
  mass=$(cd "$work" && PYTHONPATH=$(dirname "$(dirname "$package")") "$FSKIT_PYTHON_EXECUTABLE" -c \
    "import fskit; print(fskit.Formula('C6H12O6').monoisotopic_mass)")
  [ "$mass" = 180.06338810418 ] || fail "the installed Python package gave '$mass'"
  echo "ok python package"
fi
libdir=$(dirname "$(find "$prefix" -name 'libfskit.so.1' | head -n 1)")
[ -L "$libdir/libfskit.so" ] && [ -f "$libdir/libfskit.a" ] || fail "library files"
soname=$(objdump -p "$libdir/libfskit.so" | awk '/SONAME/ {print $2}')
[ "$soname" = libfskit.so.1 ] || fail "SONAME is '$soname'"

for languages in "C;CXX" C; do
  name=find_package-${languages/;/-} dir=$work/consumer-${languages/;/-}
  cmake -S "$source/tests/build/consumer" -B "$dir" -DCMAKE_PREFIX_PATH="$prefix" \
    -DLANGUAGES="$languages" >/dev/null
  cmake --build "$dir" >/dev/null || fail "$name: the consumer does not build"
  check "$name-c" "$dir/consumer_c"
  static "$name-static" "$dir/consumer_static"
done
check find_package-c++ "$work/consumer-C-CXX/consumer_cxx"

export PKG_CONFIG_PATH=$libdir/pkgconfig
consumer=$source/tests/build/consumer/consumer
cc "${arch[@]}" -o "$work/pc_c" "$consumer.c" $(pkg-config --cflags --libs fskit)
c++ "${arch[@]}" -std=c++20 -o "$work/pc_cxx" "$consumer.cpp" $(pkg-config --cflags --libs fskit)
LD_LIBRARY_PATH=$libdir check pkg-config-c "$work/pc_c"
LD_LIBRARY_PATH=$libdir check pkg-config-c++ "$work/pc_cxx"
# --static adds what libfskit.a needs; -l:libfskit.a picks it over libfskit.so.
static_libs=$(pkg-config --static --libs fskit)
static_libs=${static_libs/-lfskit/-l:libfskit.a}
cc "${arch[@]}" -o "$work/pc_static" "$consumer.c" $(pkg-config --cflags fskit) $static_libs ||
  fail "C program does not link with pkg-config --static"
static pkg-config-c-static "$work/pc_static"
