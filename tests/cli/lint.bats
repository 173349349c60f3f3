# lint: discovery, both formats whole, options and refusals, exit status.

bats_require_minimum_version 1.5.0
load expect

setup() {
    setup_plain work
    good >good.mq
}

# linted: as expect, of mqkit lint.
linted() { expect "${@:1:3}" lint "${@:4}"; }

good() { printf '$a\n  %%keywords k\n'; }
bad() { printf '$a\n  %%source b\n  %%keywords k\n'; }
# The parser has nothing to say about it.
doubtful() { printf '$a\n  %%keywords {k,l}\n  %%process\n    mwfn x\n'; }

doubts="$(cat <<'TEXT'
doubtful.mq:4:5: warning [legacy-process-alias] process command alias 'mwfn' is legacy; use 'multiwfn'
doubtful.mq:2:3: warning [legacy-keyword-brace-expansion] Gaussian/ORCA keyword brace expansion is legacy; use matrix:
TEXT
)"
# doubts_as <severity>: the lines of doubtful.mq in this directory.
doubts_as() { sed "s|^|$root/|; s/warning/$1/" <<<"$doubts"; }

driver_help="Usage:
  mqkit lint [--strict] [--quiet] [--format text|json] <path>...

Notes:
  - paths can be .mq files or directories; directories are scanned recursively
  - lint parses task files with shared parser AST and source spans
"

@test "a sound file, by name, by directory and by default" {
    local clean=$'no issues found\nchecked 1 file(s), 0 error(s), 0 warning(s)\n'
    linted 0 "$clean" "" good.mq
    linted 0 "$clean" "" .
    linted 0 "$clean" ""
    linted 0 "$clean" "" good.mq ../work "$root/good.mq"
}

@test "warnings alone leave the status 0, strict makes them errors" {
    doubtful >doubtful.mq
    linted 0 "$(doubts_as warning)
checked 2 file(s), 0 error(s), 2 warning(s)
" ""
    linted 1 "$(doubts_as error)
checked 2 file(s), 2 error(s), 0 warning(s) [strict]
" "" --strict
    linted 0 $'no issues found\nchecked 1 file(s), 0 error(s), 0 warning(s) [strict]\n' "" --strict good.mq
}

@test "errors give status 1, and files come in the order of their paths" {
    mkdir b
    bad >b/t.mq
    bad >b.mq
    doubtful >doubtful.mq
    linted 1 "$root/b.mq:2:3: error [missing-source-task] source task does not exist: b
$root/b/t.mq:2:3: error [missing-source-task] source task does not exist: b
$(doubts_as warning)
checked 4 file(s), 2 error(s), 2 warning(s)
" "" doubtful.mq b good.mq b.mq
}

@test "quiet leaves only the count" {
    doubtful >doubtful.mq
    linted 0 $'checked 2 file(s), 0 error(s), 2 warning(s)\n' "" --quiet
    linted 1 $'checked 2 file(s), 2 error(s), 0 warning(s) [strict]\n' "" --quiet . --strict
    linted 0 $'checked 1 file(s), 0 error(s), 0 warning(s)\n' "" good.mq --quiet
}

@test "a finding without a place names the file alone" {
    printf 'dsl_version: 3\n$a\n  %%keywords k\n' >good.mq
    linted 0 "$root/good.mq: warning [unknown-dsl-version] unexpected dsl_version '3'
checked 1 file(s), 0 error(s), 1 warning(s)
" ""
}

@test "the JSON document, whole, with and without --quiet" {
    printf 'dsl_version: "\t3"\n$a\n  %%source \001"\n  %%keywords k\n' >odd.mq
    printf '$a\n%%foo\n' >'two"names.mq'
    local document
    document="$(cat <<TEXT
{
  "files": [
    {
      "path": "$root/good.mq",
      "parsed": true,
      "issues": [
      ]
    },
    {
      "path": "$root/odd.mq",
      "parsed": true,
      "issues": [
        {
          "severity": "warning",
          "code": "unknown-dsl-version",
          "message": "unexpected dsl_version '\\"\\t3\\"'",
          "span": "$root/odd.mq"
        },
        {
          "severity": "error",
          "code": "missing-source-task",
          "message": "source task does not exist: \\u0001\\"",
          "span": "$root/odd.mq:3:3-3:13"
        }
      ]
    },
    {
      "path": "$root/two\\"names.mq",
      "parsed": false,
      "issues": [
        {
          "severity": "error",
          "code": "parse-error",
          "message": "task 'a' contains unknown directive '%foo'",
          "span": "$root/two\\"names.mq:2:1-2:5"
        }
      ]
    }
  ],
  "summary": {
    "files": 3,
    "errors": 2,
    "warnings": 1,
    "strict": false
  }
}
TEXT
)"$'\n'
    linted 1 "$document" "" --format json
    linted 1 "$document" "" --quiet . --format json
    linted 1 "$(sed 's/"warning"/"error"/; s/"errors": 2/"errors": 3/; s/"warnings": 1/"warnings": 0/; s/"strict": false/"strict": true/' <<<"$document")"$'\n' "" --strict --format json
}

@test "a JSON document of one sound file" {
    linted 0 "$(cat <<TEXT
{
  "files": [
    {
      "path": "$root/good.mq",
      "parsed": true,
      "issues": [
      ]
    }
  ],
  "summary": {
    "files": 1,
    "errors": 0,
    "warnings": 0,
    "strict": false
  }
}
TEXT
)"$'\n' "" --format json good.mq
}

@test "the parser's warnings go to standard error, unless JSON was asked for to the letter" {
    printf '$a\n  %%args x\n' >good.mq
    local issue="$root/good.mq:2:3: warning [legacy-implicit-xtb-args] implicit XTB from %args is legacy; add %program xtb"
    local told="[WARNING] task 'a' uses %args without an explicit %program; defaulting to '%program xtb'."$'\n'
    linted 0 "$issue"$'\n'"checked 1 file(s), 0 error(s), 1 warning(s)"$'\n' "$told" --format Text
    "$MQKIT" lint --format json >whole 2>err
    [ ! -s err ]
    linted 0 "$(cat whole)"$'\n' "$told" --format JSON
    # The one-word form silences the log and is refused all the same.
    linted 1 "$driver_help" $'unknown argument: --format=json\n' --format=json
}

@test "the last format counts, also when an earlier one was JSON" {
    linted 0 $'no issues found\nchecked 1 file(s), 0 error(s), 0 warning(s)\n' "" --format json --format text
}

@test "a version 1 file is read with tolerance, any other strictly" {
    list() { printf 'dsl_version: %s\n$a\n %%keywords k\n$b\n %%keywords k\n$c\n %%source a,b\n %%keywords k\n' "$1" >good.mq; }
    local removed="task 'c' uses removed multi-dependency '%source a,b,...' syntax; keep the first task in %source and move the rest into '%when completed ...'"
    list 1
    "$MQKIT" lint >out 2>/dev/null
    diff - out <<<"$root/good.mq:7:2: warning [legacy-multi-source] deprecated multi-source syntax should be migrated for DSL2
checked 1 file(s), 0 error(s), 1 warning(s)"
    for version in 2 3 '"1"' '1 # old'; do
        list "$version"
        linted 1 "$root/good.mq:7:2: error [parse-error] $removed
checked 1 file(s), 1 error(s), 0 warning(s)
" ""
    done
}

@test "a fault in an included file names that file; what its tasks lack is told of the file that includes" {
    mkdir parts
    printf '$a\n  %%foo\n' >parts/p.mq
    printf '&INCLUDE "parts/p.mq"\n' >good.mq
    linted 1 "$root/parts/p.mq:2:3: error [parse-error] task 'a' contains unknown directive '%foo'
checked 1 file(s), 1 error(s), 0 warning(s)
" "" good.mq
    bad >parts/p.mq
    linted 1 "$root/good.mq:2:3: error [missing-source-task] source task does not exist: b
checked 1 file(s), 1 error(s), 0 warning(s)
" "" good.mq
    "$MQKIT" lint --format json good.mq >out || true
    grep -qxF "          \"span\": \"$root/parts/p.mq:2:3-2:12\"" out
}

@test "a fault that names its line in its message has its place in JSON as well" {
    printf 'x: 1\n  %%keywords hf\n' >good.mq
    linted 1 "$root/good.mq: error [parse-error] $root/good.mq:2: task directive appears outside a task block
checked 1 file(s), 1 error(s), 0 warning(s)
" "" good.mq
    linted 1 "$(cat <<TEXT
{
  "files": [
    {
      "path": "$root/good.mq",
      "parsed": false,
      "issues": [
        {
          "severity": "error",
          "code": "parse-error",
          "message": "$root/good.mq:2: task directive appears outside a task block",
          "span": "$root/good.mq:2:3-2:15"
        }
      ]
    }
  ],
  "summary": {
    "files": 1,
    "errors": 1,
    "warnings": 0,
    "strict": false
  }
}
TEXT
)"$'\n' "" --format json good.mq
}

@test "a file that cannot be parsed does not stop the others" {
    bad >z.mq
    printf '@end\n' >a.mq
    "$MQKIT" lint >out && false
    [ "$(sed -n 's/.*\[\(.*\)\].*/\1/p' out)" = $'parse-error\nmissing-source-task' ]
    [ "$(tail -n 1 out)" = "checked 3 file(s), 2 error(s), 0 warning(s)" ]
}

@test "nothing to check is a failure in both formats" {
    rm good.mq
    touch notes.txt
    for arguments in "notes.txt" "." "" "--format json" "--quiet missing.mq" "--strict missing"; do
        # shellcheck disable=SC2086
        linted 1 "" $'no .mq files found\n' $arguments
    done
    linted 1 "" $'no .mq files found\n' ""
    good >upper.MQ
    linted 0 $'no issues found\nchecked 1 file(s), 0 error(s), 0 warning(s)\n' "" notes.txt upper.MQ missing
}

@test "refusals are told with the help of the command" {
    linted 1 "$driver_help" $'--format expects a value\n' good.mq --format
    linted 1 "$driver_help" $'unsupported format: yaml\n' --format yaml
    linted 1 "$driver_help" $'unsupported format: \n' --format ""
    linted 1 "$driver_help" $'unknown argument: -x\n' good.mq -x --help
    linted 1 "$driver_help" $'unknown argument: -\n' -
    linted 1 "$driver_help" $'unknown argument: --Strict\n' --Strict
    linted 1 "$driver_help" $'unknown argument: --no-color\n' --no-color
}

@test "help right behind the command is the long one, further back the short one" {
    local help="  Lint .mq files and directories.

Usage:
  mqkit lint [--strict] [--quiet] [--format text|json] <file-or-dir>...

Examples:
  mqkit lint task.mq
  mqkit lint --strict ./cases
"
    linted 0 "$help" "" -h
    linted 0 "$help" "" --help -x
    linted 0 "$help" "" help
    linted 0 "$driver_help" "" good.mq -h -x
    linted 0 "$driver_help" "" --strict --help
    # Only as the first word is "help" no path.
    linted 0 $'no issues found\nchecked 1 file(s), 0 error(s), 0 warning(s)\n' "" good.mq help
    "$MQKIT" help lint | diff <(printf '%s' "$help") -
}

@test "two runs give the same bytes, and no file is changed" {
    doubtful >doubtful.mq
    bad >bad.mq
    local before
    before=$(cat ./*.mq | cksum)
    "$MQKIT" lint >"$BATS_TEST_TMPDIR/one" || true
    "$MQKIT" lint . "$root" >"$BATS_TEST_TMPDIR/two" || true
    diff "$BATS_TEST_TMPDIR/one" "$BATS_TEST_TMPDIR/two"
    [ "$(cat ./*.mq | cksum)" = "$before" ]
}

@test "the examples are clean under --strict, but for the historical one and for a part that is included" {
    local file="$MQKIT_SOURCE/examples/tasks/historical.mq" count
    count=$(find "$MQKIT_SOURCE/examples" -iname '*.mq' | wc -l)
    "$MQKIT" lint --strict "$MQKIT_SOURCE/examples" >out 2>err && false
    file=$(realpath "$file")
    sed -i "s|^$file:||; s|^$(realpath "$MQKIT_SOURCE")/examples/||" out
    diff - out <<TEXT
2:1: error [legacy-hash-include] #INCLUDE is legacy; use &INCLUDE
10:1: error [legacy-control-gpu-alias] %control totgpu is legacy; use gpus
11:1: error [legacy-control-gpu-alias] %control gputype is legacy; use gpu_type
12:1: error [legacy-control-gpu-alias] %control gpumem is legacy; use gpu_mem
17:1: error [legacy-source-guess] deprecated '%source ... guess' syntax should move into %control
17:1: error [legacy-source-guess] move source guess syntax to %control guess
22:1: error [legacy-implicit-xtb-args] implicit XTB from %args is legacy; add %program xtb
27:1: error [legacy-xtb-keywords] %program xtb with %keywords is legacy; use %args
30:1: error [legacy-multi-source] deprecated multi-source syntax should be migrated for DSL2
32:1: error [legacy-other-keywords] other task template parameters should be written with %template/%param
37:1: error [legacy-script-runner] script task runner should be written with %runner
tutorial/protocols/functionals.mq:9:3: error [missing-source-task] source task does not exist: freq_min
tutorial/protocols/functionals.mq:12:5: error [missing-completed-target] completed target does not exist: freq_min
tutorial/protocols/functionals.mq:13:5: error [missing-placeholder-task] placeholder task does not exist: freq_min
checked $count file(s), 14 error(s), 0 warning(s) [strict]
TEXT
    "$MQKIT" lint "$file" >out 2>err
    [ "$(tail -n 1 out)" = "checked 1 file(s), 0 error(s), 11 warning(s)" ]
    # Migrated, it has nothing left but the list of sources, which wants a decision.
    "$MQKIT" migrate "$file" -o migrated.mq >out 2>err
    sed -i 's/%source "sp,opt"/%source sp/; /^totcore: 0$/d' migrated.mq
    linted 0 $'no issues found\nchecked 1 file(s), 0 error(s), 0 warning(s) [strict]\n' "" --strict migrated.mq
}
