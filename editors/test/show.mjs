// Shows the tokens of a file: node show.mjs <file>
import { readFileSync } from 'node:fs';
import { loadGrammar, tokenize } from './tokens.mjs';

const grammar = await loadGrammar();
for (const { line, tokens } of tokenize(grammar, readFileSync(process.argv[2], 'utf8'))) {
  console.log(line);
  for (const { begin, end, scopes } of tokens.filter((token) => token.scopes.length > 0)) {
    console.log(`    ${line.slice(begin, end)}\t${scopes.join(' ').replaceAll('.mq', '')}`);
  }
}
