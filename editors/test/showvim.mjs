import { readFileSync } from 'node:fs';
import { syntaxGroups } from './vim.mjs';
const text = readFileSync(process.argv[2], 'utf8');
const lines = text.trimEnd().split('\n');
const rows = syntaxGroups(lines.map((_, number) => ({ text, number })), process.argv[2].split('/').pop());
rows.forEach((row, i) => {
  console.log(lines[i]);
  let begin = 0;
  for (let c = 1; c <= row.length; ++c) {
    if (c === row.length || row[c].join() !== row[begin].join()) {
      if (row[begin].length) console.log(`    ${lines[i].slice(begin, c)}\t${row[begin].join(' ')}`);
      begin = c;
    }
  }
});
