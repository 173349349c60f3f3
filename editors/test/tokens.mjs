// The tokens of a task file, as an editor that reads TextMate grammars computes them.
import { readFileSync } from 'node:fs';
import { createRequire } from 'node:module';
import { dirname, join } from 'node:path';
import { fileURLToPath } from 'node:url';

const require = createRequire(import.meta.url);
const oniguruma = require('vscode-oniguruma');
const textmate = require('vscode-textmate');

export const here = dirname(fileURLToPath(import.meta.url));
export const editors = join(here, '..');
export const top = join(editors, '..');

export async function loadGrammar() {
  const wasm = readFileSync(require.resolve('vscode-oniguruma/release/onig.wasm'));
  await oniguruma.loadWASM(wasm.buffer.slice(wasm.byteOffset, wasm.byteOffset + wasm.byteLength));
  const path = join(editors, 'vscode/syntaxes/mq.tmLanguage.json');
  const registry = new textmate.Registry({
    onigLib: Promise.resolve({
      createOnigScanner: (patterns) => new oniguruma.OnigScanner(patterns),
      createOnigString: (text) => new oniguruma.OnigString(text),
    }),
    loadGrammar: async () => textmate.parseRawGrammar(readFileSync(path, 'utf8'), path),
  });
  return registry.loadGrammar('source.mq');
}

/// The tokens of each line: where they begin and end (columns from 0) and their innermost scopes, outermost first.
export function tokenize(grammar, text) {
  let state = textmate.INITIAL;
  const lines = text.endsWith('\n') ? text.slice(0, -1).split('\n') : text.split('\n');
  return lines.map((line) => {
    const result = grammar.tokenizeLine(line, state);
    state = result.ruleStack;
    const tokens = result.tokens
      .map(({ startIndex, endIndex, scopes }) => ({ begin: startIndex, end: Math.min(endIndex, line.length), scopes: scopes.slice(1) }))
      .filter(({ begin, end }) => begin < end);
    return { line, tokens };
  });
}

/// The scopes at a column; none where nothing is coloured.
export const scopesAt = ({ tokens }, column) =>
  tokens.find(({ begin, end }) => begin <= column && column < end)?.scopes ?? [];

export const holds = (scopes, name) => scopes.some((scope) => scope === name || scope.startsWith(name + '.'));
