# examples/hooks/pre-commit in a real repository.

bats_require_minimum_version 1.5.0
load expect

setup() {
    setup_plain repository
    setup_git
    unset MQKIT_LINT_OPTIONS
    export TMPDIR="$BATS_TEST_TMPDIR/with a blank"
    mkdir "$TMPDIR"
    git init -q .
    cp "$MQKIT_SOURCE/examples/hooks/pre-commit" .git/hooks/
    refusal="commit refused; git commit --no-verify passes over this check"
}

teardown() {
    [ -z "$(ls "$TMPDIR")" ] # the hook leaves nothing behind
}

good() { printf '$a\n  %%keywords k\n'; }
bad() { printf '$a\n  %%source b\n  %%keywords k\n'; }
doubtful() { printf '$a\n  %%args x\n'; }

commits() {
    git add -A
    run --separate-stderr git commit -q -m x
    [ "$status" -eq 0 ]
    [ -z "$output" ]
    [ -z "$stderr" ]
}

# refuses <what is told>: the index stays, and no commit is made.
refuses() {
    local before
    before=$(git rev-list --count --all)
    run --separate-stderr git commit -q -m x
    [ "$status" -eq 1 ]
    [ -z "$output" ]
    [ "$stderr" = "$1"$'\n'"$refusal" ]
    [ "$(git rev-list --count --all)" = "$before" ]
}

@test "the hook passes shellcheck" {
    shellcheck "$MQKIT_SOURCE/examples/hooks/pre-commit"
}

@test "sound files are committed in silence, and so are other files" {
    good >a.mq
    bad >notes.txt
    commits
    echo more >notes.txt
    commits
    git rm -q a.mq
    commits
}

@test "what is staged counts, not what lies in the working tree" {
    bad >a.mq
    git add a.mq
    good >a.mq
    refuses "a.mq:2:3: error [missing-source-task] source task does not exist: b
checked 1 file(s), 1 error(s), 0 warning(s) [strict]"
    git add a.mq
    bad >a.mq
    run git commit -q -m x
    [ "$status" -eq 0 ]
    [ "$(git show HEAD:a.mq)" = "$(good)" ]
}

@test "only the files of the commit are checked" {
    bad >old.mq
    git add -A
    git commit -q -m old --no-verify
    good >new.mq
    commits
}

@test "names of any kind, in any directory" {
    mkdir -p "a b/-c"
    bad >"a b/-c/x'y.mq"
    bad >-d.MQ
    bad >$'two\nlines.mq'
    git add -A
    refuses "-d.MQ:2:3: error [missing-source-task] source task does not exist: b
a b/-c/x'y.mq:2:3: error [missing-source-task] source task does not exist: b
two
lines.mq:2:3: error [missing-source-task] source task does not exist: b
checked 3 file(s), 3 error(s), 0 warning(s) [strict]"
}

@test "includes are found as they are committed" {
    mkdir shared
    good >shared/common.mq
    printf '&INCLUDE "shared/common.mq"\n$b\n  %%source a\n  %%keywords k\n' >a.mq
    commits
    printf '  %%mod\n    charge 1\n' >>a.mq
    commits
}

@test "warnings refuse the commit unless the options say otherwise" {
    doubtful >a.mq
    git add -A
    refuses "[WARNING] task 'a' uses %args without an explicit %program; defaulting to '%program xtb'.
a.mq:2:3: error [legacy-implicit-xtb-args] implicit XTB from %args is legacy; add %program xtb
checked 1 file(s), 1 error(s), 0 warning(s) [strict]"
    MQKIT_LINT_OPTIONS="" git commit -q -m x 2>err
    [ "$(git rev-list --count --all)" -eq 1 ]
}

@test "a commit of some files only, from a subdirectory" {
    mkdir sub
    good >sub/a.mq
    bad >b.mq
    git add -A
    cd sub
    run git commit -q -m x a.mq
    [ "$status" -eq 0 ]
    [ "$(git show --name-only --format= HEAD)" = "sub/a.mq" ]
}

@test "a program that is not there refuses the commit" {
    good >a.mq
    git add -A
    MQKIT=/no/such/program run git commit -q -m x
    [ "$status" -eq 1 ]
    [ "$(git rev-list --count --all)" -eq 0 ]
}

@test "of a project the template is checked, and the cases, which are links, are passed over" {
    mkdir -p p/m1
    good >p/p.projmq
    ln -s ../p.projmq p/m1/m1.mq
    commits
    bad >p/p.projmq
    git add -A
    run --separate-stderr git commit -q -m x
    [ "$status" -eq 1 ]
    [ "$stderr" = "p/p.projmq:2:3: error [missing-source-task] source task does not exist: b
checked 1 file(s), 1 error(s), 0 warning(s) [strict]
$refusal" ]
    git reset -q --hard
    mkdir p/m2
    ln -s ../p.projmq p/m2/m2.mq
    commits
}
