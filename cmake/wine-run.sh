#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
# Runs a Windows program under wine for CTest: wine's own diagnostics off,
# and a wine prefix of fskit's own, made on first use (one maker at a time).
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
exec "$wine" "$@"
