# How a command line finds its command: names, unique prefixes, help topics, and the older shapes.

setup() {
    export NO_COLOR=1
    cd "$BATS_TEST_TMPDIR"
    top_help="$("$MQKIT" help)"
}

# expect <status> <standard output> <standard error> <arguments>...: all of it to the byte.
expect() {
    local status=0
    "$MQKIT" "${@:4}" >out 2>err || status=$?
    [ "$status" -eq "$1" ]
    printf '%s' "$2" | diff - out
    printf '%s' "$3" | diff - err
}

# refused <message> <arguments>...: one message, the whole help, status 1.
refused() { expect 1 "$top_help"$'\n' "[mqkit][ERROR]$1"$'\n' "${@:2}"; }

@test "an unknown word is refused as it was written" {
    refused " unknown command or argument: Nothing" Nothing
    refused " unknown command or argument: fmtx" fmtx
    refused " unknown command or argument: -x" -x fmt
    refused " unknown command or argument: a.mq" a.mq
    refused " unknown command or argument: "$'\xff\x01' $'\xff\x01'
}

@test "an empty first argument is an unknown one" {
    refused " unknown command or argument: " ""
    refused " unknown command or argument: " "" fmt
}

@test "an ambiguous prefix lists its commands in table order" {
    refused " ambiguous command prefix: e (matches: expand, explain)" e
    refused " ambiguous command prefix: Exp (matches: expand, explain)" Exp a.mq
    refused " ambiguous command prefix: ex (matches: expand, explain)" ex demo.projmq -n opt
}

@test "a help topic may be a prefix in any case; unknown and ambiguous ones are refused" {
    refused " ambiguous help topic prefix: e (matches: expand, explain)" help e
    refused " ambiguous help topic prefix: E (matches: expand, explain)" --HELP E x
    refused " unknown help topic: nothing" help nothing
    refused " unknown help topic: Nothing" -h Nothing fmt
    refused " unknown help topic: " help ""
    refused " unknown help topic: --help" help --help
}

@test "help <topic> is the help of that command" {
    "$MQKIT" help lint >help
    [ "$(head -n 1 help)" = "  Lint .mq files and directories." ]
    expect 0 "$(cat help)"$'\n' "" HELP LINT further words
    "$MQKIT" help rename >help
    [ "$(sed -n 2p help)" = "  mqkit rename <task.mq|task.projmq> <old_block> <new_block>" ]
    expect 0 "$(cat help)"$'\n' "" --help rename
}

@test "a help token right behind a file command is its help, further back it is the command's own matter" {
    for command in fmt migrate expand explain; do
        "$MQKIT" help "$command" >help
        [ -s help ]
        for token in -h help --help; do
            expect 0 "$(cat help)"$'\n' "" "$command" "$token"
            expect 0 "$(cat help)"$'\n' "" "$command" "$token" x.mq
        done
    done
    expect 1 "" $'[mqkit][ERROR] unknown argument: -h\n' fmt x.mq -h
}

@test "commands are found by unique prefix in any case" {
    expect 1 "" "[mqkit][ERROR] unknown argument: x"$'\n' T list x
    expect 1 "" "[mqkit][ERROR] file does not exist: $(pwd -P)/a"$'\n' ren a b c
    expect 1 "" $'no .mq files found\n' lin
}

@test "older shapes need no command word" {
    expect 1 "" "[mqkit][ERROR] file does not exist: $(pwd -P)/a.mq"$'\n' a.mq -r opt opt2
    expect 1 "" "[mqkit][ERROR] file does not exist: $(pwd -P)/demo.projmq"$'\n' demo.projmq --rename old new
    expect 1 "" "[mqkit][ERROR] unknown argument: x"$'\n' -l x
    expect 1 "" "[mqkit][ERROR] specify at least one template to merge"$'\n' --merge
    refused " unknown command or argument: -U" -U
    refused " unknown command or argument: -L" -L
    refused " unknown command or argument: x" x -t
}

@test "a command word comes before every older shape" {
    "$MQKIT" lint x --help >help
    expect 1 "$(cat help)"$'\n' $'unknown argument: -n\n' lint -n opt demo.projmq -r
}
