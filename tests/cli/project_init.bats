# `project init`: from a directory with a task file and geometries to a project.
bats_require_minimum_version 1.5.0
load expect
load siblings
load full_disk

setup() {
    setup_plain
    mkdir work
    cd work
    cp "$MQKIT_SOURCE"/examples/water-clusters/*.{mq,xyz} .
    : >morquill.conf # no other one is looked for
}

# A runner first on PATH that records what it was given.
record_runner() {
    mkdir -p "$root/bin"
    printf '#!/bin/sh\n{ pwd -P; for a do echo "<$a>"; done; cat; } >"%s/ran"\nexit %s\n' "$root" "${1:-0}" >"$root/bin/mqrun"
    chmod +x "$root/bin/mqrun"
    PATH="$root/bin:$PATH"
}

# init <answers>: runs it, leaves out, err and status.
init() {
    status=0
    printf "$1" | "$MQKIT" project init >out 2>err || status=$?
    mv out err "$root"
}

@test "the example becomes a project" {
    export MORQUILL_TASK_PATH="$root/tasks"
    init 'clusters\nn\n'
    [ "$status" -eq 0 ]
    [ ! -s "$root/err" ]
    diff - <(cat "$root/out"; echo) <<END
[INFO] project name: source .mq file: $root/work/water-clusters.mq
geometry files found: 4
created project directory: $root/tasks/clusters
wrote project template: $root/tasks/clusters/clusters.projmq
created task: water1 (symlinked to .projmq)
created task: water2 (symlinked to .projmq)
created task: water3 (symlinked to .projmq)
created task: water4 (symlinked to .projmq)

project created
project path: $root/tasks/clusters
project template: $root/tasks/clusters/clusters.projmq
[INFO] start the generated project now? (y/n): 
END
    names_below "$root/tasks" >tree
    diff - tree <<END
clusters/
clusters/clusters.projmq
clusters/water1/
clusters/water1/water1.mq -> ../clusters.projmq
clusters/water1/water1.xyz
clusters/water2/
clusters/water2/water2.mq -> ../clusters.projmq
clusters/water2/water2.xyz
clusters/water3/
clusters/water3/water3.mq -> ../clusters.projmq
clusters/water3/water3.xyz
clusters/water4/
clusters/water4/water4.mq -> ../clusters.projmq
clusters/water4/water4.xyz
END
    cmp water-clusters.mq "$root/tasks/clusters/clusters.projmq"
    cmp water3.xyz "$root/tasks/clusters/water3/water3.xyz"
}

@test "a sub-command in capitals and an empty answer: the directory names the project" {
    echo "MORQUILL_TASK_PATH = \$HOME/tasks" >morquill.conf
    printf '\n' | "$MQKIT" PROJ INIT >"$root/out"
    grep -qx '\[INFO\] project name: using current directory name as project name: work' "$root/out"
    [ -f "$root/tasks/work/work.projmq" ]
}

@test "without a task path nothing is asked" {
    init 'x\n'
    [ "$status" -eq 1 ]
    [ ! -s "$root/out" ]
    [ "$(cat "$root/err")" = "[ERROR] MORQUILL_TASK_PATH is not set" ]
}

@test "the end of input at the choice of a task file ends the run once and makes nothing" {
    export MORQUILL_TASK_PATH="$root/tasks"
    cp water-clusters.mq other.projmq
    init 'x\n'
    [ "$status" -eq 1 ]
    [ "$(cat "$root/err")" = "[ERROR] invalid selection; try again" ]
    diff - <(cat "$root/out"; echo) <<END
[INFO] project name: multiple .mq/.projmq files found:
1. other.projmq
2. water-clusters.mq
[INFO] select a .mq/.projmq file by index: 
END
    [ ! -e "$root/tasks" ]
}

@test "only y and Y start the runner, and it gets the rest of the input" {
    export MORQUILL_TASK_PATH="$root/tasks" MORQUILL_MQRUN_PATH=mqrun
    record_runner
    init 'p\nyes\n'
    [ ! -e "$root/ran" ]
    init 'p\ny\nfor the runner\n'
    [ "$status" -eq 0 ]
    [ "$(tail -n 1 "$root/out")" = "[INFO] start the generated project now? (y/n): running: cd '$root/tasks/p' && '$root/bin/mqrun' kick --path '$root/tasks/p'" ]
    diff - "$root/ran" <<END
$root/tasks/p
<kick>
<--path>
<$root/tasks/p>
for the runner
END
}

@test "a runner that fails is told, the project stands" {
    export MORQUILL_TASK_PATH="$root/tasks" MORQUILL_MQRUN_PATH=mqrun
    record_runner 3
    init 'p\nY\n'
    [ "$status" -eq 0 ]
    [ "$(cat "$root/err")" = "[ERROR] project runner failed: program '$root/bin/mqrun' exited with code 3" ]
    [ -f "$root/tasks/p/p.projmq" ]
}

@test "answers from a terminal" {
    export MORQUILL_TASK_PATH="$root/tasks" SHELL=/bin/sh
    printf 'clusters\nn\n' | script -qec "'$MQKIT' project init" /dev/null >/dev/null
    [ -f "$root/tasks/clusters/clusters.projmq" ]
    [ -h "$root/tasks/clusters/water4/water4.mq" ]
}

@test "a torn template or case goes again, and the next run makes it" {
    export MORQUILL_TASK_PATH="$BATS_TEST_TMPDIR/disk"
    yes water | head -c 30000 >water1.xyz
    yes '# a long template' | head -c 8000 >>water-clusters.mq
    full_disk "fill; cd '$root/work'
printf 'p\\nn\\n' | '$MQKIT' project init >/dev/null 2>'$root/err'
[ \$? -eq 1 ] && [ \$(find ../disk -mindepth 1 | wc -l) -eq 2 ] || exit 1
truncate -s 28k ../disk/filling
printf 'p\\nn\\n' | '$MQKIT' project init >/dev/null 2>>'$root/err'
[ \$? -eq 0 ] && cmp water-clusters.mq ../disk/p/p.projmq && [ ! -e ../disk/p/water1 ] || exit 2
rm ../disk/filling
printf 'p\\nn\\n' | '$MQKIT' project init >/dev/null && cmp water1.xyz ../disk/p/water1/water1.xyz"
    diff - "$root/err" <<END
[ERROR] failed to create project: No space left on device
[WARNING] project directory already exists: $BATS_TEST_TMPDIR/disk/p
[ERROR] failed to create task water1 - No space left on device
END
}

@test "a number with a sign chooses a task file" {
    export MORQUILL_TASK_PATH="$root/tasks"
    echo '$other' >other.projmq
    init 'p\n+1\nn\n'
    [ "$status" -eq 0 ]
    [ ! -s "$root/err" ]
    cmp other.projmq "$root/tasks/p/p.projmq"
}

@test "a signal reaches the runner" {
    export MORQUILL_TASK_PATH="$root/tasks" MORQUILL_MQRUN_PATH=mqrun RECORD="$root/record"
    mkdir -p "$root/bin"
    printf '#!/bin/sh\n%s\n' "$waiting" >"$root/bin/mqrun"
    chmod +x "$root/bin/mqrun"
    PATH="$root/bin:$PATH"
    started project init < <(printf 'p\ny\n')
    stopped TERM
}
