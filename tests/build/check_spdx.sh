#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
# Every tracked source file (not data files and fixtures, kept byte for byte) starts with the
# licence line, after any #! line. Skipped (77) outside a git checkout.
# usage: check_spdx.sh SOURCE_DIR
set -euo pipefail
cd "$1"
if ! git ls-files --error-unmatch CMakeLists.txt >/dev/null 2>&1; then
  echo "skipped: $1 is not a git checkout, so there is no list of tracked files"
  exit 77
fi
tag='SPDX-License-Identifier: MIT'
count=0 missing=0
while IFS= read -r file; do
  count=$((count + 1))
  line=$(head -n 1 -- "$file")
  case $line in '#!'*) line=$(sed -n 2p -- "$file") ;; esac
  case $line in
    *"$tag"*) ;;
    *) echo "no '$tag' line at the top of $file"; missing=$((missing + 1)) ;;
  esac
done < <(git ls-files -- '*.c' '*.cpp' '*.h' '*.in' '*.cmake' '*.sh' '*.py' '*.pyi' '*.toml' '*CMakeLists.txt' \
           fskit exports.txt ':!:data/' ':!:tests/ini/corpus/' ':!:fuzz/corpus/' ':!:examples/expected/')
[ "$count" -gt 0 ] || { echo "FAIL: no source files listed"; exit 1; }
[ "$missing" -eq 0 ] || { echo "FAIL: $missing of $count files"; exit 1; }
echo "ok: $count files"
