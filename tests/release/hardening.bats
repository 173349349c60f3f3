#!/usr/bin/env bats
# The defences of the tool chain, in every program that was built.

setup() {
    bats_require_minimum_version 1.5.0
    programs=("$MQKIT" "$MQKIT-graph" "$MQKIT-lsp")
}

# header <program> <option> <pattern>: what readelf prints of the program contains a line with the pattern.
header() {
    readelf -W "$2" "$1" | grep -Eq -- "$3" || { echo "$1 lacks $3"; return 1; }
}

@test "every program is loaded at an address that differs from run to run" {
    for program in "${programs[@]}"; do
        header "$program" -h 'Type: +DYN '
        header "$program" -d '\(FLAGS_1\).* PIE'
    done
}

@test "what the linker fills in is read-only before main, and no data is run" {
    for program in "${programs[@]}"; do
        header "$program" -l '^ *GNU_RELRO '
        header "$program" -d '\(FLAGS\).* BIND_NOW'
        header "$program" -l '^ *GNU_STACK .* RW +0x'
        run ! header "$program" -l '^ *LOAD .* RWE '
    done
}

@test "every source was compiled with a guarded stack" {
    for program in "${programs[@]}"; do
        readelf --debug-dump=info --dwarf-depth=1 "$program" | grep 'DW_AT_producer.*C++20' >"$BATS_TEST_TMPDIR/sources"
        [ "$(wc -l <"$BATS_TEST_TMPDIR/sources")" -gt 10 ]
        run ! grep -v -- -fstack-protector-strong "$BATS_TEST_TMPDIR/sources"
    done
}
