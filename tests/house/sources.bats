#!/usr/bin/env bats
# The list of sources that script/format and script/lint work on.

sources() { MQKIT_SOURCE=$1 "$MQKIT_SOURCE/script/sources" "${@:2}"; }

@test "an unpacked archive without git has the same sources, and what is built is none" {
    cd "$MQKIT_SOURCE"
    cp -r --parents src tests bench fuzz "$BATS_TEST_TMPDIR"
    mkdir -p "$BATS_TEST_TMPDIR/build-dev/embedded"
    touch "$BATS_TEST_TMPDIR/build-dev/embedded/x.h"
    [ "$(sources "$BATS_TEST_TMPDIR" | wc -l)" -gt 300 ]
    diff <(sources "$PWD") <(sources "$BATS_TEST_TMPDIR")
}

@test "folders narrow the list, and a new file is in it" {
    cd "$BATS_TEST_TMPDIR"
    mkdir -p src/room tests
    touch src/room/a.cpp src/room/a.h src/room/a.sh tests/a_test.cpp
    [ "$(sources "$PWD" src)" = $'src/room/a.cpp\nsrc/room/a.h' ]
    [ "$(sources "$PWD" src tests)" = $'src/room/a.cpp\nsrc/room/a.h\ntests/a_test.cpp' ]
}
