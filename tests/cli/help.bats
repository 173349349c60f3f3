# The overview of all commands: its whole text, its colours, and how standard output may end.
bats_require_minimum_version 1.5.0

setup() {
    unset NO_COLOR
    export TERM=xterm SHELL=/bin/sh
}

top_help() {
    cat <<'TEXT'
  Mqkit: A unified entry point for .mq and .projmq workflows.
Usage:
  mqkit <command> [options]
  mqkit help <command>
  Commands accept unique prefixes, for example mqkit proj co.

Commands:
  template   Manage templates: list, group by category, merge, or generate variable templates
  project    Manage projects: initialize, add structures, update, rebuild, batch exec, batch collect
  rename     Rename task blocks in .mq / .projmq files and synchronize derived artifacts
  fmt        Reformat a task file into canonical DSL v2 layout
  migrate    Convert legacy task syntax into canonical DSL v2 output
  expand     Flatten includes, fragments, libraries, and optional matrix variants into canonical DSL
  explain    Parse a .mq file and explain task blocks, directives, and source spans
  lint       Run static checks for .mq files and directories

Examples:
  mqkit template merge opt freq -o task.mq
  mqkit project add --path ./demo_project mol1.xyz mol2.xyz
  mqkit project update --path ./demo_project
  mqkit project rebuild --path ./demo_project -n opt,soc --run-script
  mqkit project exec --path demo.projmq -n soc -- 'cat soc*.log'
  mqkit rename demo.projmq old_block new_block
  mqkit migrate legacy.mq --in-place
  mqkit expand task.mq --expanded -o flattened.mq
  mqkit explain task.mq --task opt --expanded
  mqkit fmt task.mq -o formatted.mq
  mqkit lint --strict ./cases

Tool split:
  Use mqdb for all database sync/query/template/compare workflows; mqkit stays focused on templates, projects, rename, format/migrate/expand/explain, and lint.
TEXT
}

# The same on a terminal; C, Y, G and N stand for the escape sequences of the styles and their end.
colored_help() {
    sed -e $'s/{C}/\e[1m\e[36m/g; s/{Y}/\e[1m\e[33m/g; s/{G}/\e[32m/g; s/{N}/\e[0m/g' <<'TEXT'
  Mqkit: A unified entry point for .mq and .projmq workflows.
{C}Usage:{N}
  {G}mqkit <command> [options]{N}
  {G}mqkit help <command>{N}
  Commands accept unique prefixes, for example {G}mqkit proj co{N}.

{C}Commands:{N}
  {G}template  {N} Manage templates: list, group by category, merge, or generate variable templates
  {G}project   {N} Manage projects: initialize, add structures, update, rebuild, batch exec, batch collect
  {G}rename    {N} Rename task blocks in .mq / .projmq files and synchronize derived artifacts
  {G}fmt       {N} Reformat a task file into canonical DSL v2 layout
  {G}migrate   {N} Convert legacy task syntax into canonical DSL v2 output
  {G}expand    {N} Flatten includes, fragments, libraries, and optional matrix variants into canonical DSL
  {G}explain   {N} Parse a .mq file and explain task blocks, directives, and source spans
  {G}lint      {N} Run static checks for .mq files and directories

{C}Examples:{N}
  {G}mqkit template merge opt freq -o task.mq{N}
  {G}mqkit project add --path ./demo_project mol1.xyz mol2.xyz{N}
  {G}mqkit project update --path ./demo_project{N}
  {G}mqkit project rebuild --path ./demo_project -n opt,soc --run-script{N}
  {G}mqkit project exec --path demo.projmq -n soc -- 'cat soc*.log'{N}
  {G}mqkit rename demo.projmq old_block new_block{N}
  {G}mqkit migrate legacy.mq --in-place{N}
  {G}mqkit expand task.mq --expanded -o flattened.mq{N}
  {G}mqkit explain task.mq --task opt --expanded{N}
  {G}mqkit fmt task.mq -o formatted.mq{N}
  {G}mqkit lint --strict ./cases{N}

{Y}Tool split:{N}
  Use {G}mqdb{N} for all database sync/query/template/compare workflows; {G}mqkit{N} stays focused on templates, projects, rename, format/migrate/expand/explain, and lint.
TEXT
}

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
    expect_text "$BATS_TEST_TMPDIR/out" colored_help
}

@test "TERM=dumb switches colour off, TERM=dumber does not" {
    TERM=dumb on_terminal "'$MQKIT' help" >"$BATS_TEST_TMPDIR/out"
    expect_text "$BATS_TEST_TMPDIR/out" top_help
    TERM=dumber on_terminal "'$MQKIT' help" >"$BATS_TEST_TMPDIR/out"
    expect_text "$BATS_TEST_TMPDIR/out" colored_help
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
    colored_help
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
    [ "$output" = "$(colored_help)" ]
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
