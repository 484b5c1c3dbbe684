autocmd BufRead,BufNewFile *.vrs set filetype=vornscript
