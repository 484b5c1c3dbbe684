setlocal commentstring=//\ %s comments=s1:/*,mb:*,ex:*/,://
