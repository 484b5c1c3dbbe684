#!/usr/bin/env bash
# Builds the benchmarks, runs them (about ten minutes), and prints their figures as one table in
# Markdown; build/release/bench.json keeps all of them. Arguments go to the benchmarks:
# --benchmark_filter=pool for example.
set -euo pipefail
cd "$(dirname "$0")/.."

scripts/build.sh release -D VRN_BENCH=ON >&2
# Interleaved, so that a disturbance does not hit all repetitions of one; the fastest one counts.
build/release/bench/vornscript_bench --benchmark_repetitions=5 --benchmark_min_time=0.05 \
  --benchmark_enable_random_interleaving=true --benchmark_out=build/release/bench.json \
  "$@" >build/release/bench.log
scripts/bench_table.py build/release/bench.json
