// mqkit-lsp at the other end of the protocol's own client library.
import { spawn } from 'node:child_process';
import { readFileSync, writeFileSync } from 'node:fs';
import { createRequire } from 'node:module';
import { join } from 'node:path';
import { pathToFileURL } from 'node:url';
import { scratch } from './program.mjs';
import { top } from './tokens.mjs';

const require = createRequire(import.meta.url);
export const protocol = require('vscode-languageserver-protocol/node');
const typescript = require('typescript');

export const server = process.env.MQKIT_LSP ?? `${process.env.MQKIT ?? join(top, 'build/mqkit')}-lsp`;

/// What an editor of today says it can do.
export const capabilities = {
  textDocument: {
    completion: { completionItem: { snippetSupport: true } },
    documentSymbol: { hierarchicalDocumentSymbolSupport: true },
    publishDiagnostics: { relatedInformation: true, versionSupport: true },
  },
};

export class Client {
  constructor() {
    this.process = spawn(server, ['--stdio'], { stdio: ['pipe', 'pipe', 'inherit'] });
    this.ended = new Promise((resolve) => this.process.on('exit', resolve));
    this.connection = protocol.createProtocolConnection(
      new protocol.StreamMessageReader(this.process.stdout), new protocol.StreamMessageWriter(this.process.stdin));
    this.diagnostics = new Map();
    this.waiting = [];
    this.connection.onNotification(protocol.PublishDiagnosticsNotification.type, (params) => {
      this.diagnostics.set(params.uri, params);
      this.waiting.splice(0).forEach((wake) => wake());
    });
    this.connection.onRequest(protocol.RegistrationRequest.type, () => null);
    this.connection.listen();
  }

  ask(type, params) {
    return this.connection.sendRequest(type.method, params);
  }

  tell(type, params) {
    return this.connection.sendNotification(type.method, params);
  }

  async begin(more = {}) {
    const answer = await this.ask(protocol.InitializeRequest.type,
      { processId: process.pid, rootUri: null, workspaceFolders: null, capabilities, ...more });
    await this.tell(protocol.InitializedNotification.type, {});
    return answer;
  }

  async open(path, text = readFileSync(path, 'utf8')) {
    const uri = pathToFileURL(path).href;
    await this.tell(protocol.DidOpenTextDocumentNotification.type,
      { textDocument: { uri, languageId: 'mq', version: 1, text } });
    return { textDocument: { uri } };
  }

  /// The diagnostics of a file, once there are any for that version.
  async diagnosed(uri, version = 1) {
    while (this.diagnostics.get(uri)?.version !== version) {
      await new Promise((resolve) => this.waiting.push(resolve));
    }
    return this.diagnostics.get(uri);
  }

  /// Ends the server as an editor does; its exit status.
  async end() {
    await this.ask(protocol.ShutdownRequest.type);
    await this.tell(protocol.ExitNotification.type);
    return this.ended;
  }
}

/// What TypeScript says of `answers`, pairs of a type of the protocol and a value: one line per value that does not
/// have its type.
export function typeFaults(answers) {
  const file = join(scratch(), 'answers.ts');
  const library = join(top, 'editors/test/node_modules/vscode-languageserver-protocol');
  const lines = answers.map(([type, value]) => `((_: ${type}) => {})(${JSON.stringify(value)});`);
  writeFileSync(file, [
    `import * as p from ${JSON.stringify(library)};`,
    'type Result<T> = T extends p.ProtocolRequestType<any, infer R, any, any, any> ? R : never;',
    ...lines,
  ].join('\n') + '\nexport {};\n');
  const compiled = typescript.createProgram([file], {
    strict: true, noEmit: true, skipLibCheck: true, types: [],
    target: typescript.ScriptTarget.ES2022, module: typescript.ModuleKind.CommonJS,
    moduleResolution: typescript.ModuleResolutionKind.Node10,
  });
  return typescript.getPreEmitDiagnostics(compiled).map((fault) => {
    const line = fault.file?.getLineAndCharacterOfPosition(fault.start).line ?? -1;
    const told = typescript.flattenDiagnosticMessageText(fault.messageText, ' ');
    return `${lines[line - 2]?.slice(0, 300) ?? fault.file?.fileName}: ${told}`;
  });
}
