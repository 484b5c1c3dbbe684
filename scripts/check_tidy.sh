#!/usr/bin/env bash
# Runs clang-tidy, with the rules of .clang-tidy, over all sources but those of other systems.
set -euo pipefail
cd "$(dirname "$0")/.."

scripts/install_packages.sh
# The fuzzers are built apart from all else.
for preset in clang fuzz; do
  cmake --preset "$preset" >/dev/null
  scripts/sources.sh | grep '\.cpp$' | grep -v '/windows[./]' |
    { [[ $preset == fuzz ]] && grep '^fuzz/' || grep -v '^fuzz/'; } |
    xargs --max-args=1 --max-procs="$(nproc)" clang-tidy -p "build/$preset" --quiet 2>&1 |
    { grep -v ' warnings generated\.$' || true; }
done
