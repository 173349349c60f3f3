#!/usr/bin/env bats
# The recipes of examples/cluster as far as they need no scheduler; script/test-cluster runs all of them on one.
bats_require_minimum_version 1.5.0
load expect
load siblings
load full_disk
load cluster

setup() { setup_recipes; }

@test "the recipes and the scripts of their test pass shellcheck" {
    cd "$MQKIT_SOURCE"
    shellcheck -x -P SCRIPTDIR examples/cluster/{lib.bash,run-block,run-local,block-job,block-status,submit-*}
    shellcheck -x script/test-cluster tests/cluster/*.bash tests/cluster/morquill
}

@test "blocks run once, the failed one again, with a log that collect finds" {
    touch m2/opt/fail
    table 0 0 2
    run --separate-stderr "$recipes/run-local" -n opt --at-once 2
    [ "$status" -eq 1 ]
    [ "${stderr_lines[-1]}" = "run-local: some blocks failed: block-status --list failed names them" ]
    table 1 1 0
    [ "$("$recipes/block-status" -n opt --list failed)" = "$root/m2/opt	exit 3" ]
    [ "$("$recipes/block-status" -n opt --list done)" = "$root/m1/opt	marker" ]
    rm m2/opt/fail
    run "$recipes/run-local" -n opt --only failed
    [ "$status" -eq 0 ]
    table 2 0 0
    run --separate-stderr "$recipes/run-local" -n opt
    [ "$status" -eq 0 ]
    [ "$output" = "run-local: nothing to run" ]
    "$recipes/run-block" m1/opt
    [ "$(cat m1/opt/runs)" = $'start\nend' ]
    [ "$(cat m2/opt/runs)" = $'start\nstart\nend' ]
    [ "$(sed 's/^== [^ ]* local [^ ]* [^ ]* [0-9]* [0-9]*: //; s/start on .*/start/' m2/opt/cluster.log)" = "start
failed, exit 3
start
ran in $root/m2/opt
ended well" ]
    "$MQKIT" project collect -n opt cluster.log
    cmp results/cluster_m1.log m1/opt/cluster.log
}

@test "a block that ends with 255, or whose run-block is killed, stops no other one" {
    echo 'exit 255' >m1/opt/comd
    run "$recipes/run-local" -n opt --at-once 1
    [ "$status" -eq 1 ]
    table 1 1 0
    [ "$("$recipes/block-status" -n opt --list failed)" = "$root/m1/opt	exit 255" ]
    rm m2/opt/cluster_done.mqwk
    echo 'kill -KILL $PPID' >m1/opt/comd
    run "$recipes/run-local" -n opt --at-once 1
    [ "$status" -eq 1 ]
    [ -e m2/opt/cluster_done.mqwk ]
    # The line for it that the page has.
    rm -r m2/opt/runs m?/opt/cluster*
    echo 'exit 255' >m1/opt/comd
    printf '%s/%s/opt\n' "$root" m1 "$root" m2 >list
    line="$(grep '^xargs ' "$MQKIT_SOURCE/docs/cluster.md")"
    LIST=$PWD/list run bash -c "${line/-P 8/-P 1}"
    [ "$status" -eq 123 ] # some of its commands failed
    [ "$(cat m2/opt/runs)" = $'start\nend' ]
}

@test "what mq.status calls rendered is done, or not, as asked" {
    printf '# TASK\nopt RENDERED t -\n' >m1/mq.status
    printf 'opt FAILED t -\nsoc rendered t -\n' >m2/mq.status
    table 1 0 1
    [ "$("$recipes/block-status" -n opt --list done)" = "$root/m1/opt	mq.status" ]
    [ "$("$recipes/block-status" -n opt --done marker --list new | wc -l)" -eq 2 ]
    "$recipes/run-local" -n opt
    [ ! -e m1/opt/runs ]
    [ -e m2/opt/cluster_done.mqwk ]
    # A marker counts under every rule, as run-block passes over a block that has one.
    [ "$("$recipes/block-status" -n opt --done marker --list done)" = "$root/m2/opt	marker" ]
    [ "$("$recipes/block-status" -n opt --done any --list done | cut -f 2 | xargs)" = "mq.status marker" ]
}

@test "a rebuild forgets what has run" {
    "$recipes/run-local" -n opt
    sibling morquill
    "$MQKIT" project rebuild --path demo.projmq -n opt </dev/null
    table 0 0 2
}

@test "a block that somebody runs is left alone, that of a process that is gone is not" {
    echo "local $(id -un) elsewhere 1" >m1/opt/cluster.claim
    echo "local $(id -un) $(uname -n) 999999999" >m2/opt/cluster.claim
    run --separate-stderr "$recipes/run-block" m1/opt
    [ "$status" -eq 75 ]
    [ "$stderr" = "run-block: $root/m1/opt is run by: local $(id -un) elsewhere 1" ]
    [ "$("$recipes/block-status" -n opt --list running)" = "$root/m1/opt	local $(id -un) elsewhere 1" ]
    [ "$("$recipes/block-status" -n opt --list failed)" = "$root/m2/opt	lost: local $(id -un) $(uname -n) 999999999" ]
    "$recipes/run-local" -n opt
    [ ! -e m1/opt/runs ]
    [ "$(cat m2/opt/runs)" = $'start\nend' ]
    # The job that left the claim takes it up again.
    export SLURMD_NODENAME=node
    echo "slurm $(id -un) 7" >m1/opt/cluster.claim
    SLURM_JOB_ID=8 run "$recipes/run-block" m1/opt
    [ "$status" -eq 75 ]
    SLURM_JOB_ID=7 run "$recipes/run-block" m1/opt # beside the one that has it
    [ "$status" -eq 75 ]
    SLURM_JOB_ID=7 SLURM_RESTART_COUNT=1 "$recipes/run-block" m1/opt
    [ "$(cat m1/opt/runs)" = $'start\nend' ]
    [ ! -e m1/opt/cluster.claim ]
}

@test "a process number that is used again is not the process of the claim" {
    sleep 60 3>&- &
    pid=$!
    start="$(awk '{ print $22 }' /proc/$pid/stat)"
    echo "local $(id -un) $(uname -n) $pid $start" >m1/opt/cluster.claim
    echo "local $(id -un) $(uname -n) $pid $((start - 1))" >m2/opt/cluster.claim
    [ "$("$recipes/block-status" -n opt --list running | cut -f 1)" = "$root/m1/opt" ]
    [ "$("$recipes/block-status" -n opt --list failed | cut -f 1)" = "$root/m2/opt" ]
    # What run-block writes is the start that counts, also with a name that has blanks and a parenthesis.
    cp -r "$recipes" "$BATS_TEST_TMPDIR/recipes"
    mv "$BATS_TEST_TMPDIR/recipes/run-block" "$BATS_TEST_TMPDIR/recipes/run ) S 1"
    echo 'cat cluster.claim >seen; awk "{ sub(/^.*\\) /, \"\"); print \$20 }" /proc/$PPID/stat >started' >m1/opt/comd
    rm m?/opt/cluster.claim
    "$BATS_TEST_TMPDIR/recipes/run ) S 1" m1/opt
    [ "$(cut -d ' ' -f 5 m1/opt/seen)" = "$(cat m1/opt/started)" ]
    kill "$pid"
}

@test "an empty claim is of nobody" {
    : >m1/opt/cluster.claim
    printf '\0\0\0' >m2/opt/cluster.claim
    run --separate-stderr "$recipes/block-status" -n opt --list failed
    [ "$stderr" = "" ]
    [ "$output" = "$root/m1/opt	lost: an empty claim
$root/m2/opt	lost: an empty claim" ]
    "$recipes/run-block" m1/opt
    [ "$(cat m1/opt/runs)" = $'start\nend' ]
    "$recipes/run-local" -n opt
    [ "$(cat m2/opt/runs)" = $'start\nend' ]
    [ ! -e m1/opt/cluster.claim ] && [ ! -e m2/opt/cluster.claim ]
    # A marker that lost its line was made by a block that ended well.
    : >m1/opt/cluster_done.mqwk
    table 2 0 0
}

@test "a claim that cannot be written whole claims nothing" {
    # The disk takes the name and not the line: as with a quota, which speaks up late.
    sibling sync ': >"$1"'
    run --separate-stderr "$recipes/run-block" m1/opt
    [ "$status" -eq 73 ]
    [ "$stderr" = "run-block: cannot write in $root/m1/opt" ]
    sibling sync 'echo "Disk quota exceeded" >&2; exit 1'
    run --separate-stderr "$recipes/run-block" m1/opt
    [ "$status" -eq 73 ]
    [ "$stderr" = "Disk quota exceeded
run-block: cannot write in $root/m1/opt" ]
    [ "$(ls -A m1/opt)" = comd ]
}

@test "a block that runs in a job which no list names is left alone" {
    echo "slurm $(id -un) 7 0" >m1/opt/cluster.claim
    echo "slurm $(id -un) 8 1" >m2/opt/cluster.claim
    sibling squeue 'echo "shell|N/A|7|RUNNING"; echo "shell|N/A|8|PENDING"'
    run "$recipes/run-local" -n opt
    [ "${lines[0]}" = "run-local: running 1, queued 1" ] || [ "${lines[0]}" = "run-local: queued 1, running 1" ]
    [ "${lines[1]}" = "run-local: nothing to run" ]
    [ "$("$recipes/block-status" -n opt --list running)" = "$root/m1/opt	slurm $(id -un) 7 0" ]
    [ "$("$recipes/block-status" -n opt --list queued)" = "$root/m2/opt	PENDING" ]
    grep -qxF "squeue -h -r -u $(id -un) -o %j|%K|%A|%T in $root" "$RECORD"
    sibling squeue 'echo "slurm_load_jobs error" >&2; exit 1' # as where there is none
    [ "$("$recipes/block-status" -n opt --list running | wc -l)" -eq 2 ]
    sibling squeue 'echo "shell|N/A|8|RUNNING"'
    [ "$("$recipes/block-status" -n opt --list failed)" = "$root/m1/opt	lost: slurm $(id -un) 7 0" ]
    "$recipes/run-local" -n opt
    [ "$(cat m1/opt/runs)" = $'start\nend' ]
    [ ! -e m2/opt/runs ]
}

@test "what an earlier round of this very job has left runs again" {
    sibling squeue 'echo "shell|N/A|7|RUNNING"'
    export SLURMD_NODENAME=node SLURM_JOB_ID=7
    echo "slurm $(id -un) 7 0" >m1/opt/cluster.claim
    echo "slurm $(id -un) 7 1" >m2/opt/cluster.claim
    # Beside the round that has it.
    [ "$("$recipes/block-status" -n opt --list running | wc -l)" -eq 2 ]
    export SLURM_RESTART_COUNT=1
    [ "$("$recipes/block-status" -n opt --list failed)" = "$root/m1/opt	lost: slurm $(id -un) 7 0" ]
    "$recipes/run-local" -n opt
    [ "$(cat m1/opt/runs)" = $'start\nend' ]
    [ ! -e m2/opt/runs ]
    # Another job's round says nothing.
    echo "slurm $(id -un) 7 0" >m2/opt/cluster.claim
    [ "$(SLURM_JOB_ID=8 "$recipes/block-status" -n opt --list running | wc -l)" -eq 1 ]
}

@test "what runs in a shell of salloc is a process of its host, which outlives the allocation" {
    echo 'cat cluster.claim >seen' | tee m1/opt/comd >m2/opt/comd
    SLURM_JOB_ID=7 "$recipes/run-block" m1/opt
    SLURM_JOB_ID=7 SLURMD_NODENAME=node "$recipes/run-block" m2/opt
    [[ $(cat m1/opt/seen) =~ ^"local $(id -un) $(uname -n) "[0-9]+\ [0-9]+$ ]]
    [ "$(cat m2/opt/seen)" = "slurm $(id -un) 7 0" ]
}

@test "the index in an array and the number of a job are not mixed up" {
    mkdir .cluster
    printf '1\t%s/m1/opt\n2\t%s/m2/opt\n' "$root" "$root" >.cluster/mqkit-array0
    # Element 1 is job 2, element 2 has gone.
    sibling squeue 'echo "mqkit-array0|1|2|RUNNING"'
    sibling sacct 'echo "mqkit-array0|1_1|RUNNING"; echo "mqkit-array0|1_2|TIMEOUT"'
    [ "$("$recipes/block-status" -n opt --list queued)" = "$root/m1/opt	RUNNING" ]
    [ "$("$recipes/block-status" -n opt --list failed)" = "$root/m2/opt	lost: TIMEOUT" ]
    # Single jobs have no index.
    printf '1\t%s/m1/opt\n2\t%s/m2/opt\n' "$root" "$root" >.cluster/mqkit-array0
    sibling squeue 'echo "mqkit-array0|N/A|2|PENDING"'
    [ "$("$recipes/block-status" -n opt --list queued)" = "$root/m2/opt	PENDING" ]
}

@test "the reason of a lost block is that of its last submission" {
    mkdir .cluster
    for name in mqkit-bbbbbb mqkit-aaaaaa mqkit-cccccc; do
        printf '1\t%s/m1/opt\n' "$root" >.cluster/$name
    done
    sibling squeue
    sibling sacct 'echo "mqkit-bbbbbb|8_1|TIMEOUT"; echo "mqkit-aaaaaa|10_1|NODE_FAIL"; echo "mqkit-cccccc|9_1|CANCELLED by 0"'
    [ "$("$recipes/block-status" -n opt --list failed)" = "$root/m1/opt	lost: NODE_FAIL" ]
}

@test "a block whose marker was taken away counts as never sent, one that was lost does not" {
    mkdir .cluster
    printf '1\t%s/m1/opt\n1\t%s/m2/opt\n' "$root" "$root" >.cluster/mqkit-aaaaaa
    sibling squeue
    sibling sacct 'echo "mqkit-aaaaaa|8_1|COMPLETED"'
    table 0 0 2
    # Who claimed it is gone, and it did not end.
    echo "slurm $(id -un) 8 0" >m1/opt/cluster.claim
    [ "$("$recipes/block-status" -n opt --list failed)" = "$root/m1/opt	lost: COMPLETED" ]
    rm m1/opt/cluster.claim
    # A bundle fails as a whole, and there may be no accounts: then the log tells.
    "$recipes/run-block" m1/opt
    rm m1/opt/cluster_done.mqwk
    for account in 'echo "mqkit-aaaaaa|8_1|FAILED"' ''; do
        sibling sacct "$account"
        [ "$("$recipes/block-status" -n opt --list new | cut -f 1)" = "$root/m1/opt" ]
        [ "$("$recipes/block-status" -n opt --list failed | cut -f 1)" = "$root/m2/opt" ]
    done
    # It ended well in an earlier job.
    sibling sacct 'echo "mqkit-aaaaaa|8_1|TIMEOUT"'
    [ "$("$recipes/block-status" -n opt --list failed | cut -f 2 | xargs)" = "lost: TIMEOUT lost: TIMEOUT" ]
}

@test "the table of a project that may only be read" {
    sibling squeue
    sibling sacct
    cp -r "$recipes" "$BATS_TEST_TMPDIR/recipes"
    mkdir -m 1777 "$BATS_TEST_TMPDIR/tmp"
    as_reader=(env MQKIT="$MQKIT")
    ordinary_user # owns the project then
    if [ "$(id -u)" -eq 0 ]; then
        as_reader=(env MQKIT="$BATS_TEST_TMPDIR/bin/mqkit" setpriv --reuid 65534 --regid 65534 --clear-groups)
    fi
    chmod -R a-w "$root"
    for list in no one; do
        run --separate-stderr env TMPDIR="$BATS_TEST_TMPDIR/tmp" RECORD=/dev/null "${as_reader[@]}" \
            "$BATS_TEST_TMPDIR/recipes/block-status" -n opt
        chmod -R u+w "$root"
        [ "$status" -eq 0 ]
        [ "$stderr" = "" ]
        [ "$(awk 'NR == 2 { print $2, $3, $4, $5, $6 }' <<<"$output")" = "0 0 0 0 2" ]
        [ $list == one ] || [ ! -e .cluster ]
        mkdir -p .cluster && touch .cluster/mqkit-aaaaaa
        chmod -R a-w "$root"
    done
    chmod -R u+w "$root"
}

@test "what is written into mq.status during an update is lost, a marker is not" {
    printf 'opt RENDERED t -\n' >m1/mq.status
    cp m1/mq.status before
    # Jobs of both cases write their row while the generator works.
    sibling morquill "cd '$root' && echo 'soc RENDERED t -' | tee -a m1/mq.status >>m2/mq.status && '$recipes/run-block' m2/opt"
    "$MQKIT" project update --path demo.projmq -n opt </dev/null
    cmp m1/mq.status before
    [ ! -e m2/mq.status ]
    [ "$("$recipes/block-status" -n opt --list done | cut -f 2 | xargs)" = "mq.status marker" ]
}

@test "a list for which there is no room is none" {
    mkdir .cluster
    printf '1\t%s/m1/opt\n' "$root" >.cluster/mqkit-aaaaaa
    sibling squeue 'echo "mqkit-aaaaaa|1|8|RUNNING"'
    sibling sacct
    export root recipes RECORD=/dev/null
    run --separate-stderr full_disk 'export TMPDIR=$PWD
for pages in {0..12}; do
    fill
    truncate -s "-$((pages * 4096))" filling
    status=0
    table=$(cd "$root" && "$recipes/block-status" -n opt 2>"$root/err") || status=$?
    echo "$pages $status" $(tail -n +2 <<<"$table") $([ -s "$root/err" ] && echo told)
done'
    [ "$status" -eq 0 ]
    # With no room at all, and with enough; in between the one or the other, never a part.
    [ "${lines[0]}" = "0 1 told" ]
    [ "${lines[12]}" = "12 0 opt 0 0 1 0 1" ]
    run ! grep -vE '^[0-9]+ (1 told|0 opt 0 0 1 0 1)$' <<<"$output"
}

@test "a block directory that was reached through a symbolic link" {
    for tool in squeue sacct scontrol; do
        sibling $tool
    done
    sibling sbatch 'echo 5'
    ln -s "$root" "$BATS_TEST_TMPDIR/link"
    cd "$BATS_TEST_TMPDIR/link/m1/opt"
    [ "$(pwd)" = "$BATS_TEST_TMPDIR/link/m1/opt" ]
    table 0 0 2
    run --separate-stderr "$recipes/submit-each" -n opt
    [ "$status" -eq 0 ]
    [ "$(cat "$root"/.cluster/mqkit-*)" = "5	$root/m1/opt
5	$root/m2/opt" ]
    rm -r "$root/.cluster"
    "$recipes/run-local" -n opt
    table 2 0 0
}

@test "the lists of the page have true paths" {
    ln -s "$root" "$BATS_TEST_TMPDIR/link"
    cd "$BATS_TEST_TMPDIR/link/m1/opt"
    PATH="$(dirname "$MQKIT"):$PATH"
    for page in cluster cluster-pbs; do
        LIST=$root/list
        export LIST
        grep '^mqkit project exec .*"\$LIST"' "$MQKIT_SOURCE/docs/$page.md" | sed 's/-n [a-z_]* /-n opt /' >"$root/commands"
        [ "$(wc -l <"$root/commands")" -ge 1 ]
        while read -r command; do
            : >"$LIST"
            eval "$command" </dev/null
            [ "$(cat "$LIST")" = "$root/m1/opt
$root/m2/opt" ]
        done <"$root/commands"
    done
}

@test "names that a list cannot hold are refused" {
    mv m2 $'m\t2'
    run --separate-stderr "$recipes/run-local" -n opt
    [ "$status" -eq 1 ]
    [ "$stderr" = "run-local: a tab or a line end in the name of a case, or a tab in a directory above: rename it" ]
    mv $'m\t2' $'m2\n'
    run --separate-stderr "$recipes/run-local" -n opt
    [ "$status" -eq 1 ]
    mv $'m2\n' $'m\n2'
    run --separate-stderr "$recipes/run-local" -n opt
    [ "$status" -eq 1 ]
    [ ! -e m1/opt/runs ]
}

@test "what a colleague has claimed is never taken for lost" {
    echo "slurm somebody-else 7" >m1/opt/cluster.claim
    echo "local somebody-else $(uname -n) 999999999" >m2/opt/cluster.claim
    [ "$("$recipes/block-status" -n opt --list running | cut -f 2)" = "slurm somebody-else 7
local somebody-else $(uname -n) 999999999" ]
    run --separate-stderr "$recipes/run-local" -n opt
    [ "$output" = "run-local: nothing to run" ]
}

@test "a list that may not be read makes no table" {
    sibling squeue
    sibling sacct
    cp -r "$recipes" "$BATS_TEST_TMPDIR/recipes"
    mkdir -m 1777 "$BATS_TEST_TMPDIR/tmp"
    as_reader=(env MQKIT="$MQKIT")
    ordinary_user
    if [ "$(id -u)" -eq 0 ]; then
        as_reader=(env MQKIT="$BATS_TEST_TMPDIR/bin/mqkit" setpriv --reuid 65534 --regid 65534 --clear-groups)
    fi
    mkdir .cluster
    printf '1\t%s/m1/opt\n' "$root" >.cluster/mqkit-aaaaaa
    chmod 0 .cluster/mqkit-aaaaaa
    run --separate-stderr env TMPDIR="$BATS_TEST_TMPDIR/tmp" RECORD=/dev/null "${as_reader[@]}" \
        "$BATS_TEST_TMPDIR/recipes/block-status" -n opt
    [ "$status" -eq 1 ]
    [ "$output" = "" ]
    [ "$stderr" = "block-status: cannot read $root/.cluster/mqkit-aaaaaa of $(id -un): the table would miss what it has sent" ]
}

@test "a claim that comes while a selection is made stays" {
    mkdir "$BATS_TEST_TMPDIR/held"
    echo "local $(id -un) $(uname -n) 999999999" >m1/opt/cluster.claim
    # The first reading of the blocks lets somebody else take m1 before it goes on.
    printf '#!/bin/sh\n"%s" "$@"; status=$?\necho "local $(id -un) elsewhere 1" >%s/m1/opt/cluster.claim\nexit $status\n' "$(command -v awk)" "$root" \
        >"$BATS_TEST_TMPDIR/held/awk"
    chmod +x "$BATS_TEST_TMPDIR/held/awk"
    PATH="$BATS_TEST_TMPDIR/held:$PATH" run "$recipes/run-local" -n opt
    [ ! -e m1/opt/runs ]
    [ "$(cat m1/opt/cluster.claim)" = "local $(id -un) elsewhere 1" ]
    [ -e m2/opt/cluster_done.mqwk ]
}

@test "a signal ends all that a block has started, and the block is not done" {
    echo 'echo start >>runs; (trap "echo closed >>runs; exit 0" TERM; echo $BASHPID >inner; sleep 60 & wait) & wait' >m1/opt/comd
    for signal in TERM INT USR1; do
        rm -f m1/opt/{runs,inner}
        env --default-signal "$recipes/run-block" m1/opt 3>&- &
        pid=$!
        for _ in $(seq 100); do
            [ -s m1/opt/inner ] && break
            sleep 0.1
        done
        kill -s "$signal" "$pid"
        status=0
        wait "$pid" || status=$?
        [ "$status" -eq 143 ]
        [ "$(cat m1/opt/runs)" = $'start\nclosed' ]
        run ! kill -0 "$(cat m1/opt/inner)"
        [ ! -e m1/opt/cluster_done.mqwk ] && [ ! -e m1/opt/cluster.claim ] && [ ! -e m1/opt/cluster.failed ]
        [[ $(tail -n 1 m1/opt/cluster.log) == *": stopped by SIG$signal" ]]
    done
}

@test "a block that does not end when it is told to is killed" {
    for deaf in 'trap "" TERM' 'trap "echo heard >>runs" TERM'; do
        rm -f m1/opt/runs
        echo "$deaf; echo \$\$ >>runs; for i in {1..150}; do sleep 0.2; done; echo end >>runs" >m1/opt/comd
        MQKIT_GRACE=1 env --default-signal "$recipes/run-block" m1/opt 3>&- &
        pid=$!
        for _ in $(seq 100); do
            [ -s m1/opt/runs ] && break
            sleep 0.1
        done
        kill -TERM "$pid"
        begin=$SECONDS
        status=0
        wait "$pid" || status=$?
        [ "$status" -eq 143 ]
        [ $((SECONDS - begin)) -lt 10 ]
        run ! kill -0 "$(head -n 1 m1/opt/runs)"
        run ! grep end m1/opt/runs
        [ ! -e m1/opt/cluster.claim ] && [ ! -e m1/opt/cluster.failed ]
        [[ $(tail -n 1 m1/opt/cluster.log) == *": stopped by SIGTERM" ]]
    done
}

@test "names that a shell would take apart" {
    mv m2 'm 2 "$x" \'\''%s'
    "$recipes/run-local" -n opt
    table 2 0 0
    # Their own folder, too.
    cp -r "$recipes" "$BATS_TEST_TMPDIR/my \"recipes\" \$x"
    recipes="$BATS_TEST_TMPDIR/my \"recipes\" \$x"
    for with in xargs parallel; do
        command -v $with >/dev/null || continue
        rm m*/opt/cluster_done.mqwk
        "$recipes/run-local" -n opt --with $with
        table 2 0 0
    done
}

@test "every script says what is wrong, in one line" {
    told() { # <message> <script> <arguments>...
        run --separate-stderr "$recipes/$2" "${@:3}"
        [ "$status" -ne 0 ]
        [ "${stderr_lines[-1]}" = "$1" ] || { echo "$stderr"; return 1; }
    }
    told "block-status: name the task blocks with -n, for instance -n opt" block-status
    told "block-status: no block directory for -n nothing" block-status -n nothing
    told "block-status: --list is done, running, queued, failed or new, not 'all'" block-status -n opt --list all
    told "block-status: --done is any or marker, not 'status'" block-status -n opt --done status
    told "block-status: -n needs a value (usage: block-status [--path P] -n blocks [--done any|marker] [--list done|running|queued|failed|new])" block-status -n
    told "run-local: --at-once needs a positive number, not '0'" run-local -n opt --at-once 0
    told "run-local: --with is xargs or parallel, not 'make'" run-local -n opt --with make
    told "run-local: --only is failed or new, not 'done'" run-local -n opt --only done
    told "run-block: no such directory: none" run-block none
    told "run-block: no comd in $root/m1/soc: have it generated first" run-block m1/soc
    MQKIT_GRACE=long told "run-block: MQKIT_GRACE is a number of seconds, not 'long'" run-block m1/opt
    told "run-block: usage: run-block <block directory>" run-block
    told "block-job: usage: block-job <folder> <at once> <list> [<block directory>]" block-job
    MQKIT=no-such-mqkit told "block-status: 'no-such-mqkit' is needed and not in PATH" block-status -n opt
    run "$recipes/submit-chain" --help
    [ "$status" -eq 0 ]
    [[ ${lines[0]} == "usage: submit-chain "* ]]
}
