#!/usr/bin/env bash
# Changes COUNT (100) single places of the given sources (the library's), one at a time, and runs
# the tests on each: a change that no test notices is printed. Works on a copy in build/mutate/.
# SEED (1) decides which places are taken. A change counts as noticed, too, when the tests do not
# end in ten times their time, or when only the sanitizers see it.
#   scripts/mutate.sh [COUNT [SOURCE...]]
set -euo pipefail
cd "$(dirname "$0")/.."

count=${1:-100}
shift $(($# > 0))
[[ $# -gt 0 ]] || set -- $(git ls-files compiler frontend memory parser runtime stdlib vm | grep -E '\.[ch]pp$')

copy=build/mutate
mkdir -p "$copy/source"
git ls-files -z | xargs -0 cp --parents --preserve=timestamps --update -t "$copy/source"

# Without optimisation, which takes longer than the tests do.
configure() {
  cmake -G Ninja -S "$copy/source" -B "$copy/$1" -D CMAKE_CXX_FLAGS="$2" >/dev/null
}
configure plain -D_GLIBCXX_ASSERTIONS
configure sanitized '-D_GLIBCXX_ASSERTIONS -O1 -fno-omit-frame-pointer -fsanitize=address,undefined -fno-sanitize-recover=all'

exec python3 scripts/mutate.py "$copy" "${SEED:-1}" "$count" "$@"
