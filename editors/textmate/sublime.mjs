// A TextMate grammar as a Sublime syntax, which bat reads. JSON is YAML, so every rule is one line of JSON.

const captures = (map) =>
  map && Object.fromEntries(Object.entries(map).map(([group, { name }]) => [group, name]));

/// The rules of a context, one after the other, in the order in which they are tried.
const rules = (patterns) => patterns.map(rule);

function rule(pattern) {
  if (pattern.include) {
    return { include: pattern.include.slice(1) };
  }
  if (pattern.match) {
    return { match: pattern.match, ...(pattern.name && { scope: pattern.name }),
      ...(pattern.captures && { captures: captures(pattern.captures) }) };
  }
  const end = pattern.end === '(?!)' ? [] :
    [{ match: pattern.end, ...(pattern.endCaptures && { captures: captures(pattern.endCaptures) }), pop: true }];
  const inner = rules(pattern.patterns ?? []);
  return {
    match: pattern.begin,
    ...(pattern.beginCaptures && { captures: captures(pattern.beginCaptures) }),
    push: [
      ...(pattern.name ? [{ meta_scope: pattern.name }] : []),
      ...(pattern.contentName ? [{ meta_content_scope: pattern.contentName }] : []),
      ...(pattern.applyEndPatternLast ? [...inner, ...end] : [...end, ...inner]),
    ],
  };
}

/// A rule on one line. Groups are numbers, which JSON cannot have as keys.
const flow = (item) =>
  JSON.stringify(item).replace(/"captures":\{[^}]*\}/g, (map) => map.replace(/"(\d+)":/g, '$1: '));

/// The text of the syntax file.
export function sublimeSyntax(grammar) {
  const lines = ['%YAML 1.2', '---', '# Written by editors/textmate/build.mjs; change grammar.mjs there.',
    `name: ${JSON.stringify(grammar.name)}`, `file_extensions: ${JSON.stringify(grammar.fileTypes)}`,
    `scope: ${grammar.scopeName}`, 'contexts:'];
  const contexts = { main: grammar.patterns,
    ...Object.fromEntries(Object.entries(grammar.repository).map(([name, value]) =>
      [name, value.patterns && !value.begin ? value.patterns : [value]])) };
  for (const [name, patterns] of Object.entries(contexts)) {
    lines.push(`  ${name}:`, ...rules(patterns).map((item) => `    - ${flow(item)}`));
  }
  return lines.join('\n') + '\n';
}
