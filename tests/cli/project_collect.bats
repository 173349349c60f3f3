# `project collect`: files from the block directories of all cases into one place.
bats_require_minimum_version 1.5.0
load expect
load siblings

setup() {
    setup_project
    rmdir m2/soc
    for case in m1 m2; do
        mkdir -p $case/opt/plot
        echo $case >$case/opt/opt.log
        echo $case >$case/opt/archive.tar.gz
        echo $case >$case/opt/plot/a.png
    done
}

@test "one block goes straight into results, each item under the name of its case" {
    expect_lines 0 "
[Project Collect]
  project template: $root/demo.projmq
  task blocks: \$opt
  patterns : *.log plot/*.png
  results  : $root/results

[mqkit] copy: $root/m1/opt/opt.log -> $root/results/opt_m1.log
[mqkit] copy: $root/m1/opt/plot/a.png -> $root/results/a_m1.png
[mqkit] copy: $root/m2/opt/opt.log -> $root/results/opt_m2.log
[mqkit] copy: $root/m2/opt/plot/a.png -> $root/results/a_m2.png

[mqkit] finished: collected 4 item(s) into $root/results" "" project collect -n opt '*.log' 'plot/*.png'
    cd results
    [ "$(tree)" = "./a_m1.png = m1|
./a_m2.png = m2|
./opt_m1.log = m1|
./opt_m2.log = m2|" ]
}

@test "several blocks get a directory each; the tasks are the outer loop" {
    echo soc >m1/soc/soc.log
    expect_lines 2 "
[Project Collect]
  project template: $root/demo.projmq
  task blocks: \$soc, \$opt
  patterns : *.log none
  results  : $root/results
  layout: multi-task mode writes to results/<task>/

[mqkit] copy: $root/m1/soc/soc.log -> $root/results/soc/soc_m1.log
[mqkit][SKIP] m1 / \$soc : none
[mqkit][SKIP] m2 / \$soc : block directory is missing
[mqkit] copy: $root/m1/opt/opt.log -> $root/results/opt/opt_m1.log
[mqkit][SKIP] m1 / \$opt : none
[mqkit] copy: $root/m2/opt/opt.log -> $root/results/opt/opt_m2.log
[mqkit][SKIP] m2 / \$opt : none

[mqkit] finished: collected 3 item(s) into $root/results
[mqkit] note: 1 case/task combinations are missing block directories." "" project collect -n soc,opt '*.log' none
}

@test "a repeated collect overwrites files and replaces directories" {
    rm -r m2
    "$MQKIT" project collect -n opt plot '*.gz'
    touch results/plot_m1/stale
    echo stale >results/archive.tar_m1.gz
    "$MQKIT" project collect -n opt plot '*.gz'
    cd results
    [ "$(tree)" = "./archive.tar_m1.gz = m1|
./plot_m1/
./plot_m1/a.png = m1|" ]
}

@test "a repeated collect overwrites a read-only file for an ordinary user" {
    chmod 0444 m1/opt/opt.log
    ordinary_user
    for text in first second; do
        rm m1/opt/opt.log
        echo $text >m1/opt/opt.log
        chmod 0444 m1/opt/opt.log
        run --separate-stderr "$MQKIT" project collect -n opt opt.log
        [ "$status" -eq 0 ]
        [ "$stderr" = "" ]
        [ "$(tree | grep results/)" = "./results/
./results/opt_m1.log = $text|
./results/opt_m2.log = m2|" ]
        [ "$(stat -c %a results/opt_m1.log)" = 444 ]
    done
}

@test "the older result stays until the new copy is whole" {
    "$MQKIT" project collect -n opt plot opt.log
    mkfifo m1/opt/plot/pipe
    head -c 5000 /dev/zero | tr '\0' x >m2/opt/opt.log
    echo more >>m1/opt/opt.log
    (
        trap '' XFSZ
        ulimit -f 2
        expect_lines 2 "
[Project Collect]
  project template: $root/demo.projmq
  task blocks: \$opt
  patterns : plot opt.log
  results  : $root/results

[mqkit] copy: $root/m1/opt/plot -> $root/results/plot_m1
[mqkit] copy: $root/m1/opt/opt.log -> $root/results/opt_m1.log
[mqkit] copy: $root/m2/opt/plot -> $root/results/plot_m2
[mqkit] copy: $root/m2/opt/opt.log -> $root/results/opt_m2.log

[mqkit] finished: collected 4 item(s) into $root/results
[mqkit] note: 2 collected item(s) failed to copy." "[mqkit][WARN] copy failed: $root/m1/opt/plot
[mqkit][WARN] copy failed: $root/m2/opt/opt.log" project collect -n opt plot opt.log
    )
    cd results
    [ "$(tree)" = "./opt_m1.log = m1|more|
./opt_m2.log = m2|
./plot_m1/
./plot_m1/a.png = m1|
./plot_m2/
./plot_m2/a.png = m2|" ]
}

@test "results are not collected into themselves" {
    # A case of that name: with two blocks its own block directory is where they go.
    mkdir -p results/opt results/soc
    cp -P m1/m1.mq results/results.mq
    echo r >results/opt/r.log
    # A block directory that is a link to the project holds all the results.
    rm -r m2/opt
    ln -s .. m2/opt
    before="$(tree)"
    for dry in "" --dry-run; do
        expect_lines 2 "
[Project Collect]
  project template: $root/demo.projmq
  task blocks: \$opt, \$soc
  patterns : r*${dry:+  (dry-run)}
  results  : $root/results
  layout: multi-task mode writes to results/<task>/

[mqkit][SKIP] m1 / \$opt : r*
[mqkit] copy: $root/m2/opt/results -> $root/results/opt/results_m2
[mqkit] copy: $root/results/opt/r.log -> $root/results/opt/r_results.log
[mqkit][SKIP] m1 / \$soc : r*
[mqkit][SKIP] m2 / \$soc : block directory is missing
[mqkit][SKIP] results / \$soc : r*

[mqkit] finished: collected 2 item(s) into $root/results
[mqkit] note: 1 case/task combinations are missing block directories.
[mqkit] note: 2 collected item(s) failed to copy." "[mqkit][WARN] copy failed: $root/m2/opt/results
[mqkit][WARN] copy failed: $root/results/opt/r.log" project collect -n opt,soc $dry 'r*'
        [ "$(tree)" = "$before" ]
    done
}

@test "a dry run makes the results directory and nothing in it" {
    expect_lines 2 "
[Project Collect]
  project template: $root/demo.projmq
  task blocks: \$opt, \$soc
  patterns : *.log  (dry-run)
  results  : $root/results
  layout: multi-task mode writes to results/<task>/

[mqkit] copy: $root/m1/opt/opt.log -> $root/results/opt/opt_m1.log
[mqkit] copy: $root/m2/opt/opt.log -> $root/results/opt/opt_m2.log
[mqkit][SKIP] m1 / \$soc : *.log
[mqkit][SKIP] m2 / \$soc : block directory is missing

[mqkit] finished: collected 2 item(s) into $root/results
[mqkit] note: 1 case/task combinations are missing block directories." "" project collect -n '*' --dry-run '*.log'
    [ -d results ]
    [ -z "$(ls -A results)" ]
}

@test "an item that cannot be copied is told and does not stop the rest" {
    rm m1/opt/opt.log
    mkfifo m1/opt/opt.log
    run --separate-stderr "$MQKIT" project collect -n opt '*.log'
    [ "$status" -eq 2 ]
    [ "$stderr" = "[mqkit][WARN] copy failed: $root/m1/opt/opt.log" ]
    [ "${lines[-2]}" = "[mqkit] finished: collected 2 item(s) into $root/results" ]
    [ "${lines[-1]}" = "[mqkit] note: 1 collected item(s) failed to copy." ]
    [ "$(ls results)" = "opt_m2.log" ]
}

@test "a pattern never leaves the block directory" {
    for pattern in '../*.mq' '..' '/etc/passwd' 'plot/../../*'; do
        run --separate-stderr "$MQKIT" project collect -n opt "$pattern"
        [ "$status" -eq 0 ]
        [ "${lines[-1]}" = "[mqkit] finished: collected 0 item(s) into $root/results" ]
    done
    [ -z "$(ls -A results)" ]
}

@test "what is missing or in the way is told" {
    run --separate-stderr -1 "$MQKIT" project collect -n opt
    [ "$stderr" = "[mqkit][ERROR] project collect requires at least one glob pattern." ]
    [ "${lines[0]}" = "Usage:" ]
    run --separate-stderr -1 "$MQKIT" project collect -n none '*'
    [ "$stderr" = "[mqkit][ERROR] task block not found in .projmq: none
available task blocks: opt, soc" ]
    mkdir results
    touch results/opt
    run --separate-stderr -1 "$MQKIT" project collect -n opt,soc '*'
    [ "$stderr" = "[mqkit][ERROR] could not create result directory: $root/results/opt" ]
    rm -r results
    touch results
    expect_lines 1 "" "[mqkit][ERROR] could not create results directory: $root/results" project collect -n opt '*'
}

@test "what a killed run left unfinished goes with the next" {
    mkdir results
    gone="$(sh -c 'echo $$')"
    echo half >"results/.mqkit-$(uname -n)-$gone-0"
    echo half >"results/.mqkit-$(uname -n)-$$-0" # that process is there
    echo half >"results/.mqkit-another.host-$gone-0"
    run --separate-stderr "$MQKIT" project collect -n opt --dry-run '*.log'
    [ "$(ls -A results | wc -l)" -eq 3 ]
    run --separate-stderr "$MQKIT" project collect -n opt '*.log'
    [ "$status" -eq 0 ]
    [ "$(cd results && printf '%s\n' .mqkit* * | sort)" = "$(printf '%s\n' ".mqkit-$(uname -n)-$$-0" ".mqkit-another.host-$gone-0" opt_m1.log opt_m2.log | sort)" ]
}
