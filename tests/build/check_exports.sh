#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
# The library exports exactly the names in exports.txt: a shared object's dynamic symbols by
# nm -D, a DLL's export table by objdump -p (undecorated, as GetProcAddress uses them).
# usage: check_exports.sh LIBRARY EXPORTS_FILE [OBJDUMP]
set -euo pipefail
library=$1 list=$2 objdump=${3:-objdump}
expected=$(grep -vE '^\s*(#|$)' "$list" | sort -u)
case $library in
  *.dll)
    # "[Ordinal/Name Pointer] Table" lists one "[ n] name" line per export.
    actual=$("$objdump" -p "$library" |
      awk '/^\[Ordinal\/Name Pointer\] Table/ {table = 1; next}
           table && /^[ \t]*\[ *[0-9]+\]/ {print $NF; next}
           table {table = 0}' | sort -u) ;;
  *)
    actual=$(nm -D --defined-only "$library" | awk '{print $NF}' | sed 's/@.*//' | sort -u) ;;
esac
if [ "$expected" != "$actual" ]; then
  echo "exported names differ from $list ('<' missing, '>' unexpected):"
  diff <(echo "$expected") <(echo "$actual") || true
  exit 1
fi
echo "ok: $(echo "$expected" | wc -l) names exported"
