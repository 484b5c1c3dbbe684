#!/usr/bin/env bash
# Compiles and runs the example with what pkg-config says: PREFIX COMPILER [FLAG...]
set -euo pipefail
cd "$(dirname "$0")"

PKG_CONFIG_PATH=$(dirname "$(find "$1" -name vornscript.pc)")
export PKG_CONFIG_PATH
read -ra flags < <(pkg-config --cflags --libs vornscript)
program=$(mktemp)
trap 'rm -f "$program"' EXIT
"${@:2}" -std=c++20 ../../examples/embed/main.cpp "${flags[@]}" -o "$program"
LD_LIBRARY_PATH=$PKG_CONFIG_PATH/.. "$program"
