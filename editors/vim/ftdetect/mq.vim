" Task files, project templates, fragment libraries and fragments.
autocmd BufNewFile,BufRead *.mq,*.projmq,*.mqlib,*.mqfrag setfiletype mq
