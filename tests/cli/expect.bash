# What every suite needs: a place of its own, and the program held to its whole output.

# setup_plain [<directory>]: no colours and nothing of the user's own; enters the directory below the test's, made
# where it is missing, and leaves its true path in root.
setup_plain() {
    export NO_COLOR=1 HOME="$BATS_TEST_TMPDIR"
    unset MORQUILL_TEMPLATE_PATH MORQUILL_TASK_PATH MORQUILL_MQRUN_PATH
    mkdir -p "$BATS_TEST_TMPDIR/${1:-}"
    root="$(cd "$BATS_TEST_TMPDIR/${1:-}" && pwd -P)"
    cd "$root" || return 1
}

# setup_deep: the same, so deep that no search upwards leaves the directory of the test.
setup_deep() { setup_plain 1/2/3/4/5/6; }

# setup_colored: as at a terminal that shows colours.
setup_colored() {
    unset NO_COLOR
    export TERM=xterm SHELL=/bin/sh
}

# setup_git: git as it is without any settings, and a name to commit with.
setup_git() {
    export GIT_CONFIG_GLOBAL=/dev/null GIT_CONFIG_NOSYSTEM=1 GIT_AUTHOR_NAME=Ada GIT_AUTHOR_EMAIL=ada@example.org
    export GIT_COMMITTER_NAME=Ada GIT_COMMITTER_EMAIL=ada@example.org
    unset GIT_DIR GIT_INDEX_FILE GIT_WORK_TREE
}

# ended_with <status> <program> <arguments>...: leaves its output in the files out and err of the test's directory.
ended_with() {
    status=0
    "${@:2}" >"$BATS_TEST_TMPDIR/out" 2>"$BATS_TEST_TMPDIR/err" || status=$?
    [ "$status" -eq "$1" ] || { echo "status $status" && cat "$BATS_TEST_TMPDIR/err" && return 1; }
}

# expect_of <program> <status> <standard output> <standard error> <arguments>...: all of it to the byte.
expect_of() {
    ended_with "$2" "$1" "${@:5}" && holds "$BATS_TEST_TMPDIR/out" "$3" && holds "$BATS_TEST_TMPDIR/err" "$4"
}

# expect <status> <standard output> <standard error> <arguments>...: the same of mqkit.
expect() { expect_of "$MQKIT" "$@"; }

# expect_lines: as expect, without the line ends at the end of either text.
expect_lines() {
    ended_with "$1" "$MQKIT" "${@:4}" &&
        diff <(echo "$2") <(echo "$(<"$BATS_TEST_TMPDIR/out")") &&
        diff <(echo "$3") <(echo "$(<"$BATS_TEST_TMPDIR/err")")
}

# expect_here <status> <standard error> <arguments>...: as expect, with standard output told on standard input.
expect_here() {
    local told
    told="$(cat && echo .)"
    expect "$1" "${told%.}" "${@:2}" </dev/null
}

# refused <message> <arguments>...: one message on standard error alone, status 1.
refused() { expect 1 "" "[mqkit][ERROR] $1"$'\n' "${@:2}"; }

# limited <blocks of 1024 bytes> <arguments>: the program with a limit for the files that it writes and the
# system's own answer to growing past it; all its output, and the status, through a pipe, which has no limit.
limited() {
    # shellcheck disable=SC2016 # the inner shell expands it
    run bash -c 'blocks=$1; shift; { ulimit -c 0; ulimit -f "$blocks"; "$MQKIT" "$@" 2>&1; echo "status $?"; } | cat' _ "$@"
}

# put <file> <text>: with the directories that it needs.
put() {
    mkdir -p "$(dirname "$1")"
    printf '%s' "$2" >"$1"
}

# holds <file> <text>: the whole file, to the byte.
holds() { printf '%s' "$2" | diff - "$1"; }

# names_below <directory>: every name below it, where the links lead, and a slash after directories.
names_below() {
    (cd "$1" && find . -mindepth 1 \( -type l -printf '%P -> %l\n' \) -o -type d -printf '%P/\n' -o -printf '%P\n' |
        LC_ALL=C sort)
}
