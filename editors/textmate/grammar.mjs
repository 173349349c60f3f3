// The one description of how task files are coloured; build.mjs writes it as a TextMate grammar and as a
// Sublime syntax.
//
// Two rules of the language shape it:
//  - Whether a quote quotes depends on the whole line: a kind of quote takes part only when the line holds an
//    even number of it. So every line is one of four variants, told apart at its start (`lineVariants`).
//  - A directive's block goes on to the next directive, task, plot or derive. Loops and includes are gone before
//    blocks are read, so their lines do not end one.

import * as words from './words.mjs';

const blank = String.raw`[ \t]`;
const oneOf = (list) => [...list].sort((a, b) => b.length - a.length).join('|').replace(/-/g, '\\-');

// ---- lines and their comments

const pairs = (quote) => {
  const other = String.raw`(?:[^${quote}\\\n]|\\.)*+`;
  return String.raw`${other}${quote}${other}${quote}(?:${other}${quote}${other}${quote})*+${other}\\?$`;
};
const string = (quote, kind) => ({
  name: `string.quoted.${kind}.mq`,
  begin: quote,
  end: `${quote}|$`,
  patterns: [{ name: 'constant.character.escape.mq', match: String.raw`\\.` }, { include: '#key' }],
});
const doubleString = string('"', 'double');
const singleString = string("'", 'single');
const variants = [
  { id: 'both', test: `(?=${pairs('"')})(?=${pairs("'")})`, strings: [doubleString, singleString] },
  { id: 'double', test: `(?=${pairs('"')})`, strings: [doubleString] },
  { id: 'single', test: `(?=${pairs("'")})`, strings: [singleString] },
  { id: 'plain', test: '', strings: [] },
];

/// What ends a word of structure: a blank, the end, a comment.
const behindWord = String.raw`(?= |[ \t]*$|[ \t]+#)`;
const fragmentLine = `${blank}*&FRAGMENT${behindWord}`;
const loopLine = String.raw`[ \t]*(?:@foreach\??[ \t]+[A-Za-z_]|@end[ \t]*(?:$|(?<=[ \t])#))`;
const includeLine = `${blank}*&INCLUDE${behindWord}`;
const captureLine = `${blank}*@(?:plot|derive)${behindWord}`;
const directiveLine = String.raw`[ \t]*%(?:\S|[ \t]+[^\s#])`;
const headerLine = String.raw`[ \t]*\$(?:\S|[ \t]+[^\s#])`;
const taskFileInclude = String.raw`&INCLUDE +[^#]*\.(?:mq|projmq)\b`;
const endOfBlock =
  `^(?=${directiveLine}|${headerLine}|${captureLine}|${taskFileInclude}|${fragmentLine})`;

/// The rules of a line that `guard` accepts, with the tokens of a context, in the four variants. An empty line has
/// none: a rule that begins and ends at one place stays open.
const lineVariants = (guard, context, end = '$') =>
  variants.map(({ id, test, strings }) => ({
    begin: `^(?=.)${test}(?=${guard})`,
    end,
    patterns: [...strings, { include: '#comment' }, { include: `#call-${id}` }, ...context],
  }));

/// Lines between the structure: loops and includes.
const between = [{ include: '#loop' }, { include: '#include' }];
const notStructure = `(?!${loopLine}|${includeLine}|${fragmentLine}|${directiveLine}|${headerLine}|${captureLine})`;

/// A directive and its block.
const block = (keywords, context, { inline = '', lines = true } = {}) => ({
  begin: `^(?=${blank}*%(?:${oneOf(keywords)})${behindWord}${inline})`,
  end: endOfBlock,
  applyEndPatternLast: 1,
  patterns: [
    ...lineVariants(`${blank}*%(?:${oneOf(keywords)})${behindWord}${inline}`, [{ include: '#directive' }, ...context]),
    ...between,
    ...lineVariants(notStructure, lines ? context : []),
  ],
});

const noValue = String.raw`[ \t]*(?:$|(?<=[ \t])#)`;
const someValue = String.raw`[ \t]+(?!<<)[^\s#]`;

/// Text below a directive: nothing in it is a comment.
const textBlock = (keywords) => ({
  begin: `^(?=${blank}*%(?:${oneOf(keywords)})${noValue})`,
  end: endOfBlock,
  applyEndPatternLast: 1,
  patterns: [
    ...lineVariants(`${blank}*%(?:${oneOf(keywords)})${noValue}`, [{ include: '#directive' }]),
    ...between,
    { begin: `^(?=.)(?!${directiveLine}|${headerLine}|${captureLine}|${fragmentLine})`, end: '$',
      contentName: 'string.unquoted.text.mq', patterns: [{ include: '#key' }] },
  ],
});

/// `terminator` is the pattern of the word behind `<<`, `end` the line that closes the text.
const heredoc = (terminator, end) => {
  const opening = `${blank}*%(?:${oneOf(words.textDirectives)})${blank}+<<${terminator}`;
  return {
    begin: `^(?=${opening})`,
    end: `^${blank}*(${end})${blank}*$`,
    endCaptures: { 1: { name: 'constant.other.terminator.mq' } },
    patterns: [
      ...lineVariants(opening, [
        { include: '#directive' },
        { match: String.raw`(<<)[ \t]*((?:[^\s#]\S*(?:[ \t]+(?!#)\S+)*)?)`,
          captures: { 1: { name: 'keyword.operator.heredoc.mq' }, 2: { name: 'constant.other.terminator.mq' } } },
      ]),
      { include: '#loop' },
      { begin: '^(?=.)', end: '$', contentName: 'string.unquoted.heredoc.mq', patterns: [{ include: '#key' }] },
    ],
  };
};

// ---- plots and derives: their own quotes and comments

const statementTokens = [
  { include: '#plot-comment' },
  { include: '#plot-strings' },
  { match: String.raw`\\.` },
  { include: '#snapshot' },
  { include: '#key' },
];
const statements = (list) => ({
  match: `^${blank}*((?i:${oneOf(list)}))(?![\\w.\\-])`,
  captures: { 1: { name: 'keyword.other.statement.mq' } },
});
const options = (list) => ({
  match: `(?<=[\\s)])(?i:${oneOf(list)})(?![\\w.\\-])`,
  name: 'keyword.other.option.mq',
});
const expression = [
  { match: String.raw`(?<![\w.])[A-Za-z_]\w*(?=\()`, name: 'support.function.mq' },
  { include: '#number' },
  { match: String.raw`==|!=|<=|>=|[-+*/<>=]`, name: 'keyword.operator.mq' },
];
const capture = (keyword, context) => ({
  begin: `^(?=${blank}*@${keyword}${behindWord})`,
  end: `^(?=${String.raw`[ \t]*@end[ \t]*(?:$|(?<=[ \t])#)`})`,
  patterns: [
    ...lineVariants(`${blank}*@${keyword}${behindWord}`, [{ include: '#capture-head' }]),
    { match: String.raw`^[ \t]*@end\S.*$`, name: 'invalid.illegal.end.mq' },
    ...context,
  ],
});

// ---- the rooms of the file

const blocks = {
  program: [{ match: `(?<=[ \\t])(?i:${oneOf(words.programs)})(?=\\s|$)`, name: 'support.constant.program.mq' }],
  source: [
    { match: String.raw`(?<=[ \t])(?:origin|restart)(?=\s|$)`, name: 'constant.language.source.mq' },
    { match: String.raw`(?<=[ \t"])([A-Za-z_][\w.\-]*)(=)`,
      captures: { 1: { name: 'variable.parameter.option.mq' }, 2: { name: 'keyword.operator.mq' } } },
    { match: String.raw`^[ \t]*(geom(?:\.[\w\-]+)?)(?=\s)`, captures: { 1: { name: 'keyword.other.statement.mq' } } },
  ],
  interface: [{ match: String.raw`(?<=[ \t])(?i:provider|consume)(?=\s|$)`, name: 'constant.language.mq' }],
  control: [
    { match: `^${blank}*(${oneOf(words.controlKeys)})(?=\\s|$)`, captures: { 1: { name: 'support.type.property-name.mq' } } },
    { match: String.raw`(?<=[ \t])(?i:true|false|yes|no|on|off|mokit|multiwfn|multi-wfn|mwfn|none|check)(?=\s|$)`,
      name: 'constant.language.mq' },
  ],
  batch: [
    { match: `^${blank}*((?i:${oneOf(words.batchKeys)}))(?=\\s|$)`, captures: { 1: { name: 'support.type.property-name.mq' } } },
    { match: String.raw`(?<=[ \t])(?i:required|--required|as|to)(?=\s|$)`, name: 'keyword.other.option.mq' },
    { match: String.raw`(?<=[ \t])(?i:dist|distance|fingerprint|rmsd)(?=\s|$)`, name: 'constant.language.mq' },
    { match: `(?<=[ \\t])((?i:${oneOf(words.batchOptions)}))(=)`,
      captures: { 1: { name: 'variable.parameter.option.mq' }, 2: { name: 'keyword.operator.mq' } } },
  ],
  when: [
    { include: '#snapshot' },
    { match: String.raw`(?<![\w.\-])(?i:completed|defined)(?=\s|$)`, name: 'keyword.other.statement.mq' },
    { match: String.raw`(?<![\w.\-])(?i:and|or)(?![\w.\-])`, name: 'keyword.operator.logical.mq' },
    { match: String.raw`(?<=[ \t])(?i:allothers)(?![\w.\-])`, name: 'constant.language.mq' },
    { match: String.raw`!=|<=|>=|[<>=]`, name: 'keyword.operator.mq' },
  ],
  mod: [
    { match: String.raw`(?<![\w.=\-])(?i:charge|spin|geom|basisset)(?:\.[\w\-]+)?(?=\s)`, name: 'keyword.other.statement.mq' },
    { match: String.raw`(?<=[ \t])(?i:add|subtract|select|remove)(?=\s)`, name: 'keyword.other.option.mq' },
    { match: String.raw`(?<=[ \t])(on|role|ecp)(=)`,
      captures: { 1: { name: 'variable.parameter.option.mq' }, 2: { name: 'keyword.operator.mq' } } },
  ],
  meta: [{ match: `^${blank}*(strucid)`, captures: { 1: { name: 'support.type.property-name.mq' } } }],
  param: [{ match: String.raw`([\w.:\-]+)(=)`,
    captures: { 1: { name: 'variable.parameter.option.mq' }, 2: { name: 'keyword.operator.mq' } } }],
  args: [{ match: String.raw`(?<=[\s"'])--?[A-Za-z][\w\-]*`, name: 'variable.parameter.option.mq' }],
  process: [{ match: String.raw`(?<!\\)\\(?=[ \t]*(?:$|[ \t]#))`, name: 'punctuation.separator.continuation.mq' }],
  template: [],
  runner: [],
};
const tokensOf = (name) => [{ include: `#${name}-tokens` }];

const fragment = ([context, kinds]) => {
  const head = `${blank}*&FRAGMENT +(?i:${oneOf(kinds)})(?=\\s|$)`;
  const lines = {
    body: [{ include: '#body' }],
    text: [{ include: '#include' }, { begin: `^(?=.)(?!${fragmentLine})`, end: '$',
      contentName: 'string.unquoted.text.mq', patterns: [{ include: '#key' }] }],
  };
  return {
    begin: `^(?=${head})`,
    end: `^(?=${fragmentLine})`,
    applyEndPatternLast: 1,
    patterns: [
      ...lineVariants(head, [{ include: '#fragment-head' }]),
      ...(lines[context] ?? [...between, ...lineVariants(notStructure, tokensOf(context))]),
    ],
  };
};

const call = (id, strings) => ({
  begin: String.raw`\(`,
  end: String.raw`\)`,
  patterns: [
    { include: '#call-lines' },
    ...strings,
    { include: '#comment' },
    { include: '#key' },
    { match: String.raw`(?:^|(?<=[(,]))[ \t]*([A-Za-z_][\w\-]*)`, captures: { 1: { name: 'variable.parameter.mq' } } },
    { include: `#call-${id}` },
  ],
});

const yamlValue = [{ include: '#yaml-comment' }, { include: '#number' },
  { match: String.raw`(?<=[\s\[,{])(?:true|false|null|~)(?=[\s,\]}]|$)`, name: 'constant.language.mq' }];
const yamlKey = { match: String.raw`^[ \t]*(?:- +)*([^\s#:"'\[\]{},&][^:#]*?|"[^"]*"|'[^']*')(:)(?=\s|$)`,
  captures: { 1: { name: 'support.type.property-name.mq' }, 2: { name: 'punctuation.separator.mq' } } };
const yamlString = (quote, kind, before) => ({
  name: `string.quoted.${kind}.mq`,
  begin: `${before}${blank}*${quote}`,
  end: quote === '"' ? '"' : "'(?!')",
  patterns: [{ match: quote === '"' ? String.raw`\\.` : "''", name: 'constant.character.escape.mq' }],
});
const blockValue = String.raw`(?<=[:])|(?<=[ \t]-)|(?<=^-)`;
const preludeBlock = (word, context) => ({
  begin: `^(?=${word}:)`,
  end: `^(?! {2})(?=${blank}*[^\\s#])|^(?=${headerLine})`,
  applyEndPatternLast: 1,
  patterns: [
    ...lineVariants(`${word}:`, [{ match: `^${word}:`, name: 'keyword.control.prelude.mq' }]),
    ...lineVariants(`(?: {2}|${blank}*(?:$|#))(?!${headerLine})`, context),
  ],
});

export const grammar = {
  name: 'Task file (mq)',
  scopeName: 'source.mq',
  fileTypes: ['mq', 'projmq', 'mqlib', 'mqfrag'],
  patterns: [
    { begin: `^(?=${fragmentLine})`, end: '(?!)', patterns: [{ include: '#fragments' }] },
    { begin: `^(?=${headerLine}|${directiveLine}|${captureLine}|${loopLine})`, end: '(?!)', patterns: [{ include: '#body' }] },
    { include: '#prelude' },
  ],
  repository: {
    prelude: { patterns: [
      { include: '#include' },
      preludeBlock('define', [{ include: '#define-tokens' }]),
      preludeBlock('matrix', [{ include: '#define-tokens' }]),
      { include: '#yaml' },
      { include: '#yaml-comment' },
    ] },
    'define-tokens': { patterns: [
      { match: String.raw`^[ \t]*(-)(?=[ \t])`, captures: { 1: { name: 'punctuation.separator.mq' } } },
      { match: String.raw`(?:^[ \t]*|(?<=- )[ \t]*)([^\s:#"'-][^:#]*?)[ \t]*(:)`,
        captures: { 1: { name: 'support.type.property-name.mq' }, 2: { name: 'punctuation.separator.mq' } } },
      { include: '#number' },
    ] },
    yaml: {
      begin: String.raw`^(?=[^\s#%$@&:][^:]*:)(?!define:|matrix:)`,
      end: `^(?=${headerLine}|${captureLine}|${loopLine}|${includeLine}|${fragmentLine}|define:|matrix:|%)`,
      patterns: [
        { begin: String.raw`^([ \t]*)((?:- +)*)([^\s#:][^:#]*)(:)[ \t]+([|>][\-+0-9]*)[ \t]*(?=$|#)`,
          beginCaptures: { 3: { name: 'support.type.property-name.mq' }, 4: { name: 'punctuation.separator.mq' },
            5: { name: 'keyword.operator.mq' } },
          end: String.raw`^(?!\1[ \t]|[ \t]*$)`,
          patterns: [{ begin: '^(?=.)', end: '$', contentName: 'string.unquoted.block.mq' }, { include: '#yaml-comment' }] },
        yamlKey,
        yamlString('"', 'double', `(?:${blockValue})`),
        yamlString("'", 'single', `(?:${blockValue})`),
        { begin: `(?:${blockValue})${blank}*([\\[{])`, end: '[\\]}]', patterns: [{ include: '#yaml-flow' }] },
        ...yamlValue,
      ],
    },
    'yaml-flow': { patterns: [
      { begin: '[\\[{]', end: '[\\]}]', patterns: [{ include: '#yaml-flow' }] },
      yamlString('"', 'double', String.raw`(?<=[\[{,:])`),
      yamlString("'", 'single', String.raw`(?<=[\[{,:])`),
      { match: String.raw`(?<=[{,\s])([A-Za-z_][\w\-]*)(:)(?=\s)`,
        captures: { 1: { name: 'support.type.property-name.mq' }, 2: { name: 'punctuation.separator.mq' } } },
      ...yamlValue,
    ] },
    'yaml-comment': { match: String.raw`(?:^|(?<=[ \t]))#.*$`, name: 'comment.line.number-sign.mq' },

    body: { patterns: [
      heredoc(String.raw`[ \t]*([^\s#]\S*(?:[ \t]+(?!#)\S+)*)`, String.raw`\1`),
      heredoc(String.raw`[ \t]*(?:$|(?<=[ \t])#)`, 'EOF'),
      textBlock(['body', 'extrainput', 'extrainputs']),
      block(words.textDirectives, [{ include: '#key' }], { inline: someValue, lines: false }),
      block(['keywords'], [], { inline: noValue, lines: false }),
      ...Object.keys(blocks).filter((name) => name !== 'process').map((name) => block([name], tokensOf(name))),
      block(['process', 'preprocess'], tokensOf('process')),
      { begin: `^(?=${blank}*%plot${behindWord})`, end: endOfBlock, applyEndPatternLast: 1, patterns: [
        ...lineVariants(`${blank}*%plot${behindWord}`, [{ include: '#directive' }, { include: '#plot-kind' }]),
        ...between,
        { begin: `^(?=.)${notStructure}`, end: '$', patterns: [{ include: '#plot-line' }] },
      ] },
      capture('plot', [{ include: '#plot-line' }]),
      capture('derive', [{ include: '#derive-line' }]),
      ...lineVariants(headerLine, [
        { match: String.raw`^[ \t]*(\$)`, captures: { 1: { name: 'punctuation.definition.task.mq' } } },
        { include: '#key' },
        { match: String.raw`[^\s\["'#]+|["'#\[]`, name: 'entity.name.section.task.mq' },
      ]),
      ...between,
      ...lineVariants(directiveLine, [{ match: String.raw`^[ \t]*%\S*`, name: 'invalid.illegal.directive.mq' }]),
      ...lineVariants(`(?!${fragmentLine})`, []),
    ] },
    directive: { match: String.raw`^[ \t]*(%)([a-z]+)(?=\s|$)`,
      captures: { 1: { name: 'punctuation.definition.directive.mq' }, 2: { name: 'keyword.control.directive.mq' } } },
    ...Object.fromEntries(Object.entries(blocks).map(([name, tokens]) =>
      [`${name}-tokens`, { patterns: [{ include: '#key' }, ...tokens, { include: '#number' }] }])),

    loop: { patterns: lineVariants(loopLine, [
      { match: String.raw`^[ \t]*(@foreach\??)[ \t]+([\w.\-]+)(?:[ \t]+(in)(?=\s))?`,
        captures: { 1: { name: 'keyword.control.loop.mq' }, 2: { name: 'variable.other.collection.mq' },
          3: { name: 'keyword.control.loop.mq' } } },
      { match: String.raw`^[ \t]*(@end)`, captures: { 1: { name: 'keyword.control.block.mq' } } },
      { match: String.raw`\bseries(?=\()`, name: 'support.function.mq' },
      { include: '#number' },
    ]) },
    include: { patterns: lineVariants(includeLine, [
      { match: String.raw`^[ \t]*(&INCLUDE)`, captures: { 1: { name: 'keyword.control.import.mq' } } },
      { match: '<[^>]*>', name: 'string.quoted.other.mq' },
      { match: String.raw`(?<=[ \t])(as)[ \t]+([A-Za-z_][\w\-]*)`,
        captures: { 1: { name: 'keyword.control.import.mq' }, 2: { name: 'entity.name.namespace.mq' } } },
      { match: String.raw`(?<=[ \t])([A-Za-z_][\w.\-]*)(?=[ \t]*\()`, name: 'entity.name.function.fragment.mq' },
    ]) },
    fragments: { patterns: [...Object.entries(words.fragmentKinds).map(fragment), { include: '#body' }] },
    'fragment-head': { patterns: [
      { match: String.raw`^[ \t]*(&FRAGMENT)[ \t]+([\w\-]+)(?:[ \t]+([A-Za-z_][\w\-]*))?`,
        captures: { 1: { name: 'keyword.control.fragment.mq' }, 2: { name: 'storage.type.fragment.mq' },
          3: { name: 'entity.name.function.fragment.mq' } } },
    ] },
    ...Object.fromEntries(variants.map(({ id, strings }) => [`call-${id}`, call(id, strings)])),
    'call-lines': { patterns: lineVariants(String.raw`[^)]`, [
      { include: '#key' },
      { match: String.raw`(?:^|(?<=[(,]))[ \t]*([A-Za-z_][\w\-]*)`, captures: { 1: { name: 'variable.parameter.mq' } } },
    ], String.raw`$|(?=\))`) },

    'capture-head': { patterns: [
      { match: String.raw`^[ \t]*(@(?:plot|derive))`, captures: { 1: { name: 'keyword.control.block.mq' } } },
      { include: '#plot-kind' },
    ] },
    'plot-kind': { patterns: [
      { include: '#key' },
      { match: `(?<=plot)[ \\t]+((?i:${oneOf(words.plotKinds)}))(?=\\s|$)`,
        captures: { 1: { name: 'storage.type.plot.mq' } } },
      { match: String.raw`(?<=\s)[A-Za-z_][\w.\-]*`, name: 'entity.name.section.block.mq' },
    ] },
    'plot-line': { patterns: [
      ...statementTokens, statements(words.plotStatements), options(words.plotOptions), ...expression,
    ] },
    'derive-line': { patterns: [
      ...statementTokens, statements(words.deriveStatements), options(words.deriveOptions), ...expression,
    ] },
    'plot-comment': { match: '#.*$', name: 'comment.line.number-sign.mq' },
    'plot-strings': { patterns: [
      doubleString,
      { name: 'string.quoted.single.mq', begin: "'", end: "'|$", patterns: [{ include: '#key' }] },
    ] },
    snapshot: { name: 'variable.other.snapshot.mq', begin: String.raw`\{\{`, end: String.raw`\}\}|$`,
      patterns: [{ include: '#snapshot' }, { include: '#key' }] },

    comment: { match: String.raw`(?:^|(?<=\s))#.*$`, name: 'comment.line.number-sign.mq' },
    key: { match: String.raw`\[[A-Za-z0-9_.\-]+\]`, name: 'variable.parameter.placeholder.mq' },
    number: { match: String.raw`(?<![\w.\-])[-+]?(?:\d+(?:\.\d*)?|\.\d+)(?:[eE][-+]?\d+)?(?![\w.])`,
      name: 'constant.numeric.mq' },
  },
};
