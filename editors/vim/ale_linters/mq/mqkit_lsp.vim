" The language server mqkit-lsp for ALE, which finds this file by itself.
call ale#linter#Define('mq', {
      \ 'name': 'mqkit-lsp',
      \ 'lsp': 'stdio',
      \ 'executable': 'mqkit-lsp',
      \ 'command': '%e',
      \ 'language': 'mq',
      \ 'project_root': {buffer -> fnamemodify(bufname(buffer), ':p:h')},
      \ })
