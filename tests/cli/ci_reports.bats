# examples/ci: reports made of lint's JSON, whole.
load expect

setup() {
    setup_plain study
    ci=$MQKIT_SOURCE/examples/ci
    mkdir "a b"
    printf '$a\n  %%source b\n  %%keywords k\n$a\n  %%source b\n  %%keywords k\n' >"a b/x%.mq"
    printf '$a\n  %%program nosuch\n' >y.mq
    printf 'dsl_version: 3\n$a\n  %%keywords k\n' >z.mq
}

# report <filter> <jq options>...
report() {
    local lint
    lint=$("$MQKIT" lint --format json . || true)
    jq "${@:2}" --arg root "$(pwd -P)" -f "$ci/$1" <<<"$lint"
}

@test "annotations are commands, one for each finding, with paths of the repository" {
    diff <(report annotations.jq --raw-output) - <<'TXT'
::error file=a b/x%25.mq,line=2,col=3,title=missing-source-task::source task does not exist: b
::error file=a b/x%25.mq,line=4,col=1,title=duplicate-task::duplicate task block: a
::error file=a b/x%25.mq,line=5,col=3,title=missing-source-task::source task does not exist: b
::error file=y.mq,title=parse-error::task 'a': unknown %25program 'nosuch'; supported values are gaussian, orca, gamess, xtb, mrcc, maple, amesp, bdf, mopac, fcclasses, other, script
::warning file=z.mq,title=unknown-dsl-version::unexpected dsl_version '3'
TXT
}

@test "Code Quality: alike findings have fingerprints of their own, which no line number is part of" {
    diff <(report code-quality.jq --compact-output) - <<TXT
$(jq --null-input --compact-output '[
    {description: "source task does not exist: b", check_name: "missing-source-task", severity: "major",
     location: {path: "a b/x%.mq", lines: {begin: 2}},
     fingerprint: ("a b/x%.mq\nmissing-source-task\nsource task does not exist: b\n0" | @base64)},
    {description: "duplicate task block: a", check_name: "duplicate-task", severity: "major",
     location: {path: "a b/x%.mq", lines: {begin: 4}},
     fingerprint: ("a b/x%.mq\nduplicate-task\nduplicate task block: a\n0" | @base64)},
    {description: "source task does not exist: b", check_name: "missing-source-task", severity: "major",
     location: {path: "a b/x%.mq", lines: {begin: 5}},
     fingerprint: ("a b/x%.mq\nmissing-source-task\nsource task does not exist: b\n1" | @base64)},
    {description: ("task '"'a'"': unknown %program '"'nosuch'"'; supported values are gaussian, orca, gamess, xtb, mrcc, "
       + "maple, amesp, bdf, mopac, fcclasses, other, script"), check_name: "parse-error", severity: "major",
     location: {path: "y.mq", lines: {begin: 1}},
     fingerprint: ("y.mq\nparse-error\ntask '"'a'"': unknown %program '"'nosuch'"'; supported values are gaussian, orca, gamess, "
       + "xtb, mrcc, maple, amesp, bdf, mopac, fcclasses, other, script\n0" | @base64)},
    {description: "unexpected dsl_version '"'3'"'", check_name: "unknown-dsl-version", severity: "minor",
     location: {path: "z.mq", lines: {begin: 1}},
     fingerprint: ("z.mq\nunknown-dsl-version\nunexpected dsl_version '"'3'"'\n0" | @base64)}]')
TXT
}

@test "SARIF: rules, places and levels" {
    rm y.mq
    diff <(report sarif.jq) - <<'TXT'
{
  "$schema": "https://json.schemastore.org/sarif-2.1.0.json",
  "version": "2.1.0",
  "runs": [
    {
      "tool": {
        "driver": {
          "name": "mqkit lint",
          "rules": [
            {
              "id": "duplicate-task"
            },
            {
              "id": "missing-source-task"
            },
            {
              "id": "unknown-dsl-version"
            }
          ]
        }
      },
      "results": [
        {
          "ruleId": "missing-source-task",
          "ruleIndex": 1,
          "level": "error",
          "message": {
            "text": "source task does not exist: b"
          },
          "locations": [
            {
              "physicalLocation": {
                "artifactLocation": {
                  "uri": "a%20b/x%25.mq"
                },
                "region": {
                  "startLine": 2,
                  "startColumn": 3,
                  "endLine": 2,
                  "endColumn": 12
                }
              }
            }
          ]
        },
        {
          "ruleId": "duplicate-task",
          "ruleIndex": 0,
          "level": "error",
          "message": {
            "text": "duplicate task block: a"
          },
          "locations": [
            {
              "physicalLocation": {
                "artifactLocation": {
                  "uri": "a%20b/x%25.mq"
                },
                "region": {
                  "startLine": 4,
                  "startColumn": 1,
                  "endLine": 4,
                  "endColumn": 3
                }
              }
            }
          ]
        },
        {
          "ruleId": "missing-source-task",
          "ruleIndex": 1,
          "level": "error",
          "message": {
            "text": "source task does not exist: b"
          },
          "locations": [
            {
              "physicalLocation": {
                "artifactLocation": {
                  "uri": "a%20b/x%25.mq"
                },
                "region": {
                  "startLine": 5,
                  "startColumn": 3,
                  "endLine": 5,
                  "endColumn": 12
                }
              }
            }
          ]
        },
        {
          "ruleId": "unknown-dsl-version",
          "ruleIndex": 2,
          "level": "warning",
          "message": {
            "text": "unexpected dsl_version '3'"
          },
          "locations": [
            {
              "physicalLocation": {
                "artifactLocation": {
                  "uri": "z.mq"
                }
              }
            }
          ]
        }
      ]
    }
  ]
}
TXT
}

@test "a clean tree makes empty reports" {
    rm -r "a b" y.mq z.mq
    printf '$a\n  %%keywords k\n' >a.mq
    report annotations.jq -r >annotations
    [ ! -s annotations ]
    [ "$(report code-quality.jq -c)" = "[]" ]
    [ "$(report sarif.jq -c | jq -c '.runs[0].results, .runs[0].tool.driver.rules')" = $'[]\n[]' ]
}

@test "a path outside the root stays absolute" {
    printf '$a\n' >../out.mq
    local lint
    lint=$("$MQKIT" lint --format json ../out.mq || true)
    [ "$(jq -r --arg root "$(pwd -P)" -f "$ci/sarif.jq" <<<"$lint" |
        jq -r '.runs[0].results[0].locations[0].physicalLocation.artifactLocation.uri')" = "file://$(cd .. && pwd -P)/out.mq" ]
}

@test "in a folder reached through a link, paths are those of the repository, too" {
    ln -s study "$BATS_TEST_TMPDIR/link"
    cd "$BATS_TEST_TMPDIR/link"
    [ "$(report annotations.jq --raw-output | tail -n 1)" = \
        "::warning file=z.mq,title=unknown-dsl-version::unexpected dsl_version '3'" ]
}
