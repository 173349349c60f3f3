// Writes the grammar in the two formats that editors read, or checks with --check that they are up to date.
import { readFileSync, writeFileSync } from 'node:fs';
import { dirname, join } from 'node:path';
import { fileURLToPath } from 'node:url';
import { grammar } from './grammar.mjs';
import { sublimeSyntax } from './sublime.mjs';

/// One line for every rule of the top and of the repository: a change of one is a change of one line.
const textmateGrammar = ({ patterns, repository, ...head }) => [
  '{',
  ...Object.entries(head).map(([key, value]) => `  ${JSON.stringify(key)}: ${JSON.stringify(value)},`),
  '  "patterns": [',
  patterns.map((rule) => `    ${JSON.stringify(rule)}`).join(',\n'),
  '  ],',
  '  "repository": {',
  Object.entries(repository).map(([name, rule]) => `    ${JSON.stringify(name)}: ${JSON.stringify(rule)}`).join(',\n'),
  '  }',
  '}',
].join('\n') + '\n';

const editors = join(dirname(fileURLToPath(import.meta.url)), '..');
const files = {
  'vscode/syntaxes/mq.tmLanguage.json': textmateGrammar(grammar),
  'bat/mq.sublime-syntax': sublimeSyntax(grammar),
};
let stale = false;
for (const [name, text] of Object.entries(files)) {
  const path = join(editors, name);
  if (!process.argv.includes('--check')) {
    writeFileSync(path, text);
  } else if (readFileSync(path, 'utf8') !== text) {
    console.error(`editors/${name} is not what editors/textmate/build.mjs writes`);
    stale = true;
  }
}
process.exit(stale ? 1 : 0);
