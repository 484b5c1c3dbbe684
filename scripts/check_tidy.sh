#!/usr/bin/env bash
# Runs clang-tidy, with the rules of .clang-tidy, over all sources.
set -euo pipefail
cd "$(dirname "$0")/.."

scripts/install_packages.sh
cmake --preset clang >/dev/null
scripts/sources.sh | grep '\.cpp$' |
  xargs --max-args=1 --max-procs="$(nproc)" clang-tidy -p build/clang --quiet 2>&1 |
  { grep -v ' warnings generated\.$' || true; }
