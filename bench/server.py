"""The goals of the language server, by a client that asks as an editor does."""

import json
import pathlib
import subprocess
import time

import inputs


class Server:
    """mqkit-lsp, with messages in and out one after the other."""

    def __init__(self, program, folder=None):
        self.process = subprocess.Popen([program], stdin=subprocess.PIPE, stdout=subprocess.PIPE)
        self.count = 0
        self.version = 1
        folders = None if folder is None else [{"uri": pathlib.Path(folder).as_uri(), "name": "folder"}]
        self.ask("initialize", {"capabilities": {}, "workspaceFolders": folders})
        self.tell("initialized", {})

    def tell(self, method, params, **more):
        body = json.dumps({"jsonrpc": "2.0", "method": method, "params": params, **more}).encode()
        self.process.stdin.write(b"Content-Length: %d\r\n\r\n%s" % (len(body), body))
        self.process.stdin.flush()

    def receive(self):
        size = int(self.process.stdout.readline().split(b":")[1])
        self.process.stdout.readline()
        return json.loads(self.process.stdout.read(size))

    def ask(self, method, params):
        self.count += 1
        self.tell(method, params, id=self.count)
        while True:
            message = self.receive()
            if message.get("id") == self.count and "method" not in message:
                return message["result"]

    def diagnostics(self):
        while True:
            message = self.receive()
            if message.get("method") == "textDocument/publishDiagnostics":
                return message["params"]["diagnostics"]

    def type(self, document, text):
        """One more version of a document, with a text put into its first keywords."""
        self.version += 1
        place = {"line": 3, "character": 13}
        change = {"range": {"start": place, "end": place}, "text": text}
        self.tell(
            "textDocument/didChange",
            {"textDocument": {**document, "version": self.version}, "contentChanges": [change]},
        )

    def cpu(self):
        """Milliseconds of CPU so far; the ticks of /proc/<pid>/stat are longer than an answer takes."""
        return int(pathlib.Path(f"/proc/{self.process.pid}/schedstat").read_text().split()[0]) / 1e6

    def memory(self):
        """Bytes that are resident now."""
        status = pathlib.Path(f"/proc/{self.process.pid}/status").read_text()
        return int(status.split("VmRSS:")[1].split()[0]) * 1024

    def end(self):
        self.ask("shutdown", None)
        self.tell("exit", None)
        if self.process.wait() != 0:
            raise SystemExit(f"bench: status {self.process.returncode} from mqkit-lsp")


def measure_answers(server, method, at, times, prepare=lambda: None):
    """Milliseconds of CPU from one answer to the next, with what is to be done in between."""
    before = server.cpu()
    for _ in range(times):
        prepare()
        if not server.ask(f"textDocument/{method}", at):
            raise SystemExit(f"bench: no {method}")
    return (server.cpu() - before) / times


def measure_text(table, program, scratch):
    text = "".join(inputs.short_chain(5000))
    server = Server(program)
    empty = server.memory()
    document = {"uri": pathlib.Path(f"{scratch}/chain.mq").as_uri()}
    server.tell("textDocument/didOpen", {"textDocument": {**document, "languageId": "mq", "version": 1, "text": text}})
    if server.diagnostics():
        raise SystemExit("bench: the chain of tasks has faults")
    times = 20
    before = server.cpu()
    for _ in range(times):
        server.type(document, "x")
        server.diagnostics()
    table.limit("lsp, 5,000 tasks: keystroke to diagnostics", (server.cpu() - before) / times, "ms", 60)
    at = {"textDocument": document, "position": {"line": 12_002, "character": 13}}
    for method in ("hover", "definition"):
        table.limit(f"  {method}", measure_answers(server, method, at, times), "ms", 10)
        fresh = measure_answers(server, method, at, times, lambda: server.type(document, "x"))
        table.limit(f"  {method}, a keystroke before", fresh, "ms", 10)
    used = server.memory() - empty
    table.limit("  memory per byte of open text", used / len(text.encode()), "B", 40)
    server.end()


def measure_folder(table, program, scratch):
    tree = inputs.task_tree(f"{scratch}/server", 100, 100, 8)
    elapsed = []
    for _ in range(5):
        start = time.perf_counter()
        server = Server(program, tree)
        elapsed.append(time.perf_counter() - start)
        server.end()
    table.limit("lsp, start to the answer of initialize", min(elapsed) * 1000, "ms", 10)
    server = Server(program, tree)
    text = "$a\n  %keywords k\n$b\n  %source a\n  %keywords k\n"
    document = {"uri": pathlib.Path(f"{tree}/unsaved.mq").as_uri()}
    start = time.perf_counter()
    server.tell("textDocument/didOpen", {"textDocument": {**document, "languageId": "mq", "version": 1, "text": text}})
    server.ask("textDocument/definition", {"textDocument": document, "position": {"line": 3, "character": 11}})
    first = time.perf_counter() - start
    table.limit("lsp, folder of 10,000 files: first answer", first * 1000, "ms", 50)
    server.end()


def measure(table, program, scratch):
    measure_folder(table, program, scratch)
    measure_text(table, program, scratch)
