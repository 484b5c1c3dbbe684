#!/usr/bin/env bash
# Runs the host program, by the command that is given, in the situations in which a user meets it.
set -uo pipefail

host=("${@:1:$#-1}" "$(realpath "${!#}")")
folder=$(mktemp -d)
trap 'rm -rf "$folder"' EXIT
cd "$folder"
failures=0

# expect NAME WANTED GOT
expect() {
  [[ $2 == "$3" ]] && return
  printf '%s\n--- expected:\n%s\n--- got:\n%s\n' "$1" "$2" "$3"
  failures=$((failures + 1))
}

no_script='[LOG] [MAIN] [ID] * This is a message.
[WRN] [MAIN] [ID] ** This is a warning.
[ERR] [MAIN] [ID] *** This is an error.
[ERR] [MAIN] [ID] *** Cannot find script file test_simple.vrs
[ERR] [MAIN] [ID] *** Cannot create program.'
mask() { sed -E 's/\] \[[0-9]+\]/] [ID]/'; }

output=$("${host[@]}" | mask)
expect 'without a script' "$no_script
status 0" "$output
status $?"

# A terminal gets colours, and is handed back in its default colour.
red=$'\e[31m' yellow=$'\e[33m' default=$'\e[0m'
coloured=$(sed "s/^\[LOG/$default&/; s/^\[WRN/$yellow&/; s/^\[ERR/$red&/" <<<"$no_script")
terminal() { script --quiet --command "$1" /dev/null </dev/null | tr -d '\r' | mask; }
if [[ $(terminal 'echo there') == there ]]; then
  expect 'on a terminal' "$coloured"$'\n'"$default" "$(terminal "env -u NO_COLOR ${host[*]@Q}")"
  expect 'on a terminal without colours' "$no_script" "$(terminal "env NO_COLOR= ${host[*]@Q}")"
else
  echo 'No pseudo-terminal: what the host does on a terminal is left out.'
fi

# Output that goes nowhere is no reason to end otherwise.
echo 'print("unheard"' >test_simple.vrs
trap '' PIPE
"${host[@]}" >&- || expect 'standard output closed' 0 $?
"${host[@]}" >/dev/full || expect 'standard output full' 0 $?
"${host[@]}" > >(exec true) || expect 'nobody reads' 0 $?
trap - PIPE

# start OPTION [COMMAND...]: the host, its signals set by an option of env, once it has scheduled its
# script. What it writes, after the command's output, is read from $lines.
start() {
  exec {lines}< <("${@:2}"; exec env "$1" "${host[@]}")
  pid=$!
  while read -r -u "$lines" line && [[ $line != *'SCHEDULE TEST!'* ]]; do :; done
}

# It runs until it is told to stop, and what it writes is there at once.
echo 'print("unheard");' >test_simple.vrs
start --default-signal=INT true
kill -s INT "$pid"
wait "$pid" || expect 'stopped' 0 $?

# A signal that is ignored at the start stays so; a full pipe that does not block is waited for, also
# when it is told to stop meanwhile.
printf 'print("%0100d");\n' {1..2000} >test_simple.vrs
start --ignore-signal=INT dd oflag=nonblock count=0 status=none
kill -s INT "$pid"
heard=0
while ((heard < 2000)) && read -r -t 20 -u "$lines" line; do
  [[ $line == *"] > 0"*"0$((heard + 1))" ]] && heard=$((heard + 1))
  ((heard == 1)) && kill -s TERM "$pid"
done
wait "$pid"
expect 'a full pipe, signals' '2000 lines, status 0' "$heard lines, status $?"

exit $((failures != 0))
