# How a command line finds its command: names, unique prefixes, help topics, and the older shapes.
load expect

setup() {
    setup_plain
    top_help="$("$MQKIT" help)"
}

# refused_with_help <message> <arguments>...: one message, the whole help, status 1.
refused_with_help() { expect 1 "$top_help"$'\n' "[mqkit][ERROR] $1"$'\n' "${@:2}"; }

# leads <first line of standard error> <arguments>...: the command line reaches the command that says so, status 1.
leads() {
    local status=0
    "$MQKIT" "${@:2}" >out 2>err </dev/null || status=$?
    [ "$status" -eq 1 ]
    [ "$(head -n 1 err)" = "$1" ]
}

@test "an unknown word is refused as it was written" {
    refused_with_help "unknown command or argument: Nothing" Nothing
    refused_with_help "unknown command or argument: fmtx" fmtx
    refused_with_help "unknown command or argument: -x" -x fmt
    refused_with_help "unknown command or argument: a.mq" a.mq
    refused_with_help "unknown command or argument: "$'\xff\x01' $'\xff\x01'
}

@test "an empty first argument is an unknown one" {
    refused_with_help "unknown command or argument: " ""
    refused_with_help "unknown command or argument: " "" fmt
}

@test "an ambiguous prefix lists its commands in table order" {
    refused_with_help "ambiguous command prefix: e (matches: expand, explain)" e
    refused_with_help "ambiguous command prefix: Exp (matches: expand, explain)" Exp a.mq
    refused_with_help "ambiguous command prefix: ex (matches: expand, explain)" ex demo.projmq -n opt
}

@test "a help topic may be a prefix in any case; unknown and ambiguous ones are refused" {
    refused_with_help "ambiguous help topic prefix: e (matches: expand, explain)" help e
    refused_with_help "ambiguous help topic prefix: E (matches: expand, explain)" --HELP E x
    refused_with_help "unknown help topic: nothing" help nothing
    refused_with_help "unknown help topic: Nothing" -h Nothing fmt
    refused_with_help "unknown help topic: " help ""
    refused_with_help "unknown help topic: --help" help --help
}

@test "help <topic> is the help of that command" {
    "$MQKIT" help lint >help
    [ "$(head -n 1 help)" = "  Lint .mq files and directories." ]
    expect 0 "$(cat help)"$'\n' "" HELP LINT further words
    for topic in template project rename; do
        "$MQKIT" help "$topic" >help
        [ -s help ]
        expect 0 "$(cat help)"$'\n' "" --help "${topic:0:2}"
    done
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
    leads "[mqkit][ERROR] file does not exist: $PWD/a" ren a b c
    expect 1 "" $'no .mq files found\n' lin
}

@test "older shapes need no command word" {
    leads "[mqkit][ERROR] file does not exist: $PWD/a.mq" a.mq -r opt opt2
    leads "[mqkit][ERROR] file does not exist: $PWD/demo.projmq" demo.projmq --rename old new
    expect 1 "" "[mqkit][ERROR] unknown argument: x"$'\n' -l x
    expect 1 "" "[mqkit][ERROR] specify at least one template to merge"$'\n' --merge
    refused_with_help "unknown command or argument: -U" -U
    refused_with_help "unknown command or argument: -L" -L
    refused_with_help "unknown command or argument: x" x -t
}

@test "a command word comes before every older shape" {
    "$MQKIT" lint x --help >help
    expect 1 "$(cat help)"$'\n' $'unknown argument: -n\n' lint -n opt demo.projmq -r
}
