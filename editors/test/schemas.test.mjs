// The JSON of lint and explain against their schemas, the reports for CI against those of their readers, and the lines
// of lint against the problem matchers.
import assert from 'node:assert/strict';
import { spawnSync } from 'node:child_process';
import { mkdirSync, readFileSync, realpathSync, writeFileSync } from 'node:fs';
import { createRequire } from 'node:module';
import { join } from 'node:path';
import test from 'node:test';
import { exampleFiles, run, scratch } from './program.mjs';
import { top } from './tokens.mjs';

const require = createRequire(import.meta.url);
const Ajv2020 = require('ajv/dist/2020').default;
const Ajv = require('ajv').default;

const readJson = (path) => JSON.parse(readFileSync(path, 'utf8'));
const ajv = new Ajv2020({ strict: true, strictTypes: false, allErrors: true });
const lint = ajv.compile(readJson(join(top, 'schemas/lint.schema.json')));
const explain = ajv.compile(readJson(join(top, 'schemas/explain.schema.json')));

const requireValid = (validate, value, what) =>
  assert.ok(validate(value), `${what}: ${JSON.stringify(validate.errors)}`);

/// A tree with a finding of every rule, some of them in files and folders of difficult names.
const faults = {
  'parse-error.mq': '$a\n  %nosuch\n',
  'no place.mq': '$a\n  %keywords << X\ntext\n',
  'a b/ü#%.mq': '$a\n  %source nowhere\n  %keywords k\n  %control\n    guess nobody\n',
  'legacy.mq': '#INCLUDE x\ndsl_version: 3\n$a\n  %control\n    totgpu 1\n  %process\n    scripts x\n  %keywords {a,b}\n',
  'twice.mq': '$a\n  %keywords k\n$a\n  %keywords k\n',
  'one.mq': 'dsl_version: 1\n$a\n  %keywords k\n$b\n  %keywords k\n$c\n  %source a,b\n  %keywords k\n',
  'guess.mq': '$a\n  %source b guess\n  %keywords k\n  %control\n    guess false\n$b\n  %keywords k\n',
  'other.mq': '$a\n  %program other\n  %keywords x\n$b\n  %program script\n  %keywords sh\n$c\n  %program xtb\n  %keywords k\n$d\n  %args x\n$e\n  %keywords k\n  %args x\n',
  'empty.mq': '$a\n  %when\n    completed z and {{ y.e }} > {{ energy }}\n$b\n  %keywords k\n  %when completed allothers\n$c\n  %keywords k\n  %when completed allothers\n$d\n  %program script\n',
  'yaml.mq': 'defines:\n  - [\n$a\n  %keywords k\n',
  'clean.mq': '$a\n  %keywords k\n',
};
const tree = join(scratch(), 'tree');
for (const [name, text] of Object.entries(faults)) {
  mkdirSync(join(tree, name, '..'), { recursive: true });
  writeFileSync(join(tree, name), text);
}
const root = realpathSync(tree);
const report = (...words) => JSON.parse(run(['lint', '--format', 'json', ...words], { cwd: tree }).stdout);

test('lint: the report of the examples and of faults validates', () => {
  requireValid(lint, report(join(top, 'examples')), 'examples');
  for (const words of [['.'], ['--strict', '.'], ['--quiet', 'clean.mq']]) {
    requireValid(lint, report(...words), words.join(' '));
  }
  const codes = new Set(report('.').files.flatMap(({ issues }) => issues.map(({ code }) => code)));
  assert.ok(codes.size >= 20, `only ${[...codes]}`);
});

test('lint: a broken report does not validate', () => {
  const broken = [
    (all) => delete all.summary,
    (all) => { all.files = []; },
    (all) => { all.files[0].path = ''; },
    (all) => { all.files[0].parsed = 'yes'; },
    (all) => { all.files[0].more = 1; },
    (all) => { all.files.find(({ parsed }) => !parsed).issues = []; },
    (all) => { all.files.find(({ issues }) => issues.length > 0).issues[0].code = 'no-such-code'; },
    (all) => { all.files.find(({ issues }) => issues.length > 0).issues[0].severity = 'fatal'; },
    (all) => delete all.files.find(({ issues }) => issues.length > 0).issues[0].span,
    (all) => { all.summary.errors = -1; },
    (all) => { all.summary.strict = true; all.summary.warnings = 1; },
  ];
  for (const change of broken) {
    const all = report('.');
    change(all);
    assert.equal(lint(all), false, change.toString());
  }
});

const explained = (path, ...words) => run(['explain', path, '--format', 'json', ...words]);

test('explain: what it says of every example validates', () => {
  let count = 0;
  for (const path of exampleFiles.filter((name) => name.endsWith('.mq') && !name.includes('historical'))) {
    for (const words of [[], ['--expanded']]) {
      const { status, stdout, stderr } = explained(join(top, 'examples', path), ...words);
      assert.equal(status, 0, `${path}: ${stderr}`);
      requireValid(explain, JSON.parse(stdout), path);
      ++count;
    }
  }
  assert.ok(count >= 60, `${count}`);
});

test('explain: a broken document does not validate', () => {
  const whole = explained(join(top, 'examples/tasks/conditions.mq')).stdout;
  requireValid(explain, JSON.parse(whole), 'conditions.mq');
  const broken = [
    (all) => delete all.tasks,
    (all) => { all.task_view = 'both'; },
    (all) => { all.task_count = '3'; },
    (all) => { all.tasks[0].program = 'nosuch'; },
    (all) => { all.tasks[0].block_span = 'nowhere'; },
    (all) => { all.tasks[0].alert = 'true'; },
    (all) => { all.tasks[0].directives[0].name = '%source'; },
    (all) => { all.tasks[0].more = 1; },
    (all) => delete all.tasks[1].when_conditions[0].span,
  ];
  for (const change of broken) {
    const all = JSON.parse(whole);
    change(all);
    assert.equal(explain(all), false, change.toString());
  }
});

/// What a filter of examples/ci makes of the findings of the tree.
function filtered(name, words = [], options = ['--arg', 'root', root]) {
  const { status, stdout, stderr } = spawnSync('jq', [...options, '-f', join(top, 'examples/ci', name)],
    { encoding: 'utf8', input: run(['lint', '--format', 'json', ...words, '.'], { cwd: tree }).stdout });
  assert.equal(status, 0, stderr);
  return stdout;
}

test('SARIF: the report validates against the published schema', () => {
  const schema = readJson(require.resolve('@microsoft/jest-sarif/lib/schemas/sarif-2.1.0-rtm.5.json'));
  const { $schema, id, ...draft } = schema; // of draft 4; what it uses means the same in draft 7
  const sarif = new Ajv({ strict: false, allErrors: true, validateFormats: false, unicodeRegExp: false })
    .compile({ ...draft, $schema: 'http://json-schema.org/draft-07/schema#' });
  const log = JSON.parse(filtered('sarif.jq'));
  requireValid(sarif, log, 'sarif');
  assert.equal(log.runs[0].results.length, report('.').files.flatMap(({ issues }) => issues).length);
  const uris = log.runs[0].results.map(({ locations }) => locations[0].physicalLocation.artifactLocation.uri);
  assert.ok(uris.includes('a%20b/%C3%BC%23%25.mq'));
  assert.ok(uris.every((uri) => !uri.startsWith('/') && !uri.startsWith('file:')));
  for (const { ruleId, ruleIndex } of log.runs[0].results) {
    assert.equal(log.runs[0].tool.driver.rules[ruleIndex].id, ruleId);
  }
  const broken = structuredClone(log);
  delete broken.runs[0].results[0].message;
  assert.equal(sarif(broken), false);
});

/// What GitLab's documentation asks of a Code Quality report.
const codeQuality = ajv.compile({
  type: 'array',
  items: {
    type: 'object',
    required: ['description', 'check_name', 'fingerprint', 'location', 'severity'],
    properties: {
      description: { type: 'string', minLength: 1 },
      check_name: { type: 'string', minLength: 1 },
      fingerprint: { type: 'string', minLength: 1 },
      severity: { enum: ['info', 'minor', 'major', 'critical', 'blocker'] },
      location: {
        type: 'object',
        required: ['path', 'lines'],
        properties: {
          path: { type: 'string', pattern: '^(?!\\./|/)' },
          lines: { type: 'object', required: ['begin'], properties: { begin: { type: 'integer', minimum: 1 } } },
        },
      },
    },
  },
});

test('Code Quality: the report has what is asked of it', () => {
  const findings = JSON.parse(filtered('code-quality.jq'));
  requireValid(codeQuality, findings, 'code quality');
  assert.equal(findings.length, report('.').files.flatMap(({ issues }) => issues).length);
  assert.equal(new Set(findings.map(({ fingerprint }) => fingerprint)).size, findings.length);
  assert.equal(codeQuality(JSON.parse(filtered('code-quality.jq', [], ['--arg', 'root', '/elsewhere']))), false);
});

const findingLines = () => run(['lint', '.'], { cwd: tree }).stdout.trimEnd().split('\n').slice(0, -1);

test('the problem matcher and the annotations find every finding', () => {
  const [{ pattern: [pattern] }] = readJson(join(top, 'examples/ci/mqkit-matcher.json')).problemMatcher;
  const lines = findingLines();
  const all = report('.').files.flatMap(({ issues }) => issues);
  assert.equal(lines.length, all.length);
  lines.forEach((line, i) => {
    const match = new RegExp(pattern.regexp).exec(line);
    assert.deepEqual([match[pattern.severity], match[pattern.code], match[pattern.message]],
      [all[i].severity, all[i].code, all[i].message]);
    const place = match[pattern.line] ? `${match[pattern.file]}:${match[pattern.line]}:${match[pattern.column]}` : match[pattern.file];
    assert.ok(all[i].span.startsWith(place), `${place} ${all[i].span}`);
  });
  assert.equal(filtered('annotations.jq', [], ['-r', '--arg', 'root', root]).trimEnd().split('\n').length, all.length);
});

test('VS Code: one problem matcher finds each finding, with the line where the text has one', () => {
  const matchers = readJson(join(top, 'editors/vscode/package.json')).contributes.problemMatchers;
  const all = report('.').files.flatMap(({ issues }) => issues);
  const found = new Map(matchers.map(({ name }) => [name, 0]));
  const lines = findingLines();
  assert.equal(lines.length, all.length);
  lines.forEach((line, i) => {
    const hits = matchers.map(({ name, pattern: [pattern] }) => ({ name, pattern, match: new RegExp(pattern.regexp).exec(line) }))
      .filter(({ match }) => match);
    assert.equal(hits.length, 1, line);
    const [{ name, pattern, match }] = hits;
    found.set(name, found.get(name) + 1);
    assert.deepEqual([match[pattern.severity], match[pattern.code], match[pattern.message]],
      [all[i].severity, all[i].code, all[i].message]);
    // The editor drops what has no line, unless the pattern is for whole files.
    assert.ok(match[pattern.file] && (pattern.kind === 'file' || match[pattern.line]), line);
    const place = [pattern.file, pattern.line, pattern.column].map((group) => match[group]).filter(Boolean).join(':');
    assert.match(all[i].span.slice(place.length), /^(?!\d)/, line);
    assert.ok(all[i].span.startsWith(place), `${place} ${all[i].span}`);
  });
  assert.ok([...found.values()].every((count) => count > 0), `${[...found]}`);
  for (const page of ['editors/vscode/README.md', 'docs/editors.md']) {
    const named = /"problemMatcher": (.*)/.exec(readFileSync(join(top, page), 'utf8'))[1];
    assert.deepEqual(JSON.parse(named), matchers.map(({ name }) => `$${name}`), page);
  }
});
