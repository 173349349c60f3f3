# The command line of `project`: help, sub-commands, options, and the older shapes.
bats_require_minimum_version 1.5.0
load expect
load golden

setup() {
    setup_deep
    setup_colored
}

# shows_help <status> <standard error> <arguments>...: the help and nothing but it on standard output.
shows_help() {
    local status=0
    "$MQKIT" "${@:3}" >out 2>err || status=$?
    [ "$status" -eq "$1" ]
    diff <(plain_help project) out
    printf '%s' "$2" | diff - err
}

@test "the help is whole, plain in a pipe and coloured on a terminal" {
    shows_help 0 "" help proj
    shows_help 0 "" project help
    script -qec "'$MQKIT' project --help" /dev/null </dev/null | tr -d '\r' >out
    diff <(colored_help project) out
    TERM=dumb script -qec "'$MQKIT' project --help" /dev/null </dev/null | tr -d '\r' >out
    diff <(plain_help project) out
}

@test "a command line that makes no workflow shows the help and fails, a help token anywhere makes it succeed" {
    shows_help 1 "" project
    shows_help 1 "" project init x
    shows_help 0 "" project init -h
    shows_help 1 "" proj nonsense
    shows_help 1 "" project update --
    shows_help 0 "" project update x help
    shows_help 1 "" project --no-color
    shows_help 1 "[mqkit][ERROR] ambiguous project command prefix:  (matches: init, add, update, rebuild, exec, collect)"$'\n' project ""
    shows_help 1 "[mqkit][ERROR] --run-comd is only valid with project update."$'\n' project rebuild --run-comd
    shows_help 0 "[mqkit][ERROR] --run-script is only valid with project rebuild."$'\n' project u --run-script -h
    shows_help 1 "[mqkit][ERROR] project add does not accept -n/--name."$'\n' project add -n opt a.xyz
}

@test "the older shapes have messages of their own" {
    shows_help 1 "[mqkit][ERROR] unknown argument: --path"$'\n' -n opt --path x --rebuild
    shows_help 1 "[mqkit][ERROR] --run-script is only valid with rebuild."$'\n' a.projmq --run-script
    shows_help 1 "[mqkit][ERROR] --exec expects a value"$'\n' a.projmq -n opt --exec
    shows_help 1 "[mqkit][ERROR] --exec cannot be combined with --collect or --rebuild"$'\n' --rebuild --exec ls
    shows_help 1 "[mqkit][ERROR] --collect expects at least one argument"$'\n' --collect
    shows_help 1 "[mqkit][ERROR] --collect cannot be combined with --exec or --rebuild"$'\n' --exec ls --collect x
    shows_help 1 "[mqkit][ERROR] --rebuild cannot be combined with --exec or --collect"$'\n' --collect x --rebuild
    shows_help 1 "[mqkit][ERROR] --run-comd is only valid with project update."$'\n' a.projmq --run-comd
    shows_help 1 "[mqkit][ERROR] -n/--name expects a value"$'\n' a.projmq -n
    shows_help 0 "[mqkit][ERROR] unknown argument: x"$'\n' -n opt x -h
    shows_help 1 "[mqkit][ERROR] unknown argument: y"$'\n' -u x y -h
    shows_help 1 "[mqkit][ERROR] -n/--name expects a value"$'\n' --update -n
    shows_help 0 "" -b help
}

@test "names without a sub-command are checked before the help" {
    shows_help 1 "[mqkit][ERROR] could not resolve a .projmq project template from path: $PWD/none.projmq"$'\n' none.projmq -n opt
    printf '$opt\n%%keywords a\n' >demo.projmq
    shows_help 1 "" demo.projmq -n opt
    shows_help 1 "[mqkit][ERROR] specify at least one task block with -n/--name."$'\n' demo.projmq
    shows_help 1 "[mqkit][ERROR] task block not found in .projmq: x, y*"$'\n'"available task blocks: opt"$'\n' demo.projmq -n 'x,opt,y*'
}
