#!/usr/bin/env bats
# What CMake does for who builds and installs by hand.

load packages

# configured <argument>...: configures in a build folder of its own; the log is in the file `log`.
configured() {
    cd "$BATS_TEST_TMPDIR"
    cmake -S "$MQKIT_SOURCE" -B build -DBUILD_TESTING=OFF "$@" >log 2>&1 || { cat log; return 1; }
}

@test "a build type is chosen when none is given, and only then" {
    CMAKE_BUILD_TYPE='' configured
    grep -qx 'CMAKE_BUILD_TYPE:STRING=Release' build/CMakeCache.txt
    configured -DCMAKE_BUILD_TYPE=Debug
    grep -qx 'CMAKE_BUILD_TYPE:STRING=Debug' build/CMakeCache.txt
}

@test "tests are built unless BUILD_TESTING is off" {
    configured -G Ninja
    ! ninja -C build -t targets all | grep test_support
    cmake -S "$MQKIT_SOURCE" -B build -G Ninja -DBUILD_TESTING=ON >log
    ninja -C build -t targets all | grep -q test_support
}

@test "MQKIT_STATIC says when there is no archive to link" {
    configured -DMQKIT_STATIC=ON
    ! grep MQKIT_STATIC log
    libraries=$(dirname "$(sed -n 's/^MQKIT_YAML_ARCHIVE:FILEPATH=//p' build/CMakeCache.txt)")
    rm -r build
    configured -DMQKIT_STATIC=ON "-DCMAKE_IGNORE_PATH=$libraries;${libraries#/usr}"
    tr -s ' \n' ' ' <log | grep -q 'MQKIT_STATIC: there is no libyaml-cpp.a, so the program is linked dynamically'
}

@test "a version without its day in the changelog is refused" {
    cp -r "$MQKIT_SOURCE/CMakeLists.txt" "$MQKIT_SOURCE/cmake" "$BATS_TEST_TMPDIR"
    echo '## Unreleased' >"$BATS_TEST_TMPDIR/CHANGELOG.md"
    run cmake -S "$BATS_TEST_TMPDIR" -B "$BATS_TEST_TMPDIR/build"
    [ "$status" -ne 0 ]
    [[ $output == *"CHANGELOG.md has no heading '## $(version) (<year>-<month>-<day>)'"* ]]
}

@test "cmake --install puts everything into the standard folders" {
    cmake --install "$(dirname "$MQKIT")" --prefix "$BATS_TEST_TMPDIR/p" >/dev/null
    cd "$BATS_TEST_TMPDIR/p"
    works_from "$PWD"
    for file in share/zsh/site-functions/_mqkit share/fish/vendor_completions.d/mqkit.fish share/man/man5/mq.5 \
        share/doc/mqkit/{README.md,CHANGELOG.md,LICENSE,NOTICE,docs/language.md,examples/matrix/functional_basis.mq}; do
        [ -s "$file" ] || { echo "$file"; return 1; }
    done
    [ -x share/doc/mqkit/examples/hooks/pre-commit ]
    [ "$(PATH=$PWD/share/doc/mqkit/examples/siblings command -v morquill mqrun | wc -l)" -eq 2 ]
    diff -r share/mqkit/templates "$MQKIT_SOURCE/examples/templates"
    diff -r share/doc/mqkit/examples "$MQKIT_SOURCE/examples"
    grep -qx "$PWD/share/doc/mqkit/examples/templates" "$(dirname "$MQKIT")/install_manifest.txt"
}

@test "a package without manual pages is refused" {
    configured -G Ninja -DCMAKE_CXX_FLAGS=-O0
    cd build
    printf '#!/bin/sh\n' | tee mqkit mqkit-graph >mqkit-lsp # stand for the programs; it is the pages that count
    run cpack -G TGZ
    [ "$status" -ne 0 ]
    [[ $output == *"a package needs the manual pages"* ]]
}

@test "the first configuration links statically" {
    configured -G Ninja -DMQKIT_STATIC=ON
    for program in mqkit mqkit-graph mqkit-lsp; do
        ninja -C build -t commands "$program" | tail -n 1 | grep -Eq -- ' -static(-pie)? '
    done
}

@test "building by script/build asks for no package of the tests" {
    mkdir "$BATS_TEST_TMPDIR/bin"
    cd "$BATS_TEST_TMPDIR/bin"
    printf '#!/bin/sh\nexit 1\n' >dpkg-query # nothing is installed
    printf '#!/bin/sh\necho "$*" >>"%s"\n' "$BATS_TEST_TMPDIR/asked" >apt-get
    printf '#!/bin/sh\n"$@"\n' >sudo
    # What comes behind the set-up is not done: there is no tree around the script.
    mkdir -p "$BATS_TEST_TMPDIR/tree/script"
    cp "$MQKIT_SOURCE/script/build" "$MQKIT_SOURCE/script/setup" "$BATS_TEST_TMPDIR/tree/script"
    chmod +x ./*
    PATH=$PWD:$PATH run "$BATS_TEST_TMPDIR/tree/script/build"
    [ "$status" -ne 0 ]
    diff "$BATS_TEST_TMPDIR/asked" - <<'END'
update -qq
install -y -qq --no-install-recommends g++ cmake ninja-build libyaml-cpp-dev nlohmann-json3-dev
END
}
