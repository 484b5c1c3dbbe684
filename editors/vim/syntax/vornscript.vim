" Highlighting for vornscript.
if exists('b:current_syntax')
  finish
endif

" Of two that begin at one place the later counts, but keywords before all.
syntax keyword vornscriptKeyword if else for return
syntax keyword vornscriptType class struct cstruct

syntax match vornscriptOperator /[-+*/%^=<>!&|]\+/
syntax match vornscriptName /\K\k*/
" Other words with digits in front are variables.
syntax match vornscriptName /\d[[:alnum:]_.]*\%([eE]\@1<=[+-]\d\+\)\?/
" A name made only of these characters counts as a number too.
syntax match vornscriptNumber /\v<[fe][0-9fe]*>/
syntax match vornscriptNumber /\v\k@1<!(\d+(\.\d*)?|\.\d+(\.\d*)?)(f|e\d+)?(\k|\.\d)@!/
syntax match vornscriptBuiltin /\v<(vtype|print|sleep|sin|cos|tan|asin|acos|atan|sqrt|abs|floor|ceil|round|min|max|clamp|pow|exp|log|log2|log10|cbrt|atan2|fract|lerp|smoothstep|rand|sign)>\ze\s*\(/
syntax match vornscriptFunction /\v\K\k*\ze\s*\([^()]*\)\s*\{/

syntax match vornscriptDirective /#\s*include\>/
syntax match vornscriptDirective /#\s*define\>/ nextgroup=vornscriptConstant skipwhite
syntax match vornscriptConstant /\k\+/ contained

syntax region vornscriptString start=/"/ skip=/\\./ end=/"/ end=/$/
syntax region vornscriptString start=/'/ skip=/\\./ end=/'/ end=/$/
syntax region vornscriptString start=/"""/ skip=/\\./ end=/"""/
syntax region vornscriptString start=/'''/ skip=/\\./ end=/'''/
syntax match vornscriptComment /\/\/.*/
syntax region vornscriptComment start=/\/\*/ end=/\*\//

highlight default link vornscriptKeyword Statement
highlight default link vornscriptType Structure
highlight default link vornscriptOperator Operator
highlight default link vornscriptNumber Number
highlight default link vornscriptBuiltin Function
highlight default link vornscriptFunction Identifier
highlight default link vornscriptDirective PreProc
highlight default link vornscriptConstant Constant
highlight default link vornscriptString String
highlight default link vornscriptComment Comment

let b:current_syntax = 'vornscript'
