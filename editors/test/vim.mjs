// The syntax groups of task files, as vim computes them.
import { spawnSync } from 'node:child_process';
import { readFileSync, writeFileSync } from 'node:fs';
import { join } from 'node:path';
import { editors, here } from './tokens.mjs';
import { scratch } from './program.mjs';

/// For each { text, number } the groups at every byte of that line (numbers from 0), outermost first.
export function syntaxGroups(places, name = 'probe.mq') {
  const directory = scratch();
  const jobs = places.map(({ text, number }, i) => {
    const file = join(directory, `${i}-${name}`);
    writeFileSync(file, text);
    return `${file}\t${number + 1}`;
  });
  const [list, answers] = [join(directory, 'jobs'), join(directory, 'answers')];
  writeFileSync(list, jobs.join('\n') + '\n');
  const result = spawnSync('vim', ['-Nu', 'NONE', '-i', 'NONE', '-n', '-es',
    '--cmd', `set runtimepath^=${join(editors, 'vim')}`,
    '--cmd', `let g:jobs = '${list}'`, '--cmd', `let g:answers = '${answers}'`,
    '-S', join(here, 'dump.vim')], { encoding: 'utf8', stdio: ['ignore', 'pipe', 'pipe'] });
  if (result.error || result.status !== 0) {
    throw result.error ?? new Error(`vim: ${result.status}: ${result.stdout}${result.stderr}`);
  }
  return readFileSync(answers, 'utf8').trimEnd().split('\n').map((line) => JSON.parse(line));
}
