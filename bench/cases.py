"""What the project commands cost in a project of many cases: wall time, processor time with that of what they start,
and memory. Figures without goals: they depend on the disk."""

import os
import pathlib

import goals

MORE = 1000  # cases for `project add`, few enough for one command line


def geometries(folder, names):
    folder.mkdir()
    for name in names:
        (folder / f"{name}.xyz").write_text("1\n\nH 0 0 0\n")


def in_every_case(project, path, text):
    for case in project.iterdir():
        if case.is_dir():
            file = case / path
            file.parent.mkdir(exist_ok=True)
            file.write_text(text)


def run(mqkit, scratch, count):
    """Prints one row a command, for a project of `count` cases."""
    scratch = pathlib.Path(scratch)
    project = scratch / "projects" / "big"
    geometries(scratch / "start", (f"m{i}" for i in range(count)))
    geometries(scratch / "more", (f"n{i}" for i in range(MORE)))
    (scratch / "start" / "big.mq").write_text("$opt\n  %program orca\n  %keywords B3LYP\n")
    (scratch / "bin").mkdir()
    generator = scratch / "bin" / "morquill"
    generator.write_text("#!/bin/sh\n")
    generator.chmod(0o755)
    os.environ["PATH"] = f"{scratch}/bin:{os.environ['PATH']}"
    os.environ["MORQUILL_TASK_PATH"] = str(project.parent)
    os.environ["MQKIT"] = mqkit
    update = ["update", "--path", "big.projmq", "-n", "opt"]

    def row(what, command, cwd=project):
        cost = goals.Run(command, times=1, cwd=cwd)
        print(f"{what:<48} {cost.wall:>8.1f} s {cost.cpu:>8.1f} s {cost.peak / goals.MB:>6.0f} MB", flush=True)

    def projects(what, *arguments):
        row(what, [mqkit, "project", *arguments])

    print(f"{f'{count} cases':<48} {'wall':>10} {'CPU':>10} {'memory':>9}")
    row("init", ["sh", "-c", 'printf "big\\nn\\n" | "$MQKIT" project init'], scratch / "start")
    projects(f"add, {MORE} more", "add", "--path", "big.projmq", *(str(file) for file in (scratch / "more").iterdir()))
    in_every_case(project, "opt/opt.log", "done\n")
    projects("update --dry-run, no mq.status", *update, "--dry-run")
    in_every_case(project, "mq.status", "opt RENDERED 2026-01-01T00:00:00Z -\n")
    projects("update --dry-run", *update, "--dry-run")
    projects("update", *update)
    projects("exec --dry-run -- true", "exec", "-n", "opt", "--dry-run", "--", "true")
    projects("exec -- true", "exec", "-n", "opt", "--", "true")
    projects("collect '*.log'", "collect", "-n", "opt", "*.log")
    projects("collect '*.log', over old results", "collect", "-n", "opt", "*.log")
    projects("rebuild", "rebuild", "--path", "big.projmq", "-n", "opt")
    row("rename", [mqkit, "rename", "big.projmq", "opt", "opt2"])
    return 0
