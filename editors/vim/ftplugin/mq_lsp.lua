-- Neovim starts the language server mqkit-lsp for task files where it is installed, one for all of them.
-- `let g:mqkit_lsp = v:false` switches this off.
if vim.g.mqkit_lsp == false or vim.g.mqkit_lsp == 0 or vim.fn.executable('mqkit-lsp') == 0 then
  return
end

-- The folder of a git checkout holds the files that belong together; without one the server needs no folder.
local git = vim.fn.finddir('.git', vim.fn.expand('%:p:h') .. ';')
local config = {
  name = 'mqkit-lsp',
  cmd = { 'mqkit-lsp' },
  root_dir = git ~= '' and vim.fn.fnamemodify(git, ':p:h:h') or nil,
}

if vim.lsp.start then
  vim.lsp.start(config)
else -- Neovim 0.7
  local id
  for _, client in pairs(vim.lsp.get_active_clients()) do
    if client.name == config.name and client.config.root_dir == config.root_dir then
      id = client.id
    end
  end
  vim.lsp.buf_attach_client(0, id or vim.lsp.start_client(config))
end
vim.bo.omnifunc = 'v:lua.vim.lsp.omnifunc'
vim.bo.tagfunc = 'v:lua.vim.lsp.tagfunc'
