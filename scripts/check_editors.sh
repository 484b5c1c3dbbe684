#!/usr/bin/env bash
# Proves the files in editors/ with the editors themselves: Vim and the grammar highlight the sample
# as sample.expected says, both know the language's words, and Neovim works with `vrn lsp`. Installs
# what is missing; needs the npm registry.
set -euo pipefail
cd "$(dirname "$0")/.."

scripts/install_packages.sh
missing=()
for command in neovim:nvim vim:vim nodejs:node npm:npm; do
  command -v "${command#*:}" >/dev/null || missing+=("${command%:*}")
done
if ((${#missing[@]})); then
  as_root=()
  ((EUID == 0)) || as_root=(sudo)
  "${as_root[@]}" apt-get install --yes --no-install-recommends "${missing[@]}"
fi
cmake --preset release >/dev/null
cmake --build --preset release --target vrn >/dev/null
export PATH=$PWD/build/release:$PATH
work=$PWD/build/editors
mkdir -p "$work"
npm install --prefix "$work" --no-save --no-package-lock --silent \
  vscode-textmate@9 vscode-oniguruma@2

SHOWN=$work/vim vim -N -u NONE -es -S editors/check/highlight.vim </dev/null
MODULES=$work node editors/check/highlight.mjs >"$work/grammar"
for editor in vim grammar; do
  diff editors/check/sample.expected "$work/$editor" || { echo "wrong: $editor" >&2; exit 1; }
done

# The words that the server completes where a script says nothing yet, and those that editors have.
python3 - editors/vim/syntax/vornscript.vim editors/vscode/syntaxes/vornscript.tmLanguage.json <<'END'
import json, re, subprocess, sys
place = {'textDocument': {'uri': 'file:///none.vrs', 'version': 1, 'text': ''},
         'position': {'line': 0, 'character': 0}}
sent = [{'id': 1, 'method': 'initialize'}, {'method': 'textDocument/didOpen', 'params': place},
        {'id': 2, 'method': 'textDocument/completion', 'params': place}]
sent = [json.dumps(message) for message in sent]
server = subprocess.run(['vrn', 'lsp'], stdout=subprocess.PIPE, text=True,
                        input=''.join('Content-Length: %d\n\n%s' % (len(each), each) for each in sent))
answers = [json.loads(each) for each in re.split(r'Content-Length: \d+\s+', server.stdout)[1:]]
items = next(answer['result'] for answer in answers if answer.get('id') == 2)
words = {item['label'] for item in items}
for path in sys.argv[1:]:
    text = open(path).read()
    lists = re.findall(r'^syntax keyword \S+ (.*)$', text, re.M)
    lists += re.findall(r'\((?:\?:)?(\w+(?:\|\w+)+)\)', text)
    found = set(re.findall(r'\w+', str(lists)))
    assert found == words, (path, found ^ words)
END

cat >"$work/script.vrs" <<'END'
#define SIZE 3
add(a, b) { a + b }
total = add(1, SIZE);
	add(1) % 2;
END
SCRIPT=$work/script.vrs timeout 120 nvim --headless -n -i NONE -u NONE \
  --cmd 'set runtimepath^=editors/vim,editors/neovim' --cmd 'filetype plugin on' \
  -S editors/check/neovim.lua >"$work/neovim" 2>&1 || { cat "$work/neovim" >&2; exit 1; }
