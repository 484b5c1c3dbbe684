#!/usr/bin/env bash
# Runs every case of the program endings; none may fail, and what they write to the end is compared.
set -euo pipefail
program=$1

check() {  # CASE, then the end of each line in order
  local name=$1 storage
  shift
  for storage in static thread; do
    diff <("$program" "$name" "$storage" | grep -v LOG | sed 's/\[[0-9]*\]/[#]/') \
      <(printf '%s\n' "$@" | grep .) || { echo "failed: $name $storage"; exit 1; }
  done
}

sender='[A NAME OF MORE THAN 15 CHARACTERS] [#]'
check interpreter \
  "[ERR] $sender *** The interpreter ends before its programs: 3 program blocks are still held." \
  "[ERR] $sender *** There are still pool chunks allocated!" \
  "[ERR] $sender *** There are still pool chunks allocated!" \
  "[OUT] $sender > captured: at the end"
check logger "[OUT] $sender > first" "[OUT] $sender > at the end"
check chain ''
