#!/usr/bin/env bats
# What the submit scripts of examples/cluster hand to a scheduler, which is a stand-in here.
bats_require_minimum_version 1.5.0
load expect
load siblings
load cluster

setup() { setup_recipes; }

@test "in a chain a block that mq.status calls rendered is an element without a block" {
    for tool in squeue sacct scontrol; do
        sibling $tool
    done
    sibling sbatch 'echo 5'
    printf 'opt RENDERED t -\n' >m1/mq.status
    "$recipes/submit-chain" -n opt,soc
    list=$(grep -l '/m2/opt$' .cluster/mqkit-*)
    diff "$list" <(printf '1\t\n2\t%s/m2/opt\n' "$root")
    SLURM_ARRAY_TASK_ID=1 "$recipes/block-job" "$recipes" 1 "$list"
    [ ! -e m1/opt/runs ]
    SLURM_ARRAY_TASK_ID=2 "$recipes/block-job" "$recipes" 1 "$list"
    [ -e m2/opt/cluster_done.mqwk ]
    SLURM_ARRAY_TASK_ID=3 run --separate-stderr "$recipes/block-job" "$recipes" 1 "$list"
    [ "$status" -eq 1 ]
    [ "$stderr" = "block-job: $list has no block for index 3" ]
}

@test "a case may be called as the folder of the lists is, but for its dot" {
    for tool in squeue sacct scontrol; do
        sibling $tool
    done
    sibling sbatch 'echo 5'
    "$recipes/submit-array" -n opt
    printf '1\n\nH 0 0 0\n' >../cluster.xyz
    "$MQKIT" project add --path . ../cluster.xyz
    # Nor is the folder a case itself, whatever lies in it.
    ln -s ../demo.projmq .cluster/demo.mq
    "$MQKIT" project exec -n opt --dry-run -- true | grep -qxF '[mqkit] note: 1 block directory/directories are missing.'
    mkdir cluster/opt
    cp m1/opt/comd cluster/opt
    [ "$("$recipes/block-status" -n opt --list new)" = "$root/cluster/opt	" ]
}

@test "a list of a submission can be read by colleagues; too many elements are told before anything is sent" {
    sibling squeue
    sibling sacct
    sibling sbatch 'echo 5'
    sibling scontrol 'echo "MaxArraySize = 3"'
    umask 022
    run --separate-stderr "$recipes/submit-array" -n opt --max 7 -- --time=1
    [ "$output" = "submit-array: job 5, 2 block(s) in 2 array task(s)" ]
    list="$(echo .cluster/mqkit-*)"
    [ "$(stat -c %a "$list")" = 644 ]
    [ "$(cat "$list")" = "1	$root/m1/opt
2	$root/m2/opt" ]
    grep -qF "sbatch --output=$root/.cluster/output/%x_%a.out --open-mode=append --requeue --signal=B:USR1@60 --time=1 --parsable --job-name=${list##*/} --array=1-2%7 $recipes/block-job $recipes 1 $root/$list in $root" "$RECORD"
    sibling scontrol 'echo "MaxArraySize = 2"'
    rm "$RECORD"
    run --separate-stderr "$recipes/submit-array" -n opt
    [ "$status" -eq 1 ]
    [ "${stderr_lines[-1]}" = "submit-array: 2 array tasks, and this site takes 1 in one array: bundle them, --bundle 2" ]
    run ! grep sbatch "$RECORD"
    sibling sbatch 'echo "no such partition" >&2; exit 1'
    run --separate-stderr "$recipes/submit-array" -n opt --bundle 2
    [ "$status" -eq 1 ]
    [ "${stderr_lines[-2]}" = "no such partition" ]
    [ "${stderr_lines[-1]}" = "submit-array: sbatch took nothing" ]
    [ "$(echo .cluster/mqkit-*)" = "$list" ]
}

@test "options of sbatch that would lose the jobs are refused" {
    for tool in squeue sacct scontrol; do
        sibling $tool
    done
    sibling sbatch 'echo 5'
    for script in submit-array submit-each submit-chain; do
        for word in -J -Jmine -HJ --job-name --job-name=mine --job -a -a1-3 --array=1-3 -M --clusters=all --test-only --test -W --wait; do
            run --separate-stderr "$recipes/$script" -n opt -- --hold "$word" mine
            [ "$status" -eq 1 ]
            [ "$stderr" = "$script: not behind --, where the jobs would get lost: $word" ]
        done
    done
    run --separate-stderr "$recipes/submit-chain" -n opt -- -d afterok:1
    [ "$stderr" = "submit-chain: not behind --, where the jobs would get lost: -d" ]
    run ! grep -s sbatch "$RECORD"
    [ ! -e .cluster ]
    # Others go to sbatch, before those that the scripts need.
    run "$recipes/submit-array" -n opt -- -p main --account=a --parsable -d afterok:1
    [ "$status" -eq 0 ]
    grep -q -- "--requeue --signal=B:USR1@60 -p main --account=a --parsable -d afterok:1 --parsable --job-name=mqkit-[^ ]* --array=1-2%1000000 $recipes/block-job " "$RECORD"
    sibling sbatch 'echo 5\;elsewhere' # with the name of its cluster
    run --separate-stderr "$recipes/submit-each" -n soc
    [ "$output" = "submit-each: 2 job(s), named $(basename "$(grep -l soc .cluster/mqkit-*)")" ]
    [ "$(cut -f 1 "$(grep -l soc .cluster/mqkit-*)" | xargs)" = "5 5" ]
    grep -q -- "--parsable --job-name=mqkit-[^ ]* $recipes/block-job $recipes 1 [^ ]* $root/m2/soc in" "$RECORD"
}

@test "a submission without the number of a job is none" {
    for tool in squeue sacct scontrol; do
        sibling $tool
    done
    sibling sbatch 'echo "sbatch: Job 5 to start at noon"'
    run --separate-stderr "$recipes/submit-array" -n opt
    [ "$status" -eq 1 ]
    [ "$output" = "" ]
    [ "${stderr_lines[-2]}" = "submit-array: sbatch named no job: 'sbatch: Job 5 to start at noon'" ]
    [ "${stderr_lines[-1]}" = "submit-array: sbatch took nothing" ]
    [ "$(echo .cluster/mqkit-*)" = ".cluster/mqkit-*" ]
    sibling sbatch
    run --separate-stderr "$recipes/submit-each" -n opt
    [ "$status" -eq 1 ]
    [ "${stderr_lines[-1]}" = "submit-each: 2 block(s) were not taken; run this again for them" ]
    run --separate-stderr "$recipes/submit-chain" -n opt,soc
    [ "$status" -eq 1 ]
    [ "${stderr_lines[-1]}" = "submit-chain: sbatch did not take \$opt; what stands above is in the queue" ]
    table 0 0 2
}

@test "cores and memory of a chain are those of the blocks, not of their texts" {
    for tool in squeue sacct scontrol; do
        sibling $tool
    done
    sibling sbatch 'echo 5'
    cat >demo.projmq <<'MQ'
$opt
  %keywords a
  %control
    totcore 2
    totmem 200
  %extrainput << END
$soc
  %control
    totcore 99
    totmem 99
END
$soc
  %keywords b
  %control
    totcore 3
  %extrainput << END
  %control
    totcore 98
END
MQ
    "$recipes/submit-chain" -n opt,soc
    [ "$(grep -o -- '--cpus-per-task=.* --parsable' "$RECORD" | sort)" = "--cpus-per-task=2 --mem=200M --parsable
--cpus-per-task=3 --parsable" ]
}
