#!/usr/bin/env bash
# Runs the program endings, by the command that is given, with its objects in either storage; it may
# not fail, and what it writes is compared.
set -euo pipefail
sender='[A NAME OF MORE THAN 15 CHARACTERS] [#]'
expected="[OUT] $sender > first
[ERR] $sender *** The interpreter ends before its programs: 3 program blocks are still held.
[ERR] $sender *** There are still pool chunks allocated!
[ERR] $sender *** There are still pool chunks allocated!
[OUT] $sender > captured: at the end
[OUT] $sender > at the end"
for storage in static thread; do
  "$@" "$storage" | grep -v LOG | sed 's/\[[0-9]*\]/[#]/' | diff - <(echo "$expected")
done
