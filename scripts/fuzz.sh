#!/usr/bin/env bash
# Builds the fuzzers and runs each of them for SECONDS (20), two at a time. They start from
# fuzz/corpus/ and keep what they learn in build/fuzz/run/, so that the next run goes on from there.
# An input that breaks something is kept there too; its path is printed, and the script fails.
set -euo pipefail
cd "$(dirname "$0")/.."

export seconds=${1:-20} run=build/fuzz/run
scripts/build.sh fuzz

fuzz() {
  local target=$1 program=build/fuzz/fuzz/fuzz_$1 log=$run/$1.log
  # Scripts warn of circular references on standard error, which is therefore closed.
  local options=(-timeout=25 -rss_limit_mb=2048)
  mkdir -p "$run/$target"
  rm -f "$run/$target"-*
  if "$program" "${options[@]}" -max_len=4096 -max_total_time="$seconds" -print_final_stats=1 \
    -close_fd_mask=2 -artifact_prefix="$run/$target-" \
    "$run/$target" "fuzz/corpus/$target" >"$log" 2>&1; then
    sed -n "s/^stat::number_of_executed_units: */$target: executions in $seconds s: /p" "$log"
    return
  fi
  local found
  found=$(ls "$run/$target"-* 2>/dev/null | head -n 1) || true
  if [[ $found ]]; then
    "$program" "${options[@]}" "$found" 2>&1 | head -n 80 || true
  else
    tail -n 40 "$log"
  fi
  echo "$target FAILED on: ${found:-(no input was kept)}; its log is $log"
  return 1
}
export -f fuzz

ls fuzz/corpus | xargs --max-args=1 --max-procs=2 bash -euo pipefail -c 'fuzz "$0"'
