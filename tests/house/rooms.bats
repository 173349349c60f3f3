#!/usr/bin/env bats
# The plan of the house: the rows of src/CMakeLists.txt, the includes of the sources, the picture of the
# architecture page and the folders of tests/ say the same.

setup() {
    cd "$MQKIT_SOURCE"
}

rooms() { MQKIT_SOURCE=$PWD script/rooms "$@"; }

@test "every room that a file includes is named in its row, and every named room is included" {
    [ "$(rooms | wc -l)" -gt 15 ]
    diff <(rooms) <(rooms --included)
}

@test "an include that no row names is found" {
    cp -r src "$BATS_TEST_TMPDIR/src"
    echo '#include "console/console.h"' >>"$BATS_TEST_TMPDIR/src/support/text.cpp"
    MQKIT_SOURCE=$BATS_TEST_TMPDIR run script/rooms --included
    [ "$status" -eq 0 ]
    [ "${lines[0]}" = "support: console" ]
}

@test "a room names rooms of lower floors only" {
    rooms | awk '{ for (i = 2; i <= NF; i++) if (!($i in below)) { print $1 " uses " $i; bad = 1 }
                   sub(/:/, "", $1); below[$1] = 1 } END { exit bad }'
}

@test "the architecture page shows these rows" {
    sed -n '/^<!-- rooms -->$/,/^<!-- end of rooms -->$/p' docs/architecture.md | grep -v -e '^<' -e '^```' \
        >"$BATS_TEST_TMPDIR/picture"
    [ -s "$BATS_TEST_TMPDIR/picture" ]
    diff <(rooms) "$BATS_TEST_TMPDIR/picture"
}

@test "no room has more than 5,000 lines, no file more than 600" {
    while IFS=: read -r room _; do
        lines=$(cat "src/$room"/*.cpp "src/$room"/*.h | wc -l)
        [ "$lines" -le 5000 ] || { echo "$room: $lines"; return 1; }
    done < <(rooms)
    find src -name '*.cpp' -o -name '*.h' | xargs wc -l |
        awk '$2 != "total" && $1 > 600 { print; bad = 1 } END { exit bad }'
}

stems() { # <folder> <ending>: its files with that ending, without it
    find "$1" -name "*$2" | sed "s#^$1/##; s#$2\$##" | LC_ALL=C sort
}

unmirrored() { # <src> <tests>: what one side has and the other lacks
    # Programs are no part of a room; laws over the whole house, and the program under faults, mirror no source.
    stems "$1" .cpp | grep -v -e '^main$' -e '/main$' -e '_main$' >"$BATS_TEST_TMPDIR/sources"
    stems "$2" _test.cpp | grep -v -e '^house/' -e '^faults/' >"$BATS_TEST_TMPDIR/tests"
    [ "$(wc -l <"$BATS_TEST_TMPDIR/sources")" -gt 100 ]
    LC_ALL=C comm -23 "$BATS_TEST_TMPDIR/sources" "$BATS_TEST_TMPDIR/tests" | sed 's/$/.cpp: no test/'
    # A header alone may have a test file too, but needs none.
    stems "$1" .h | LC_ALL=C sort -u - "$BATS_TEST_TMPDIR/sources" |
        LC_ALL=C comm -13 - "$BATS_TEST_TMPDIR/tests" | sed 's/$/_test.cpp: no source/'
}

@test "tests mirror the sources: every source has its test file, every test file its source" {
    unmirrored src tests >"$BATS_TEST_TMPDIR/found"
    diff "$BATS_TEST_TMPDIR/found" /dev/null
}

@test "a source without its test file, and a test file without its source, are found" {
    mkdir "$BATS_TEST_TMPDIR/copy"
    cp -r src tests "$BATS_TEST_TMPDIR/copy"
    cd "$BATS_TEST_TMPDIR/copy"
    touch src/support/one.cpp src/app/other_main.cpp tests/lint/two_test.cpp tests/house/law_test.cpp
    rm tests/system/process_test.cpp
    diff <(unmirrored src tests) - <<'END'
support/one.cpp: no test
system/process.cpp: no test
lint/two_test.cpp: no source
END
}
