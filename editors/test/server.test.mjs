// The language server with the protocol's own client: its life, and the type of every answer about every example.
import assert from 'node:assert/strict';
import { cpSync } from 'node:fs';
import { join } from 'node:path';
import test from 'node:test';
import { pathToFileURL } from 'node:url';
import { exampleFiles, exampleText, scratch } from './program.mjs';
import { Client, protocol as p, typeFaults } from './server.mjs';
import { top } from './tokens.mjs';

const refused = (code) => (error) => assert.equal(error.code, code, error.message) ?? true;

test('the life of a server, from the first request to its end', async () => {
  const client = new Client();
  const place = { textDocument: { uri: 'untitled:a' }, position: { line: 0, character: 0 } };
  await assert.rejects(client.ask(p.HoverRequest.type, place), refused(p.LSPErrorCodes.ServerNotInitialized ?? -32002));
  const { serverInfo, capabilities } = await client.begin();
  assert.equal(serverInfo.name, 'mqkit-lsp');
  assert.ok(capabilities.hoverProvider);
  await assert.rejects(client.begin(), refused(p.ErrorCodes.InvalidRequest));
  await assert.rejects(client.ask({ method: 'textDocument/nonsense' }, {}), refused(p.ErrorCodes.MethodNotFound));
  await assert.rejects(client.ask(p.HoverRequest.type, place), refused(p.ErrorCodes.InvalidParams));
  assert.equal(await client.end(), 0);
});

test('a server that was not shut down ends with a failure', async () => {
  const client = new Client();
  await client.begin();
  await client.tell(p.ExitNotification.type);
  assert.equal(await client.ended, 1);
});

test('diagnostics come with the version of the text, change with it, and go with it', async () => {
  const client = new Client();
  await client.begin();
  const { textDocument } = await client.open('/nowhere/a.mq', '$a\n  %source b\n  %keywords k\n');
  const codes = (params) => params.diagnostics.map(({ code }) => code);
  assert.deepEqual(codes(await client.diagnosed(textDocument.uri)), ['missing-source-task']);
  await client.tell(p.DidChangeTextDocumentNotification.type, {
    textDocument: { ...textDocument, version: 2 },
    contentChanges: [{ range: { start: { line: 1, character: 10 }, end: { line: 1, character: 11 } }, text: 'origin' }],
  });
  assert.deepEqual(codes(await client.diagnosed(textDocument.uri, 2)), []);
  assert.equal(await client.end(), 0);
});

/// The places where names and words begin, about `most` of them, spread over the text.
function places(text, most) {
  const found = text.split('\n').flatMap((line, number) =>
    [...line.matchAll(/[A-Za-z_][\w.]*/g)].map(({ index }) => ({ line: number, character: index + 1 })));
  const step = Math.max(1, Math.floor(found.length / most));
  return found.filter((_, i) => i % step === 0);
}

/// Every answer about one file, each with its type.
async function answersAbout(client, path, text) {
  const answers = [];
  const asked = (name, answer) => answers.push([`Result<typeof p.${name}.type>`, answer]) && answer;
  const ask = async (name, params) => asked(name, await client.ask(p[name].type, params));
  const document = await client.open(path, text);
  const diagnostics = await client.diagnosed(document.textDocument.uri);
  answers.push(['p.PublishDiagnosticsParams', diagnostics]);
  const lines = text.split('\n').length;
  const range = { start: { line: 0, character: 0 }, end: { line: lines, character: 0 } };
  for (const name of ['DocumentSymbolRequest', 'FoldingRangeRequest', 'DocumentLinkRequest', 'CodeLensRequest',
    'DocumentDiagnosticRequest']) {
    await ask(name, document);
  }
  const { resultId } = await ask('SemanticTokensRequest', document);
  await ask('SemanticTokensDeltaRequest', { ...document, previousResultId: resultId });
  await ask('SemanticTokensRangeRequest', { ...document, range });
  await ask('InlayHintRequest', { ...document, range });
  await ask('CodeActionRequest', { ...document, range, context: { diagnostics: diagnostics.diagnostics } });
  await ask('DocumentRangeFormattingRequest', { ...document, range, options: { tabSize: 2, insertSpaces: true } });
  await client.ask(p.DocumentFormattingRequest.type, { ...document, options: { tabSize: 2, insertSpaces: true } })
    .then((answer) => asked('DocumentFormattingRequest', answer), refused(p.LSPErrorCodes.RequestFailed));
  for (const position of places(text, 12)) {
    const at = { ...document, position };
    for (const name of ['HoverRequest', 'DefinitionRequest', 'DocumentHighlightRequest', 'SignatureHelpRequest']) {
      await ask(name, at);
    }
    await ask('ReferencesRequest', { ...at, context: { includeDeclaration: true } });
    await ask('SelectionRangeRequest', { ...document, positions: [position] });
    await client.ask(p.PrepareRenameRequest.type, at).then(async (answer) => {
      asked('PrepareRenameRequest', answer);
      asked('RenameRequest', await client.ask(p.RenameRequest.type, { ...at, newName: 'renamed_here' }));
    }).catch(refused(p.LSPErrorCodes.RequestFailed));
  }
  for (const position of places(text, 3)) {
    await ask('CompletionRequest', { ...document, position });
  }
  return answers;
}

test('a value without its type is a fault', () => {
  assert.deepEqual(typeFaults([['p.Position', { line: 1, character: 2 }], ['Result<typeof p.HoverRequest.type>', null]]), []);
  assert.equal(typeFaults([['p.Position', { line: 1 }]]).length, 1);
  assert.equal(typeFaults([['p.Position', { line: 1, character: 2, column: 3 }]]).length, 1);
  assert.equal(typeFaults([['Result<typeof p.HoverRequest.type>', { contents: 3 }]]).length, 1);
});

test('every answer about every example has the type that the protocol says', async () => {
  const client = new Client();
  const tree = join(scratch(), 'examples');
  cpSync(join(top, 'examples'), tree, { recursive: true });
  const answers = [['p.InitializeResult',
    await client.begin({ workspaceFolders: [{ uri: pathToFileURL(tree).href, name: 'examples' }] })]];
  for (const path of exampleFiles) {
    answers.push(...await answersAbout(client, join(tree, path), exampleText(path)));
  }
  const symbols = await client.ask(p.WorkspaceSymbolRequest.type, { query: 'opt' });
  answers.push(['Result<typeof p.WorkspaceSymbolRequest.type>', symbols]);
  assert.ok(symbols.length >= 10);
  assert.equal(await client.end(), 0);
  const kinds = new Map();
  for (const [type, value] of answers) {
    const filled = value !== null && !(Array.isArray(value) && value.length === 0);
    kinds.set(type, (kinds.get(type) ?? 0) + (filled ? 1 : 0));
  }
  for (const [type, filled] of kinds) {
    assert.ok(filled >= 1, `${type}: no answer says anything`);
  }
  assert.deepEqual(typeFaults(answers), []);
});
