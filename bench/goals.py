"""The goals of speed and memory, as one table: our figure, the peer's, the ratio of both, the goal."""

import os
import subprocess
import time

import inputs
import server

MB = 1_000_000


class Run:
    """The cheapest of some runs of one command: CPU and wall seconds, peak bytes of memory."""

    def __init__(self, command, times=3, cwd=None):
        self.cpu = self.wall = float("inf")
        self.peak = 0
        for _ in range(times):
            start = time.perf_counter()
            process = subprocess.Popen(
                command, cwd=cwd, stdin=subprocess.DEVNULL, stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL
            )
            _, status, usage = os.wait4(process.pid, 0)
            process.returncode = os.waitstatus_to_exitcode(status)
            if process.returncode != 0:
                raise SystemExit(f"bench: status {process.returncode} from {' '.join(command)}")
            self.wall = min(self.wall, time.perf_counter() - start)
            self.cpu = min(self.cpu, usage.ru_utime + usage.ru_stime)
            self.peak = max(self.peak, usage.ru_maxrss * 1024)


class Table:
    """Prints rows as they are measured and remembers which goals were missed."""

    def __init__(self):
        self.missed = []
        print(f"{'job':<44} {'ours':>12} {'peer':>12} {'ratio':>7}  goal")

    def row(self, job, ours, peer, ratio, goal, met):
        mark = "" if met else "  MISSED"
        print(f"{job:<44} {ours:>12} {peer:>12} {ratio:>7}  {goal}{mark}", flush=True)
        if not met:
            self.missed.append(job)

    def at_least(self, job, ours, peer, goal):
        """Both in MB/s."""
        ratio = ours / peer
        self.row(job, f"{ours:.0f} MB/s", f"{peer:.0f} MB/s", f"{ratio:.2f}", f">= {goal}", ratio >= goal)

    def at_most(self, job, ours, peer, goal):
        """Both in seconds."""
        ratio = ours / peer
        self.row(job, milliseconds(ours), milliseconds(peer), f"{ratio:.2f}", f"<= {goal}", ratio <= goal)

    def limit(self, job, ours, unit, goal):
        """A figure of ours alone that must not exceed the goal."""
        self.row(job, f"{ours:.1f} {unit}", "", "", f"<= {goal} {unit}", ours <= goal)

    def speed(self, job, ours, goal):
        """A speed of ours alone, in MB/s."""
        self.row(job, f"{ours:.0f} MB/s", "", "", f">= {goal} MB/s", ours >= goal)


def milliseconds(seconds):
    return f"{seconds * 1000:.1f} ms"


def throughput(path, run):
    return os.path.getsize(path) / MB / run.cpu


def measure_task_files(table, mqkit, scratch):
    chains = {n: inputs.write(f"{scratch}/chain{n}.mq", inputs.chain(n)) for n in (40_000, 100_000, 1_000_000)}
    xml = inputs.write(f"{scratch}/chain.xml", inputs.chain_as_xml(40_000))
    size = os.path.getsize(chains[40_000])

    peer = throughput(xml, Run(["xmllint", "--format", xml], 5))
    fmt = Run([mqkit, "fmt", chains[40_000]], 5)
    table.at_least("fmt, 40,000 tasks : xmllint --format", throughput(chains[40_000], fmt), peer, 1.2)
    table.limit("  memory per byte of input", fmt.peak / size, "B", 12)
    for command in (["migrate"], ["expand"], ["explain"]):
        run = Run([mqkit, *command, chains[40_000]])
        table.at_least(f"{command[0]} : xmllint --format", throughput(chains[40_000], run), peer, 1.2)
    json = Run([mqkit, "explain", chains[40_000], "--format", "json"])
    table.at_most("explain --format json : fmt", json.cpu, fmt.cpu, 2)
    hundred = Run([mqkit, "fmt", chains[100_000]])
    million = Run([mqkit, "fmt", chains[1_000_000]], 1)
    table.at_most("fmt, 1,000,000 tasks : 100,000 tasks", million.cpu, hundred.cpu, 11)
    table.limit("  memory per byte of input, 1,000,000", million.peak / os.path.getsize(chains[1_000_000]), "B", 12)

    matrix = Run([mqkit, "expand", "--expanded", inputs.write(f"{scratch}/matrix.mq", inputs.variants(10))])
    table.limit("expand --expanded, 100,000 variants", matrix.cpu * 1000, "ms", 350)
    table.limit("  memory", matrix.peak / MB, "MB", 120)

    for name, make in (("plots", inputs.plots), ("derives", inputs.derives)):
        path = inputs.write(f"{scratch}/{name}.mq", make(10_000))
        table.speed(f"fmt, 10,000 {name}", throughput(path, Run([mqkit, "fmt", path])), 60)


def measure_trees(table, mqkit, scratch):
    tree = inputs.task_tree(f"{scratch}/tree", 100, 100, 8)
    peer = Run(["sh", "-c", 'find "$1" -type f -print0 | xargs -0 cat', "sh", tree], 5)
    table.at_most("lint, 10,000 files : find | xargs cat", Run([mqkit, "lint", tree], 5).cpu, peer.cpu, 2)
    library = inputs.template_library(f"{scratch}/library", 2000)
    listing = Run([mqkit, "template", "list", "-d", library], 5)
    table.limit("template list, 2,000 templates", listing.cpu * 1000, "ms", 15)


def measure_projects(table, mqkit, scratch):
    template = inputs.project(f"{scratch}/a/b/c/d/wide", 2000, 0)
    dry = Run([mqkit, "project", "update", "--path", template, "-n", "opt", "--dry-run", "--run-comd"], 5)
    table.limit("project update --dry-run, 2,000 cases", dry.cpu * 1000, "ms", 25)
    project = f"{scratch}/a/b/c/d/deep"
    template = inputs.project(project, 1000, 1000)
    ours = Run([mqkit, "project", "exec", "--path", template, "-n", "opt", "--", "true"])
    peer = Run(["sh", "-c", "i=0; while [ $i -lt 1000 ]; do sh -c true; i=$((i+1)); done"])
    table.at_most("project exec, 1,000 blocks : sh -c", ours.wall, peer.wall, 1.1)
    idle = Run([mqkit, "rename", template, "sp", "sp_a"], 1)
    scanned = inputs.block_outputs(project, 100, 500)
    rename = Run([mqkit, "rename", template, "sp_a", "sp_b"], 1)
    table.speed("rename, scan of 500 MB of block text", scanned / MB / max(rename.cpu - idle.cpu, 1e-9), 1000)


def measure_graph(table, mqkit, scratch):
    study = inputs.write(f"{scratch}/study.mq", inputs.chain(5000))
    for form in ("dot", "mermaid"):
        drawn = Run([f"{mqkit}-graph", study, "--format", form])
        table.limit(f"mqkit-graph --format {form}, 5,000 tasks", drawn.wall * 1000, "ms", 1000)


def measure_startup(table, mqkit):
    peer = Run(["/bin/true"], 200)
    ours = Run([mqkit, "--help"], 200)
    table.limit("start-up, above /bin/true", (ours.wall - peer.wall) * 1000, "ms", 0.5)


def run(mqkit, scratch):
    """Measures everything; returns 1 when a goal is missed."""
    table = Table()
    measure_startup(table, mqkit)
    measure_task_files(table, mqkit, scratch)
    measure_trees(table, mqkit, scratch)
    measure_projects(table, mqkit, scratch)
    measure_graph(table, mqkit, scratch)
    server.measure(table, f"{mqkit}-lsp", scratch)
    if table.missed:
        print(f"\n{len(table.missed)} goal(s) missed")
    return 1 if table.missed else 0
