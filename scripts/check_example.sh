#!/usr/bin/env bash
# Runs the release host over the example and compares what it prints with what it should print,
# masked. Another host is run by COMMAND and ended by SIGNAL: check_example.sh SIGNAL COMMAND...
set -euo pipefail
cd "$(dirname "$0")/../examples"

signal=${1:-TERM}
host=("${@:2}")
((${#host[@]})) || host=(../build/release/vornscript)

mask() { ../scripts/mask_output.sh; }
expected=$(mask <test_simple.expected)
last_line=$(tail -n 1 <<<"$expected")

exec {lines}< <(exec "${host[@]}")
pid=$!
got=""
while IFS= read -r -t 30 -u "$lines" line; do
  line=$(mask <<<"$line")
  got+=$line$'\n'
  [[ $line != "$last_line" ]] || break
done
kill -s "$signal" "$pid" || true
got+=$(mask <&"$lines")
status=0
wait "$pid" || status=$?

diff <(echo "$expected") <(echo "${got%$'\n'}") && ((status == 0)) && exit 0
echo "The host ended with status $status." >&2
exit 1
