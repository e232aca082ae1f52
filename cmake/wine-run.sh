#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
# Runs a Windows program under wine for CTest: wine's own diagnostics off,
# a wine prefix of fskit's own, made on first use (one maker at a time), and
# the program's output passed on once it has ended.
# usage: wine-run.sh WINE PROGRAM [ARGUMENTS...]
set -euo pipefail
wine=$1
shift
export WINEDEBUG=${WINEDEBUG:--all}
export WINEDLLOVERRIDES=${WINEDLLOVERRIDES:-mscoree,mshtml=}
export WINEPREFIX=${WINEPREFIX:-${TMPDIR:-/tmp}/fskit-wine-$(id -u)}
ready=$WINEPREFIX/.fskit-ready
if [ ! -f "$ready" ]; then
  exec 9>"$WINEPREFIX.lock"
  flock 9
  if [ ! -f "$ready" ]; then
    "$wine" wineboot --init >/dev/null 2>&1 || true
    touch "$ready"
  fi
  exec 9>&-
fi
# Now and then wine ends at once without starting the program (its server
# going away just as the client came). Such a run prints nothing at all, where
# every test program prints at least its first line, so it is tried once more.
out=$(mktemp) err=$(mktemp)
trap 'rm -f "$out" "$err"' EXIT
for attempt in 1 2; do
  status=0
  "$wine" "$@" >"$out" 2>"$err" || status=$?
  if [ "$status" -eq 0 ] || [ -s "$out" ] || [ -s "$err" ]; then break; fi
  [ "$attempt" -eq 1 ] && sleep 1
done
cat "$out"
cat "$err" >&2
exit "$status"
