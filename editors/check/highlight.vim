" Writes each line of the sample, and below each of its characters what Vim highlights it as.
set runtimepath^=editors/vim
filetype plugin on
syntax on
edit editors/check/sample.vrs
let letters = {'Comment': 'c', 'String': 's', 'Directive': 'd', 'Constant': 'm', 'Number': 'n',
  \ 'Keyword': 'k', 'Type': 't', 'Builtin': 'b', 'Function': 'f', 'Operator': 'o'}
let shown = []
for number in range(1, line('$'))
  let text = getline(number)
  let marks = ''
  for at in range(strchars(text))
    let column = byteidx(text, at) + 1
    let group = substitute(synIDattr(synID(number, column, 0), 'name'), '^vornscript', '', '')
    let marks .= get(letters, group, ' ')
  endfor
  call extend(shown, [text, substitute(marks, ' *$', '', '')])
endfor
call writefile(shown, $SHOWN)
quitall!
