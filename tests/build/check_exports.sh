#!/usr/bin/env bash
# The dynamic symbol table of libfskit.so must hold exactly the names in
# exports.txt: nothing missing, nothing more.
# usage: check_exports.sh LIBRARY EXPORTS_FILE
set -euo pipefail
library=$1 list=$2
expected=$(grep -vE '^\s*(#|$)' "$list" | sort -u)
actual=$(nm -D --defined-only "$library" | awk '{print $NF}' | sed 's/@.*//' | sort -u)
if [ "$expected" != "$actual" ]; then
  echo "exported names differ from $list ('<' missing, '>' unexpected):"
  diff <(echo "$expected") <(echo "$actual") || true
  exit 1
fi
echo "ok: $(echo "$expected" | wc -l) names exported"
