#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
# ELF files bound at load time (BIND_NOW or the NOW flag), with a GNU_RELRO segment, the stack
# protector's failure call and, when fortified, a checked libc call (__*_chk).
# usage: check_hardening.sh READELF HARDENED(0|1) FORTIFIED(0|1) FILE...
set -uo pipefail
readelf=$1 hardened=$2 fortified=$3
shift 3
if [ "$hardened" != 1 ]; then
  echo "skipped: not a hardened ELF build (FSKIT_HARDEN off, or not ELF with GCC or clang)"
  exit 77
fi
failed=0
fail() { echo "FAIL: $1"; failed=$((failed + 1)); }
for file in "$@"; do
  dynamic=$("$readelf" -dW "$file") || { fail "$file: readelf"; continue; }
  symbols=$("$readelf" --dyn-syms -W "$file")
  # Captured, not piped into grep -q: llvm-readelf dies of SIGPIPE once grep has its match.
  segments=$("$readelf" -lW "$file")
  grep -Eq '\(BIND_NOW\)|\(FLAGS(_1)?\).* NOW' <<<"$dynamic" || fail "$file: not bound at load time"
  grep -q GNU_RELRO <<<"$segments" || fail "$file: no GNU_RELRO segment"
  grep -q ' __stack_chk_fail' <<<"$symbols" || fail "$file: no stack protector"
  if [ "$fortified" = 1 ]; then
    grep -Eq ' __[a-z0-9_]+_chk(@|$)' <<<"$(grep -v __stack_chk_fail <<<"$symbols")" ||
      fail "$file: no fortified libc call"
  fi
done
[ "$failed" -eq 0 ] || exit 1
echo "ok: $*"
