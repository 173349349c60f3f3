# The overview of all commands: its whole text, its colours, and how standard output may end.
bats_require_minimum_version 1.5.0
load expect
load golden

setup() {
    setup_colored
}

top_help() { plain_help overview; }
colored_top_help() { colored_help overview; }

# Runs a shell command with a terminal in place of both streams; line ends are what the program wrote.
on_terminal() {
    script -qec "$1" /dev/null </dev/null | tr -d '\r'
}

# Compares byte by byte, the last line end included.
expect_text() { diff "$1" <("$2"); }

@test "the program alone prints the help and fails" {
    run --separate-stderr -1 "$MQKIT"
    [ "$stderr" = "" ]
    "$MQKIT" >"$BATS_TEST_TMPDIR/out" || true
    expect_text "$BATS_TEST_TMPDIR/out" top_help
}

@test "every help token in any case prints the help and succeeds" {
    for token in help -h --help HELP --HELP Help -H; do
        "$MQKIT" "$token" >"$BATS_TEST_TMPDIR/out" 2>"$BATS_TEST_TMPDIR/err"
        expect_text "$BATS_TEST_TMPDIR/out" top_help
        [ ! -s "$BATS_TEST_TMPDIR/err" ]
    done
}

@test "the program is named as it was called, by its last component" {
    run --separate-stderr -0 bash -c 'exec -a "/opt/tools/mq kit//" "$MQKIT" help'
    [ "${lines[2]}" = "  mq kit <command> [options]" ]
    [[ "$output" == *"workflows; mq kit stays focused"* ]]
    run --separate-stderr -0 bash -c 'exec -a "/" "$MQKIT" help'
    [ "${lines[3]}" = "  program help <command>" ]
    run --separate-stderr -0 bash -c 'exec -a "" "$MQKIT" help'
    [ "${lines[3]}" = "  program help <command>" ]
}

@test "a terminal gets headings and commands in colour" {
    on_terminal "'$MQKIT' help" >"$BATS_TEST_TMPDIR/out"
    expect_text "$BATS_TEST_TMPDIR/out" colored_top_help
}

@test "TERM=dumb switches colour off, TERM=dumber does not" {
    TERM=dumb on_terminal "'$MQKIT' help" >"$BATS_TEST_TMPDIR/out"
    expect_text "$BATS_TEST_TMPDIR/out" top_help
    TERM=dumber on_terminal "'$MQKIT' help" >"$BATS_TEST_TMPDIR/out"
    expect_text "$BATS_TEST_TMPDIR/out" colored_top_help
}

@test "NO_COLOR switches colour off by its presence, also when empty" {
    for value in "" 0 1; do
        NO_COLOR="$value" on_terminal "'$MQKIT' help" >"$BATS_TEST_TMPDIR/out"
        expect_text "$BATS_TEST_TMPDIR/out" top_help
    done
}

@test "--no-color anywhere in the arguments switches colour off and stays an argument" {
    on_terminal "'$MQKIT' nothing -- --no-color" >"$BATS_TEST_TMPDIR/out"
    expect_text "$BATS_TEST_TMPDIR/out" unknown_and_help
    on_terminal "'$MQKIT' nothing --NO-COLOR" >"$BATS_TEST_TMPDIR/out"
    expect_text "$BATS_TEST_TMPDIR/out" colored_unknown_and_help
}

unknown_and_help() {
    echo "[mqkit][ERROR] unknown command or argument: nothing"
    top_help
}

colored_unknown_and_help() {
    echo $'\e[1m\e[31m[mqkit][ERROR]\e[0m unknown command or argument: nothing'
    colored_top_help
}

@test "--no-color as the first argument is an unknown argument" {
    run --separate-stderr -1 "$MQKIT" --no-color
    [ "$stderr" = "[mqkit][ERROR] unknown command or argument: --no-color" ]
    [ "$output" = "$(top_help)" ]
}

@test "the message stands before the help when both go to one place" {
    "$MQKIT" nothing >"$BATS_TEST_TMPDIR/out" 2>&1 || [ $? -eq 1 ]
    expect_text "$BATS_TEST_TMPDIR/out" unknown_and_help
}

@test "each stream is coloured for itself" {
    run on_terminal "'$MQKIT' nothing 2>'$BATS_TEST_TMPDIR/err'"
    [ "$output" = "$(colored_top_help)" ]
    [ "$(cat "$BATS_TEST_TMPDIR/err")" = "[mqkit][ERROR] unknown command or argument: nothing" ]
    run on_terminal "'$MQKIT' nothing >'$BATS_TEST_TMPDIR/out'"
    [ "$output" = $'\e[1m\e[31m[mqkit][ERROR]\e[0m unknown command or argument: nothing' ]
    expect_text "$BATS_TEST_TMPDIR/out" top_help
}

@test "a reader that went away ends the program quietly" {
    run bash -c '{ sleep 0.1; "$MQKIT" help; echo "status $?" >&2; } 2>&1 >&3 3>&- | cat' 3> >(exec true)
    [ "$output" = "status 1" ]
}

@test "a closed standard output is lost output" {
    local lost="[mqkit][ERROR] could not write to standard output: Bad file descriptor"
    run --separate-stderr -1 bash -c '"$MQKIT" help >&-'
    [ "$output" = "" ]
    [ "$stderr" = "$lost" ]
    run --separate-stderr -1 bash -c '"$MQKIT" nothing >&-'
    [ "$output" = "" ]
    [ "$stderr" = "[mqkit][ERROR] unknown command or argument: nothing"$'\n'"$lost" ]
}

@test "a closed standard error loses the message and nothing else" {
    bash -c '"$MQKIT" nothing 2>&-' >"$BATS_TEST_TMPDIR/out" || [ $? -eq 1 ]
    expect_text "$BATS_TEST_TMPDIR/out" top_help
}

@test "a full disk is reported and fails" {
    run --separate-stderr -1 bash -c '"$MQKIT" help >/dev/full'
    [ "$stderr" = "[mqkit][ERROR] could not write to standard output: No space left on device" ]
}
