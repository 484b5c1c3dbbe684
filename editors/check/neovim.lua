-- Works on $SCRIPT in Neovim: its mistake is shown, a name completed, a definition found.
local function check(what, got, wanted)
  if vim.deep_equal(got, wanted) then return end
  error(what .. ': ' .. vim.inspect(got) .. ', not ' .. vim.inspect(wanted), 0)
end

local step  -- the work, a coroutine; while it waits, keys are read and the server is heard

local function wait_for(what, condition)
  local tries = 0
  while not condition() do
    tries = tries + 1
    if tries > 1000 then error('There is never ' .. what, 0) end
    vim.defer_fn(step, 20)
    coroutine.yield()
  end
end

local function type_keys(keys)
  vim.api.nvim_feedkeys(vim.api.nvim_replace_termcodes(keys, true, false, true), 't', false)
end

local function work()
  vim.cmd('edit ' .. vim.env.SCRIPT)
  check('file type', vim.bo.filetype, 'vornscript')
  wait_for('a diagnostic', function() return #vim.diagnostic.get(0) == 1 end)
  local found = vim.diagnostic.get(0)[1]
  check('diagnostic', { found.lnum, found.col, found.end_col, found.message },
    { 3, 8, 9, "Invalid binary operator '%'" })

  vim.o.completeopt = 'menuone'
  type_keys('Gotot<C-x><C-o>')
  wait_for('a completion', function() return vim.fn.pumvisible() == 1 end)
  type_keys('<C-y><Esc>')
  wait_for('an end of it', function() return vim.fn.mode() == 'n' end)
  check('completion', vim.api.nvim_get_current_line():match('%S+'), 'total')

  vim.api.nvim_win_set_cursor(0, { 4, 2 })
  vim.lsp.buf.definition()
  wait_for('a jump', function() return vim.api.nvim_win_get_cursor(0)[1] ~= 4 end)
  check('definition', vim.api.nvim_win_get_cursor(0), { 2, 0 })
end

local running = coroutine.create(work)
step = function()
  local alive, failure = coroutine.resume(running)
  if not alive then
    io.stderr:write(failure .. '\n')
    vim.cmd('cquit!')
  elseif coroutine.status(running) == 'dead' then
    vim.cmd('quitall!')
  end
end
vim.schedule(step)
