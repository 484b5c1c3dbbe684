#!/usr/bin/env bash
# Changes COUNT (100) single places of the given sources (the library's), one at a time, and runs
# the tests on each; prints the changes that no test notices. Works on a copy in build/mutate/. SEED
# (1) decides which places are taken. Tests that take ten times their time have noticed, too. What
# survives may still be seen by the sanitizers, which are left out.
#   scripts/mutate.sh [COUNT [SOURCE...]]
set -euo pipefail
cd "$(dirname "$0")/.."

count=${1:-100}
shift $(($# > 0))
[[ $# -gt 0 ]] ||
  set -- $(git ls-files compiler frontend memory parser runtime stdlib vm | grep -E '\.[ch]pp$')

copy=build/mutate
rm -rf "$copy"
mkdir -p "$copy/source"
git ls-files -z | xargs -0 cp --parents -t "$copy/source"
# Without optimisation, which would take longer than the tests do.
cmake -G Ninja -S "$copy/source" -B "$copy/build" -D CMAKE_CXX_FLAGS=-D_GLIBCXX_ASSERTIONS >/dev/null

python3 scripts/mutate.py "$copy" "${SEED:-1}" "$count" "$@"
