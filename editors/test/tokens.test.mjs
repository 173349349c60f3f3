// Real tokens: by hand for the forms of the language, and for every example against what the program says of it.
import assert from 'node:assert/strict';
import { execFileSync, spawnSync } from 'node:child_process';
import { cpSync, mkdirSync, writeFileSync } from 'node:fs';
import { join } from 'node:path';
import test from 'node:test';
import * as words from '../textmate/words.mjs';
import { faces } from './emacs.mjs';
import { exampleFiles, exampleText, quotingPuzzles, run, scratch } from './program.mjs';
import { editors, holds, loadGrammar, scopesAt, tokenize, top } from './tokens.mjs';
import { syntaxGroups } from './vim.mjs';

const grammar = await loadGrammar();
const nothing = null;

/// The text, a part of it, and what the first character of the part is to the grammar, to vim and to Emacs; `nothing`
/// where it is not coloured.
const forms = [
  ['$opt\n', 'opt', 'entity.name.section.task', 'mqTask', 'font-lock-function-name-face'],
  ['$"two words" # c\n', '# c', 'comment', 'mqComment', 'font-lock-comment-delimiter-face'],
  ['$a\n  %keywords k\n', 'keywords', 'keyword.control.directive', 'mqDirective', 'font-lock-keyword-face'],
  ['$a\n  %nosuch k\n', '%nosuch', 'invalid.illegal.directive', 'mqFault', nothing],
  ['$a\n  %program XTB\n', 'XTB', 'support.constant.program', 'mqProgramName', 'font-lock-constant-face'],
  ['$a\n  %source restart\n', 'restart', 'constant.language', 'mqConstant', 'font-lock-constant-face'],
  ['$a\n  %control\n    gpu_type a100\n', 'gpu_type', 'support.type.property-name', 'mqControlKey', 'font-lock-type-face'],
  ['$a\n  %keywords "x [key] y"\n', '[key]', 'variable.parameter.placeholder', 'mqKey', 'mq-placeholder-face'],
  ['$a_[step.value]\n', '[step.value]', 'variable.parameter.placeholder', 'mqKey', 'mq-placeholder-face'],
  ['$a\n  %keywords [a b]\n', '[a b]', nothing, 'mqInline', nothing],
  ['# [key]\n', '[key]', 'comment', 'mqComment', 'font-lock-comment-face'],
  ['$a\n  %when\n    {{ b.energy }} > 1\n', '{{ b', 'variable.other.snapshot', 'mqSnapshot', 'mq-snapshot-face'],
  ['$a\n  %keywords "a # b"\n', '# b', 'string.quoted.double', 'mqString', 'font-lock-string-face'],
  ["$a\n  %keywords don't # b\n", '# b', 'comment', 'mqComment', 'font-lock-comment-delimiter-face'],
  ["$a\n  %keywords don't # it's\n", '# it', 'string.quoted.single', 'mqString', 'font-lock-string-face'],
  ['$a\n  %keywords 6-31g#b\n', '#b', nothing, 'mqInline', nothing],
  ['$a\n  %body << END # c\n', '# c', 'comment', 'mqHeredocComment', 'font-lock-comment-delimiter-face'],
  ['$a\n  %body << END\n# text\n  END\n', '# text', 'string.unquoted.heredoc', 'mqHeredoc', 'mq-text-face'],
  ['$a\n  %body << END\n%pal end\n  END\n', '%pal', 'string.unquoted.heredoc', 'mqHeredoc', 'mq-text-face'],
  ['$a\n  %body << END\n[key]\n  END\n', '[key]', 'variable.parameter.placeholder', 'mqKey', 'mq-placeholder-face'],
  ['$a\n  %body << END\n  END\n  # c\n', '# c', 'comment', 'mqComment', 'font-lock-comment-delimiter-face'],
  ['$a\n  %keywords <<\nk\nEOF\n# c\n', '# c', 'comment', 'mqComment', 'font-lock-comment-delimiter-face'],
  ['$a\n  %extrainput\n    # text\n$b\n', '# text', 'string.unquoted.text', 'mqText', 'mq-text-face'],
  ['$a\n  %extrainput x\n    # c\n', '# c', 'comment', 'mqComment', 'font-lock-comment-delimiter-face'],
  ['$a\n  %extrainput\n    t\n  %args x # c\n', '# c', 'comment', 'mqComment', 'font-lock-comment-delimiter-face'],
  ['@plot bar b\n  x charge\n@end\n', 'bar', 'storage.type.plot', 'mqPlotKind', 'font-lock-type-face'],
  ['@plot bar b\n  x charge\n@end\n', 'x', 'keyword.other.statement', 'mqPlotWord', 'font-lock-builtin-face'],
  ['@plot bar b\n  x charge#c\n@end\n', '#c', 'comment', 'mqStatementComment', 'font-lock-comment-delimiter-face'],
  ['@plot bar b\n  title "a # b"\n@end\n', '# b', 'string.quoted.double', 'mqStatementString', 'font-lock-string-face'],
  ['@plot bar b\n  x {{ a.b#c }}\n@end\n', '#c', 'variable.other.snapshot', 'mqSnapshot', 'mq-snapshot-face'],
  ['@plot bar b\n  x {{ a.b }}\n@end\n# c\n', '# c', 'comment', 'mqComment', 'font-lock-comment-delimiter-face'],
  ['$a\n  %plot bar b\n    x c#d\n', '#d', 'comment', 'mqStatementComment', 'font-lock-comment-delimiter-face'],
  ['$a\n  %plot bar b\n    x c\n  %args c#d\n', '#d', nothing, 'mqArgs', nothing],
  ['@derive d\n  let a = f("x")\n@end\n', 'let', 'keyword.other.statement', 'mqDeriveWord', 'font-lock-builtin-face'],
  ['@derive d\n  let a = f("x")\n@end\n', '@derive', 'keyword.control.block', 'mqBlockWord', 'font-lock-keyword-face'],
  ['@derive d\n  let a = f("x")\n@end\n', 'f(', 'support.function', 'mqFunction', nothing],
  ['@foreach? a\n$[a.value]\n@end\n', '@foreach', 'keyword.control.loop', 'mqLoopWord', 'font-lock-keyword-face'],
  ['@foreach a\n$[a.value]\n@end # c\n', '# c', 'comment', 'mqComment', 'font-lock-comment-delimiter-face'],
  ['&INCLUDE "a.mqlib" as b\n', '&INCLUDE', 'keyword.control.import', 'mqIncludeWord', 'font-lock-preprocessor-face'],
  ['$a\n  &INCLUDE b.c(\n    d=1, # c\n    e=2)\n  %args x\n', '# c', 'comment', 'mqComment', 'font-lock-comment-delimiter-face'],
  ['$a\n  &INCLUDE b.c(\n    d=1)\n  %args x\n', 'args', 'keyword.control.directive', 'mqDirective', 'font-lock-keyword-face'],
  ['&FRAGMENT text t(a)\n# text\n', '# text', 'string.unquoted.text', 'mqTextFragment', 'mq-text-face'],
  ['&FRAGMENT text t(a)\nx\n&FRAGMENT mod m\n# c\n', '# c', 'comment', 'mqComment', 'font-lock-comment-delimiter-face'],
  ['&FRAGMENT text t(a)\nx\n', '&FRAGMENT', 'keyword.control.fragment', 'mqFragmentWord', 'font-lock-preprocessor-face'],
  ['totcore: 8 # c\n', 'totcore', 'support.type.property-name', 'mqPreludeKey', 'font-lock-type-face'],
  ["a: it's # c\n", '# c', 'comment', 'mqYamlComment', 'font-lock-comment-delimiter-face'],
  ['a: "b # c"\n', '# c', 'string.quoted.double', 'mqYamlString', 'font-lock-string-face'],
  ['a: b "c # d"\n', '# d', 'comment', 'mqYamlComment', 'font-lock-comment-delimiter-face'],
  ['a: |\n  # text\n', '# text', 'string.unquoted.block', 'mqYamlBlock', 'mq-text-face'],
  ['a: |\n  text\nb: 1 # c\n', '# c', 'comment', 'mqYamlComment', 'font-lock-comment-delimiter-face'],
  ['a: [x, y]\n$b\n', 'x,', nothing, 'mqYamlFlow', nothing],
  ['a: [x]\n$b\n', 'x]', nothing, 'mqYamlFlow', nothing],
  ['a: [x]\n$b\n', 'b', 'entity.name.section.task', 'mqTask', 'font-lock-function-name-face'],
  ['define:\n  a: "b # c"\n$d\n', '# c', 'string.quoted.double', 'mqString', 'font-lock-string-face'],
  ["define:\n  a: it's # c\n$d\n", '# c', 'comment', 'mqComment', 'font-lock-comment-delimiter-face'],
  ['define:\n  a: [b]\n$d\n', '[b]', nothing, 'mqDefine', nothing],
  ['matrix:\n  - f: a, b\n    name: c, d\n', 'name', 'support.type.property-name', 'mqDefineKey', 'font-lock-type-face'],
];

/// Where the part begins: its line (from 0) and its column there.
function placeOf([text, part]) {
  const at = text.indexOf(part);
  assert.notEqual(at, -1, `${part} in ${text}`);
  const before = text.slice(0, at).split('\n');
  return { text, number: before.length - 1, column: before.at(-1).length };
}
const places = forms.map(placeOf);

test('textmate: every form', () => {
  const wrong = forms.map(([text, part, scope], i) => {
    const scopes = scopesAt(tokenize(grammar, text)[places[i].number], places[i].column);
    const right = scope === nothing ? scopes.every((name) => name.startsWith('punctuation')) : holds(scopes.slice(-1), scope);
    return right ? null : { text, part, scope, scopes };
  });
  assert.deepEqual(wrong.filter(Boolean), []);
});

test('vim: every form', () => {
  const names = ({ text }) => (text.includes('&FRAGMENT') ? 'probe.mqlib' : 'probe.mq');
  const wrong = forms.map(([text, part, , group], i) => {
    const found = syntaxGroups([places[i]], names(places[i]))[0][places[i].column].at(-1);
    return found === group ? null : { text, part, group, found };
  });
  assert.deepEqual(wrong.filter(Boolean), []);
});

test('emacs: every form', () => {
  const rows = faces(places);
  const wrong = forms.map(([text, part, , , face], i) => {
    const found = rows[i][places[i].column][0] ?? nothing;
    return found === face ? null : { text, part, face, found };
  });
  assert.deepEqual(wrong.filter(Boolean), []);
});

// ---- all examples

const whole = exampleFiles.filter((path) => path.endsWith('.mq') && !path.includes('historical'));

/// The lines of the examples on which the program sees a task header and a directive: "<path>:<line>:<column>".
function placesOfProgram() {
  const seen = { header: new Set(), directive: new Set() };
  const tree = join(scratch(), 'examples');
  cpSync(join(top, 'examples'), tree, { recursive: true });
  writeFileSync(join(tree, 'foreach/extra.yaml'), 'solvents: [water]\n'); // an optional loop runs, too
  const place = (span) => span.replace(`${tree}/`, '').replace(/^(.*?:\d+:\d+)(-.*)?$/, '$1');
  for (const path of whole) {
    const { stdout } = run(['explain', '--format', 'json', join(tree, path)]);
    for (const task of JSON.parse(stdout).tasks) {
      seen.header.add(place(task.block_span));
      task.directives.forEach(({ span }) => seen.directive.add(place(span)));
    }
  }
  return seen;
}

/// For each line of the examples that the program is asked about: its place, and what `isHeader` and `isDirective` say
/// of the column at which it begins.
function placesOfColours(colours, isHeader, isDirective) {
  const seen = { header: new Set(), directive: new Set() };
  for (const path of exampleFiles.filter((name) => !name.includes('historical'))) {
    exampleText(path).replace(/\n$/, '').split('\n').forEach((line, number) => {
      const column = line.search(/\S/);
      if (column !== -1) {
        const names = colours.get(path)[number](column);
        const place = `${path}:${number + 1}:${column + 1}`;
        if (isHeader(names)) seen.header.add(place);
        if (isDirective(names)) seen.directive.add(place);
      }
    });
  }
  return seen;
}

const byPlace = (set) => [...set].sort();
function requireSamePlaces(seen, told) {
  assert.ok(told.header.size > 60 && told.directive.size > 200);
  assert.deepEqual(byPlace(seen.header), byPlace(told.header));
  assert.deepEqual(byPlace(seen.directive), byPlace(told.directive));
}

test('textmate: tasks and directives of the examples are those that the program sees', () => {
  const colours = new Map(exampleFiles.map((path) =>
    [path, tokenize(grammar, exampleText(path)).map((row) => (column) => scopesAt(row, column))]));
  requireSamePlaces(
    placesOfColours(colours, (names) => holds(names, 'punctuation.definition.task'),
      (names) => holds(names, 'punctuation.definition.directive')),
    placesOfProgram());
});

test('vim: tasks and directives of the examples are those that the program sees', () => {
  const colours = new Map(exampleFiles.map((path) => {
    const text = exampleText(path);
    const rows = syntaxGroups(text.replace(/\n$/, '').split('\n').map((_, number) => ({ text, number })), path.split('/').at(-1));
    return [path, rows.map((row) => (column) => row[column])];
  }));
  requireSamePlaces(
    placesOfColours(colours, (names) => names.includes('mqDollar'),
      (names) => names.includes('mqDirective') || names.includes('mqDirectivePlot')),
    placesOfProgram());
});

test('textmate: every [key] of a body is coloured, and none of a prelude or a comment', () => {
  let count = 0;
  for (const path of exampleFiles) {
    const text = exampleText(path);
    let body = false;
    tokenize(grammar, text).forEach((row) => {
      body ||= /^\s*([$@]|&FRAGMENT)/.test(row.line);
      for (const { index } of row.line.matchAll(/\[[A-Za-z0-9_.-]+\]/g)) {
        const scopes = scopesAt(row, index);
        const expected = (body || row.line.startsWith('&INCLUDE')) && !holds(scopes, 'comment');
        assert.equal(holds(scopes, 'variable.parameter.placeholder'), expected, `${path}: ${row.line}`);
        count += expected ? 1 : 0;
      }
    });
  }
  assert.ok(count > 40, `${count}`);
});

test('nothing of an example is coloured as a fault', () => {
  for (const path of exampleFiles) {
    for (const { line, tokens } of tokenize(grammar, exampleText(path))) {
      assert.ok(!tokens.some(({ scopes }) => holds(scopes, 'invalid')), `${path}: ${line}`);
    }
  }
});

// ---- the words

const complaint = (text) => {
  const file = join(scratch(), 'word.mq');
  writeFileSync(file, text);
  return run(['explain', file]).stderr;
};

test('the program knows every word that is coloured as one of its own', () => {
  for (const word of [...words.blockDirectives, ...words.textDirectives, 'plot']) {
    assert.doesNotMatch(complaint(`$a\n  %${word} x\n`), /unknown directive/, word);
  }
  assert.match(complaint('$a\n  %nosuch x\n'), /unknown directive/);
  for (const word of words.programs) {
    assert.doesNotMatch(complaint(`$a\n  %program ${word}\n`), /unknown %program/, word);
  }
  for (const word of words.plotKinds) {
    assert.doesNotMatch(complaint(`@plot ${word} a\n  x b\n@end\n`), /unknown plot kind|unsupported plot/i, word);
  }
  assert.notEqual(complaint('@plot nosuch a\n  x b\n@end\n'), complaint('@plot bar a\n  x b\n@end\n'));
  for (const word of words.batchKeys) {
    assert.doesNotMatch(complaint(`$a\n  %batch\n    lane 1\n    ${word} 1\n`), /unknown %batch block key/, word);
  }
  for (const word of words.batchOptions) {
    assert.doesNotMatch(complaint(`$a\n  %batch\n    lane 1\n    cluster ${word}=0.5\n`), /unknown %batch cluster/, word);
  }
});

// ---- other formats

test('the written grammars are those of the description', () => {
  execFileSync('node', [join(editors, 'textmate/build.mjs'), '--check']);
});

const theme = (scope) => `<?xml version="1.0" encoding="UTF-8"?>
<plist version="1.0"><dict><key>name</key><string>probe</string><key>settings</key><array>
<dict><key>settings</key><dict><key>foreground</key><string>#0A0A0A</string></dict></dict>
<dict><key>scope</key><string>${scope}</string><key>settings</key><dict><key>foreground</key><string>#FF0000</string></dict></dict>
</array></dict></plist>
`;

/// The text of each line that bat colours as `scope`.
function batColours(scope, files) {
  const directory = scratch();
  mkdirSync(join(directory, 'themes'));
  mkdirSync(join(directory, 'syntaxes'));
  writeFileSync(join(directory, 'themes/probe.tmTheme'), theme(scope));
  cpSync(join(editors, 'bat/mq.sublime-syntax'), join(directory, 'syntaxes/mq.sublime-syntax'));
  const env = { ...process.env, BAT_CONFIG_DIR: directory, BAT_CACHE_PATH: join(directory, 'cache'), COLORTERM: 'truecolor' };
  const bat = (list) => {
    const result = spawnSync('batcat', list, { encoding: 'utf8', env, maxBuffer: 1 << 26 });
    assert.equal(result.status, 0, result.stderr);
    return result.stdout;
  };
  bat(['cache', '--build', '--source', directory, '--target', join(directory, 'cache')]);
  return files.map((file) =>
    bat(['--color', 'always', '--style', 'plain', '--theme', 'probe', '--paging', 'never', file]).split('\n')
      .map((line) => [...line.matchAll(/\x1b\[38;2;255;0;0m([^\x1b]*)/g)].map(([, text]) => text).join('')));
}

test('bat: comments, keys and directives are those of the TextMate grammar', () => {
  const puzzles = join(scratch(), 'puzzles.mq');
  writeFileSync(puzzles, '$a\n  %when\n' + quotingPuzzles(1000).map((line) => `  ${line}\n`).join(''));
  const files = [...exampleFiles.map((path) => [join(top, 'examples', path), exampleText(path)]),
    [puzzles, '$a\n  %when\n' + quotingPuzzles(1000).map((line) => `  ${line}\n`).join('')]];
  for (const scope of ['comment', 'variable.parameter.placeholder', 'keyword.control.directive', 'string.unquoted']) {
    const shown = batColours(scope, files.map(([file]) => file));
    let coloured = 0;
    files.forEach(([file, text], f) => tokenize(grammar, text).forEach(({ line, tokens }, number) => {
      const expected = tokens.filter(({ scopes }) => holds(scopes, scope) &&
        (scope !== 'string.unquoted' || !holds(scopes, 'variable'))).map(({ begin, end }) => line.slice(begin, end)).join('');
      if (scope !== 'string.unquoted' || !line.includes('[')) {
        assert.equal(shown[f][number].trimEnd(), expected.trimEnd(), `${file}:${number + 1}`);
      }
      coloured += expected === '' ? 0 : 1;
    }));
    assert.ok(coloured > 8, `${scope}: ${coloured}`);
  }
});

const old = Number(process.versions.node.split('.')[0]) < 20;
test('vscode: the extension packs', { skip: old && 'vsce needs Node.js 20' }, () => {
  const directory = join(scratch(), 'vscode');
  cpSync(join(editors, 'vscode'), directory, { recursive: true });
  cpSync(join(top, 'LICENSE'), join(directory, 'LICENSE'));
  const install = spawnSync('npm', ['ci', '--omit=dev', '--ignore-scripts', '--no-audit', '--no-fund'], { cwd: directory, encoding: 'utf8' });
  assert.equal(install.status, 0, install.stdout + install.stderr);
  const result = spawnSync(join(editors, 'test/node_modules/.bin/vsce'),
    ['package', '--allow-missing-repository', '--out', join(directory, 'mqkit.vsix')], { cwd: directory, encoding: 'utf8' });
  assert.equal(result.status, 0, result.stdout + result.stderr);
  for (const file of ['language-configuration.json', 'mq.tmLanguage.json', 'LICENSE', 'package.json', 'extension.js', 'vscode-languageclient']) {
    assert.match(result.stdout, new RegExp(file.replaceAll('.', '\\.')));
  }
});
