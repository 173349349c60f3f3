# What the documents show is what the program prints.

@test "the explanation shown in commands.md" {
    cd "$MQKIT_SOURCE"
    awk '/^    \$ mqkit explain/ {on = 1; next} on && /^## / {exit} on {sub(/^    /, ""); print}' docs/commands.md |
        sed -e :a -e '/^\n*$/{$d;N;ba' -e '}' >"$BATS_TEST_TMPDIR/shown"
    "$MQKIT" explain examples/tasks/conditions.mq --task ts | diff "$BATS_TEST_TMPDIR/shown" -
}
