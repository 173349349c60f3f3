# The hooks of .pre-commit-hooks.yaml under the real pre-commit program, in a repository of their own; no network.

setup() {
    export NO_COLOR=1 GIT_CONFIG_GLOBAL=/dev/null GIT_CONFIG_NOSYSTEM=1
    export GIT_AUTHOR_NAME=Ada GIT_AUTHOR_EMAIL=ada@example.org GIT_COMMITTER_NAME=Ada
    export GIT_COMMITTER_EMAIL=ada@example.org PRE_COMMIT_HOME=$BATS_TEST_TMPDIR/cache PRE_COMMIT_COLOR=never
    unset GIT_DIR GIT_INDEX_FILE GIT_WORK_TREE
    mkdir "$BATS_TEST_TMPDIR/bin"
    ln -s "$MQKIT" "$BATS_TEST_TMPDIR/bin/mqkit"
    export PATH="$BATS_TEST_TMPDIR/bin:$PATH"

    # The project as a repository with a release.
    mkdir -p "$BATS_TEST_TMPDIR/mqkit/examples"
    cd "$BATS_TEST_TMPDIR/mqkit"
    cp "$MQKIT_SOURCE/.pre-commit-hooks.yaml" .
    cp -r "$MQKIT_SOURCE/examples/hooks" examples/
    git init -q .
    git add -A
    git commit -q -m release
    git tag v1

    mkdir "$BATS_TEST_TMPDIR/study"
    cd "$BATS_TEST_TMPDIR/study"
    git init -q .
    config "[]"
    git add -A
    git commit -q -m start
    pre-commit install >/dev/null
}

# config <arguments of the format check>
config() {
    printf '%s\n' "repos:" "  - repo: $BATS_TEST_TMPDIR/mqkit" "    rev: v1" "    hooks:" \
        "      - id: mqkit-lint" "      - id: mqkit-fmt-check" "        args: $1" >.pre-commit-config.yaml
}

canonical() { printf 'dsl_version: 2\n\n$a\n  %%source origin\n  %%keywords k\n'; }

@test "the manifest is one that pre-commit accepts" {
    pre-commit validate-manifest "$MQKIT_SOURCE/.pre-commit-hooks.yaml"
}

@test "a sound commit passes, and one without task files runs no hook" {
    canonical >a.mq
    git add -A
    run git commit -m x
    [ "$status" -eq 0 ]
    [[ $output == *"task files pass mqkit lint"*Passed*"canonical layout"*Passed* ]]
    echo text >notes.txt
    git add -A
    run git commit -m y
    [ "$status" -eq 0 ]
    [[ $output == *Skipped*Skipped* ]]
}

@test "a fault stops the commit, and so does a warning" {
    printf '$a\n  %%source b\n  %%keywords k\n' >a.mq
    git add -A
    run git commit -m x
    [ "$status" -eq 1 ]
    [[ $output == *"a.mq:2:3: error [missing-source-task] source task does not exist: b"* ]]
    printf '#INCLUDE x\n%s\n' "$(canonical)" >a.mq
    git add -A
    run git commit -m x
    [ "$status" -eq 1 ]
    [[ $output == *"error [legacy-hash-include] #INCLUDE is legacy; use &INCLUDE"* ]]
    [ "$(git rev-list --count --all)" -eq 1 ]
}

@test "what is staged counts, not what lies in the working tree" {
    printf '$a\n  %%source b\n  %%keywords k\n' >a.mq
    git add -A
    canonical >a.mq
    run git commit -m x
    [ "$status" -eq 1 ]
    [ "$(cat a.mq)" = "$(canonical)" ]
}

@test "another layout stops the commit; with --fix the next try passes" {
    printf '$a\n%%keywords "k"\n' >a.mq
    git add -A
    run git commit -m x
    [ "$status" -eq 1 ]
    [[ $output == *"a.mq: not canonical; mqkit fmt --in-place writes it so"* ]]
    [ "$(cat a.mq)" = $'$a\n%keywords "k"' ]
    config "[--fix]"
    git add -A
    run git commit -m x
    [ "$status" -eq 1 ]
    [[ $output == *"a.mq: rewritten"* ]]
    [ "$(cat a.mq)" = "$(canonical)" ]
    git add -A
    git commit -q -m x
}

@test "comments are never lost, and the file passes" {
    printf '# mine\n$a\n%%keywords "k"\n' >a.mq
    cp a.mq before
    config "[--fix]"
    git add a.mq .pre-commit-config.yaml
    run git commit -m x
    [ "$status" -eq 0 ]
    cmp a.mq before
}
