#!/usr/bin/env bash
# Builds everything and runs all tests, with the given preset (release, debug, asan, tsan or clang).
set -euo pipefail
cd "$(dirname "$0")/.."

preset=${1:-release}
scripts/build.sh "$preset"
ctest --preset "$preset" --parallel "$(nproc)"
