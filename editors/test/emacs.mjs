// The faces of task files, as Emacs computes them.
import { spawnSync } from 'node:child_process';
import { readFileSync, writeFileSync } from 'node:fs';
import { join } from 'node:path';
import { editors, here } from './tokens.mjs';
import { scratch } from './program.mjs';

/// For each { text, number } the faces at every character of that line (numbers from 0).
export function faces(places) {
  const directory = scratch();
  const jobs = places.map(({ text, number }, i) => {
    const file = join(directory, `${i}.mq`);
    writeFileSync(file, text);
    return `${file}\t${number + 1}`;
  });
  const [list, answers] = [join(directory, 'jobs'), join(directory, 'answers')];
  writeFileSync(list, jobs.join('\n') + '\n');
  const result = spawnSync('emacs', ['-Q', '--batch', '-L', join(editors, 'emacs'), '-l', join(here, 'dump.el')],
    { encoding: 'utf8', env: { ...process.env, JOBS: list, ANSWERS: answers } });
  if (result.error || result.status !== 0) {
    throw result.error ?? new Error(`emacs: ${result.status}: ${result.stdout}${result.stderr}`);
  }
  return readFileSync(answers, 'utf8').trimEnd().split('\n').map((line) => JSON.parse(line));
}
