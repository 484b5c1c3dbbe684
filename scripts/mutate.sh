#!/usr/bin/env bash
# Changes COUNT (100) single places of the given sources (the library's), one at a time, and runs
# the tests on each; prints the changes that no test notices. Works on a copy in build/mutate/. SEED
# (1) decides which places are taken. It counts as noticed, too, when the tests do not end in ten
# times their time, and when only the sanitizers see it.
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
checks='-D_GLIBCXX_ASSERTIONS'
sanitizers='-O1 -fno-omit-frame-pointer -fsanitize=address,undefined -fno-sanitize-recover=all'
cmake -G Ninja -S "$copy/source" -B "$copy/plain" -D CMAKE_CXX_FLAGS="$checks" >/dev/null
cmake -G Ninja -S "$copy/source" -B "$copy/sanitized" \
  -D CMAKE_CXX_FLAGS="$checks $sanitizers" >/dev/null

python3 scripts/mutate.py "$copy" "${SEED:-1}" "$count" "$@"
