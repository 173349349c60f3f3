# fmt, migrate and expand: whole output, messages, exit status, and what is on disk.
bats_require_minimum_version 1.5.0
load expect

setup() {
    setup_plain
    cat >legacy.mq <<'MQ'
dsl_version: 1
$opt
%keywords b3lyp/6-31g* opt
$sp
%source opt guess
%program script
%keywords /bin/sh -e
%body
echo "done" # kept
$fit
%source sp,opt
%program other
%keywords job=resp title="my fit"
MQ
    cat >migrated.expected <<'MQ'
dsl_version: 2

$opt
  %source origin
  %keywords "b3lyp/6-31g* opt"

$sp
  %source opt
  %program script
  %control
    guess true
  %runner "/bin/sh -e"
  %body << EOF
echo "done" # kept
EOF

$fit
  %source "sp,opt"
  %program other
  %when
    completed opt
  %template resp
  %param title="my fit"
MQ
    cat >legacy.warnings <<'MQ'
[WARNING] task 'sp' uses deprecated '%source ... guess' syntax; move guess into '%control' as 'guess true' or 'guess <task>'.
[WARNING] task 'fit' uses deprecated multi-dependency '%source a,b,...' syntax; use the first upstream as '%source' and express extra dependencies with '%when' completed <task> conditions.
[WARNING] task 'sp' uses deprecated '%keywords' as script runner/shebang; move the runner to '%runner'.
[WARNING] task 'fit' uses deprecated '%keywords' syntax for '%program other'; move template selection to '%template' plus '%param'.
[WARNING] task 'fit' does not read back: what is printed is refused: task 'fit' uses removed multi-dependency '%source a,b,...' syntax; keep the first task in %source and move the rest into '%when completed ...'
MQ
    printf '$a\n%%keywords hf\n' >a.mq
    printf 'dsl_version: 2\n\n$a\n  %%source origin\n  %%keywords hf\n' >a.expected
}

@test "fmt without an output mode prints to standard output" {
    expect 0 "$(cat a.expected)"$'\n' "" fmt a.mq
}

@test "running fmt on its own output yields the same text, for every example that fmt reads" {
    for example in "$MQKIT_SOURCE"/examples/tasks/*.mq; do
        [[ $example == */historical.mq ]] && continue
        "$MQKIT" fmt "$example" >once.mq
        "$MQKIT" fmt once.mq >twice.mq
        diff once.mq twice.mq
    done
}

@test "what does not read back is reported, in one line for every task, and printed all the same" {
    cat >lost.mq <<'MQ'
"define": 1
$" a"
%keywords hf
$b
%program script
%body << END
cat << EOF
EOF
END
$c
%interface provider
%control
alert false
geom check
%keywords hf
%args --opt
MQ
    local printed='dsl_version: 2
define: 1

$ a
  %source origin
  %keywords hf

$b
  %source origin
  %program script
  %body << EOF
cat << EOF
EOF
EOF

$c
  %source origin
  %keywords hf
'
    local read="[WARNING] task 'c' declares %args, but only '%program xtb' currently consumes that directive; the args will be ignored.
"
    local lost="[WARNING] setting 'define' does not read back: the prelude reads its line as something else
[WARNING] task ' a' does not read back: the name reads back as 'a'
[WARNING] task 'b' does not read back: %body holds a line 'EOF'
[WARNING] task 'c' does not read back: it is written without %interface provider, alert false, geom check, %args
"
    for command in fmt migrate expand "expand --expanded"; do
        # shellcheck disable=SC2086 # the command and its option are two words
        expect 0 "$printed" "$read$lost" $command lost.mq
    done
    expect 0 $'[mqkit] wrote task file: b.mq\n' "$read$lost" fmt lost.mq -o b.mq
    printf '%s' "$printed" | diff - b.mq
    expect 0 $'[mqkit] wrote task file: lost.mq\n' "$read$lost" migrate lost.mq -i
    printf '%s' "$printed" | diff - lost.mq
}

@test "fmt writes a new file or the source file" {
    expect 0 $'[mqkit] wrote task file: b.mq\n' "" fmt a.mq -o b.mq
    diff a.expected b.mq
    for option in --out --output; do
        rm b.mq
        expect 0 $'[mqkit] wrote task file: b.mq\n' "" fmt "$option" x/y "$option" b.mq a.mq
        diff a.expected b.mq
    done
    for option in -i --in-place; do
        printf '$a\n%%keywords hf\n' >a.mq
        expect 0 $'[mqkit] wrote task file: a.mq\n' "" fmt "$option" a.mq
        diff a.expected a.mq
    done
}

@test "fmt and migrate refuse wrong arguments before they read anything" {
    for command in fmt migrate; do
        refused "$command expects a <task.mq> path" $command
        refused "$command expects a <task.mq> path" $command -i
        refused "unknown argument: -x" $command missing.mq -x
        refused "unknown argument: " $command missing.mq ""
        refused "unknown argument: --expanded" $command missing.mq --expanded
        refused "unknown argument: -h" $command missing.mq -h
        for option in -o --out --output; do
            refused "$option expects a value" $command missing.mq $option
        done
        refused "unexpected extra path: b.mq" $command a.mq b.mq
        refused "use either --in-place or --out, not both" $command a.mq -o b.mq --in-place
        [ ! -e b.mq ]
    done
}

@test "expand refuses wrong arguments before it reads anything" {
    refused "expand expects a <task.mq> path" expand
    refused "expand expects a <task.mq> path" expand --expanded
    refused "unknown argument: --in-place" expand a.mq --in-place
    refused "unknown argument: " expand ""
    refused "--output expects a value" expand a.mq --output
    refused "unexpected extra path: b.mq" expand a.mq b.mq
}

@test "expand never overwrites its input, however the path is spelled" {
    ln -s a.mq link.mq
    for path in a.mq ./a.mq link.mq "$PWD/x/../a.mq"; do
        refused "expand never overwrites its input; choose a different --output path" expand a.mq -o "$path"
    done
    refused "expand never overwrites its input; choose a different --output path" expand missing.mq -o ./missing.mq
    diff - a.mq <<<$'$a\n%keywords hf'
}

@test "expand prints the document or writes it" {
    expect 0 "$(cat a.expected)"$'\n' "" expand a.mq
    expect 0 "$(cat a.expected)"$'\n' "" expand --expanded a.mq
    expect 0 "$(cat a.expected)"$'\n' "" expand a.mq --matrix-expanded
    expect 0 $'[mqkit] wrote task file: b.mq\n' "" expand a.mq -o b.mq
    diff a.expected b.mq
}

@test "fmt and expand refuse what migrate converts" {
    local fault="legacy.mq:11:1-11:15: error: task 'fit' uses removed multi-dependency '%source a,b,...' syntax; keep the first task in %source and move the rest into '%when completed ...'"
    local warning="[WARNING] task 'sp' uses deprecated '%source ... guess' syntax; move guess into '%control' as 'guess true' or 'guess <task>'."
    expect 1 "" "$warning"$'\n'"[mqkit][ERROR] $fault"$'\n' fmt legacy.mq
    expect 1 "" "$warning"$'\n'"[mqkit][ERROR] $fault"$'\n' expand legacy.mq
    cp legacy.mq before.mq
    expect 1 "" "$warning"$'\n'"[mqkit][ERROR] $fault"$'\n' fmt -i legacy.mq
    diff before.mq legacy.mq
    expect 0 "$(cat migrated.expected)"$'\n' "$(cat legacy.warnings)"$'\n' migrate legacy.mq
}

@test "migrate of its own output changes nothing" {
    "$MQKIT" migrate legacy.mq -o once.mq 2>/dev/null
    diff migrated.expected once.mq
    "$MQKIT" migrate once.mq -o twice.mq 2>/dev/null
    diff once.mq twice.mq
}

@test "what is no readable file is refused" {
    mkdir dir
    refused "could not open file: missing.mq" fmt missing.mq
    refused "could not open file: dir" migrate dir
}

@test "a file that cannot be written is told" {
    refused "could not write output file: no/dir/b.mq" fmt a.mq -o no/dir/b.mq
    refused "could not write output file: no/dir/b.mq" expand a.mq -o no/dir/b.mq
    refused "could not write output file: /dev/full" migrate a.mq -o /dev/full
}

@test "a write that fails leaves the old file whole" {
    { echo '$a'; echo '%process'; for i in $(seq 4000); do echo "  echo $i"; done; } >long.mq
    cp long.mq before.mq
    echo "another old text" >out.mq
    for command in "fmt -i" "migrate --in-place"; do
        limited 8 $command long.mq
        [ "$output" = "[mqkit][ERROR] could not write file: long.mq"$'\n'"status 1" ]
        cmp before.mq long.mq
    done
    for command in fmt migrate expand; do
        limited 8 $command long.mq -o out.mq
        [ "$output" = "[mqkit][ERROR] could not write output file: out.mq"$'\n'"status 1" ]
        diff - out.mq <<<"another old text"
        limited 8 $command long.mq -o new.mq
        [ "$output" = "[mqkit][ERROR] could not write output file: new.mq"$'\n'"status 1" ]
        [ ! -e new.mq ]
    done
}

@test "standard output that may not grow is lost output" {
    run bash -c '{ { ulimit -f 1; "$MQKIT" help fmt; "$MQKIT" help; } >out; echo "status $?"; } 2>&1 | cat'
    [ "$output" = "[mqkit][ERROR] could not write to standard output: File too large"$'\n'"status 1" ]
}

@test "output that nobody takes fails every command that prints" {
    local lost="[mqkit][ERROR] could not write to standard output: Bad file descriptor"
    for command in "fmt a.mq" "migrate a.mq" "expand a.mq" "explain a.mq" "lint a.mq" "fmt a.mq -o b.mq" "template list -d ."; do
        run --separate-stderr -1 bash -c '"$MQKIT" "$@" >&-' _ $command
        [ "$stderr" = "$lost" ]
        run --separate-stderr -1 bash -c '"$MQKIT" "$@" >/dev/full' _ $command
        [ "$stderr" = "[mqkit][ERROR] could not write to standard output: No space left on device" ]
        run bash -c '{ sleep 0.1; "$MQKIT" "$@"; echo "status $?" >&2; } 2>&1 >&3 3>&- | cat' _ $command 3> >(exec true)
        [ "$output" = "status 1" ]
    done
    "$MQKIT" fmt a.mq | diff - b.mq
    # What prints nothing has lost nothing.
    run --separate-stderr -1 bash -c '"$MQKIT" fmt missing.mq >&-'
    [ "$stderr" = "[mqkit][ERROR] could not open file: missing.mq" ]
}

@test "a file that no memory holds is one message and a failure" {
    truncate -s 4T huge.mq
    for command in fmt "fmt -i" migrate expand; do
        refused "could not open file: huge.mq" $command huge.mq
    done
    expect 1 "" $'could not open file: huge.mq\n' explain huge.mq
    [ "$(stat -c %s huge.mq)" -eq $((1 << 42)) ]
    run -1 "$MQKIT" lint huge.mq a.mq
    [ "${#lines[@]}" -eq 2 ]
    [[ "${lines[0]}" == *"huge.mq: error [parse-error] could not open file: "*huge.mq ]]
    [ "${lines[1]}" = "checked 2 file(s), 1 error(s), 0 warning(s)" ]
    mkdir -p project/m1
    ln huge.mq project/demo.projmq 2>/dev/null || truncate -s 4T project/demo.projmq
    ln -s ../demo.projmq project/m1/m1.mq
    refused "could not open file: $PWD/huge.mq" rename huge.mq a b
    refused "could not open file: $PWD/project/demo.projmq" rename project/demo.projmq a b
    run --separate-stderr -1 "$MQKIT" project exec --path project -n a -- true
    [ "$stderr" = "[mqkit][ERROR] failed to parse task file: could not open file: $PWD/project/demo.projmq (1 additional case parse error(s))" ]
}

@test "without memory there is one message with the path, and nothing is written" {
    ( ulimit -v 60000; "$MQKIT" help >/dev/null 2>&1 ) || skip "the program cannot be started with a limit of memory"
    awk 'BEGIN { for (i = 0; i < 20000; ++i) printf "$t%d\n  %%keywords \"b3lyp opt [func] %d\"\n  %%process\n    echo hallo\n", i, i }' >large.mq
    cp large.mq before.mq
    local command kilobytes told=0
    for command in "fmt large.mq" "migrate -i large.mq" "expand --expanded large.mq -o new.mq" "explain large.mq"; do
        for kilobytes in $(seq 9500 1000 20000); do
            # No memory for the libraries either, or for what they lay by for a first exception.
            ( ulimit -c 0; ulimit -v "$kilobytes"; "$MQKIT" help >/dev/null 2>&1 ) || continue
            run --separate-stderr bash -c 'ulimit -c 0; ulimit -v "$1"; shift; exec "$MQKIT" "$@"' _ "$kilobytes" $command
            [ "$status" -eq 1 ]
            [ "$output" = "" ]
            [[ "$stderr" =~ ^("[mqkit][ERROR] ")?("out of memory: large.mq"|"could not open file: large.mq")$ ]]
            [[ "$stderr" != *"out of memory: "* ]] || told=$((told + 1))
        done
    done
    [ "$told" -gt 20 ]
    cmp before.mq large.mq
    [ ! -e new.mq ]
}

@test "lint goes on with the next file when one lacks memory" {
    ( ulimit -v 60000; "$MQKIT" help >/dev/null 2>&1 ) || skip "the program cannot be started with a limit of memory"
    awk 'BEGIN { for (i = 0; i < 80000; ++i) printf "$t%d\n  %%keywords \"b3lyp opt %d\"\n", i, i }' >large.mq
    run --separate-stderr -1 bash -c 'ulimit -v 30000; exec "$MQKIT" lint large.mq a.mq'
    [ "$stderr" = "" ]
    [ "${#lines[@]}" -eq 2 ]
    [[ "${lines[0]}" == *"large.mq: error [parse-error] out of memory: "*large.mq ]]
    [ "${lines[1]}" = "checked 2 file(s), 1 error(s), 0 warning(s)" ]
}

@test "a source file that cannot be written in place is told" {
    # A file size limit of 0 fails every write to a file, for root too; the messages go through a pipe.
    run bash -c 'trap "" XFSZ; ulimit -f 0; exec "$MQKIT" fmt -i a.mq 2>&1 | cat'
    [ "$output" = "[mqkit][ERROR] could not write file: a.mq" ]
}

@test "the examples of every kind come out in canonical form" {
    "$MQKIT" fmt "$MQKIT_SOURCE/examples/tasks/marcus_slots.mq" >out
    diff - out <<'MQ'
dsl_version: 2

$neutral
  %source origin
  %keywords "b3lyp/6-31g(d) opt"

$cation
  %source neutral
  %keywords "ub3lyp/6-31g(d) opt"
  %mod
    charge add 1
    spin 2

$reorganisation
  %source
    geom neutral
    geom.cation cation
    geom.reference xyz=reference.xyz frame=3
    density cation kind=fchk
  %program other
  %template marcus
  %param method=b3lyp lambda=four-point
  %mod
    charge.cation 1
    spin.cation 2
    geom.reference select 1-12
    basisset def2-TZVP on=element:N,O role=aux-j ecp=none
  %meta
    strucid donor-017
MQ
}

@test "help of fmt" {
    expect 0 "$(cat <<'TEXT'
Usage:
  mqkit fmt <task.mq> [-o <output.mq> | --in-place]
      -- Reformats a task file into canonical DSL v2 layout.
      -- Formatting only; task semantics are preserved.
      -- Choose exactly one output mode: -o for a new file, or --in-place to overwrite the source file.

Options:
  -o, --output <output.mq>
      Write formatted output to a new file
  --in-place
      Overwrite the source task file

Examples:
  mqkit fmt task.mq -o formatted.mq
  mqkit fmt task.mq --in-place
TEXT
)"$'\n' "" fmt -h
}

@test "help of migrate" {
    expect 0 "$(cat <<'TEXT'
Usage:
  mqkit migrate <task.mq> [-o <output.mq> | --in-place]
      -- Converts legacy task syntax into canonical DSL v2 output.
      -- Intended for historical files, compatibility forms, or task files that need a unified modern layout.
      -- Choose exactly one output mode: -o for a new file, or --in-place to overwrite the source file.

Options:
  -o, --output <output.mq>
      Write migrated output to a new file
  --in-place
      Overwrite the source task file

Examples:
  mqkit migrate legacy.mq -o migrated.mq
  mqkit migrate legacy.mq --in-place
TEXT
)"$'\n' "" help migrate
}

@test "help of expand" {
    expect 0 "$(cat <<'TEXT'
Usage:
  mqkit expand <task.mq> [-o <output.mq>] [--expanded]
      -- Resolves task/YAML includes, contextual fragments, libraries, and @foreach blocks.
      -- Emits canonical DSL v2 without modifying the source file.
      -- By default matrix declarations remain unexpanded.

Options:
  -o, --output <output.mq>
      Write expanded output to a file instead of stdout
  --expanded, --matrix-expanded
      Emit final matrix-expanded task blocks and remove the matrix declaration

Examples:
  mqkit expand task.mq
  mqkit expand task.mq --expanded -o flattened.mq
TEXT
)"$'\n' "" expand --help
}

@test "on a terminal, expand's messages and unknown arguments carry the coloured tag, the others do not" {
    unset NO_COLOR
    export TERM=xterm
    script -qec "$MQKIT expand" /dev/null >out || true
    printf '\e[1m\e[31m[mqkit][ERROR]\e[0m expand expects a <task.mq> path\r\n' | diff - out
    script -qec "$MQKIT fmt" /dev/null >out || true
    printf '[mqkit][ERROR] fmt expects a <task.mq> path\r\n' | diff - out
    script -qec "$MQKIT fmt -x" /dev/null >out || true
    printf '\e[1m\e[31m[mqkit][ERROR]\e[0m unknown argument: -x\r\n' | diff - out
}

@test "a line of 50 MB, a million lines and deep parentheses are read" {
    { printf '$a\n%%keywords '; head -c 50000000 /dev/zero | tr '\0' x; } >wide.mq
    "$MQKIT" fmt wide.mq >out
    [ "$(wc -c <out)" -eq 50000049 ]
    { printf '$a\n'; yes '# comment' | head -n 1000000; printf '%%keywords hf\n'; } >long.mq
    expect 0 "$(cat a.expected)"$'\n' "" fmt long.mq
    { printf '$a\n%%when '; head -c 100000 /dev/zero | tr '\0' '('; printf 'completed b'; head -c 100000 /dev/zero | tr '\0' ')'; } >deep.mq
    "$MQKIT" fmt deep.mq >out
}
