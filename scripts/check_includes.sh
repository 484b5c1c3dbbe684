#!/usr/bin/env bash
# Fails when a source includes what its folder must not know, or when includes form a circle.
set -euo pipefail
cd "$(dirname "$0")/.."

# What each folder may include beside itself and the standard library; "*" is everything but host/
# and tests/. vm and compiler are a mutual pair: code is made of values, and values refer to code.
declare -A knows=(
  [include]=""
  [platform]=""
  [memory]="include platform"
  [frontend]="include platform memory"
  [parser]="include memory frontend"
  [vm]="include platform memory compiler"
  [compiler]="include platform memory frontend parser vm"
  [stdlib]="include platform memory vm compiler"
  [runtime]="include platform memory frontend parser vm compiler stdlib"
  [host]="include platform"
  [tools]="include platform"
  [examples]="include"
  [bench]="include platform memory frontend parser vm compiler"
  [fuzz]="include platform memory frontend parser vm compiler stdlib tests"
  [tests]="include platform memory frontend parser vm compiler stdlib runtime"
)

# "includer included" for each include of a file of ours; public headers stand in include/.
edges=$(scripts/sources.sh | xargs grep -HE '^#include ("[^"]+|<vornscript/[^>]+)[.](hpp|def)[">]' |
  sed -E 's|^([^:]+):#include ["<]([^">]+)[">].*|\1 \2|; s| vornscript/| include/vornscript/|')

wrong=0
while read -r includer included; do
  from=${includer%%/*} to=${included%%/*}
  if [[ $from != "$to" && " ${knows[$from]} " != *" $to "* ]]; then
    echo "$includer must not include $included"
    wrong=1
  fi
done <<<"$edges"

tsort <<<"$edges" >/dev/null || wrong=1
exit $wrong
