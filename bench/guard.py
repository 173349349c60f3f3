"""The guard against slow growth: instructions and peak bytes of six fixed jobs, counted under valgrind, so that the
figures are the same whatever else the machine is doing. The table of accepted figures is checked in; each job's row
also holds the functions that cost most, so that a job that grew names the one to blame."""

import json
import os
import re
import subprocess

import inputs

TOLERANCE = 0.05
FUNCTIONS = 25  # of every job, by their own cost


def jobs(mqkit, scratch):
    """The jobs by name: each a command."""
    chain = inputs.write(f"{scratch}/chain.mq", inputs.chain(2000))
    return {
        "fmt, 2,000 tasks": [mqkit, "fmt", chain],
        "explain, 2,000 tasks": [mqkit, "explain", chain],
        "expand, 3,125 variants": [
            mqkit, "expand", "--expanded", inputs.write(f"{scratch}/matrix.mq", inputs.variants(5))
        ],
        "lint, tree of 500 files": [mqkit, "lint", inputs.task_tree(f"{scratch}/tree", 20, 25, 8)],
        "fmt, 300 plots": [mqkit, "fmt", inputs.write(f"{scratch}/plots.mq", inputs.plots(300))],
        "fmt, 300 derives": [mqkit, "fmt", inputs.write(f"{scratch}/derives.mq", inputs.derives(300))],
    }


def under_valgrind(tool, command, scratch):
    """Runs the command under a tool of valgrind in an environment that is always the same: also the C library takes
    the same road on every machine."""
    environment = {
        "PATH": os.environ["PATH"], "HOME": scratch, "LC_ALL": "C", "GLIBC_TUNABLES": "glibc.cpu.hwcaps=-AVX2,-ERMS"
    }
    result = subprocess.run(
        ["valgrind", "-q", *tool, *command],
        cwd=scratch, env=environment, stdin=subprocess.DEVNULL, stdout=subprocess.DEVNULL, stderr=subprocess.PIPE,
        check=False,
    )
    if result.returncode != 0:
        raise SystemExit(f"bench: status {result.returncode} from {' '.join(command)}\n{result.stderr.decode()}")


def own_costs(profile):
    """The cost of every function alone, without those that it calls, from a file of callgrind. Names are given once
    with a number and by that number after; the line behind `calls=` belongs to the called function."""
    names, costs, current, called = {}, {}, None, False
    for line in profile:
        header = re.match(r"fn=\((\d+)\)(?: (.*))?", line)
        if header:
            number, name = header.groups()
            names.setdefault(number, name)
            current = names[number]
        elif line.startswith("calls="):
            called = True
        elif line[:1] in "0123456789+-*":
            if not called and current is not None:
                costs[current] = costs.get(current, 0) + int(line.split()[1])
            called = False
        else:
            named = re.match(r"cfn=\((\d+)\) (.*)", line)
            if named:
                names.setdefault(*named.groups())
    return costs


def count(command, scratch):
    """Instructions, peak bytes and the dearest functions of one command."""
    profile = f"{scratch}/callgrind.out"
    under_valgrind(["--tool=callgrind", f"--callgrind-out-file={profile}"], command, scratch)
    with open(profile, encoding="utf-8") as file:
        costs = own_costs(file)
    dearest = sorted(costs.items(), key=lambda item: (-item[1], item[0]))[:FUNCTIONS]
    snapshots = f"{scratch}/massif.out"
    under_valgrind(["--tool=massif", "--pages-as-heap=yes", f"--massif-out-file={snapshots}"], command, scratch)
    with open(snapshots, encoding="utf-8") as file:
        peak = max(int(line.split("=")[1]) for line in file if line.startswith("mem_heap_B="))
    return {"instructions": sum(costs.values()), "peak bytes": peak, "functions": dict(dearest)}


def grown(before, now):
    """The function whose own cost grew most."""
    growth = {name: cost - before.get(name, 0) for name, cost in now.items()}
    name = max(growth, key=growth.get)
    return f"{name}: {before.get(name, 0):,} -> {now[name]:,}"


def compare(name, accepted, counted):
    """Prints the row of one job; returns whether it stays within the tolerance."""
    within = True
    for figure in ("instructions", "peak bytes"):
        change = counted[figure] / accepted[figure] - 1
        fits = change <= TOLERANCE
        print(f"{name:<26} {figure:<13} {counted[figure]:>14,} {accepted[figure]:>14,} {change:>+7.1%}"
              f"{'' if fits else '  GREW'}", flush=True)
        if not fits:
            print(f"    most: {grown(accepted['functions'], counted['functions'])}")
        within = within and fits
    return within


def run(mqkit, scratch, table, update):
    """Counts all jobs; compares them with the table, or writes it. Returns 1 when a job grew."""
    counted = {name: count(command, scratch) for name, command in jobs(mqkit, scratch).items()}
    if update:
        table.write_text(json.dumps(counted, indent=1) + "\n", encoding="utf-8")
        print(f"written: {table.name}")
        return 0
    accepted = json.loads(table.read_text(encoding="utf-8"))
    if accepted.keys() != counted.keys():
        raise SystemExit("bench: the table holds other jobs; script/bench --update writes it anew")
    print(f"{'job':<26} {'figure':<13} {'now':>14} {'table':>14}  change")
    return 0 if all([compare(name, accepted[name], counted[name]) for name in counted]) else 1
