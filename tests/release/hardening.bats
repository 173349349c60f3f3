#!/usr/bin/env bats
# The defences of the tool chain, in the file that was built.

setup() {
    bats_require_minimum_version 1.5.0
}

# header <option> <pattern>: what readelf prints of the program contains a line with the pattern.
header() {
    readelf -W "$1" "$MQKIT" | grep -Eq -- "$2"
}

@test "the program is loaded at an address that differs from run to run" {
    header -h 'Type: +DYN '
    header -d '\(FLAGS_1\).* PIE'
}

@test "what the linker fills in is read-only before main, and no data is run" {
    header -l '^ *GNU_RELRO '
    header -d '\(FLAGS\).* BIND_NOW'
    header -l '^ *GNU_STACK .* RW +0x'
    run ! header -l '^ *LOAD .* RWE '
}

@test "every source was compiled with a guarded stack" {
    readelf --debug-dump=info --dwarf-depth=1 "$MQKIT" | grep 'DW_AT_producer.*C++20' >"$BATS_TEST_TMPDIR/sources"
    [ "$(wc -l <"$BATS_TEST_TMPDIR/sources")" -gt 10 ]
    run ! grep -v -- -fstack-protector-strong "$BATS_TEST_TMPDIR/sources"
}
