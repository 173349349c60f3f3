// Asks the program how it reads a file.
import { execFile, spawnSync } from 'node:child_process';
import { cpSync, mkdtempSync, readdirSync, readFileSync, rmSync, writeFileSync } from 'node:fs';
import { tmpdir } from 'node:os';
import { join } from 'node:path';
import { top } from './tokens.mjs';

export const mqkit = process.env.MQKIT ?? join(top, 'build/mqkit');

export function run(words, options = {}) {
  const result = spawnSync(mqkit, words, { encoding: 'utf8', maxBuffer: 1 << 26, env: { ...process.env, NO_COLOR: '1' }, ...options });
  if (result.error) {
    throw result.error;
  }
  return result;
}

let base;
process.on('exit', () => base && rmSync(base, { recursive: true, force: true }));

/// A scratch directory that goes with the process.
export function scratch() {
  base ??= mkdtempSync(join(tmpdir(), 'mqkit-editors-'));
  return mkdtempSync(join(base, 'scratch-'));
}

const endings = ['.mq', '.projmq', '.mqlib', '.mqfrag'];

/// The paths of all example files that are coloured, below examples/.
export const exampleFiles = readdirSync(join(top, 'examples'), { recursive: true })
  .filter((path) => endings.some((ending) => path.endsWith(ending)))
  .sort();

export const exampleText = (path) => readFileSync(join(top, 'examples', path), 'utf8');

/// What the program makes of the examples of `tree` that `path` has a part in, without the places in it.
async function reading(tree, path) {
  const isLibrary = path.endsWith('.mqlib') || path.endsWith('.mqfrag');
  const whole = isLibrary ? ['fragments/barrier.mq', 'fragments/functionals.mq'] : [path];
  const commands = isLibrary ? [['expand', '--expanded']] : [['migrate'], ['explain', '--format', 'json']];
  const parts = [];
  for (const words of whole.flatMap((file) => commands.map((command) => [...command, join(tree, file)]))) {
    parts.push(await new Promise((resolve) => {
      execFile(mqkit, words, { encoding: 'utf8', maxBuffer: 1 << 26 }, (error, stdout) =>
        resolve(`${error ? error.code : 0}\n${stdout.replace(/"(block_)?span": "[^"]*"/g, '')}`));
    }));
  }
  return parts.join('\n');
}

/// For each { path, text }, whether the program reads the example `path` with that text as it reads the original.
export async function unchanged(trials) {
  const trees = [0, 1].map(() => join(scratch(), 'examples'));
  trees.forEach((tree) => cpSync(join(top, 'examples'), tree, { recursive: true }));
  const originals = new Map();
  for (const path of new Set(trials.map((trial) => trial.path))) {
    originals.set(path, await reading(trees[0], path));
    if (!originals.get(path).startsWith('0\n')) {
      throw new Error(`${path} is not read: ${originals.get(path)}`);
    }
  }
  const answers = [];
  let next = 0;
  await Promise.all(trees.map(async (tree) => {
    while (next < trials.length) {
      const number = next++;
      const { path, text } = trials[number];
      writeFileSync(join(tree, path), text);
      answers[number] = (await reading(tree, path)).replaceAll(tree, trees[0]) === originals.get(path);
      writeFileSync(join(tree, path), exampleText(path));
    }
  }));
  return answers;
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
