// Writes the grammar in the two formats that editors read, or checks with --check that they are up to date.
import { readFileSync, writeFileSync } from 'node:fs';
import { dirname, join } from 'node:path';
import { fileURLToPath } from 'node:url';
import { grammar } from './grammar.mjs';
import { sublimeSyntax } from './sublime.mjs';

const editors = join(dirname(fileURLToPath(import.meta.url)), '..');
const files = {
  'vscode/syntaxes/mq.tmLanguage.json': JSON.stringify(grammar, null, 1) + '\n',
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
