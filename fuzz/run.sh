#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
# Builds the fuzz preset and runs every fuzz target (or those named) for SECONDS each (30) from
# its seeds in fuzz/corpus/<target>/, FUZZ_JOBS at a time (one per processor). New inputs go to
# a scratch corpus; findings (crash, broken invariant, leak, timeout) to build-fuzz/findings/.
# Prints per target: executions, seconds, edges covered, findings.
# usage: [FUZZ_JOBS=N] fuzz/run.sh [SECONDS] [TARGET...]
set -euo pipefail
here=$(cd "$(dirname "$0")/.." && pwd)
seconds=${1:-30}
shift || true
jobs=${FUZZ_JOBS:-$(nproc)}
cmake --preset fuzz >/dev/null
cmake --build --preset fuzz
mapfile -t targets < <(if [ $# -gt 0 ]; then printf '%s\n' "$@"; else
  find "$here/build-fuzz/fuzz" -type f -perm -u+x -name '*_fuzz' -printf '%f\n' | sort; fi)
[ ${#targets[@]} -gt 0 ] || { echo "no fuzz targets built"; exit 0; }
results=$(mktemp -d)
trap 'rm -rf "$results"' EXIT
row() { printf '%-26s %12s %8s %7s %9s\n' "$@"; }

# Leaves $results/<target>.report (with a FAIL line for a finding) and $results/<target>.row.
run_target() {
  local target=$1 binary scratch started elapsed executions edges found findings
  binary=$(find "$here/build-fuzz/fuzz" -type f -name "$target" | head -n 1)
  if [ -z "$binary" ]; then
    echo "FAIL $target: not built" >"$results/$target.report"
    row "$target" - - - "not built" >"$results/$target.row"
    return
  fi
  scratch=$(mktemp -d)
  mkdir -p "$here/fuzz/corpus/$target"
  started=$(date +%s)
  # A finding stops libFuzzer with a non-zero status; the files tell which.
  (cd "$scratch" && "$binary" -max_total_time="$seconds" -timeout=20 -print_final_stats=1 \
     "$scratch" "$here/fuzz/corpus/$target" >"$scratch/log" 2>&1) || true
  elapsed=$(($(date +%s) - started))
  executions=$(awk '/^stat::number_of_executed_units/ {print $2}' "$scratch/log" || true)
  edges=$(grep -a -o 'cov: [0-9]*' "$scratch/log" | tail -n 1 | cut -d' ' -f2 || true)
  found=$(cd "$scratch" && ls | grep -E '^(crash|leak|timeout|oom)-' || true)
  findings=$(grep -c . <<<"$found" || true)
  {
    echo "== $target (${seconds}s)"
    grep -a -E '^(#[0-9]+[[:space:]]+DONE|==[0-9]+==ERROR|SUMMARY)|invariant broken' "$scratch/log" || true
  } >"$results/$target.report"
  row "$target" "${executions:-?}" "$elapsed" "${edges:-?}" "$findings" >"$results/$target.row"
  if [ "$findings" -gt 0 ] || ! grep -q -a -E '^#[0-9]+[[:space:]]+DONE' "$scratch/log"; then
    echo "FAIL $target: $(head -n 3 <<<"$found" | tr '\n' ' ')" >>"$results/$target.report"
    mkdir -p "$here/build-fuzz/findings/$target"
    (cd "$scratch" && cp $found log "$here/build-fuzz/findings/$target/") || true
  fi
  rm -rf "$scratch"
}

for target in "${targets[@]}"; do
  while [ "$(jobs -rp | wc -l)" -ge "$jobs" ]; do wait -n || true; done
  run_target "$target" &
done
wait
for target in "${targets[@]}"; do cat "$results/$target.report"; done
row target executions seconds edges findings
for target in "${targets[@]}"; do cat "$results/$target.row"; done
! grep -q '^FAIL' "$results"/*.report
