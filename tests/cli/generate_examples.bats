# The examples of generated tasks: what is printed of them reads back.
load expect

setup() {
    setup_plain
    cd "$MQKIT_SOURCE"
}

@test "an expansion is stable under fmt, and so is every example" {
    for example in examples/matrix/*.mq examples/foreach/*.mq examples/fragments/*.mq examples/extra/*.mq; do
        "$MQKIT" expand --expanded "$example" >"$BATS_TEST_TMPDIR/once.mq"
        (cd "$BATS_TEST_TMPDIR" && "$MQKIT" fmt once.mq >twice.mq && diff once.mq twice.mq)
        "$MQKIT" expand "$example" >"$BATS_TEST_TMPDIR/once.mq"
        (cd "$BATS_TEST_TMPDIR" && "$MQKIT" fmt once.mq >twice.mq && diff once.mq twice.mq)
    done
}
