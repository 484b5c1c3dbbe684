#!/usr/bin/env bash
# Builds the benchmarks and runs them; arguments go to them, --benchmark_filter=run for example. The
# figures stand in build/release/bench.json too.
set -euo pipefail
cd "$(dirname "$0")/.."

scripts/build.sh release -D VRN_BENCH=ON
build/release/bench/vornscript_bench --benchmark_out=build/release/bench.json "$@"
