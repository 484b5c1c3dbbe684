#!/usr/bin/env bash
# Builds everything and runs the host on the example, until Ctrl-C.
set -euo pipefail
cd "$(dirname "$0")/.."

scripts/build.sh release
cd examples
exec ../build/release/vornscript
