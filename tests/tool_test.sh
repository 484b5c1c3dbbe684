#!/usr/bin/env bash
# Runs the tool, by the command that is given, as its users do, from a folder of its own.
set -uo pipefail

folder=$(realpath "$(mktemp -d)")
trap 'rm -rf "$folder"' EXIT
mkdir "$folder/include" "$folder/scripts"
cp "${!#}" "$folder/vrn"
vrn=("${@:1:$#-1}" ../vrn)
cd "$folder/scripts"
failures=0

# expect NAME WANTED GOT
expect() {
  [[ $2 == "$3" ]] && return
  printf '%s\n--- expected:\n%s\n--- got:\n%s\n' "$1" "$2" "$3"
  failures=$((failures + 1))
}

# try STATUS OUT ERROR ARGUMENT...: what the tool ends with and writes to each stream.
try() {
  local out error status
  out=$("${vrn[@]}" "${@:4}" 2>../error)
  status=$?
  out=$(sed -E "s#$folder/##g; s/ \[[0-9]+\]/ [ID]/" <<<"$out")
  error=$(sed "s#$folder/##g" ../error)
  expect "vrn ${*:4}" "$1"$'\n'"$2"$'\n'"$3" "$status"$'\n'"$out"$'\n'"$error"
}

rule=------------------------------------------------------------
fault="*** Runtime Error ***
$rule
Cannot negate type "$'\x05'"
$rule"
echo 'print("one"); -"a"; sleep(1); print("two");' >fault.vrs
try 3 $'one\ntwo' "$fault" run fault.vrs
expect 'streams in order' $'one\n'"$fault"$'\ntwo' "$("${vrn[@]}" run fault.vrs 2>&1)"
try 0 7 '' run - <<<'print(7);'
try 0 7 '' run -e '-1; print(7);'
expect 'the whole log' '[LOG] [LOG] [LOG] [LOG] [VER] [OUT] [DEB] [VER]' \
  "$("${vrn[@]}" run -v -e 'print(7);' | cut -c 1-5 | paste -s -d ' ')"
try 1 '' '*** Cannot find script file none.vrs' run none.vrs
try 1 '' '*** Source file <stdin> is empty.' run - </dev/null
try 1 '' "*** Syntax Error ***
$rule
 --> <command line>:1:0
   |
 1 | ]
   | ^~~~~
   |

*** Cannot parse token: ]
$rule" run -e ']'
try 4 1 '' run --timeout 0 -e 'print(1); sleep(1000000); print(2);'
hint='Run with --help for more information.'
try 2 '' "FILE or -e is required"$'\n'"$hint" run
try 2 '' "FILE excludes -e"$'\n'"$hint" run fault.vrs -e 1
try 2 '' "--timeout: has to be 0 or more"$'\n'"$hint" run --timeout nan fault.vrs
try 2 '' "STAGE: all not in {tokens,commands,tree,code}"$'\n'"$hint" dump all fault.vrs

exec {lines}< <(exec env --default-signal=INT "${vrn[@]}" run -e 'print("up"); sleep(100000000);')
tool=$!
read -r -u "$lines" && kill -s INT "$tool"
wait "$tool"
expect 'interrupted' 130 $?

for place in ../include first second; do
  mkdir -p "$place" && echo "print('$place');" >"$place/lib.vrs"
done
try 0 ../include '' run -e '#include "lib"'
try 0 second '' run -I second -I first -e '#include "lib"'

# Places are those of the bytes on the disk.
printf '\tx =\t\xc3\xa4 + 1e;\n\t\t#include "gone"\n' >first/places.vrs
printf '\n\t#include\t"first/places"\nprint(1);' >main.vrs
try 1 '{"file":"scripts/first/places.vrs","line":1,"column":11,"offset":10,"length":2,"message":"Malformed exponent in numeric literal","chain":[{"file":"scripts/main.vrs","line":2,"column":11,"offset":11}]}
{"file":"scripts/first/places.vrs","line":2,"column":12,"offset":25,"length":6,"message":"File not found: gone.vrs","chain":[{"file":"scripts/main.vrs","line":2,"column":11,"offset":11}]}
{"file":"none.vrs","line":0,"column":0,"offset":0,"length":0,"message":"Cannot find script file none.vrs","chain":[]}' \
  '' check --json main.vrs none.vrs
try 0 '' '' check first/lib.vrs second/lib.vrs

printf '#include "part"\nsum(a) {\ta }\nx = -sum(K, """\n\\n""");' >dump.vrs
printf '#define K 2\n' >part.vrs
dumps="-- dump.vrs|1:9 include part.vrs|-- part.vrs|1:0 symbol #|1:1 word define|1:8 word K|1:10 w\
ord 2|1:11 end_of_line|-- dump.vrs|2:0 word sum|2:3 symbol (|2:4 word a|2:5 symbol )|2:7 symbol {|\
2:12 word a|2:14 symbol }|2:15 end_of_line|3:0 word x|3:2 symbol =|3:4 symbol -|3:5 word sum|3:8 s\
ymbol (|3:9 word K|3:10 symbol ,|4:12 string \\n\\\\n|4:5 symbol )|4:6 symbol ;
-- part.vrs|1:8 define|  1:8 word K|  1:10 word 2|-- dump.vrs|2:0 ordinary|  2:0 word sum|  2:3 gr\
oup_paren (|    2:4 ordinary|      2:4 word a|  2:7 group_brace {|    2:12 ordinary|      2:12 wor\
d a|3:0 ordinary|  3:0 word x|  3:2 symbol =|  3:4 symbol -|  3:5 word sum|  3:8 group_paren (|   \
 3:9 ordinary|      3:9 word K|    4:12 ordinary|      4:12 string \\n\\\\n
-- dump.vrs|2:0 function_def sum|  2:4 function_def_param a|  body|    2:12 variable a|3:2 assign \
=|  3:0 variable x|  3:4 unary -|    3:5 function_call sum|      3:5 variable sum|      3:9 functi\
on_call_param K|-- part.vrs|        1:10 int 2|-- dump.vrs|      4:12 function_call_param \\n\\\\n\
|        4:12 string \\n\\\\n
routine main|-- dump.vrs|  2:0 statement sum(a) {    a }|  3:0 statement x = -sum(K, \"\"\"|    op\
_load_value x|    op_push 1|    op_load_value sum|    op_call|    op_load_int 2|    op_store_arg 0\
|    op_load_string 0|    op_store_arg 1|    op_yield|    op_negate|    op_assign|  routine sum(a)\
|    2:12 statement a }|      op_load_value a"
expect 'vrn dump' "$dumps" "$(for stage in tokens commands tree code; do
  "${vrn[@]}" dump "$stage" dump.vrs | paste -sd '|'
done)"
# All of the line where a statement begins behind an escaped line end.
printf 'd = "a\\\nb"; print(d);' >escaped.vrs
expect 'an escaped line end' $'statement d = "a\\\\\nstatement d = "a\\\\' \
  "$("${vrn[@]}" dump code escaped.vrs | grep -o 'statement.*')"

# Any size, any depth; a reader that goes away.
printf 'x = 1%s;' "$(printf ' + 1%.0s' {1..50000})" >deep.vrs
expect 'a deep tree' 100004 "$("${vrn[@]}" dump tree deep.vrs | wc -l)"
expect 'nobody reads' 1 "$(printf 'print(%d);\n' {1..30000} | "${vrn[@]}" run - | head -n 1)"

for command in '' run check dump; do
  size=$("${vrn[@]}" $command --help | tee >(wc -l) >(wc -L) >/dev/null | sort -n | paste -s)
  read -r lines columns <<<"$size"
  ((lines <= 24 && columns <= 80)) || expect "help of $command" '24 lines of 80' "$size"
done

exit $((failures != 0))
