# The steps of script/test-cluster: each runs a recipe, breaks something and checks what came of it.
# shellcheck disable=SC2317,SC2154 # run_step calls the steps; the script sets cases, recipes, scratch, MQKIT

checks=0
failures=0
figures=()

check() { # <what> <expected> <actual>
    checks=$((checks + 1))
    [[ $2 == "$3" ]] && return
    failures=$((failures + 1))
    echo "NOT OK: $1: expected '$2', got '$3'"
}

now_ms() { date +%s%3N; }

run_step() { # <function>: its wall time and what it says in `note` become a line of the figures
    local begin seconds
    note=''
    begin=$(now_ms)
    "$1"
    seconds=$(awk -v ms="$(($(now_ms) - begin))" 'BEGIN { printf "%.1f", ms / 1000 }')
    figures+=("$(printf '%-14s %6s s  %s' "${1#step_}" "$seconds" "$note")")
    echo "${figures[-1]}"
}

print_figures() {
    local i one
    mkdir -p "$scratch/empty"
    echo true >"$scratch/empty/comd"
    one=$(now_ms)
    for i in $(seq 20); do
        rm -f "$scratch/empty/cluster_done.mqwk"
        "$recipes/run-block" "$scratch/empty"
    done
    one=$((($(now_ms) - one) / 20))
    echo "run-block alone: $one ms a block; submissions in all: $(find "$project/.cluster" -maxdepth 1 -name 'mqkit-*' 2>/dev/null | wc -l)," \
        "$(sacct -n -X -P -o JobID | wc -l) jobs and array tasks"
}

# The project: blocks for the recipes one by one, and a chain of three. Stand-ins for the siblings make block
# directories; a comd notes its start and its end, sleeps 0.2 s or as long as there is `hold`, fails while there is `fail`
# and hangs at its first start while there is `hang`; while there is `deaf` it does not hear SIGTERM.
make_project() {
    local i work=$scratch/work
    mkdir -p "$work" "$scratch/bin"
    for i in $(seq "$cases"); do
        printf '1\n\nH 0 0 0\n' >"$work/m$i.xyz"
    done
    cp "$(dirname "${BASH_SOURCE[0]}")/cases.mq" "$work/cases.mq"
    cp "$(dirname "${BASH_SOURCE[0]}")/morquill" "$scratch/bin/morquill"
    ln -sf "$MQKIT" "$scratch/bin/mqkit"
    export PATH=$scratch/bin:$PATH
    (cd "$work" && printf 'cases\nn\n' | MORQUILL_TASK_PATH=$scratch/projects mqkit project init) >"$scratch/init.out" 2>&1
    project=$scratch/projects/cases
    cd "$project" || exit 1
    mqkit project rebuild --path cases.projmq -n '*' </dev/null >"$scratch/rebuild.out" 2>&1
    check "block directories" $((cases * 8)) "$(find . -name comd | wc -l)"
    [[ $failures -eq 0 ]] || exit 1
}

# counted <block> <word>: how many cases have each number of that word in `runs`, as "<cases>x<number>"
counted() {
    local i
    for i in $(seq "$cases"); do
        grep -cx "$2" "m$i/$1/runs" 2>/dev/null || [[ -e m$i/$1/runs ]] || echo 0
    done | sort -n | uniq -c | awk '{ printf "%s%sx%s", (NR > 1 ? " " : ""), $1, $2 }'
}

queue_is_empty() { [[ -z $(squeue -h) ]]; }
drained() { wait_until "${1:-180}" queue_is_empty || check "the queue within ${1:-180} s" empty "$(squeue -h | head -3)"; }
started_in() { [[ -s $1/runs ]]; }
none_runs() { [[ -z $(squeue -h -t running,completing) ]]; }
table_row() { "$recipes/block-status" -n "$1" | awk -v b="$1" '$1 == b { print $2, $3, $4, $5, $6 }'; }
job_of() { squeue -h -r -o '%F_%K' | grep "_$1\$"; } # the job of an array index

# Recipe 1 and 4, and of 5 the node that goes: one array; five blocks are done by mq.status, one fails, one is
# cancelled, one requeued by hand, the node is drained for a while and lost once.
step_array() {
    local i
    for i in 1 2 3 4 5; do
        printf 'preopt RENDERED 2026-01-01T00:00:00Z -\n' >"m$i/mq.status"
    done
    check "before" "5 0 0 0 $((cases - 5))" "$(table_row preopt)"
    touch m10/preopt/fail m20/preopt/hang m30/preopt/hang m99/preopt/hang
    note=$("$recipes/submit-array" -n preopt --max 40 2>/dev/null)
    check "the first submission" "$((cases - 5)) block(s) in $((cases - 5)) array task(s)" "${note#*, }"
    # mqkit lists the cases by name: the index of one is its line in the list.
    local list cancelled requeued
    list=$(echo .cluster/mqkit-*)
    cancelled=$(awk '/\/m20\/preopt$/ { print $1 }' "$list")
    requeued=$(awk '/\/m30\/preopt$/ { print $1 }' "$list")
    wait_until 60 started_in m20/preopt && scancel "$(job_of "$cancelled")"
    wait_until 60 started_in m30/preopt && scontrol requeue "$(job_of "$requeued")"
    scontrol update nodename=localhost state=drain reason=test
    wait_until 60 none_runs
    check "on a drained node what runs comes to its end" yes "$(none_runs && echo yes)"
    check "the others wait" yes "$([[ $(squeue -h -r | wc -l) -gt 0 ]] && echo yes)"
    scontrol update nodename=localhost state=resume
    wait_until 60 started_in m99/preopt
    sleep 1
    scontrol update nodename=localhost state=down reason=test
    wait_until 30 none_runs
    scontrol update nodename=localhost state=resume 2>/dev/null # it may be back already
    drained 240
    check "after the first submission" "$((cases - 2)) 0 0 2 0" "$(table_row preopt)"
    check "what failed" $'m10\texit 3\nm20\tlost: CANCELLED by 0' \
        "$("$recipes/block-status" -n preopt --list failed | sed 's|^.*/\(m[0-9]*\)/preopt|\1|' | sort)"
    rm m10/preopt/fail
    check "the failed ones alone" "2 block(s) in 2 array task(s)" \
        "$("$recipes/submit-array" -n preopt --only failed 2>/dev/null | sed 's/^.*, \(.*,\)*//')"
    drained
    check "a third submission" "submit-array: nothing to send" "$("$recipes/submit-array" -n preopt 2>/dev/null)"
    check "each ended once, those of mq.status never" "5x0 $((cases - 5))x1" "$(counted preopt end)"
    check "what was requeued and what lost its node began twice" "2 2" \
        "$(grep -c start m30/preopt/runs) $(grep -c start m99/preopt/runs)"
    note="$cases cases, 2 submissions, at most 40 at once; node drained and lost in between"
}

# Recipe 2: one job a block, never more than 10 in the queue.
step_each() {
    local most=0 n
    MQKIT_POLL=0.2 "$recipes/submit-each" -n grid --cap 10 >"$scratch/each.out" 2>&1 &
    local sender=$!
    while kill -0 "$sender" 2>/dev/null; do
        n=$(squeue -h -r | wc -l)
        [[ $n -le $most ]] || most=$n
        sleep 0.2
    done
    wait "$sender"
    check "submit-each ends with" 0 $?
    drained
    check "up to the cap, and never above it" yes "$([[ $most -ge 8 && $most -le 10 ]] && echo yes || echo "$most")"
    check "one job a block" "$cases 0 0 0 0" "$(table_row grid)"
    check "each ended once" "${cases}x1" "$(counted grid end)"
    note="$cases jobs, $cases submissions, at most $most in the queue"
}

# Recipe 2: bundles of 25 blocks, 8 of them at a time; one fails and does not stop its bundle.
step_bundles() {
    touch m7/charges/fail
    note=$("$recipes/submit-array" -n charges --bundle 25 --at-once 8 -- --cpus-per-task=8 2>/dev/null)
    check "bundles" "$cases block(s) in $((cases / 25)) array task(s)" "${note#*, }"
    drained
    check "one failed" "$((cases - 1)) 0 0 1 0" "$(table_row charges)"
    rm m7/charges/fail
    "$recipes/submit-array" -n charges --only failed >/dev/null 2>&1
    drained
    check "each ended once" "${cases}x1" "$(counted charges end)"
    mqkit project rebuild --path cases.projmq -n charges </dev/null >/dev/null 2>&1
    check "a rebuild forgets those that were sent, too" "0 0 0 0 $cases" "$(table_row charges)"
    note="$cases blocks in $((cases / 25)) array tasks, 2 submissions"
}

# Recipe 3: search, opt, energy. One search fails: its case goes no further, all others do. One is done by mq.status: its
# case goes on without it.
step_chain() {
    touch m40/search/fail
    printf 'search RENDERED 2026-01-01T00:00:00Z -\n' >m50/mq.status
    local out
    out=$("$recipes/submit-chain" -n search,opt,energy --max 30 2>/dev/null)
    check "three arrays" 3 "$(wc -l <<<"$out")"
    check "two wait for the one before" 2 "$(grep -c ', after aftercorr:' <<<"$out")"
    drained 300
    check "search" "$((cases - 1)) 0 0 1 0" "$(table_row search)"
    check "opt" "$((cases - 1)) 0 0 1 0" "$(table_row opt)"
    check "energy" "$((cases - 1)) 0 0 1 0" "$(table_row energy)"
    check "what follows a failure never starts" no "$([[ -e m40/opt/runs || -e m40/energy/runs ]] && echo yes || echo no)"
    check "cores and memory" $'1 100M\n2 200M\n4 800M' \
        "$(for block in search opt energy; do sacct -n -X -P --name="$(sent_for "$block")" -o AllocCPUS,ReqMem | sort -u | tr '|' ' '; done)"
    check "in their order in every case" 0 "$(out_of_order)"
    rm m40/search/fail
    out=$("$recipes/submit-chain" -n search,opt,energy --join 2>/dev/null)
    check "only the case that is left is sent" 2 "$(grep -c ', 1 case(s), after afterok:' <<<"$out")"
    drained
    check "each search ended once, that of mq.status never" "1x0 $((cases - 1))x1" "$(counted search end)"
    for block in opt energy; do
        check "each $block ended once" "${cases}x1" "$(counted "$block" end)"
    done
    note="$((3 * cases)) blocks, 6 submissions"
}

sent_for() { basename "$(grep -l "/$1\$" .cluster/mqkit-* | head -n 1)"; }

out_of_order() { # cases in which a block began before the one that it depends on had ended
    local i n=0
    for i in $(seq "$cases"); do
        [[ $i -eq 40 ]] && continue
        [[ ! m$i/opt/cluster_done.mqwk -ot m$i/search/cluster_done.mqwk &&
            ! m$i/energy/cluster_done.mqwk -ot m$i/opt/cluster_done.mqwk ]] || n=$((n + 1))
    done
    echo "$n"
}

begun_after_end() { # <block>: in how many cases it began again after its end
    awk 'FNR == 1 { ended = 0 } $1 == "end" { ended = 1; next } ended { print FILENAME; ended = 0 }' m*/"$1"/runs | wc -l
}

# Recipe 5: a bundle runs into its time limit with one block that hangs, and does not hear that it is to end. It is
# stopped and requeued; what had ended is not repeated.
step_limit() {
    local last # of the list, and so of the array: its element has the number of the array
    last=$(seq "$cases" | sed 's/^/m/' | LC_ALL=C sort | tail -n 1)
    touch "$last/long/hang" "$last/long/deaf" m1/long/fail
    "$recipes/submit-array" -n long --bundle 20 --at-once 4 -- --time=1 --signal=B:USR1@40 >/dev/null 2>&1
    drained 300
    check "all done after the limit but the one that fails" "$((cases - 1)) 0 0 1 0" "$(table_row long)"
    # On a busy machine other bundles are at work for so long that the signal interrupts some of their blocks, too.
    check "the block that hung began again" yes "$([[ $(grep -c start "$last/long/runs") -ge 2 ]] && echo yes)"
    check "what had ended never did" 0 "$(begun_after_end long)"
    check "each ended once" "1x0 $((cases - 1))x1" "$(counted long end)"
    check "its log tells" 1 "$(grep -c 'stopped by SIG' "$last/long/cluster.log")"
    rm m1/long/fail
    note="$cases blocks in $((cases / 20)) array tasks, one requeued"
}

# The same without a scheduler: a failure with xargs, the rest with GNU parallel.
step_local() {
    touch m3/freq/fail
    "$recipes/run-local" -n freq --at-once 8 >/dev/null 2>&1
    check "xargs tells of the failure" 1 $?
    check "one failed" "$((cases - 1)) 0 0 1 0" "$(table_row freq)"
    rm m3/freq/fail
    "$recipes/run-local" -n freq --with parallel >/dev/null 2>&1
    check "parallel runs what is left" 0 $?
    check "each ended once" "${cases}x1" "$(counted freq end)"
    note="$cases blocks, 8 at once"
}

# Two people start everything at the same time, and the markers were forgotten by a rebuild.
step_two_at_once() {
    mqkit project rebuild --path cases.projmq -n freq </dev/null >/dev/null 2>&1
    check "a rebuild forgets the markers" "0 0 0 0 $cases" "$(table_row freq)"
    find . -path '*/freq/runs' -delete
    "$recipes/run-local" -n freq --at-once 4 >/dev/null 2>&1 &
    "$recipes/run-local" -n freq --at-once 4 --with parallel >/dev/null 2>&1 &
    wait_for_children
    check "all done" "$cases 0 0 0 0" "$(table_row freq)"
    check "each ended once" "${cases}x1" "$(counted freq end)"
    note="$cases blocks, sent twice at the same time"
}

# run-local in a job that no list names, and in a shell of salloc, which outlives its allocation: nobody else runs its
# blocks meanwhile.
step_unlisted() {
    local i way
    for way in sbatch salloc; do
        hold_eight_blocks
        "in_a_job_of_$way"
        for i in {1..8}; do
            wait_until 60 started_in m"$i"/freq
        done
        [[ $way == sbatch ]] || { scancel "$(cat "$scratch/allocation")" && drained; }
        check "$way: they run" "$((cases - 8)) 8 0 0 0" "$(table_row freq)"
        check "$way: they are not sent" "submit-array: nothing to send" "$("$recipes/submit-array" -n freq 2>/dev/null)"
        rm m*/freq/hold
        wait_for_children
        drained
        check "$way: all done" "$cases 0 0 0 0" "$(table_row freq)"
        check "$way: each began once" "$((cases - 8))x0 8x1" "$(counted freq start)"
    done
    lost_in_a_job
    note="8 blocks, three times"
}
hold_eight_blocks() {
    local i
    mqkit project exec -n freq -- 'rm -f runs cluster.failed; echo "not in this test" >cluster_done.mqwk' >/dev/null
    for i in {1..8}; do
        rm m"$i"/freq/cluster_done.mqwk
        touch m"$i"/freq/hold
    done
}
# As a node that goes down leaves them: killed at once, with their claims. The job begins its second round.
lost_in_a_job() {
    local i job
    hold_eight_blocks
    in_a_job_of_sbatch
    for i in {1..8}; do
        wait_until 60 started_in m"$i"/freq
    done
    job=$(squeue -h -o %A)
    for i in {1..8}; do
        kill_all_in "m$i/freq"
    done
    wait_until 60 none_runs
    check "killed: their claims are left" 8 "$(cat m[1-8]/freq/cluster.claim | grep -c "^slurm $(id -un) $job 0$")"
    rm m*/freq/hold
    scontrol requeue "$job"
    drained
    check "killed: all done in the second round" "$cases 0 0 0 0" "$(table_row freq)"
    check "killed: each ended once" "$((cases - 8))x0 8x1" "$(counted freq end)"
    check "killed: each began twice" "$((cases - 8))x0 8x2" "$(counted freq start)"
}
kill_all_in() { # <directory>: the processes that work there, all at once
    local here pids
    here=$(cd "$1" && pwd -P)
    mapfile -t pids < <(find /proc -maxdepth 2 -path '/proc/[0-9]*/cwd' -lname "$here" 2>/dev/null | cut -d / -f 3)
    [[ ${#pids[@]} -eq 0 ]] || kill -KILL "${pids[@]}" 2>/dev/null
}
in_a_job_of_sbatch() {
    sbatch --requeue --open-mode=append --output="$scratch/wrap.out" --cpus-per-task=8 --wrap "'$recipes/run-local' -n freq --at-once 8" >/dev/null
}
in_a_job_of_salloc() {
    # shellcheck disable=SC2016 # its shell expands it
    salloc bash -c 'echo "$SLURM_JOB_ID" >"$1"; "$2" -n freq --at-once 8' bash "$scratch/allocation" "$recipes/run-local" \
        </dev/null >"$scratch/salloc.out" 2>&1 &
}

# The last step: a block that still runs when the node is stopped.
step_left_running() {
    mqkit project exec -n preopt -- 'rm -f runs; echo "not in this test" >cluster_done.mqwk' >/dev/null
    rm m1/preopt/cluster_done.mqwk
    touch m1/preopt/hang
    "$recipes/submit-array" -n preopt --done marker >/dev/null 2>&1
    wait_until 60 started_in m1/preopt
    check "a block runs" "$((cases - 1)) 1 0 0 0" "$("$recipes/block-status" -n preopt --done marker | awk 'NR == 2 { print $2, $3, $4, $5, $6 }')"
    note="one job"
}

wait_for_children() { # all but the daemons
    local pid
    for pid in $(jobs -p); do
        [[ " ${daemons[*]} " == *" $pid "* ]] || wait "$pid"
    done
}

# What a block costs beside its own 0.2 s when 64 of them have room: one array task each, or bundles of 25.
step_overhead() {
    local begin bundle
    note='a block costs beside its own time'
    for bundle in 1 25; do
        mqkit project exec -n grid -- rm -f cluster_done.mqwk runs >/dev/null
        begin=$(now_ms)
        "$recipes/submit-array" -n grid --bundle "$bundle" --at-once 8 -- --cpus-per-task="$((bundle > 8 ? 8 : 1))" \
            >/dev/null 2>&1
        drained
        check "each ended once" "${cases}x1" "$(counted grid end)"
        note+=", $((($(now_ms) - begin) / cases - 200 / 64)) ms in bundles of $bundle"
    done
}

step_collect() {
    mqkit project collect -n energy 'energy.log' 'cluster.log' >"$scratch/collect.out" 2>&1
    check "collect ends with" 0 $?
    check "what it has gathered" "$((2 * cases))" "$(find results -type f | wc -l)"
    check "a log of a job" 1 "$(grep -c 'ended well' results/cluster_m17.log)"
    note="$((2 * cases)) files"
}

# docs/cluster.md, word by word: all its shell blocks in their order, in the project that it speaks of.
step_document() {
    local home=$scratch/home
    mkdir -p "$home/projects"
    (cd "$source/examples/water-clusters" &&
        printf 'clusters\nn\n' | MORQUILL_TASK_PATH=$home/projects mqkit project init &&
        mqkit project rebuild --path "$home/projects/clusters/clusters.projmq" -n '*' </dev/null) >"$scratch/document.out" 2>&1
    awk '/^```sh/ { on = 1; next } /^```/ { on = 0 } on' "$source/docs/cluster.md" >"$scratch/document.sh"
    check "commands in the page" yes "$([[ $(wc -l <"$scratch/document.sh") -gt 20 ]] && echo yes)"
    (cd "$source" && HOME=$home USER=$(id -un) bash -euo pipefail "$scratch/document.sh") >>"$scratch/document.out" 2>&1
    check "every one ends well" 0 $?
    drained
    cd "$home/projects/clusters" || exit 1
    check "four blocks with two functionals, in four cases" "8 4 0 0 0 0" \
        "$("$recipes/block-status" -n '*' | awk 'NR > 1 { print $2, $3, $4, $5, $6 }' | uniq -c | awk '{ $1 = $1 } 1')"
    cd "$project" || exit 1
    note="$(grep -c . "$scratch/document.sh") lines of shell"
}
