// Starts the language server of task files; where it is not installed, colours are all there is.
const { window, workspace } = require('vscode');
const { LanguageClient } = require('vscode-languageclient/node');

let client;

exports.activate = async () => {
  const command = workspace.getConfiguration('mqkit').get('server');
  client = new LanguageClient('mqkit', 'mqkit', { command }, {
    documentSelector: [{ language: 'mq' }],
    initializationFailedHandler: () => false,
  });
  try {
    await client.start();
  } catch (fault) {
    client = undefined;
    window.showWarningMessage(`mqkit: the language server '${command}' cannot be started: ${fault.message ?? fault}`);
  }
};

exports.deactivate = () => client?.stop();
