// The words that are coloured are those of the tables from which the program reads: none is missing in any editor.
import assert from 'node:assert/strict';
import { readFileSync } from 'node:fs';
import { join } from 'node:path';
import test from 'node:test';
import * as words from '../textmate/words.mjs';
import { faces } from './emacs.mjs';
import { holds, loadGrammar, scopesAt, tokenize, top } from './tokens.mjs';
import { syntaxGroups } from './vim.mjs';

/// The words that `row` captures in a source; several may be in one text.
function tableOf(path, row, from = '', to = '\n}') {
  const text = readFileSync(join(top, 'src/taskdsl', path), 'utf8');
  const begin = text.indexOf(from);
  assert.notEqual(begin, -1);
  const found = [...text.slice(begin, text.indexOf(to, begin)).matchAll(row)].flatMap(([, list]) => list.split(' '));
  assert.ok(found.length > 3, path);
  return [...new Set(found)];
}

const sorted = (list) => [...list].sort();
const removed = ['runifdef', 'runif']; // refused keys of %control
const below = ['label', 'value', 'scale', 'position', 'visible', 'order']; // behind a plot's axis, legend or point

const tables = {
  directives: [tableOf('task/directives.cpp', /^ {4}\{"([a-z]+)", "[a-z]+", read/gm, 'directiveTable', '}};'),
    [...words.blockDirectives, ...words.textDirectives, 'plot']],
  controlKeys: [tableOf('task/control_directive.cpp', /^ {4}\{"(\w+)", KeyTest/gm, '', '\0').filter((word) => !removed.includes(word)),
    words.controlKeys],
  plotKinds: [tableOf('plot/enumerations.cpp', /\{"([^"]+)", PlotKind::/g, 'kindWords', '});'), words.plotKinds],
  plotStatements: [[...tableOf('plot/statement_table.cpp', /\{"([a-z0-9 ]+)",\s+read/g, 'rows[]', '\n};'), ...below],
    words.plotStatements],
  deriveStatements: [tableOf('derive/derive_parser.cpp', /^ {4}\{"([a-z]+)", "/gm, 'statementRows[]', '\n};').concat('unit'),
    words.deriveStatements],
  fragmentKinds: [tableOf('task/fragment_kind.cpp', /\{"(\w+)", FragmentKind::/g, '', '});').filter((word) => word !== 'unknown'),
    Object.values(words.fragmentKinds).flat().filter((word) => word !== 'task-body')],
};

for (const [name, [table, list]] of Object.entries(tables)) {
  test(`${name} are those of the program`, () => assert.deepEqual(sorted(list), sorted(table)));
}

/// A text with the word, where the word is, and its colour in the grammar, vim and Emacs.
const probes = [
  ...tables.directives[0].map((word) => [`$a\n  %${word} x\n`, 1, 3, 'keyword.control.directive',
    word === 'plot' ? 'mqDirectivePlot' : 'mqDirective', 'font-lock-keyword-face']),
  ...tables.controlKeys[0].map((word) => [`$a\n  %control\n    ${word} x\n`, 2, 4, 'support.type.property-name', 'mqControlKey', 'font-lock-type-face']),
  ...words.programs.map((word) => [`$a\n  %program ${word}\n`, 1, 11, 'support.constant.program', 'mqProgramName', 'font-lock-constant-face']),
  ...tables.plotKinds[0].map((word) => [`@plot ${word} a\n@end\n`, 0, 6, 'storage.type.plot', 'mqPlotKind', 'font-lock-type-face']),
  ...tables.plotStatements[0].map((word) => [`@plot bar a\n  ${word} b\n@end\n`, 1, 2, 'keyword.other.statement', 'mqPlotWord', 'font-lock-builtin-face']),
  ...tables.deriveStatements[0].map((word) => [`@derive a\n  ${word} b\n@end\n`, 1, 2, 'keyword.other.statement', 'mqDeriveWord', 'font-lock-builtin-face']),
].map(([text, number, column, scope, group, face]) => ({ text, number, column, scope, group, face }));

const wrong = (found, wanted) => probes.map(({ text }, i) => [text, found[i], wanted(probes[i])])
  .filter(([, left, right]) => left !== right);

test('textmate: every word has its colour', async () => {
  const grammar = await loadGrammar();
  const found = probes.map(({ text, number, column, scope }) =>
    (holds(scopesAt(tokenize(grammar, text)[number], column), scope) ? scope : 'none'));
  assert.deepEqual(wrong(found, ({ scope }) => scope), []);
});

test('vim: every word has its colour', () => {
  const rows = syntaxGroups(probes);
  assert.deepEqual(wrong(rows.map((row, i) => row[probes[i].column].at(-1)), ({ group }) => group), []);
});

test('emacs: every word has its colour', () => {
  const rows = faces(probes);
  assert.deepEqual(wrong(rows.map((row, i) => row[probes[i].column][0]), ({ face }) => face), []);
});

test('the schema of lint knows the codes of the manual', () => {
  const codes = readFileSync(join(top, 'docs/lint.md'), 'utf8').match(/^### [a-z-]+$/gm).map((line) => line.slice(4));
  const schema = JSON.parse(readFileSync(join(top, 'schemas/lint.schema.json'), 'utf8'));
  assert.deepEqual(sorted(schema.$defs.issue.properties.code.enum), sorted(codes));
});
