" Task files in vim with ALE; what comes of it is written to g:answers as JSON.
set nomore nocompatible noswapfile
filetype plugin indent on
let s:answers = {}

function s:Wait(what, Test) abort
  for s:i in range(500)
    if a:Test()
      return
    endif
    sleep 20m
  endfor
  throw 'no ' . a:what
endfunction

try
  execute 'edit ' . fnameescape(g:folder . '/faulty.mq')
  ALELint
  call s:Wait('diagnostics', {-> len(getloclist(0)) >= 2})
  let s:answers.diagnostics = map(getloclist(0), '[v:val.lnum, v:val.col, v:val.type, v:val.text]')

  execute 'edit ' . fnameescape(g:folder . '/study.mq')
  ALELint
  call search('source opt')
  normal! w
  ALEGoToDefinition
  call s:Wait('definition', {-> getline('.') ==# '$opt'})
  let s:answers.definition = getline('.')
catch
  let s:answers.fault = v:exception . ' ' . v:throwpoint
endtry
call writefile([json_encode(s:answers)], g:answers)
quitall!
