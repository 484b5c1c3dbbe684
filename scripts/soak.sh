#!/usr/bin/env bash
# Builds the soak test and runs it: ten million ticks, a million tasks. Fails when memory grows.
set -euo pipefail
cd "$(dirname "$0")/.."

scripts/build.sh release -D VRN_BENCH=ON
build/release/bench/vornscript_soak
