#!/usr/bin/env bats
# The archives: the program to unpack anywhere, and the sources.

load packages

@test "the program works wherever it is unpacked, and names no folder of the builder" {
    for place in "$BATS_TEST_TMPDIR/one" "$BATS_TEST_TMPDIR/two words"; do
        mkdir -p "$place"
        tar -xf "$MQKIT_PACKAGES/mqkit-$(version)-$(uname -s)-$(uname -m).tar.gz" -C "$place" --strip-components=1
        works_from "$place"
        grep -rlF -e "$MQKIT_SOURCE" -e "$BATS_TEST_TMPDIR" "$place" && return 1
        for text in LICENSE NOTICE CHANGELOG.md licenses/LGPL-2.1.txt licenses/GPL-3.0.txt; do
            [ -s "$place/share/doc/mqkit/$text" ]
        done
    done
}

@test "the programs are stripped, static, and tell their version to who looks inside" {
    mkdir "$BATS_TEST_TMPDIR/one"
    tar -xf "$MQKIT_PACKAGES/mqkit-$(version)-$(uname -s)-$(uname -m).tar.gz" -C "$BATS_TEST_TMPDIR/one" --strip-components=1
    [ "$(ls "$BATS_TEST_TMPDIR/one/bin")" = $'mqkit\nmqkit-graph\nmqkit-lsp' ]
    for program in "$BATS_TEST_TMPDIR"/one/bin/*; do
        readelf -S -W "$program" >"$BATS_TEST_TMPDIR/sections"
        grep -q ' \.text ' "$BATS_TEST_TMPDIR/sections"
        [ "$(grep -c -e ' \.symtab ' -e ' \.debug_info ' "$BATS_TEST_TMPDIR/sections")" -eq 0 ]
        [ "$(readelf -l -W "$program" | grep -c INTERP)" -eq 0 ]
        [ "$(grep -ao 'mqkit [0-9.]* ([0-9-]*)' "$program")" = "mqkit $(version) ($(released))" ]
        [ "$(stat -c %s "$program")" -lt 8000000 ]
    done
}

@test "the sources build in another folder, without git and network, to the same bytes" {
    archive=$MQKIT_PACKAGES/mqkit-$(version).tar.gz
    [ -f "$archive" ] || skip "no git checkout, so no archive of the sources"
    mkdir -p "$BATS_TEST_TMPDIR/bin" "$BATS_TEST_TMPDIR/another folder"
    printf '#!/bin/sh\necho "git $*" >>"%s"\nexit 1\n' "$BATS_TEST_TMPDIR/called" >"$BATS_TEST_TMPDIR/bin/git"
    chmod +x "$BATS_TEST_TMPDIR/bin/git"
    cd "$BATS_TEST_TMPDIR/another folder"
    tar -xf "$archive" --strip-components=1
    # A network of its own has no way out; where that is not allowed, the build runs in the one that is here.
    apart=()
    ! unshare -rn true 2>/dev/null || apart=(unshare -rn)
    # Nothing that was compiled before is taken, as in script/package.
    PATH=$BATS_TEST_TMPDIR/bin:$PATH CCACHE_DISABLE=1 CMAKE_CXX_COMPILER_LAUNCHER='' "${apart[@]}" sh -c '
        cmake --preset release -DBUILD_TESTING=OFF && cmake --build --preset release --target installed' >log 2>&1 ||
        { tail -n 30 log; return 1; }
    [ ! -e "$BATS_TEST_TMPDIR/called" ]
    cmp build/mqkit "$MQKIT"
    cmp build/mqkit-graph "$MQKIT-graph"
    cmp build/mqkit-lsp "$MQKIT-lsp"
}
