#!/usr/bin/env bash
# Builds the fuzz preset and runs every fuzz target for SECONDS each (default
# 30), starting from its seed corpus in fuzz/corpus/<target>/. New inputs go
# to a scratch corpus, so the committed seeds stay as they are.
# usage: fuzz/run.sh [SECONDS] [TARGET...]
set -euo pipefail
here=$(cd "$(dirname "$0")/.." && pwd)
seconds=${1:-30}
shift || true
cmake --preset fuzz >/dev/null
cmake --build --preset fuzz
mapfile -t targets < <(if [ $# -gt 0 ]; then printf '%s\n' "$@"; else
  find "$here/build-fuzz/fuzz" -type f -perm -u+x -name '*_fuzz' -printf '%f\n' | sort; fi)
[ ${#targets[@]} -gt 0 ] || { echo "no fuzz targets built"; exit 0; }
status=0
for target in "${targets[@]}"; do
  binary=$(find "$here/build-fuzz/fuzz" -type f -name "$target" | head -n 1)
  scratch=$(mktemp -d)
  seeds=$here/fuzz/corpus/$target
  mkdir -p "$seeds"
  echo "== $target (${seconds}s)"
  if ! (cd "$scratch" && "$binary" -max_total_time="$seconds" -print_final_stats=1 \
        "$scratch" "$seeds" 2>&1 | grep -E '^(stat::|#[0-9]+ +DONE|==[0-9]+==ERROR|SUMMARY)'); then
    :
  fi
  if ls "$scratch"/crash-* "$scratch"/leak-* "$scratch"/timeout-* >/dev/null 2>&1; then
    echo "FAIL $target: $(ls "$scratch" | grep -E '^(crash|leak|timeout)-' | head -n 3)"
    mkdir -p "$here/build-fuzz/findings/$target"
    cp "$scratch"/crash-* "$scratch"/leak-* "$scratch"/timeout-* "$here/build-fuzz/findings/$target/" 2>/dev/null || true
    status=1
  fi
  rm -rf "$scratch"
done
exit $status
