# `project update`: what the sibling sees, what is printed, what is on disk afterwards.
bats_require_minimum_version 1.5.0
load expect
load siblings
load full_disk

header='# TASK            STATUS           UPDATED_AT              REASON'
question='
[mqkit] execute comd in the selected task directories afterwards? (y/n; n writes mqkit_update_comd.sh): '

setup() {
    setup_project
    printf 'opt RENDERED t1 -\nsoc FAILED t2 -' >m1/mq.status
    printf 'soc RENDERED t1 -\n' >m2/mq.status
    sibling morquill
}

# comd <case> <task> <shell text>
comd() { echo "$3" >"$1/$2/comd"; }

opening() {
    echo "[mqkit] project template found: demo.projmq

[mqkit] selected: \$opt
[mqkit] update mode always calls morquill with --comd-only to refresh command scripts only."
}

changes() {
    echo "
[ProjMQ Update]
  project directory: $root
  task blocks: \$opt
  mode: apply changes
  morquill mode: comd-only

[mqkit] m1 : scoped mq.status to selected completed task(s): \$opt
[mqkit] m2 : temporarily hid mq.status because no selected task is marked completed

[mqkit] summary: cases=2, mq.status scoped=1, mq.status hidden=1, selected completed records=1

[mqkit] execute morquill '$root/demo.projmq' --comd-only"
}

restored() {
    echo "[mqkit] mq.status restored after comd-only update
[mqkit] morquill --comd-only update completed"
}

@test "a project is updated under narrowed status files, and the script is left for later" {
    before="$(tree)"
    expect_lines 0 "$(opening)
$question[mqkit] mqkit_update_comd.sh will be written after the update for later execution.
$(changes)
$(restored)

[mqkit] generated comd runner script: $root/mqkit_update_comd.sh
[mqkit] this script replays the same per-task 'bash comd' flow as immediate execution" "" \
        project update -n opt <<<"no"
    recorded "morquill $root/demo.projmq --comd-only in $root
m1/mq.status:
$header
opt             RENDERED         -                       -"
    [ -x mqkit_update_comd.sh ]
    rm mqkit_update_comd.sh
    [ "$(tree)" = "$before" ]
}

@test "yes runs comd at once; what is missing is skipped, what fails is counted" {
    comd m1 opt 'pwd -P >>"$RECORD"; exit 3'
    comd m2 opt 'pwd -P >>"$RECORD"'
    rmdir m1/soc
    rm m1/mq.status m2/mq.status
    printf '$opt\n$soc\n' >demo.projmq
    run --separate-stderr "$MQKIT" project update -n opt,soc <<<" YES "
    [ "$status" -eq 1 ]
    [ "${output#*completed$'\n'}" = "
[mqkit] comd execution for selected task blocks
[mqkit] execute m1 / \$opt -> bash comd
[mqkit][SKIP] m1 / \$soc : block directory is missing
[mqkit] execute m2 / \$opt -> bash comd
[mqkit][SKIP] m2 / \$soc : comd is missing

[mqkit] comd summary: success=1, failed=1" ]
    [ "$stderr" = "[mqkit][WARN] comd execution failed: $root/m1/opt (program 'bash' exited with code 3)
[mqkit][ERROR] update failed." ]
    recorded "morquill $root/demo.projmq --comd-only in $root
$root/m1/opt
$root/m2/opt"
    [ ! -e m1/mq.status ]
    [ ! -e mqkit_update_comd.sh ]
}

@test "a case is updated from any place inside it" {
    comd m1 opt 'echo comd >>"$RECORD"'
    expect_lines 0 "[mqkit] task file found: m1.mq

[mqkit] selected: \$opt
[mqkit] update mode always calls morquill with --comd-only to refresh command scripts only.

[MQ Update]
  case directory: $root/m1
  task file: $root/m1/m1.mq
  task blocks: \$opt
  mode: apply changes
  morquill mode: comd-only

[mqkit] m1 : scoped mq.status to selected completed task(s): \$opt

[mqkit] summary: cases=1, mq.status scoped=1, mq.status hidden=0, selected completed records=1

[mqkit] execute morquill '$root/m1/m1.mq' --comd-only
$(restored)

[mqkit] comd execution for selected task blocks
[mqkit] execute m1 / \$opt -> bash comd

[mqkit] comd summary: success=1, failed=0" "" \
        project update --path m1/opt -n opt --run-comd
    recorded "morquill $root/m1/m1.mq --comd-only in $root/m1
m1/mq.status:
$header
opt             RENDERED         -                       -
m2/mq.status:
soc RENDERED t1 -
comd"
}

@test "a dry run tells, asks, and touches nothing" {
    comd m1 opt 'echo no >>"$RECORD"'
    before="$(tree)"
    expect_lines 0 "$(opening)

[ProjMQ Update]
  project directory: $root
  task blocks: \$opt
  mode: dry-run (no files written)
  morquill mode: comd-only

[mqkit][DRY-RUN] m1 : would scope mq.status to selected completed task(s): \$opt
[mqkit][DRY-RUN] m2 : would temporarily hide mq.status because no selected task is marked completed

[mqkit] summary: cases=2, mq.status scoped=1, mq.status hidden=1, selected completed records=1

[mqkit][DRY-RUN] morquill '$root/demo.projmq' --comd-only

[mqkit] comd execution for selected task blocks
[mqkit][DRY-RUN] m1 / \$opt -> bash comd
[mqkit][SKIP] m2 / \$opt : comd is missing

[mqkit] comd summary: success=1, failed=0" "" \
        project update -n opt --run-comd --dry-run
    run --separate-stderr "$MQKIT" project update -n opt --dry-run <<<n
    [ "$status" -eq 0 ]
    [[ "$output" == *"$question"* ]]
    [ "${lines[-2]}" = "[mqkit][DRY-RUN] would generate comd runner script: $root/mqkit_update_comd.sh" ]
    [ "$(tree)" = "$before" ]
    [ ! -e "$RECORD" ]
}

@test "a generator that fails, is killed or is missing leaves the status files as they were" {
    before="$(tree)"
    for end in 'exit 3' 'kill -9 $$' missing; do
        sibling morquill "$end"
        case $end in
        exit*) reason="program 'morquill' exited with code 3" ;;
        kill*) reason="process terminated by signal 9" ;;
        *)
            rm "$BATS_TEST_TMPDIR/bin/morquill"
            reason="failed to execute 'morquill': No such file or directory"
            ;;
        esac
        expect_lines 1 "$(opening)
$(changes)
[mqkit] mq.status restored after comd-only update" "[mqkit][ERROR] failed to re-run morquill in --comd-only mode ($reason)
[mqkit][ERROR] update failed." project update -n opt --run-comd
        [ "$(tree)" = "$before" ]
    done
}

@test "a status file that the generator made or removed is put right" {
    rm m1/mq.status
    before="$(tree)"
    sibling morquill "echo new >'$root/m1/mq.status'; echo new >'$root/m2/mq.status'"
    "$MQKIT" project update -n opt --run-comd
    [ "$(tree)" = "$before" ]
}

@test "a status file that cannot be put back is kept and reported, and ends the run" {
    before="$(cat m2/mq.status)"
    sibling morquill "mkdir '$root/m2/mq.status'"
    run --separate-stderr "$MQKIT" project update -n opt --run-comd
    [ "$status" -eq 1 ]
    [ "$stderr" = "[mqkit][ERROR] failed to restore mq.status: $root/m2/mq.status (a directory is in its place; what it held is in $root/m2/mq.status.saved)
[mqkit][ERROR] update failed." ]
    [ "$(cat m2/mq.status.saved)" = "$before" ]
    [ "${lines[-1]}" = "[mqkit] execute morquill '$root/demo.projmq' --comd-only" ]
    [ "$(cat m1/mq.status)" = $'opt RENDERED t1 -\nsoc FAILED t2 -' ]
}

@test "the status of a case that the generator moved away goes with it" {
    before="$(cat m2/mq.status)"
    sibling morquill "mv '$root/m2' '$root/moved'"
    run --separate-stderr "$MQKIT" project update -n opt --run-comd
    [ "$status" -eq 1 ]
    [ "$stderr" = "[mqkit][ERROR] failed to restore mq.status: $root/m2/mq.status (its directory is gone; what it held is in $root/moved/mq.status)
[mqkit][ERROR] update failed." ]
    [ "$(cat moved/mq.status)" = "$before" ]
}

@test "an unreadable status file stops the run before the generator" {
    ln -sf /proc/self/mem m2/mq.status
    run --separate-stderr "$MQKIT" project update -n opt --run-comd
    [ "$status" -eq 1 ]
    [ "$stderr" = "[mqkit][ERROR] failed to read mq.status: $root/m2/mq.status
[mqkit][ERROR] update failed." ]
    [ ! -e "$RECORD" ]
    [ "$(cat m1/mq.status)" = $'opt RENDERED t1 -\nsoc FAILED t2 -' ]
}

@test "a full disk stops the run and the old status comes back" {
    rm m2/mq.status
    printf '$block%s\n' {1..20} >demo.projmq
    printf 'block%s\n' {1..20} >m1/mq.status # 171 bytes of plain names; as rows they would be 1226
    before="$(tree)"
    run bash -c "trap '' XFSZ; ulimit -f 1; { '$MQKIT' project update -n 'b*' --run-comd; echo \$?; } 2>&1 | cat"
    [ "${lines[-3]}" = "[mqkit][ERROR] failed to prepare mq.status for comd-only update: m1" ]
    [ "${lines[-2]}" = "[mqkit][ERROR] update failed." ]
    [ "${lines[-1]}" = 1 ]
    [ ! -e "$RECORD" ]
    [ "$(tree)" = "$before" ]
}

@test "signals put the status files back before they end the program" {
    before="$(tree)"
    for signal in HUP INT TERM QUIT XCPU ALRM USR1 USR2 ABRT RTMIN RTMIN+5 RTMAX; do
        sibling morquill "$waiting"
        started project update -n opt --run-comd
        [ ! -e m2/mq.status ]
        stopped "$signal"
        [ "$(tree)" = "$before" ]
    done
}

# refused <arguments>...: ends with one reason, and nothing has changed.
refused_while_narrowed() {
    run --separate-stderr "$MQKIT" project "$@" </dev/null
    [ "$status" -eq 1 ]
    [ "${stderr_lines[0]}" = "[mqkit][ERROR] another mqkit is changing the status files here: $place" ]
    [ "${stderr_lines[1]}" = "[mqkit][ERROR] $1 failed." ]
    [ "${#stderr_lines[@]}" -eq 2 ]
    [ "$(tree)" = "$narrowed" ]
}

@test "while an update has the status files narrowed, no other one and no rebuild touches them" {
    before="$(tree)"
    sibling morquill "$waiting"
    started project update -n opt --run-comd
    narrowed="$(tree)"
    place="$root"
    refused_while_narrowed update -n opt --run-comd
    refused_while_narrowed rebuild -n opt
    place="$root/m1"
    refused_while_narrowed update --path m1 -n soc --run-comd
    refused_while_narrowed rebuild --path m1/m1.mq -n opt
    # A rename would find its change of the status files put back.
    for file in demo.projmq m1/m1.mq; do # the latter is a link to the former
        run --separate-stderr "$MQKIT" rename "$file" opt new
        [ "$status" -eq 1 ]
        [ "$output" = "" ]
        [ "$stderr" = "[mqkit][ERROR] another mqkit is changing the status files here: $root" ]
        [ "$(tree)" = "$narrowed" ]
    done
    # What only reads is not kept out.
    "$MQKIT" project update -n opt --run-comd --dry-run
    "$MQKIT" project exec -n opt -- true
    stopped TERM
    [ "$(tree)" = "$before" ]
    sibling morquill
    "$MQKIT" project update -n opt --run-comd
    [ "$(tree)" = "$before" ]
}

@test "updates of two cases work side by side, a project waits for none of them" {
    before="$(tree)"
    sibling morquill 'case $(pwd -P) in */m1) '"$waiting"';; esac'
    started project update --path m1 -n opt --run-comd
    "$MQKIT" project update --path m2 -n opt --run-comd
    narrowed="$(tree)"
    place="$root"
    refused_while_narrowed update -n opt --run-comd
    place="$root/m1"
    refused_while_narrowed update --path m1 -n opt --run-comd
    stopped TERM
    [ "$(tree)" = "$before" ]
}

@test "an update that was killed locks nobody out" {
    sibling morquill "$waiting"
    started project update -n opt --run-comd
    kill -KILL "$pid"
    wait "$pid" || true
    sibling morquill
    "$MQKIT" project update -n opt --run-comd
    kill "$(cat "$RECORD.pid")"
}

@test "a signal reaches the comd that runs, and no other follows" {
    rm m1/mq.status
    comd m1 opt "$waiting"
    comd m2 opt 'echo no >>"$RECORD"'
    for signal in TERM USR1; do
        rm -f "$RECORD"
        started project update -n opt --run-comd
        stopped "$signal"
        recorded "morquill $root/demo.projmq --comd-only in $root"
        [ "$(cat "$BATS_TEST_TMPDIR/err")" = "" ]
        [ "$(tail -n 1 "$BATS_TEST_TMPDIR/out")" = "[mqkit] execute m1 / \$opt -> bash comd" ]
    done
}

@test "what stood at the place of a status file stays, what comes there goes" {
    rm m1/mq.status m2/mq.status
    ln -s ../nowhere m1/mq.status
    mkfifo m2/mq.status
    mkdir m3
    ln -s ../demo.projmq m3/m3.mq
    ln -s ../m1 m3/mq.status
    printf '#!/bin/sh\necho new >m1/mq.status\n' >"$BATS_TEST_TMPDIR/bin/morquill"
    expect_lines 0 "$(opening)

[ProjMQ Update]
  project directory: $root
  task blocks: \$opt
  mode: apply changes
  morquill mode: comd-only


[mqkit] summary: cases=3, mq.status scoped=0, mq.status hidden=0, selected completed records=0

[mqkit] execute morquill '$root/demo.projmq' --comd-only
$(restored)

[mqkit] comd execution for selected task blocks
[mqkit][SKIP] m1 / \$opt : comd is missing
[mqkit][SKIP] m2 / \$opt : comd is missing
[mqkit][SKIP] m3 / \$opt : block directory is missing

[mqkit] comd summary: success=0, failed=0" "" project update -n opt --run-comd
    [ "$(readlink m1/mq.status)" = ../nowhere ]
    [ ! -e nowhere ]
    [ -p m2/mq.status ]
    [ "$(readlink m3/mq.status)" = ../m1 ]
}

@test "a disk that the generator fills gives every old byte back" {
    for case in m1 m2; do seq -f '# %0.f a long history' 300 >>$case/mq.status; done
    sibling morquill 'cat /dev/zero >filling 2>/dev/null; df --output=avail . | tail -n 1 >"$RECORD.room"'
    cp -a . "$BATS_TEST_TMPDIR/before"
    full_disk "cp -a '$BATS_TEST_TMPDIR/before/.' .
'$MQKIT' project update -n opt --run-comd >/dev/null || exit 1
[ \$(cat '$RECORD.room') -eq 0 ] || exit 2
for case in m1 m2; do cmp \$case/mq.status '$BATS_TEST_TMPDIR/before/'\$case/mq.status || exit 3; done
[ \$(ls -A m1 m2 | wc -l) -eq 11 ]"
}

@test "nothing chosen in the menu is a quiet success" {
    expect_lines 0 "[mqkit] project template found: demo.projmq

[mqkit] select task blocks to update comd:

[mqkit] available task blocks:
  1. opt
  2. soc
Input index (e.g. 1 2 3 or 1,2,3): [mqkit] no task blocks were selected; exiting." "" project update <<<""
    [ ! -e "$RECORD" ]
}

@test "a project without cases" {
    rm -r m1 m2
    run --separate-stderr "$MQKIT" project update -n opt --run-comd
    [ "$status" -eq 1 ]
    [ "$stderr" = "[mqkit][ERROR] no case subdirectories were found in project: $root
[mqkit][ERROR] update failed." ]
}

@test "the script runs from anywhere, on names that a shell would take apart" {
    evil='c "$(touch hacked)" '\''x'\'' `y` \ *'
    mkdir -p "$evil/opt" "$evil/soc"
    ln -s ../demo.projmq "$evil/a.mq"
    printf 'pwd -P\nexit 4\n' >"$evil/opt/comd"
    comd m1 opt 'echo one; exit 0'
    comd m2 opt 'echo two; cd /; exit 0'
    rmdir m1/soc
    "$MQKIT" project update -n opt,soc <<<n
    cd /
    run --separate-stderr "$root/mqkit_update_comd.sh"
    [ "$status" -eq 1 ]
    [ "$output" = "[mqkit] execute $evil / \$opt -> bash comd
$root/$evil/opt
[mqkit][SKIP] $evil / \$soc : comd is missing
[mqkit] execute m1 / \$opt -> bash comd
one
[mqkit][SKIP] m1 / \$soc : block directory is missing
[mqkit] execute m2 / \$opt -> bash comd
two
[mqkit][SKIP] m2 / \$soc : comd is missing

[mqkit] comd summary: total=6, success=2, failed=1, skipped=3" ]
    [ "$stderr" = "[mqkit][WARN] comd execution failed: $root/$evil/opt (exit=4)" ]
    [ -z "$(find "$root" -name hacked)" ]
    rm "$root/$evil/opt/comd"
    bash "$root/mqkit_update_comd.sh"
    if command -v shellcheck >/dev/null; then
        shellcheck --severity=error "$root/mqkit_update_comd.sh"
    fi
}
