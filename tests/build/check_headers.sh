#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
# Every public header compiles without a warning in each C and C++ standard under every compiler
# given, and so does a program of the old interface (arguments to the functions that accept any);
# a caller's bad format does not compile.
# usage: check_headers.sh SOURCE_DIR GENERATED_INCLUDE_DIR CC CXX [CC CXX ...]
set -uo pipefail
src=$1 gen=$2
shift 2
here=$(dirname "$0")/headers
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
warn=(-Wall -Wextra -pedantic -Wundef -Werror -I"$src/include" -I"$gen")
c_modes=(c89 c99 c11 c17 c2x)
cxx_modes=(c++98 c++11 c++20)
failed=0 count=0

# [expect=fail] compile LANGUAGE STD COMPILER FILE [FLAGS...]: reported when it fails (with
# expect=fail: when it compiles).
compile() {
  local lang=$1 std=$2 cc=$3 file=$4 out compiled=fail
  shift 4
  count=$((count + 1))
  out=$("$cc" -x "$lang" -std="$std" "${warn[@]}" "$@" -fsyntax-only "$file" 2>&1) && compiled=
  [ "$compiled" = "${expect:-}" ] && return
  echo "FAIL: $cc -std=$std $(basename "$file") $* ${expect:+(compiles, but must not)}"
  echo "$out" | head -n 20
  failed=$((failed + 1))
}

for header in $(cd "$src/include" && ls fskit/*.h); do
  printf '#include <%s>\nint fskit_header_check;\n' "$header" >"$work/$(basename "$header" .h).c"
done
while [ $# -ge 2 ]; do
  cc=$1 cxx=$2
  shift 2
  for file in "$work"/*.c "$here/old_caller.c"; do
    # -Wstrict-prototypes means something to the C compiler only.
    for std in "${c_modes[@]}"; do compile c "$std" "$cc" "$file" -Wstrict-prototypes; done
    for std in "${cxx_modes[@]}"; do compile c++ "$std" "$cxx" "$file"; done
  done
  expect=fail compile c c11 "$cc" "$here/bad_format.c"
  expect=fail compile c++ c++11 "$cxx" "$here/bad_format.c"
done
[ "$failed" -eq 0 ] || { echo "FAIL: $failed of $count compilations"; exit 1; }
echo "ok: $count compilations"
