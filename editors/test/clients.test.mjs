// Editors as users run them, with the language server: Neovim, Emacs with eglot, vim with ALE.
import assert from 'node:assert/strict';
import { spawnSync } from 'node:child_process';
import { existsSync, mkdirSync, readFileSync, realpathSync, symlinkSync, writeFileSync } from 'node:fs';
import { join } from 'node:path';
import test from 'node:test';
import { run, scratch } from './program.mjs';
import { server } from './server.mjs';
import { editors, here } from './tokens.mjs';

const folder = realpathSync(scratch());
const bin = join(folder, 'bin');
mkdirSync(bin);
symlinkSync(realpathSync(server), join(bin, 'mqkit-lsp'));
writeFileSync(join(folder, 'faulty.mq'), '$a\n  %source b\n  %keywords k\n\n$c\n');
const study = '$opt\n  %keywords "hf opt"\n\n$freq\n  %source opt\n  %keywords "hf freq"\n';
const renamed = study.replace('$opt', '$minimum').replace('source opt', 'source minimum');
writeFileSync(join(folder, 'renamed.mq'), renamed);
const formatted = run(['fmt', join(folder, 'renamed.mq')]).stdout;

/// Runs an editor that writes its answers to a file; what is in it.
function ask(program, words, env = {}) {
  const answers = join(scratch(), 'answers');
  writeFileSync(join(folder, 'study.mq'), study);
  const result = spawnSync(program, words(answers), {
    encoding: 'utf8', cwd: folder, stdio: ['ignore', 'pipe', 'pipe'], timeout: 60000,
    env: { ...process.env, HOME: folder, PATH: `${bin}:${process.env.PATH}`, FOLDER: folder, ANSWERS: answers, ...env },
  });
  assert.ok(existsSync(answers), `${program}: ${result.status} ${result.error ?? ''} ${result.stdout}${result.stderr}`);
  return JSON.parse(readFileSync(answers, 'utf8'));
}

test('Neovim: diagnostics, fixes, definition, references, symbols, rename, hover, formatting, completion', () => {
  const found = ask('nvim', () => ['--headless', '-n', '-i', 'NONE', '-u', 'NONE',
    '--cmd', `set runtimepath^=${join(editors, 'vim')}`, '--cmd', 'filetype plugin on', '-c', `luafile ${join(here, 'server.lua')}`, '-c', 'cquit']);
  assert.deepEqual(found.diagnostics, [
    [1, 10, 1, 11, 1, 'missing-source-task', 'mqkit', 'source task does not exist: b'],
    [4, 0, 4, 2, 1, 'missing-keywords', 'mqkit', 'keywords are not set'],
  ]);
  assert.deepEqual(found.fixes, ["Replace with 'c'"]);
  assert.match(found.fixed, /^ {2}%source c$/m);
  assert.equal(found.sameServer, true);
  assert.equal(found.definition, '1:2');
  assert.deepEqual(found.references, ['1:2', '5:11']);
  assert.deepEqual(found.symbols.slice(0, 1), ['[Class] opt']);
  assert.equal(found.renamed, renamed);
  assert.ok(found.hover.includes('$minimum'), found.hover.join('\n'));
  assert.equal(found.formatted, formatted);
  assert.deepEqual(found.completion.filter((label) => label.startsWith('pro')).sort(), ['process', 'program']);
});

test('Neovim: g:mqkit_lsp = v:false keeps the server from being started', () => {
  const found = ask('nvim', (answers) => ['--headless', '-n', '-i', 'NONE', '-u', 'NONE',
    '--cmd', `set runtimepath^=${join(editors, 'vim')}`, '--cmd', 'filetype plugin on', '--cmd', 'let g:mqkit_lsp = v:false', 'study.mq',
    '-c', `call writefile([json_encode([&filetype, luaeval("#vim.lsp.get_active_clients()")])], '${answers}')`, '-c', 'qall!']);
  assert.deepEqual(found, ['mq', 0]);
});

test('Emacs with eglot: diagnostics, definition, rename, formatting', () => {
  const found = ask('emacs', () => ['--batch', '-L', join(editors, 'emacs'), '-l', join(here, 'server.el')]);
  assert.deepEqual(found.diagnostics.map(([line]) => line), [2, 5]);
  assert.match(found.diagnostics[0][1], /source task does not exist: b/);
  assert.equal(found.definition, '$opt');
  assert.equal(found.renamed, renamed);
  assert.equal(found.formatted, formatted);
});

test('vim with ALE: diagnostics, definition', () => {
  const found = ask('vim', (answers) => ['-Nu', 'NONE', '-i', 'NONE', '-n', '-es', '--cmd', 'set runtimepath^=/usr/share/vim-ale',
    '--cmd', `set runtimepath^=${join(editors, 'vim')}`, '--cmd', `let g:folder = '${folder}'`,
    '--cmd', `let g:answers = '${answers}'`, '-c', 'runtime plugin/ale.vim', '-S', join(here, 'server.vim')]);
  assert.equal(found.fault, undefined);
  assert.deepEqual(found.diagnostics, [
    [2, 11, 'E', 'missing-source-task: source task does not exist: b'],
    [5, 1, 'E', 'missing-keywords: keywords are not set'],
  ]);
  assert.equal(found.definition, '$opt');
});
