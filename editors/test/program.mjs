// Asks the program how it reads a file.
import { spawnSync } from 'node:child_process';
import { cpSync, mkdtempSync, readdirSync, readFileSync, rmSync, writeFileSync } from 'node:fs';
import { tmpdir } from 'node:os';
import { join } from 'node:path';
import { top } from './tokens.mjs';

const mqkit = process.env.MQKIT ?? join(top, 'build/mqkit');

export function run(words, options = {}) {
  const result = spawnSync(mqkit, words, { encoding: 'utf8', maxBuffer: 1 << 26, env: { ...process.env, NO_COLOR: '1' }, ...options });
  if (result.error) {
    throw result.error;
  }
  return result;
}

/// A scratch directory that goes with the process.
export function scratch() {
  const directory = mkdtempSync(join(tmpdir(), 'mqkit-editors-'));
  process.on('exit', () => rmSync(directory, { recursive: true, force: true }));
  return directory;
}

const endings = ['.mq', '.projmq', '.mqlib', '.mqfrag'];

/// The paths of all example files that are coloured, below examples/.
export const exampleFiles = readdirSync(join(top, 'examples'), { recursive: true })
  .filter((path) => endings.some((ending) => path.endsWith(ending)))
  .sort();

export const exampleText = (path) => readFileSync(join(top, 'examples', path), 'utf8');

/// A copy of the examples in which files may be changed.
export function exampleTree() {
  const tree = join(scratch(), 'examples');
  cpSync(join(top, 'examples'), tree, { recursive: true });
  /// What the program makes of the examples that `path` has a part in.
  const reading = (path) => {
    const isLibrary = path.endsWith('.mqlib') || path.endsWith('.mqfrag');
    const whole = isLibrary ? ['fragments/barrier.mq', 'fragments/functionals.mq'] : [path];
    const words = isLibrary ? [['expand', '--expanded']] : [['fmt'], ['explain', '--format', 'json']];
    return whole.flatMap((file) => words.map((command) => {
      const { status, stdout } = run([...command, join(tree, file)]);
      return `${status}\n${stdout.replace(/"(block_)?span": "[^"]*"/g, '')}`;
    })).join('\n');
  };
  return {
    original: reading,
    /// The same with other text in `path`.
    changed(path, text) {
      writeFileSync(join(tree, path), text);
      try {
        return reading(path);
      } finally {
        writeFileSync(join(tree, path), exampleText(path));
      }
    },
  };
}

/// Lines of quotes, backslashes and comment marks, always the same ones.
export function quotingPuzzles(count) {
  let seed = 20240229;
  const next = (limit) => {
    seed = (Math.imul(seed, 1103515245) + 12345) >>> 0;
    return (seed >>> 16) % limit;
  };
  const pieces = ['"', "'", '\\', '#', ' ', ' # ', 'a', 'b"', "it's", '\\"', "\\'", ' #x', '[k]', '\t#'];
  return Array.from({ length: count }, () =>
    'k' + Array.from({ length: 1 + next(9) }, () => pieces[next(pieces.length)]).join('') + 'z');
}

/// For each line, what the program keeps of it as the value of a directive, before its comment.
export function keptText(lines) {
  const file = join(scratch(), 'puzzles.mq');
  writeFileSync(file, lines.map((line, i) => `$t${i}\n  %when ${line}\n`).join(''));
  const { status, stdout, stderr } = run(['explain', '--format', 'json', file]);
  if (status !== 0) {
    throw new Error(stderr);
  }
  return JSON.parse(stdout).tasks.map((task) => task.directives[0].argument);
}
