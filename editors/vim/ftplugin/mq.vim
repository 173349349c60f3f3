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

" Lines that stand below one that ends in a colon.
let s:below = '^\s*\c\%(label\|unit\|scale\|position\|visible\|order\|report\)\>'

" Tasks, plots, derives and loops are at the margin, directives two blanks in, their blocks four, and what is below a
" colon two more. Text and the prelude stay as they are.
function MqIndent(number) abort
  let line = getline(a:number)
  let groups = map(synstack(a:number, max([1, match(line, '\S') + 1])), 'synIDattr(v:val, "name")')
  if match(groups, '^mq\%(Heredoc\|Text\|TextFragment\|Yaml\|Define\)$') >= 0 && groups[-1] !=# 'mqDirective'
    return -1
  endif
  let above = prevnonblank(a:number - 1)
  if line =~# '^\s*[$@]' || above == 0
    return 0
  endif
  if line =~# '^\s*%'
    return 2
  endif
  let text = getline(above)
  if text =~# '^\s*\%(@plot\|@derive\)\>' || text =~# '^\s*\$'
    return 2
  endif
  " A directive without a value opens a block.
  if text =~# '^\s*%\a\+\s*\%(#.*\)\?$' || text =~# '^\s*%plot\>' || text =~# ':\s*$'
    return indent(above) + 2
  endif
  if text =~# '^\s*@end\>'
    return 0
  endif
  if line !~# s:below && text =~# s:below
    while text =~# s:below
      let above = prevnonblank(above - 1)
      let text = getline(above)
    endwhile
  endif
  return indent(above)
endfunction
