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

@test "every room that the main of a program includes is named in its row, and the other way round" {
    [ "$(rooms --programs | wc -l)" -gt 3 ]
    diff <(rooms --programs | LC_ALL=C sort) <(rooms --included-programs | LC_ALL=C sort)
}

# What is found besides the rows when a text (with \n and \\ for what they mean) is added to a file of src/.
found_with() { # <file> <text>
    rm -rf "$BATS_TEST_TMPDIR/src"
    cp -r src "$BATS_TEST_TMPDIR/src"
    mkdir -p "$(dirname "$BATS_TEST_TMPDIR/src/$1")"
    printf '%b\n' "$2" >>"$BATS_TEST_TMPDIR/src/$1"
    { MQKIT_SOURCE=$BATS_TEST_TMPDIR script/rooms --included
      MQKIT_SOURCE=$BATS_TEST_TMPDIR script/rooms --included-programs; } |
        grep -v -x -F -f <(rooms; rooms --programs)
}

@test "an arrow that no row names is found, however it is written" {
    [ "$(found_with support/text.cpp '// nothing')" = "" ]
    rows=0
    while IFS='|' read -r file text expected; do
        found=$(found_with "$file" "$text") || true
        [ "$found" = "$expected" ] || { echo "$file: $text: $found"; return 1; }
        rows=$((rows + 1))
    done <<'END'
support/text.cpp|#include "console/console.h"|support: console
support/text.h|#include "console/console.h"|support: console
support/domain.cpp|#include "console/console.h"|support: console
support/text.cpp|#include <console/console.h>|support: console
support/text.cpp|#include  "console/console.h"|support: console
support/text.cpp|#include"console/console.h"|support: console
support/text.cpp| #include "console/console.h"|support: console
support/text.cpp|#  include "console/console.h"|support: console
support/text.cpp|\t#\tinclude\t<console/console.h>|support: console
support/text.cpp|#include/**/"console/console.h" // "support/text.h"|support: console
support/text.cpp|/* one */ # /* two **/ include "console/console.h"|support: console
support/text.cpp|#include \\\n"console/console.h"|support: console
support/text.cpp|#inc\\\nlude "console/console.h"|support: console
support/text.cpp|%:include "console/console.h"|support: console
support/text.cpp|#include_next <console/console.h>|support: console
support/text.cpp|#include PATH|src/support/text.cpp: #include PATH
support/text.cpp|#include "../console/console.h"|src/support/text.cpp: includes from "../console", which is no room
support/text.cpp|#include <support/../console/console.h>|src/support/text.cpp: includes from "support/../console", which is no room
support/text.cpp|#include <../src/console/console.h>|src/support/text.cpp: includes from "../src/console", which is no room
support/text.cpp|#include "file.h"|src/support/text.cpp: includes from "", which is no room
support/text.cpp|#include <project/sample/one.h>|src/support/text.cpp: includes from "project/sample", which is no room
support/x.hpp|#include "taskdsl/parser/task_parser.h"|src/support/x.hpp: is no source
support/rows.inc|{1, 2},|src/support/rows.inc: is no source
other/x.cpp|int x;|src/other/x.cpp: belongs to no row
graph/main.cpp|#include "project/workflows.h"|graph/main.cpp: console graph project
app/other_main.cpp|int x;|src/app/other_main.cpp: belongs to no row
CMakeLists.txt|target_link_libraries(mqkit_support PUBLIC mqkit_console)|src/CMakeLists.txt: target_link_libraries mqkit_support PUBLIC mqkit_console
CMakeLists.txt|Target_Link_Libraries (\n  mqkit_support # low\n  "mqkit_console")|src/CMakeLists.txt: Target_Link_Libraries mqkit_support "mqkit_console"
CMakeLists.txt|link_libraries(mqkit_console)|src/CMakeLists.txt: link_libraries mqkit_console
CMakeLists.txt|set_property(TARGET mqkit_support PROPERTY LINK_LIBRARIES mqkit_console)|src/CMakeLists.txt: set_property TARGET mqkit_support PROPERTY LINK_LIBRARIES mqkit_console
CMakeLists.txt|add_library(low ALIAS mqkit_console)|src/CMakeLists.txt: add_library low ALIAS mqkit_console
CMakeLists.txt|set(low mqkit_console)|src/CMakeLists.txt: set low mqkit_console
CMakeLists.txt|target_sources(mqkit_support PRIVATE console/messages.cpp)|src/CMakeLists.txt: target_sources mqkit_support PRIVATE console/messages.cpp
CMakeLists.txt|mqkit_link_rooms(mqkit_support console)|src/CMakeLists.txt: mqkit_link_rooms mqkit_support console
END
    [ "$rows" -eq 34 ]
}

@test "a program is main.cpp or *_main.cpp; what else ends so belongs to its room" {
    cd "$BATS_TEST_TMPDIR"
    mkdir -p src/one
    touch src/one/main.cpp src/one/two_main.cpp src/one/domain.cpp
    cat >CMakeLists.txt <<END
cmake_minimum_required(VERSION 3.25)
project(house CXX)
include("$MQKIT_SOURCE/cmake/MqkitTargets.cmake")
mqkit_room(one)
get_target_property(sources mqkit_one SOURCES)
message(NOTICE "sources: \${sources}")
END
    run cmake -S . -B build
    [ "$status" -eq 0 ]
    [[ $output == *"sources: $PWD/src/one/domain.cpp"$'\n'* ]]
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
