" What the filetype plugin makes of the files named in g:jobs, one a line, is written to g:answers as JSON.
set nomore nocompatible noswapfile
filetype plugin indent on
syntax on
let s:answers = []
for s:file in readfile(g:jobs)
  execute 'silent edit ' . fnameescape(s:file)
  let s:answer = {'filetype': &filetype, 'commentstring': &commentstring}
  if s:file =~# 'faulty'
    silent make!
    let s:answer.findings = map(getqflist(), '[bufname(v:val.bufnr), v:val.lnum, v:val.col, v:val.type, v:val.text]')
  else
    " Indentation is lost everywhere but in text and in the prelude, and made again.
    for s:line in range(1, line('$'))
      let s:groups = map(synstack(s:line, 1), 'synIDattr(v:val, "name")')
      if match(s:groups, '^mq\%(Heredoc\|Text\|Yaml\|Define\)$') < 0 || s:groups[-1] ==# 'mqDirective'
        call setline(s:line, substitute(getline(s:line), '^\s\+', '', ''))
      endif
    endfor
    silent normal! gg=G
    let s:answer.text = join(getline(1, '$'), "\n") . "\n"
  endif
  call add(s:answers, json_encode(s:answer))
  silent! bwipeout!
endfor
call writefile(s:answers, g:answers)
quitall!
