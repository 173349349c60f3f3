# Every command shown in docs/language-generating.md prints what is shown there, and every file is shown as it is.

bats_require_minimum_version 1.5.0

setup() {
    export NO_COLOR=1
    cd "$MQKIT_SOURCE"
}

@test "the expansions shown are what the program prints, whole" {
    awk -v dir="$BATS_TEST_TMPDIR" '
        /^```console$/ { n++; on = 1; getline; sub(/^\$ mqkit /, ""); print > (dir "/" n ".command"); next }
        /^```$/ { on = 0 }
        on { print > (dir "/" n ".shown") }' docs/language-generating.md
    [ "$(ls "$BATS_TEST_TMPDIR"/*.command | wc -l)" -eq 5 ]
    for command in "$BATS_TEST_TMPDIR"/*.command; do
        # shellcheck disable=SC2046 # the words of a command line
        run --separate-stderr "$MQKIT" $(cat "$command")
        [ "$status" -eq 0 ]
        [ "$stderr" = "" ]
        diff "${command%.command}.shown" <(echo "$output")
    done
}

@test "the files shown are the examples" {
    shown=0
    while IFS=: read -r line file; do
        awk -v from="$line" 'NR > from && /^```(mq|yaml)$/ && !on { on = 1; next } on && /^```$/ { exit } on' \
            docs/language-generating.md | diff "$file" -
        shown=$((shown + 1))
    done < <(grep -no 'examples/[a-z_/]*\.\(mq\|yaml\|mqlib\|mqfrag\)`' docs/language-generating.md | tr -d '`')
    [ "$shown" -eq 10 ]
}

@test "an expansion is stable under fmt, and so is every example" {
    for example in examples/matrix/*.mq examples/foreach/*.mq examples/fragments/*.mq examples/extra/*.mq; do
        "$MQKIT" expand --expanded "$example" >"$BATS_TEST_TMPDIR/once.mq"
        (cd "$BATS_TEST_TMPDIR" && "$MQKIT" fmt once.mq >twice.mq && diff once.mq twice.mq)
        "$MQKIT" expand "$example" >"$BATS_TEST_TMPDIR/once.mq"
        (cd "$BATS_TEST_TMPDIR" && "$MQKIT" fmt once.mq >twice.mq && diff once.mq twice.mq)
    done
}
