#!/usr/bin/env bash
# Installs what is missing and builds the given preset (release, debug, asan, tsan or clang);
# further arguments go to its configuration.
set -euo pipefail
cd "$(dirname "$0")/.."

preset=${1:-release}
scripts/install_packages.sh
cmake --preset "$preset" "${@:2}"
cmake --build --preset "$preset"
