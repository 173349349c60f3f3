# The jobs of examples/ci: their steps, taken from the files and run as a runner runs them.

setup() {
    export NO_COLOR=1
    mkdir -p "$BATS_TEST_TMPDIR/bin" "$BATS_TEST_TMPDIR/study/.ci" "$BATS_TEST_TMPDIR/study/a b"
    ln -s "$MQKIT" "$BATS_TEST_TMPDIR/bin/mqkit"
    export PATH="$BATS_TEST_TMPDIR/bin:$PATH"
    cd "$BATS_TEST_TMPDIR/study"
    cp -r "$MQKIT_SOURCE/examples/ci" .ci/mqkit
    printf '$a\n  %%source b\n  %%keywords k\n' >"a b/a.mq"
    CI_PROJECT_DIR=$(pwd -P)
    export CI_PROJECT_DIR
}

# steps <file> <expression>: shell lines of a YAML document `job`. The module comes with pre-commit.
steps() { /usr/bin/python3 -c "import sys, yaml; job = yaml.safe_load(open(sys.argv[1])); print($2)" "$MQKIT_SOURCE/examples/ci/$1"; }

@test "GitLab: the job fails, and its report names the finding" {
    [ "$(steps gitlab-ci.yml 'job["task-files"]["artifacts"]["reports"]["codequality"]')" = code-quality.json ]
    steps gitlab-ci.yml '"\n".join(job["task-files"]["script"])' >steps
    run bash -e steps
    [ "$status" -eq 1 ]
    [ "$(jq -r '.[] | "\(.location.path):\(.location.lines.begin) \(.check_name) \(.severity)"' code-quality.json)" = \
        "a b/a.mq:2 missing-source-task major" ]
    printf '$a\n  %%keywords k\n' >"a b/a.mq"
    run bash -e steps
    [ "$status" -eq 0 ]
    [ "$(jq -c . code-quality.json)" = "[]" ]
}

@test "GitHub: the check fails with lines for the matcher, the report is SARIF" {
    step='[s["run"] for s in job["jobs"]["lint"]["steps"] if s.get("name") == "%s"][0]'
    # shellcheck disable=SC2059 # the format is the expression
    steps github.yml "$(printf "$step" Check)" >check
    # shellcheck disable=SC2059
    steps github.yml "$(printf "$step" Report)" >report
    run bash -e check
    [ "$status" -eq 1 ]
    [ "${lines[0]}" = "::add-matcher::.ci/mqkit/mqkit-matcher.json" ]
    [ "${lines[1]}" = "$CI_PROJECT_DIR/a b/a.mq:2:3: error [missing-source-task] source task does not exist: b" ]
    [ -f .ci/mqkit/mqkit-matcher.json ]
    bash -e report
    [ "$(jq -r '.runs[0].results[].locations[0].physicalLocation.artifactLocation.uri' lint.sarif)" = "a%20b/a.mq" ]
}
