# `project exec`: one command in the block directories of all cases.
bats_require_minimum_version 1.5.0
load expect
load siblings

setup() {
    setup_project
    rmdir m2/soc
}

@test "the command runs in every selected block; the walk goes on after a failure" {
    expect_lines 2 "
[Project Exec]
  project template: $root/demo.projmq
  task blocks: \$opt, \$soc
  command:  echo [taskname] [inputname] [other]; pwd -P; [ [taskname] = soc ] && exit 3; true 


>>> [m1] $root/m1/opt
\$  echo opt opt_m1 [other]; pwd -P; [ opt = soc ] && exit 3; true 
opt opt_m1 [other]
$root/m1/opt

>>> [m1] $root/m1/soc
\$  echo soc soc_m1 [other]; pwd -P; [ soc = soc ] && exit 3; true 
soc soc_m1 [other]
$root/m1/soc

>>> [m2] $root/m2/opt
\$  echo opt opt_m2 [other]; pwd -P; [ opt = soc ] && exit 3; true 
opt opt_m2 [other]
$root/m2/opt
[mqkit][SKIP] m2 / \$soc : block directory is missing

[mqkit] finished: executed 2/3 block(s) successfully.
[mqkit] note: 1 block directory/directories are missing.
[mqkit] note: 1 block(s) failed." "[mqkit][WARN] command failed: $root/m1/soc (shell command exited with code 3)" \
        project exec -n '*' -- ' echo [taskname] [inputname] [other]; pwd -P; [ [taskname] = soc ] && exit 3; true '
}

@test "a killed command tells its signal" {
    rm -r m2
    expect_lines 2 "
[Project Exec]
  project template: $root/demo.projmq
  task blocks: \$opt
  command: kill -9 \$\$


>>> [m1] $root/m1/opt
\$ kill -9 \$\$

[mqkit] finished: executed 0/1 block(s) successfully.
[mqkit] note: 1 block(s) failed." "[mqkit][WARN] command failed: $root/m1/opt (process terminated by signal 9)" \
        project exec -n opt --cmd 'kill -9 $$'
}

@test "a dry run shows everything and runs nothing; missing blocks still count" {
    before="$(tree)"
    expect_lines 2 "
[Project Exec]
  project template: $root/demo.projmq
  task blocks: \$soc
  command: touch ran  (dry-run)


>>> [m1] $root/m1/soc
\$ touch ran
[mqkit][SKIP] m2 / \$soc : block directory is missing

[mqkit] finished: executed 1/1 block(s) successfully.
[mqkit] note: 1 block directory/directories are missing." "" project exec -n soc --dry-run touch ran
    [ "$(tree)" = "$before" ]
    run --separate-stderr "$MQKIT" project exec -n opt --dry-run touch ran
    [ "$status" -eq 0 ]
}

@test "a name that looks like a placeholder is put in once" {
    printf '$"[inputname]"\n%%keywords a\n' >demo.projmq
    mkdir 'm1/[inputname]'
    run --separate-stderr "$MQKIT" project exec -n '*' --cmd ': [taskname] [inputname]'
    [[ "$output" == *$'\n$ : [inputname] [inputname]_m1\n'* ]]
}

@test "what is missing on the command line is told, with the help" {
    for words in "-n opt" "-n opt --cmd ''"; do
        eval "run --separate-stderr -1 \"\$MQKIT\" project exec $words"
        [ "$stderr" = "[mqkit][ERROR] project exec requires a command via --cmd or -- <cmd...>." ]
        [ "${lines[0]}" = "Usage:" ]
    done
    run --separate-stderr -1 "$MQKIT" project exec -- ls
    [ "$stderr" = "[mqkit][ERROR] specify at least one task block with -n/--name." ]
    run --separate-stderr -1 "$MQKIT" project exec -n 'x*,opt' -- ls
    [ "$stderr" = "[mqkit][ERROR] task block not found in .projmq: x*
available task blocks: opt, soc" ]
    rm -r m1 m2
    run --separate-stderr -1 "$MQKIT" project exec -n opt -- ls
    [ "$stderr" = "[mqkit][ERROR] no case subdirectories were found in project: $root" ]
    [ "${lines[0]}" = "Usage:" ]
}

@test "a signal reaches the command that runs, and no other follows" {
    for signal in TERM XCPU; do
        started project exec -n opt -- "$waiting"
        stopped "$signal"
        [ "$(cat "$BATS_TEST_TMPDIR/out")" = "
[Project Exec]
  project template: $root/demo.projmq
  task blocks: \$opt
  command: $waiting


>>> [m1] $root/m1/opt
\$ $waiting" ]
        [ "$(cat "$BATS_TEST_TMPDIR/err")" = "" ]
    done
}

# Ended, if perhaps not yet taken note of by the process that inherited it.
ended() {
    for _ in {1..100}; do
        case "$(ps -o stat= -p "$1")" in '' | Z*) return 0 ;; esac
        sleep 0.1
    done
    kill -9 "$1"
    return 1
}

@test "a signal reaches what the shell of the command waits for" {
    for signal in TERM HUP USR1; do
        started project exec -n opt -- "sh -c 'echo \$\$ >\"\$RECORD.pid\"; exec sleep 60'; touch later"
        kill -s "$signal" "$pid"
        status=0
        wait "$pid" || status=$?
        [ "$status" -eq $((128 + $(kill -l "$signal"))) ]
        ended "$(cat "$RECORD.pid")"
        [ ! -e m1/opt/later ]
    done
}

@test "a directory that this user may not read is no case, which is said once" {
    ordinary_user
    mkdir closed
    chmod 0000 closed
    chown 65534 closed
    expect_lines 0 "
[Project Exec]
  project template: $root/demo.projmq
  task blocks: \$opt
  command: true


>>> [m1] $root/m1/opt
\$ true

>>> [m2] $root/m2/opt
\$ true

[mqkit] finished: executed 2/2 block(s) successfully." \
        "[mqkit][WARN] could not read directory $root/closed: Permission denied; no case is looked for there" \
        project exec -n opt -- true
    chmod 0755 closed
}
