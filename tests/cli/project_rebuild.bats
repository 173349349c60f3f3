# `project rebuild`: what is cleaned, what the siblings see, what is printed.
bats_require_minimum_version 1.5.0
load expect
load siblings

header='# TASK            STATUS           UPDATED_AT              REASON'

setup() {
    setup_project
    printf 'opt RENDERED t1 -\nsoc FAILED t2 why' >m1/mq.status
    printf 'opt\n' >m2/mq.status
    touch m1/opt/a.mqwk m1/opt/.b.mqwk m1/opt/c.mqwk.log m1/opt/.mqwk
    mkdir -p m1/opt/d.mqwk m1/opt/sub
    touch m1/opt/sub/e.mqwk
    rmdir m2/opt
    sibling morquill
    sibling mqrun
}

opening() {
    echo "[mqkit] project template found: demo.projmq

[mqkit] selected: \$opt
[mqkit] rebuild mode re-runs full morquill and refreshes generated inputs/workflow."
}

head_of() { # <mode>
    echo "
[ProjMQ Rebuild]
  project directory: $root
  task blocks: \$opt
  mode: $1
  morquill mode: full
"
}

cleaned() {
    head_of "apply changes"
    echo "[mqkit] m1 : removed 1 completed record(s) from mq.status
[mqkit] m1 / \$opt : removed 2 .mqwk file(s)
[mqkit] m2 : removed 1 completed record(s) from mq.status
[mqkit][SKIP] m2 / \$opt : block directory is missing

[mqkit] summary: cases=2, mq.status touched=2, records removed=2, block directories visited=1, block directories missing=1, removed .mqwk=2

[mqkit] execute morquill '$root/demo.projmq'"
}

@test "a project is cleaned, generated and run" {
    before="$(tree | grep -v -e '/a.mqwk' -e '/.b.mqwk' -e mq.status)"
    expect_lines 0 "$(opening)
[mqkit] post-rebuild runner enabled: 'mqrun' kick --path '$root'
$(cleaned)
[mqkit] full morquill rebuild completed

[mqkit] execute 'mqrun' kick --path '$root'

[mqkit] project runner summary: success=1, failed=0" "" project rebuild -n opt --run-script
    status="m1/mq.status:
$header
soc             FAILED           t2                      why"
    recorded "morquill $root/demo.projmq in $root
$status
mqrun kick --path $root in $root
$status"
    [ "$(tree)" = "$(printf '%s\n' "$before" "./m1/mq.status = $header|soc             FAILED           t2                      why|" | LC_ALL=C sort)" ]
}

@test "a marker that cannot be removed is in the summary and not among the removed" {
    ordinary_user
    RECORD=/dev/null
    chmod 0555 m1/opt
    run --separate-stderr "$MQKIT" project rebuild --path m1 -n opt,soc
    chmod 0755 m1/opt
    [ "$status" -eq 0 ]
    [ "$stderr" = "[mqkit][WARN] failed to remove work marker: $root/m1/opt/.b.mqwk
[mqkit][WARN] failed to remove work marker: $root/m1/opt/a.mqwk" ]
    [ "${lines[-4]}" = "[mqkit] m1 / \$opt : removed 0 .mqwk file(s)" ]
    [ "${lines[-3]}" = "[mqkit] summary: cases=1, mq.status touched=1, records removed=1, block directories visited=2, block directories missing=0, removed .mqwk=2" ]
    [ -e m1/opt/a.mqwk ]
}

@test "the question about the runner is asked; no leaves it" {
    expect_lines 0 "$(opening)

[mqkit] execute the configured project runner afterwards? (y/n):
        'mqrun' kick --path '$root'
$(cleaned)
[mqkit] full morquill rebuild completed" "" project rebuild -n opt <<<n
    [ "$(grep -c '^mqrun' "$RECORD")" -eq 0 ]
    run --separate-stderr "$MQKIT" project rebuild -n opt <<<y
    [ "$status" -eq 0 ]
    [ "$(grep -c '^mqrun' "$RECORD")" -eq 1 ]
}

@test "a dry run tells and asks, and touches nothing" {
    before="$(tree)"
    told="$(head_of "dry-run (no files written)")

[mqkit][DRY-RUN] m1 : would remove 1 completed record(s) from mq.status
[mqkit][DRY-RUN] m1 / \$opt : would remove 2 .mqwk file(s)
[mqkit][DRY-RUN] m2 : would remove 1 completed record(s) from mq.status
[mqkit][DRY-RUN] m2 / \$opt : block directory is missing

[mqkit] summary: cases=2, mq.status touched=2, records removed=2, block directories visited=1, block directories missing=1, to remove .mqwk=2

[mqkit][DRY-RUN] morquill '$root/demo.projmq'"
    expect_lines 0 "$(opening)

[mqkit] execute the configured project runner afterwards? (y/n):
        'mqrun' kick --path '$root'
$told" "" project rebuild -n opt --dry-run <<<""
    expect_lines 0 "$(opening)
[mqkit] post-rebuild runner enabled: 'mqrun' kick --path '$root'
$told

[mqkit][DRY-RUN] 'mqrun' kick --path '$root'

[mqkit] project runner summary: success=1, failed=0" "" project rebuild -n opt --dry-run --run-runner
    [ "$(tree)" = "$before" ]
    [ ! -e "$RECORD" ]
}

@test "a case is rebuilt alone and never with the runner" {
    before="$(tree)"
    expect_lines 1 "[mqkit] task file found: m1.mq

[mqkit] selected: \$opt
[mqkit] rebuild mode re-runs full morquill and refreshes generated inputs/workflow." \
        "[mqkit][ERROR] --run-script requires a project root or .projmq path. For a single case, rebuild the case first, then run the project runner from the project root." \
        project rebuild --path m1 -n opt --run-script
    [ "$(tree)" = "$before" ]
    expect_lines 0 "[mqkit] task file found: m1.mq

[mqkit] selected: \$opt
[mqkit] rebuild mode re-runs full morquill and refreshes generated inputs/workflow.

[MQ Rebuild]
  case directory: $root/m1
  task file: $root/m1/m1.mq
  task blocks: \$opt
  mode: apply changes
  morquill mode: full

[mqkit] m1 : removed 1 completed record(s) from mq.status
[mqkit] m1 / \$opt : removed 2 .mqwk file(s)

[mqkit] summary: cases=1, mq.status touched=1, records removed=1, block directories visited=1, block directories missing=0, removed .mqwk=2

[mqkit] execute morquill '$root/m1/m1.mq'
[mqkit] full morquill rebuild completed" "" project rebuild --path m1 -n opt
    recorded "morquill $root/m1/m1.mq in $root/m1
m1/mq.status:
$header
soc             FAILED           t2                      why
m2/mq.status:
opt"
}

@test "the runner that the configuration in the project root names" {
    echo 'MORQUILL_MQRUN_PATH = ./tools/run' >morquill.conf
    mkdir tools
    mv "$BATS_TEST_TMPDIR/bin/mqrun" tools/run
    cd /
    run --separate-stderr "$MQKIT" project rebuild --path "$root" -n opt --run-script
    [ "$status" -eq 0 ]
    [ "${lines[-2]}" = "[mqkit] execute '$root/tools/run' kick --path '$root'" ]
    grep -qx "mqrun kick --path $root in $root" "$RECORD"
}

@test "a generator that fails leaves the records removed and keeps the runner away" {
    sibling morquill 'exit 7'
    expect_lines 1 "$(opening)
[mqkit] post-rebuild runner enabled: 'mqrun' kick --path '$root'
$(cleaned)" "[mqkit][ERROR] failed to re-run morquill (program 'morquill' exited with code 7)
[mqkit][ERROR] rebuild failed." project rebuild -n opt --run-script
    [ ! -e m2/mq.status ]
    [ "$(grep -c '^mqrun' "$RECORD")" -eq 0 ]
}

@test "a runner that fails is told by its path" {
    sibling mqrun 'exit 2'
    run --separate-stderr "$MQKIT" project rebuild -n opt --run-script
    [ "$status" -eq 1 ]
    [ "${lines[-1]}" = "[mqkit] execute 'mqrun' kick --path '$root'" ]
    [ "$stderr" = "[mqkit][ERROR] failed to execute project runner: mqrun (program 'mqrun' exited with code 2)
[mqkit][ERROR] rebuild failed." ]
}

@test "an unreadable status file stops the rebuild" {
    ln -sf /proc/self/mem m1/mq.status
    run --separate-stderr "$MQKIT" project rebuild -n opt <<<n
    [ "$status" -eq 1 ]
    [ "$stderr" = "[mqkit][ERROR] failed to clean mq.status: m1
[mqkit][ERROR] rebuild failed." ]
    [ ! -e "$RECORD" ]
    [ -L m1/mq.status ]
}

@test "nothing chosen in the menu is a quiet success" {
    expect_lines 0 "[mqkit] project template found: demo.projmq

[mqkit] select task blocks to rebuild:

[mqkit] available task blocks:
  1. opt
  2. soc
Input index (e.g. 1 2 3 or 1,2,3): [mqkit] no task blocks were selected; exiting." "" project rebuild <<<"9 x"
    [ ! -e "$RECORD" ]
}

@test "a signal reaches the generator or the runner" {
    for name in morquill mqrun; do
        sibling morquill
        sibling "$name" "$waiting"
        rm -f "$RECORD"
        started project rebuild -n opt --run-script
        stopped TERM
        [ "$(cat "$BATS_TEST_TMPDIR/err")" = "" ]
        [ "$(grep -E '^(morquill|mqrun) ' "$RECORD" | tail -n 1 | cut -d ' ' -f 1)" = "$name" ]
    done
}
