-- Attaches each script to the language server, one for all of them: `vrn` has to be on the path.
local client = vim.g.vornscript_client
if not client or not vim.lsp.get_client_by_id(client) then
  client = vim.lsp.start_client({ name = 'vrn', cmd = { 'vrn', 'lsp' } })
  vim.g.vornscript_client = client
end
if client then
  vim.lsp.buf_attach_client(0, client)
  vim.bo.omnifunc = 'v:lua.vim.lsp.omnifunc'
  vim.bo.tagfunc = 'v:lua.vim.lsp.tagfunc'
  vim.keymap.set('n', 'K', vim.lsp.buf.hover, { buffer = true })
end
