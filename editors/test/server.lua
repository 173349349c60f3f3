-- Opens task files in Neovim as somebody at the keyboard does; what comes of it is written to ANSWERS as JSON.
local folder = vim.env.FOLDER
local answers = {}

local function wait(what, test)
  assert(vim.wait(10000, test, 10), 'no ' .. what)
end

local function open(name)
  vim.cmd('edit! ' .. vim.fn.fnameescape(folder .. '/' .. name))
  wait('server', function()
    return #vim.lsp.buf_get_clients(0) > 0 or next(vim.lsp.buf_get_clients(0)) ~= nil
  end)
  local client = select(2, next(vim.lsp.buf_get_clients(0)))
  wait('capabilities', function() return client.server_capabilities ~= nil and client.initialized end)
  return client
end

local function text()
  return table.concat(vim.api.nvim_buf_get_lines(0, 0, -1, true), '\n') .. '\n'
end

local first = open('faulty.mq')
wait('diagnostics', function() return #vim.diagnostic.get(0) >= 2 end)
answers.diagnostics = vim.tbl_map(function(d)
  return { d.lnum, d.col, d.end_lnum, d.end_col, d.severity, d.code, d.source, d.message }
end, vim.diagnostic.get(0))
table.sort(answers.diagnostics, function(a, b) return a[1] < b[1] end)

-- The first of the fixes that are offered is taken.
local titles
vim.ui.select = function(items, options, choose)
  titles = vim.tbl_map(options.format_item, items)
  choose(items[1], 1)
end
vim.fn.cursor(2, 11)
vim.lsp.buf.code_action()
wait('fix', function() return titles ~= nil and vim.bo.modified end)
answers.fixes = titles
answers.fixed = text()

answers.sameServer = open('study.mq').id == first.id
vim.fn.search('source opt')
vim.cmd('normal! w')
vim.lsp.buf.definition()
wait('definition', function() return vim.fn.getline('.') == '$opt' end)
answers.definition = vim.fn.getcurpos()[2] .. ':' .. vim.fn.getcurpos()[3]

vim.lsp.buf.references()
wait('references', function() return #vim.fn.getqflist() > 0 end)
answers.references = vim.tbl_map(function(item) return item.lnum .. ':' .. item.col end, vim.fn.getqflist())
vim.cmd('cclose')
vim.lsp.buf.document_symbol()
wait('symbols', function() return vim.fn.getqflist()[1].text:find('Class') ~= nil end)
answers.symbols = vim.tbl_map(function(item) return item.text end, vim.fn.getqflist())
vim.cmd('cclose')

vim.lsp.buf.rename('minimum')
wait('rename', function() return text():find('source minimum') ~= nil end)
answers.renamed = text()

vim.lsp.buf.hover()
local hover
wait('hover', function()
  for _, window in pairs(vim.api.nvim_list_wins()) do
    if vim.api.nvim_win_get_config(window).relative ~= '' then
      hover = vim.api.nvim_win_get_buf(window)
    end
  end
  return hover ~= nil
end)
answers.hover = vim.api.nvim_buf_get_lines(hover, 0, -1, true)

if vim.lsp.buf.format then
  vim.lsp.buf.format()
else
  vim.lsp.buf.formatting_sync()
end
answers.formatted = text()

vim.fn.cursor(vim.fn.line('$'), 1)
vim.cmd('normal! o%pro')
local params = vim.lsp.util.make_position_params()
params.position.character = 4
answers.completion = {}
for _, answer in pairs(vim.lsp.buf_request_sync(0, 'textDocument/completion', params, 5000)) do
  for _, item in ipairs(vim.lsp.util.extract_completion_items(answer.result)) do
    table.insert(answers.completion, item.label)
  end
end

local file = assert(io.open(vim.env.ANSWERS, 'w'))
file:write(vim.fn.json_encode(answers))
file:close()
vim.cmd('qall!')
