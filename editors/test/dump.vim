" For every job of the list, the names of syntax groups: vim -S dump.vim with g:jobs, a file of lines
" <file> <line number>, and g:answers, the file that is written: for each job a JSON list of group stacks, one for each
" byte of the line.
set nomore nocompatible noswapfile
filetype plugin on
syntax on
let s:answers = []
let s:open = ''
for s:job in readfile(g:jobs)
  let [s:file, s:line] = split(s:job, "\t")
  if s:file !=# s:open
    execute 'silent edit! ' . fnameescape(s:file)
    let s:open = s:file
  endif
  let s:row = []
  for s:column in range(1, len(getline(s:line)))
    call add(s:row, map(synstack(s:line, s:column), 'synIDattr(v:val, "name")'))
  endfor
  call add(s:answers, json_encode(s:row))
endfor
call writefile(s:answers, g:answers)
quitall!
