#!/usr/bin/env bash
# Runs the game, by the command that is given, and compares what it prints with what it should
# print.
set -euo pipefail
diff --strip-trailing-cr "$(dirname "$0")/expected.txt" <("$@")
