// Filetypes, comments, indentation and checks in vim and Emacs.
import assert from 'node:assert/strict';
import { spawnSync } from 'node:child_process';
import { copyFileSync, mkdirSync, readFileSync, realpathSync, symlinkSync, writeFileSync } from 'node:fs';
import { join } from 'node:path';
import test from 'node:test';
import { exampleFiles, mqkit, run, scratch } from './program.mjs';
import { editors, here, top } from './tokens.mjs';

const directory = realpathSync(scratch());

/// The canonical form of every example: what indentation has to give back. Further lines of `%param` are at the margin
/// there; editors put them below the directive.
const canonical = exampleFiles.filter((path) => path.endsWith('.mq')).map((path, i) => {
  const { status, stdout, stderr } = run(['migrate', join(top, 'examples', path)]);
  assert.equal(status, 0, stderr);
  const file = join(directory, `${i}.mq`);
  const text = stdout.replace(/^( {2}%param .*\n)(([^\s%$].*\n)+)/gm, (_, head, more) => head + more.replace(/^/gm, '  ').trimEnd() + '\n');
  writeFileSync(file, text);
  return { path, file, text };
});

function vim(files) {
  const [jobs, answers] = [join(directory, 'jobs'), join(directory, 'answers')];
  writeFileSync(jobs, files.join('\n') + '\n');
  const bin = join(directory, 'bin');
  mkdirSync(bin, { recursive: true });
  try {
    symlinkSync(mqkit, join(bin, 'mqkit'));
  } catch (error) {
    assert.equal(error.code, 'EEXIST');
  }
  const result = spawnSync('vim', ['-Nu', 'NONE', '-i', 'NONE', '-n', '-es', '--cmd', `set runtimepath^=${join(editors, 'vim')}`,
    '--cmd', `let g:jobs = '${jobs}'`, '--cmd', `let g:answers = '${answers}'`, '-S', join(here, 'settings.vim')],
  { encoding: 'utf8', cwd: directory, stdio: ['ignore', 'pipe', 'pipe'], env: { ...process.env, PATH: `${bin}:${process.env.PATH}` } });
  assert.equal(result.status, 0, result.stdout + result.stderr);
  return readFileSync(answers, 'utf8').trimEnd().split('\n').map((line) => JSON.parse(line));
}

test('vim knows the files', () => {
  const files = ['a.mq', 'b.projmq', 'c.mqlib', 'd.mqfrag'].map((name) => join(directory, name));
  files.forEach((file) => writeFileSync(file, '$a\n'));
  for (const { filetype, commentstring } of vim(files)) {
    assert.deepEqual([filetype, commentstring], ['mq', '# %s']);
  }
});

test('vim: indentation gives the canonical layout of every example back', () => {
  vim(canonical.map(({ file }) => file)).forEach(({ text }, i) => assert.equal(text, canonical[i].text, canonical[i].path));
});

test('vim: :make fills the quickfix list', () => {
  const file = join(directory, "faulty 'x.mq");
  writeFileSync(file, '#INCLUDE a\n$a\n  %source b\n  %keywords k\n$c\n  %program nosuch\n');
  copyFileSync(file, join(directory, 'faulty y.mq'));
  writeFileSync(file, '#INCLUDE a\n$a\n  %source b\n  %keywords k\n');
  const [{ findings }, { findings: placeless }] = vim([file, join(directory, 'faulty y.mq')]);
  assert.deepEqual(findings, [
    [file, 1, 1, 'w', '#INCLUDE is legacy; use &INCLUDE'],
    [file, 3, 3, 'e', 'source task does not exist: b'],
  ]);
  assert.deepEqual(placeless.map(([name, line, , type]) => [name, line, type]), [[join(directory, 'faulty y.mq'), 1, 'w'], [join(directory, 'faulty y.mq'), 0, 'e']]);
});

const emacs = (words, env = {}) => {
  const result = spawnSync('emacs', ['-Q', '--batch', '-L', join(editors, 'emacs'), ...words],
    { encoding: 'utf8', env: { ...process.env, ...env } });
  assert.equal(result.status, 0, result.stdout + result.stderr);
  return result.stderr + result.stdout;
};

test('emacs: the mode compiles without a warning', () => {
  const file = join(directory, 'mq-mode.el');
  copyFileSync(join(editors, 'emacs/mq-mode.el'), file);
  emacs(['--eval', '(setq byte-compile-error-on-warn t)', '-f', 'batch-byte-compile', file]);
  assert.ok(readFileSync(join(directory, 'mq-mode.elc')).length > 1000);
});

test('emacs: faces, comments, indentation of every example, links', () => {
  const log = emacs(['-l', join(here, 'mq-mode-tests.el'), '-f', 'ert-run-tests-batch-and-exit'],
    { CANONICAL: canonical.map(({ file }) => file).join('\n') });
  assert.match(log, /Ran 5 tests, 5 results as expected, 0 unexpected/);
});
