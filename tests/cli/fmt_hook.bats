# examples/hooks/mqkit-fmt-check: what it says, and what it leaves alone.
load expect

setup() {
    setup_plain work
    hook=$MQKIT_SOURCE/examples/hooks/mqkit-fmt-check
    export TMPDIR="$BATS_TEST_TMPDIR/with a blank"
    mkdir "$TMPDIR"
}

teardown() {
    [ -z "$(ls "$TMPDIR")" ] # nothing is left behind, neither there nor beside the files
    [ -z "$(find "$BATS_TEST_TMPDIR/work" -name '.*fmt*')" ]
}

canonical() { printf 'dsl_version: 2\n\n$a\n  %%source origin\n  %%keywords k\n'; }
loose() { printf '$a\n%%keywords "k"\n'; }

# checked <status> <output> <arguments>...
checked() {
    run "$hook" "${@:3}"
    [ "$status" -eq "$1" ]
    [ "$output" = "$2" ]
}

# kept <file> <what would be dropped>: left alone in every mode, to the byte.
kept() {
    cp "$1" "$TMPDIR/before"
    checked 0 "$1: left as it is; a rewrite would drop: $2" "$1"
    checked 0 "$1: left as it is; a rewrite would drop: $2" --fix "$1"
    checked 1 "$1: left as it is; a rewrite would drop: $2" --fix --strict "$1"
    cmp "$1" "$TMPDIR/before"
    rm "$TMPDIR/before"
}

@test "the hook passes shellcheck" {
    shellcheck "$hook"
}

@test "a canonical file passes in silence" {
    canonical >a.mq
    checked 0 "" a.mq
    checked 0 "" --fix --strict a.mq
}

@test "another layout is reported, and rewritten on demand" {
    loose >a.mq
    canonical >b.mq
    checked 1 "a.mq: not canonical; mqkit fmt --in-place writes it so" a.mq b.mq
    [ "$(cat a.mq)" = "$(loose)" ]
    checked 1 "a.mq: rewritten" --fix a.mq b.mq
    diff a.mq b.mq
    checked 0 "" a.mq
}

@test "a file with comments is left alone" {
    printf '# one\n%s\n' "$(loose)" >whole-line.mq
    kept whole-line.mq comments
    printf '$a\n  %%keywords k # two\n' >behind.mq
    kept behind.mq comments
    printf '$a\n  %%keywords k\n@plot bar b\n  from task a#three\n  x c\n  y d\n@end\n' >plot.mq
    kept plot.mq comments
    printf 'a: 1 # four\n$a\n  %%keywords k\n' >prelude.mq
    kept prelude.mq comments
}

@test "a mark that is no comment does not count" {
    printf '$a\n  %%program script\n  %%runner sh\n  %%body << X\n# text\nX\n$b\n%%keywords "6-31g #1"\n' >a.mq
    checked 1 "a.mq: not canonical; mqkit fmt --in-place writes it so" a.mq
    checked 1 "a.mq: rewritten" --fix a.mq
    grep -qx '# text' a.mq
}

@test "a comment is found though the same text is kept elsewhere" {
    printf '# x\n$a\n  %%program script\n  %%runner sh\n  %%body << X\n# x\nX\n' >a.mq
    kept a.mq comments
}

@test "a comment is found though a define brings other marks" {
    printf 'define:\n  k: "c#c#c"\n$a # note\n  %%keywords x\n@plot bar b\n  from task a\n  x y\n  title "[k] [k]"\n  y z\n@end\n' >a.mq
    kept a.mq comments
}

@test "loops, includes and lists are not flattened" {
    printf '@foreach s in series(1-2)\n$a[s.value]\n  %%keywords k\n@end\n' >loop.mq
    kept loop.mq loops
    loose >other.mq
    printf '&INCLUDE other.mq\n%s\n' "$(loose | sed 's/a$/b/')" >include.mq
    kept include.mq includes
    printf 'solvents: [water]\n%s\n' "$(loose)" >list.mq
    kept list.mq "the list solvents"
    printf 'solvents: [water]\n@foreach solvents # all\n$a\n  %%keywords k\n@end\n&INCLUDE other.mq\n' >all.mq
    kept all.mq "comments, loops, includes, the list solvents"
}

@test "totcore and totmem of the head stay the default of all tasks" {
    printf 'totcore: 16\n%s\n' "$(loose)" >cores.mq
    kept cores.mq "totcore of the head as a default"
    printf 'totmem: 8000\ntotcore: 16\n%s\n$b\n  %%control\n    totcore 4\n' "$(loose)" >both.mq
    kept both.mq "totcore of the head as a default, totmem of the head as a default"
}

@test "a head that every task overrides is no default" {
    printf 'totcore: 16\n$a\n%%keywords "k"\n%%control\n  totcore 4\n' >own.mq
    checked 1 "own.mq: rewritten" --fix own.mq
    [ "$(cat own.mq)" = "$(printf 'dsl_version: 2\ntotcore: 16\n\n$a\n  %%source origin\n  %%control\n    totcore 4\n  %%keywords k\n')" ]
    checked 0 "" own.mq
}

@test "what fmt says it does not carry over is not dropped" {
    printf '$a\n  %%keywords k\n  %%interface provider\n' >a.mq
    kept a.mq "it is written without %interface provider"
}

@test "formulas of a derive are not put into its expressions" {
    printf '$a\n%%keywords k\n@derive d\n  formula kcal(x) = x * 627.5\n  emit e = kcal({{ a.energy }})\n@end\n' >a.mq
    kept a.mq "formulas, profiles or binds"
}

@test "no word is dropped that the reader passes over" {
    printf '$a\n%%control totcore 8\n' >inline.mq
    kept inline.mq "the word totcore"
    printf '$a\n%%control\n  ncpus 4\n  totcore 2\n' >unknown.mq
    kept unknown.mq "the word ncpus"
    printf '$a\nas discussed\n%%keywords k\n' >stray.mq
    kept stray.mq "the word as"
    printf '$a\n%%keywords first\n%%keywords second\n' >twice.mq
    kept twice.mq "the word first"
    printf '$a\n%%control\n  totcore eight\n' >refused.mq
    kept refused.mq "the word totcore"
}

@test "what lies in extra.yaml and extra.mq is not written into the file beside them" {
    printf 'totcore: 8\n' >extra.yaml
    printf '$x\n  %%keywords k\n' >extra.mq
    canonical >a.mq
    checked 0 "" a.mq
    loose >a.mq
    checked 1 "a.mq: rewritten" --fix a.mq
    [ "$(cat a.mq)" = "$(canonical)" ]
}

@test "a file that is not read fails, and the others are checked" {
    printf '$a\n  %%nosuch\n' >a.mq
    loose >b.mq
    checked 1 "[mqkit][ERROR] a.mq:2:3-2:10: error: task 'a' contains unknown directive '%nosuch'
a.mq: cannot be formatted
b.mq: not canonical; mqkit fmt --in-place writes it so" a.mq b.mq
}

@test "names of any kind, and a wrong option" {
    mkdir "a b"
    loose >"a b/-x'.mq"
    loose >-y.mq
    checked 1 "a b/-x'.mq: not canonical; mqkit fmt --in-place writes it so
./-y.mq: not canonical; mqkit fmt --in-place writes it so" -- "a b/-x'.mq" -y.mq
    checked 1 "mqkit-fmt-check: unknown option: --nosuch" --nosuch a.mq
}
