#!/usr/bin/env bash
# Runs the release host over the example and compares what it prints with what it should print,
# but for ids, addresses, times, speeds, folders and blanks at the ends of lines.
set -euo pipefail
cd "$(dirname "$0")/../examples"

mask() {
  sed -E 's/\] \[[0-9]+\]/] [ID]/
          s/TASK [^ ]+/TASK ADDRESS/
          s/[0-9]+ ms/N ms/
          s/in: .* seconds \(.*\)/in: N seconds (SPEED)/
          s#(Loading|Include file:) .*/examples/#\1 #
          s/ +$//'
}
expected=$(mask <test_simple.expected)
last_line=$(tail -n 1 <<<"$expected")

exec {lines}< <(exec ../build/release/vornscript)
host=$!
got=""
while IFS= read -r -t 30 -u "$lines" line; do
  line=$(mask <<<"$line")
  got+=$line$'\n'
  [[ $line != "$last_line" ]] || break
done
kill -s TERM "$host" || true
got+=$(mask <&"$lines")
status=0
wait "$host" || status=$?

diff <(echo "$expected") <(echo "${got%$'\n'}") && ((status == 0)) && exit 0
echo "The host ended with status $status." >&2
exit 1
