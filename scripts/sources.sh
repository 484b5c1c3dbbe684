#!/usr/bin/env bash
# Lists the C++ sources, each with its path from the repository's root.
set -euo pipefail
cd "$(dirname "$0")/.."

find . \( -path ./build -o -path ./.git \) -prune -o \
  -type f \( -name '*.cpp' -o -name '*.hpp' \) -printf '%P\n' | LC_ALL=C sort
