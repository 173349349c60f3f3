#!/usr/bin/env bats
# The plan of the house: the rows of src/CMakeLists.txt, the includes of the sources, the picture of the
# architecture page and the folders of tests/ say the same.

setup() {
    cd "$MQKIT_SOURCE"
}

rooms() { MQKIT_SOURCE=$PWD script/rooms "$@"; }

sources() { # the stems of the sources of all rooms, programs left out
    find src -name '*.cpp' ! -name 'main.cpp' ! -name '*_main.cpp' | sed 's#^src/##; s#\.cpp$##' | LC_ALL=C sort
}

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
    sed -n '/^<!-- rooms -->$/,/^<!-- end of rooms -->$/p' docs/architecture.md | grep '^    ' | sed 's/^    //' \
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

mirrored() { # <tests>: the stems of its test files; laws over the whole house mirror no source
    find "$1" -name '*_test.cpp' ! -path "$1/house/*" | sed "s#^$1/##; s#_test\.cpp\$##" | LC_ALL=C sort
}

@test "tests mirror the sources: every source has its test file, every test file its source" {
    [ "$(sources | wc -l)" -gt 100 ]
    # A header alone may have a test file too, but needs none.
    find src -name '*.h' | sed 's#^src/##; s#\.h$##' | LC_ALL=C sort >"$BATS_TEST_TMPDIR/headers"
    mirrored tests >"$BATS_TEST_TMPDIR/tests"
    echo "sources without a test file:"
    diff <(sources | LC_ALL=C comm -23 - "$BATS_TEST_TMPDIR/tests") /dev/null
    echo "test files without a source:"
    diff <(sources | LC_ALL=C sort -u - "$BATS_TEST_TMPDIR/headers" |
        LC_ALL=C comm -13 - "$BATS_TEST_TMPDIR/tests") /dev/null
}
