#!/usr/bin/env bash
# Runs the game and compares what it prints with what it should print.
set -euo pipefail
diff "$(dirname "$0")/expected.txt" <("$1")
