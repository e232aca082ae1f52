#!/usr/bin/env bash
# Builds the fuzz preset and runs every fuzz target for SECONDS each (default
# 30), starting from its seed corpus in fuzz/corpus/<target>/. New inputs go
# to a scratch corpus, so the committed seeds stay as they are; a finding
# (crash, broken invariant, leak, timeout) is kept in build-fuzz/findings/.
# Prints one line per target: executions, seconds, edges covered, findings.
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
summary=$(printf '%-26s %12s %8s %7s %9s\n' target executions seconds edges findings)
for target in "${targets[@]}"; do
  binary=$(find "$here/build-fuzz/fuzz" -type f -name "$target" | head -n 1)
  [ -n "$binary" ] || { echo "FAIL $target: not built"; status=1; continue; }
  scratch=$(mktemp -d)
  seeds=$here/fuzz/corpus/$target
  mkdir -p "$seeds"
  echo "== $target (${seconds}s)"
  started=$(date +%s)
  # A finding stops libFuzzer with a non-zero status; the files tell which.
  (cd "$scratch" && "$binary" -max_total_time="$seconds" -timeout=20 -print_final_stats=1 \
     "$scratch" "$seeds" >"$scratch/log" 2>&1) || true
  elapsed=$(($(date +%s) - started))
  grep -a -E '^(stat::number_of_executed_units|#[0-9]+[[:space:]]+DONE|==[0-9]+==ERROR|SUMMARY)|invariant broken' \
    "$scratch/log" || true
  executions=$(awk '/^stat::number_of_executed_units/ {print $2}' "$scratch/log")
  edges=$(grep -a -o 'cov: [0-9]*' "$scratch/log" | tail -n 1 | cut -d' ' -f2)
  findings=$(find "$scratch" -maxdepth 1 -name 'crash-*' -o -maxdepth 1 -name 'leak-*' \
    -o -maxdepth 1 -name 'timeout-*' -o -maxdepth 1 -name 'oom-*' | wc -l)
  if [ "$findings" -gt 0 ] || ! grep -q -a -E '^#[0-9]+[[:space:]]+DONE' "$scratch/log"; then
    echo "FAIL $target: $(cd "$scratch" && ls | grep -E '^(crash|leak|timeout|oom)-' | head -n 3 | tr '\n' ' ')"
    mkdir -p "$here/build-fuzz/findings/$target"
    cp "$scratch"/crash-* "$scratch"/leak-* "$scratch"/timeout-* "$scratch"/oom-* "$scratch/log" \
      "$here/build-fuzz/findings/$target/" 2>/dev/null || true
    status=1
  fi
  summary+=$'\n'$(printf '%-26s %12s %8s %7s %9s' "$target" "${executions:-?}" "$elapsed" \
    "${edges:-?}" "$findings")
  rm -rf "$scratch"
done
echo "$summary"
exit $status
