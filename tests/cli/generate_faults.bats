# Faults and warnings of the generating stages as a user meets them: whole output, status.

bats_require_minimum_version 1.5.0
load expect

setup() {
    setup_plain
}

@test "a missing include is a warning and the other tasks are there" {
    printf '$a\n&INCLUDE none.mq\n$b\n' >t.mq
    run --separate-stderr "$MQKIT" expand t.mq
    [ "$status" -eq 0 ]
    [[ "$stderr" = *"Warning: Included task file not found: $PWD/none.mq" ]]
    [ "$output" = $'dsl_version: 2\n\n$a\n  %source origin\n\n$b\n  %source origin' ]
}

@test "cycles tell the whole chain" {
    printf '&INCLUDE b.mq\n' >a.mq
    printf '&INCLUDE c.mq\n' >b.mq
    ln -s a.mq c.mq
    refused "task include cycle detected: $PWD/a.mq -> $PWD/b.mq -> $PWD/c.mq" expand a.mq
    printf '&INCLUDE a.mqlib as a\n&FRAGMENT text x\n' >a.mqlib
    printf '&INCLUDE a.mqlib as a\n' >l.mq
    refused "fragment library include cycle detected: $PWD/a.mqlib -> $PWD/a.mqlib" expand l.mq
}

@test "a message points into the fragment" {
    printf '&FRAGMENT task opt\n%%foo\n' >l.mqlib
    printf '&INCLUDE l.mqlib as l\n$a\n&INCLUDE l.opt\n' >t.mq
    refused "$PWD/l.mqlib:2:1-2:5: error: task 'a' contains unknown directive '%foo'" expand t.mq
}

@test "a FIFO is no file and does not block" {
    mkfifo pipe.mq pipe.mqlib pipe.mqfrag pipe.yaml
    printf '&INCLUDE pipe.mqlib as p\n' >l.mq
    refused "fragment library not found: $PWD/pipe.mqlib" expand l.mq
    printf '$a\n&INCLUDE pipe.mqfrag\n' >f.mq
    refused "included fragment file not found: $PWD/pipe.mqfrag" expand f.mq
    printf '&INCLUDE pipe.yaml\n$a\n&INCLUDE pipe.mq\n' >t.mq
    run --separate-stderr "$MQKIT" expand t.mq
    [ "$status" -eq 0 ]
    [ "${#stderr_lines[@]}" -eq 2 ]
    [[ "${stderr_lines[0]}" = *"Warning: Included YAML file not found: $PWD/pipe.yaml" ]]
    [[ "${stderr_lines[1]}" = *"Warning: Included task file not found: $PWD/pipe.mq" ]]
}

@test "libraries are found through the environment and through morquill.conf" {
    mkdir one two
    printf '&FRAGMENT task opt\n%%keywords one\n' >one/l.mqlib
    printf '&FRAGMENT task opt\n%%keywords two\n' >two/l.mqlib
    printf '&INCLUDE <l.mqlib> as l\n$a\n&INCLUDE l.opt\n' >t.mq
    printf 'MORQUILL_MQLIB_PATH = $MORQUILL_CONFIG_DIR/two\n' >morquill.conf
    run --separate-stderr "$MQKIT" expand t.mq
    [ "$output" = $'dsl_version: 2\n\n$a\n  %source origin\n  %keywords two' ]
    MORQUILL_MQLIB_PATH="none:$PWD/one" run --separate-stderr "$MQKIT" expand t.mq
    [ "$output" = $'dsl_version: 2\n\n$a\n  %source origin\n  %keywords one' ]
}

@test "faults of the prelude, of loops and of the matrix end the command" {
    printf 'a: [1\n$t\n' >y.mq
    refused "failed to parse YAML prelude in 'y.mq': yaml-cpp: error at line 2, column 1: end of sequence flow not found" expand y.mq
    printf '@foreach mols\n$t\n@end\n' >f.mq
    refused "undefined @foreach collection 'mols'" expand f.mq
    printf 'matrix:\n  a: 1\n  - b: 2\n$t\n' >m.mq
    refused "matrix cannot mix mapping syntax with list syntax" expand m.mq
    printf '%%process\n' >d.mq
    refused "d.mq:1: task directive appears outside a task block" expand d.mq
}

@test "a frame that no define fills is told with its task and place" {
    printf '$a\n  %%source\n    geom.s xyz=a.xyz frame=[n]\n    geom a\n' >t.mq
    refused "t.mq:2:3-2:10: error: task 'a' has invalid structured %source: structured %source binding 'geom.s' has an invalid frame selector; frame must be a positive integer" expand t.mq
}

@test "a matrix of one combination leaves conditions as they are written" {
    printf 'matrix:\n  m: 1\n$a\n$b_[m]\n  %%when {{a.energy}} < {{  b_[m].e}}\n' >t.mq
    run --separate-stderr "$MQKIT" expand --expanded t.mq
    [ "$status" -eq 0 ]
    [ "$stderr" = "" ]
    [ "$output" = $'dsl_version: 2\n\n$a\n  %source origin\n\n$b_1\n  %source origin\n  %when\n    {{a.energy}} < {{  b_1.e}}' ]
}

@test "an invalid header value of an included file is kept and told once" {
    printf 'totcore: many\n$b\n' >b.mq
    printf '$a\n&INCLUDE b.mq\n' >t.mq
    run --separate-stderr "$MQKIT" expand t.mq
    [ "$status" -eq 0 ]
    [ "${#stderr_lines[@]}" -eq 1 ]
    [[ "$stderr" = *"task file '$PWD/b.mq' has invalid header metadata totcore='many'; ignoring it." ]]
    [ "$output" = $'dsl_version: 2\ntotcore: many\n\n$a\n  %source origin\n\n$b\n  %source origin' ]
}
