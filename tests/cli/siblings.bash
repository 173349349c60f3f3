# A project of two cases and stand-ins for the sibling programs, shared by the tests of the project workflows. Goes
# with expect.bash.

# setup_project: enters "$root", which holds demo.projmq (blocks opt and soc) and the cases m1 and m2.
setup_project() {
    setup_deep
    mkdir "$BATS_TEST_TMPDIR/bin"
    export RECORD="$BATS_TEST_TMPDIR/record"
    PATH="$BATS_TEST_TMPDIR/bin:$PATH"
    printf '$opt\n%%keywords a\n\n$soc\n%%keywords b\n' >demo.projmq
    for case in m1 m2; do
        mkdir -p $case/opt $case/soc
        ln -s ../demo.projmq $case/$case.mq
    done
}

# sibling <name> [<more shell text>]: a program that records its arguments, its directory and every status file.
sibling() {
    cat >"$BATS_TEST_TMPDIR/bin/$1" <<END
#!/bin/sh
{
    echo "$1 \$* in \$(pwd -P)"
    for file in "$root"/*/mq.status; do
        [ -e "\$file" ] && echo "\${file#"$root"/}:" && cat "\$file"
    done
} >>"\$RECORD"
true
$2
END
    chmod +x "$BATS_TEST_TMPDIR/bin/$1"
}

# recorded <text>: what the siblings recorded, as a whole.
recorded() {
    [ "$(cat "$RECORD")" = "$1" ] || { cat "$RECORD"; return 1; }
}

# tree: every name below the current directory with the text of short files.
tree() {
    find . -mindepth 1 | LC_ALL=C sort | while read -r name; do
        if [ -L "$name" ]; then
            echo "$name -> $(readlink "$name")"
        elif [ -d "$name" ]; then
            echo "$name/"
        else
            echo "$name = $(tr '\n' '|' <"$name" | tr '\0' '0')"
        fi
    done
}

# ordinary_user: from here on the program runs as a user for whom permissions mean something, in a project that this
# user may change. Skips the test where that cannot be had.
ordinary_user() {
    [ "$(id -u)" -eq 0 ] || return 0
    command -v setpriv >/dev/null || skip "root is stopped by no permission, and there is no setpriv"
    cp "$MQKIT" "$BATS_TEST_TMPDIR/bin/mqkit"
    chmod a+rx "$BATS_RUN_TMPDIR" "$BATS_RUN_TMPDIR"/*/ "$BATS_TEST_TMPDIR"
    chown -R 65534:65534 "$root"
    printf '#!/bin/sh\nexec setpriv --reuid 65534 --regid 65534 --clear-groups "%s" "$@"\n' \
        "$BATS_TEST_TMPDIR/bin/mqkit" >"$BATS_TEST_TMPDIR/bin/mqkit-as-nobody"
    chmod +x "$BATS_TEST_TMPDIR/bin/mqkit-as-nobody"
    MQKIT="$BATS_TEST_TMPDIR/bin/mqkit-as-nobody"
    "$MQKIT" help >/dev/null || skip "another user cannot run the program here"
}

# started <arguments>...: runs a command in the background with every signal at its default (those of a script start
# with SIGINT ignored, which would rightly stay so) until a child of it has written its number to "$RECORD.pid";
# leaves the command's own number in pid.
started() {
    rm -f "$RECORD.pid"
    ulimit -c 0
    env --default-signal "$MQKIT" "$@" <&0 >"$BATS_TEST_TMPDIR/out" 2>"$BATS_TEST_TMPDIR/err" 3>&- &
    pid=$!
    for _ in $(seq 300); do
        [ -s "$RECORD.pid" ] && return
        sleep 0.1
    done
    return 1
}

# stopped <signal>: sends it to the command alone, which has to end by it, and its child before it.
stopped() {
    child="$(cat "$RECORD.pid")"
    kill -s "$1" "$pid"
    status=0
    wait "$pid" || status=$?
    [ "$status" -eq $((128 + $(kill -l "$1"))) ] || { echo "status $status"; return 1; }
    ! kill -0 "$child" 2>/dev/null || { kill -9 "$child"; echo "the child still runs"; return 1; }
}

# A child that waits to be stopped.
waiting='echo $$ >"$RECORD.pid"; exec sleep 60'
