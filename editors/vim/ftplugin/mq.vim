" Settings for task files of mqkit.
if exists('b:did_ftplugin')
  finish
endif
let b:did_ftplugin = 1

setlocal comments=:#
setlocal commentstring=#\ %s
setlocal formatoptions-=t formatoptions+=croql
setlocal expandtab shiftwidth=2 softtabstop=2
setlocal autoindent nosmartindent indentexpr=MqIndent(v:lnum) indentkeys=o,O,!^F,0%,0$,0@
setlocal include=^\\s*&INCLUDE
setlocal suffixesadd=.mq,.mqlib,.mqfrag

" :make checks the file on disk; the findings are in the quickfix list.
setlocal makeprg=mqkit\ lint\ %:S
setlocal errorformat=%f:%l:%c:\ %trror\ [%.%#]\ %m
setlocal errorformat+=%f:%l:%c:\ %tarning\ [%.%#]\ %m
setlocal errorformat+=%f:\ %trror\ [%.%#]\ %m
setlocal errorformat+=%f:\ %tarning\ [%.%#]\ %m
setlocal errorformat+=%-G%.%#

let b:undo_ftplugin = 'setlocal comments< commentstring< formatoptions< expandtab< shiftwidth< softtabstop<'
      \ . ' autoindent< smartindent< indentexpr< indentkeys< include< suffixesadd< makeprg< errorformat<'

if exists('*MqIndent')
  finish
endif

" Tasks, plots, derives and loops are at the margin, directives two blanks in, their blocks four.
function MqIndent(number) abort
  let line = getline(a:number)
  if line =~# '^\s*[$@]'
    return 0
  endif
  let above = prevnonblank(a:number - 1)
  if above == 0
    return 0
  endif
  let text = getline(above)
  if line =~# '^\s*%'
    return 2
  endif
  if text =~# '^\s*\%(@plot\|@derive\)\>' || text =~# '^\s*\$' || text =~# '^\%(define\|matrix\):'
    return 2
  endif
  " A directive without a value opens a block.
  if text =~# '^\s*%\a\+\s*\%(#.*\)\?$' || text =~# '^\s*%plot\>'
    return indent(above) + 2
  endif
  return text =~# '^\s*@end\>' ? 0 : indent(above)
endfunction
