# A folder to complete in, and the table of what is offered there.

# setup_completions: enters the folder; the programs are on the PATH.
setup_completions() {
    mkdir -p "$BATS_TEST_TMPDIR/bin" "$BATS_TEST_TMPDIR/w/clusters/mol1" "$BATS_TEST_TMPDIR/w/templates/conformers"
    ln -sf "$MQKIT" "$BATS_TEST_TMPDIR/bin/mqkit"
    ln -sf "$(dirname "$MQKIT")/mqkit-graph" "$BATS_TEST_TMPDIR/bin/mqkit-graph"
    export PATH="$BATS_TEST_TMPDIR/bin:$PATH" LC_ALL=C.UTF-8
    cd "$BATS_TEST_TMPDIR/w" || return 1
    export MORQUILL_TEMPLATE_PATH=$PWD/templates HOME=$BATS_TEST_TMPDIR
    cp "$MQKIT_SOURCE/examples/tasks/conditions.mq" a.mq
    cp "$MQKIT_SOURCE/examples/matrix/functional_basis.mq" matrix.mq
    printf '$opt\n  %%keywords hf\n' | tee b.MQ templates/opt.mq >templates/conformers/refine.mq
    printf '$opt\n  %%keywrods hf\n' >broken.mq
    touch new.txt clusters/mol.xyz
    mkfifo pipe
    printf 'name: "compo-site"\n' >templates/fast.yaml
    printf 'variables:\n  a: b\n' >templates/conformers/simple.yml
    printf 'dsl_version: 2\nmatrix:\n  m: [a, b]\n$opt\n  %%keywords "[m]"\n$soc\n  %%keywords hf\n' >clusters/clusters.projmq
    ln -s ../clusters.projmq clusters/mol1/mol1.mq
}

# hold_cases <function>: what the function prints for each line of the table, one word a line, is what the table says.
hold_cases() {
    local line wanted found failed=0 count=0
    while IFS= read -r row; do
        [[ $row == *' => '* && $row != '#'* ]] || continue
        line=${row%%|*}
        wanted=$(tr -s ' ' '\n' <<<"${row##* => }" | sed '/^-$/d' | sort)
        found=$("$1" "$line" | sed 's#/$##' | sort -u)
        count=$((count + 1))
        [[ $found == "$wanted" ]] || { echo "$line|: $(tr '\n' ' ' <<<"$found")"; failed=1; }
    done <"$MQKIT_SOURCE/tests/completions/cases.txt"
    [ "$failed" -eq 0 ] && [ "$count" -gt 40 ]
}

# typed_in <shell command>: a study with blanks in its names is completed and explained by keys alone. Keys are sent once
# the screen shows what the last ones made of the line.
typed_in() {
    export TMUX_TMPDIR=$BATS_TEST_TMPDIR
    unset TMUX
    screen() { tmux -u -L completions "$@"; }
    shows() { # <text>: waits until the screen shows it
        local tries=200
        until screen capture-pane -p | grep -qF -- "$1"; do
            ((tries-- > 0)) || { screen capture-pane -p | grep .; screen kill-server; return 1; }
            sleep 0.05
        done
    }
    printf '$"two words"\n  %%keywords hf\n$last\n  %%keywords hf\n' >"my study.mq"
    screen -f /dev/null new-session -d -x 150 -y 40 "$1"
    shows '@>' || return
    screen send-keys -l 'mqkit expl'
    screen send-keys Tab
    shows 'mqkit explain' || return
    screen send-keys -l 'my'
    screen send-keys Tab
    shows "study.mq" || return
    screen send-keys -l -- '--task tw'
    screen send-keys Tab
    shows "words" || return
    screen send-keys Enter
    shows 'task_count: 1' || return
    shows 'task: two words' || return
    screen kill-server
}
