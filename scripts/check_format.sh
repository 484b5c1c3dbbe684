#!/usr/bin/env bash
# Fails when a source is not laid out as .clang-format says; with --fix, lays all of them out so.
set -euo pipefail
cd "$(dirname "$0")/.."

scripts/install_packages.sh
mode=(--dry-run --Werror)
[[ ${1:-} == --fix ]] && mode=(-i)
scripts/sources.sh | xargs clang-format "${mode[@]}"
