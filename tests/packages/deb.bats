#!/usr/bin/env bats
# The Debian package.

load packages

setup() {
    package=$(echo "$MQKIT_PACKAGES/mqkit_$(version)-1_"*.deb)
    root=$BATS_TEST_TMPDIR/root
}

# dpkg_there <argument>...: dpkg on a system of its own that has nothing else. What the system here leaves out of every
# package, such as the documents in a container, is installed there.
dpkg_there() {
    mkdir -p "$root/var/lib/dpkg/info" "$root/var/lib/dpkg/updates"
    touch -a "$root/var/lib/dpkg/status"
    dpkg --root="$root" --log=/dev/null --force-not-root --force-depends --path-include='/*' "$@"
}

files_there() { find "$root" -path "$root/var" -prune -o ! -type d -print; }

@test "lintian has nothing to say" {
    lintian --allow-root "$package" >"$BATS_TEST_TMPDIR/found" 2>&1
    diff <(grep -v 'running with root privileges' "$BATS_TEST_TMPDIR/found") /dev/null
}

@test "lintian needs every override that the package has" {
    lintian --allow-root --display-info --fail-on none "$package" >"$BATS_TEST_TMPDIR/found"
    run grep -F -e unused-override -e mismatched-override "$BATS_TEST_TMPDIR/found"
    [ "$status" -eq 1 ] || { echo "$output"; return 1; }
    [ "$(dpkg-deb --fsys-tarfile "$package" | tar -xO ./usr/share/lintian/overrides/mqkit | grep -c 'usr/bin/')" -eq 3 ]
}

@test "lintian is told how each program is linked" {
    mkdir -p "$root/usr"
    tar -xf "$MQKIT_PACKAGES/mqkit-$(version)-$(uname -s)-$(uname -m).tar.gz" -C "$root/usr" --strip-components=1
    echo 'int main() {}' >"$BATS_TEST_TMPDIR/main.cpp"
    g++ -static-pie -fPIE "$BATS_TEST_TMPDIR/main.cpp" -o "$root/usr/bin/mqkit"
    g++ -static "$BATS_TEST_TMPDIR/main.cpp" -o "$root/usr/bin/mqkit-graph"
    g++ "$BATS_TEST_TMPDIR/main.cpp" -o "$root/usr/bin/mqkit-lsp"
    cmake -D CPACK_TEMPORARY_DIRECTORY="$root" -D CPACK_GENERATOR=DEB -D CPACK_MQKIT_SOURCE_DIR="$MQKIT_SOURCE" \
        -D CPACK_PACKAGE_VERSION="$(version)" -D CPACK_DEBIAN_PACKAGE_RELEASE=1 -D CPACK_MQKIT_DATE="$(released)" \
        -D CPACK_PACKAGE_CONTACT='Ada <ada@example.org>' -P "$MQKIT_SOURCE/cmake/finish_package.cmake"
    diff "$root/usr/share/lintian/overrides/mqkit" - <<'END'
mqkit: initial-upload-closes-no-bugs *
mqkit: shared-library-lacks-prerequisites [usr/bin/mqkit]
mqkit: statically-linked-binary [usr/bin/mqkit-graph]
END
}

@test "the package says what it is" {
    [ "$(dpkg-deb -f "$package" Version)" = "$(version)-1" ]
    [ "$(dpkg-deb -f "$package" Section)" = science ]
    [ -z "$(dpkg-deb -f "$package" Depends)" ]
    [ "$(dpkg-deb -f "$package" Suggests)" = 'bash-completion, graphviz, jq' ]
    dpkg-deb -f "$package" Description >"$BATS_TEST_TMPDIR/description"
    grep -q '^ mqkit reads, checks' "$BATS_TEST_TMPDIR/description"
    grep -q '^ mqkit-graph draws a task file' "$BATS_TEST_TMPDIR/description"
    grep -q '^ mqkit-lsp is a language server' "$BATS_TEST_TMPDIR/description"
    dpkg-deb --fsys-tarfile "$package" | tar -xO ./usr/share/doc/mqkit/copyright >"$BATS_TEST_TMPDIR/copyright"
    grep -q '^MIT License$' "$BATS_TEST_TMPDIR/copyright"
    ! grep -e 'see LICENSE' -e NOTICE "$BATS_TEST_TMPDIR/copyright"
    grep -q '^yaml-cpp$' "$BATS_TEST_TMPDIR/copyright"
    [ "$(dpkg-deb --fsys-tarfile "$package" | tar -xO ./usr/share/doc/mqkit/changelog.Debian.gz | gunzip | dpkg-parsechangelog -l - -S Version)" = "$(version)-1" ]
}

@test "installed, used and purged it leaves nothing" {
    dpkg_there -i "$package"
    [ "$(dpkg-query --root="$root" -W -f '${Version} ${db:Status-Status}' mqkit)" = "$(version)-1 installed" ]
    works_from "$root/usr"
    [ -f "$root/usr/share/zsh/vendor-completions/_mqkit" ]
    [ -f "$root/usr/share/fish/vendor_completions.d/mqkit.fish" ]
    [ "$(grep -o 'LICENSE.*' "$root/usr/share/doc/mqkit/README.md" | tail -n 1)" = 'LICENSE](copyright), [NOTICE](copyright)' ]
    [ "$(MANPATH=$root/usr/share/man MANWIDTH=80 man mqkit-migrate | sed -n '$p' | tr -s ' ')" = "mqkit $(version) $(released) MQKIT-FMT(1)" ]
    dpkg_there --purge mqkit
    [ -z "$(files_there)" ]
}

@test "every shell finds the completion of the package by itself" {
    dpkg_there -i "$package"
    export PATH="$root/usr/bin:$PATH" XDG_DATA_DIRS=$root/usr/share HOME=$BATS_TEST_TMPDIR
    cd "$BATS_TEST_TMPDIR"
    printf '$opt\n%%keywords hf\n' >study.mq
    for program in mqkit mqkit-graph; do
        found=$(bash --norc -c '
            source /usr/share/bash-completion/bash_completion
            __load_completion "$1"
            complete -p "$1"' bash "$program")
        [ "$found" = "complete -F _mqkit $program" ]
    done
    [ "$(fish -c 'complete -C "mqkit explain study.mq --task "' | cut -f 1)" = opt ]
    [ "$(fish -c 'complete -C "mqkit-graph --format s"' | cut -f 1)" = svg ]
    found=$(printf '%s\n' 'mqkit explain study.mq --task ' 'mqkit-graph --format s' |
        zsh -f "$MQKIT_SOURCE/tests/packages/zsh_offers.zsh" "$root/usr/share/zsh/vendor-completions")
    [ "$found" = $'opt\n.\nsvg\n.' ]
}

@test "with the package alone a hook stops a bad commit, and vim has colours" {
    dpkg_there -i "$package"
    export PATH="$root/usr/bin:/usr/bin:/bin" HOME=$BATS_TEST_TMPDIR GIT_CONFIG_GLOBAL=/dev/null GIT_CONFIG_NOSYSTEM=1
    unset MQKIT
    mkdir "$BATS_TEST_TMPDIR/study"
    cd "$BATS_TEST_TMPDIR/study"
    git init -q .
    cp "$root/usr/share/mqkit/hooks/pre-commit" .git/hooks/
    printf '$opt_min # the first step\n  %%source best\n  %%keywords hf\n' >study.mq
    git add study.mq
    run git -c user.name=Ada -c user.email=ada@example.org commit -m x
    [ "$status" -eq 1 ]
    [ "${lines[0]}" = "study.mq:2:3: error [missing-source-task] source task does not exist: best" ]
    sed -i 's/best/origin/' study.mq
    git add study.mq
    git -c user.name=Ada -c user.email=ada@example.org commit -q -m x
    vim -Nu NONE -i NONE -n -es --cmd "set runtimepath^=$root/usr/share/vim/vimfiles" --cmd 'filetype plugin on' \
        --cmd 'syntax on' study.mq -c 'call writefile([&filetype, synIDattr(synID(1, 11, 1), "name")], "out")' -c 'qa!'
    [ "$(cat out)" = $'mq\nmqComment' ]
}
