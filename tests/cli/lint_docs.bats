# docs/lint.md holds what it promises: every code has its section, every example gives exactly what it is there for.

setup() {
    export NO_COLOR=1
    cd "$BATS_TEST_TMPDIR"
    mkdir shared
    printf '$common\n  %%keywords k\n' >shared/common.mq # what an example includes
    # Each fenced example becomes <number>.mq, with the section and the codes it announces in <number>.expected.
    awk '
        /^### / { section = $2 }
        /^```mq / { name = sprintf("%03d", ++count); print section, substr($0, 7) > (name ".expected"); inside = 1; next }
        /^```/ { inside = 0 }
        inside { print > (name ".mq") }
    ' "$MQKIT_SOURCE/docs/lint.md"
}

codes_of_the_program() {
    sed -n 's/^ *{"\([a-z0-9-]*\)", [WE], ".*/\1/p' "$MQKIT_SOURCE/src/lint/rules.cpp" | sort -u
}

@test "every code has one section and one row in the table, with its severity" {
    [ "$(codes_of_the_program | wc -l)" -eq 27 ]
    diff <(codes_of_the_program) <(sed -n 's/^### //p' "$MQKIT_SOURCE/docs/lint.md" | sort)
    diff <(sed -n 's/^ *{"\([a-z0-9-]*\)", W, ".*/\1 warning/p; s/^ *{"\([a-z0-9-]*\)", E, ".*/\1 error/p' \
        "$MQKIT_SOURCE/src/lint/rules.cpp" | sort -u) \
        <(sed -n 's/^| \[`\([a-z0-9-]*\)`\](#\1) | \([a-z]*\) | .*/\1 \2/p' "$MQKIT_SOURCE/docs/lint.md" | sort)
}

@test "every section has an example of its code, and one that is mended" {
    for code in $(codes_of_the_program); do
        grep -lE "^$code (.* )?$code( |\$)" ./*.expected
        grep -lxF "$code clean" ./*.expected
    done
}

@test "every example gives exactly the codes it announces" {
    [ "$(ls ./*.mq | wc -l)" -ge 55 ]
    for file in ./*.mq; do
        read -r section expected <"${file%.mq}.expected"
        [ "$expected" != clean ] || expected=""
        "$MQKIT" lint "$file" >out 2>err || true
        found=$(sed -n 's/^.*\.mq[0-9:]*: [a-z]* \[\([a-z0-9-]*\)\] .*/\1/p' out | sort -u | tr '\n' ' ')
        expected=$(tr ' ' '\n' <<<"$expected" | sort | sed '/^$/d' | tr '\n' ' ')
        [ "$found" = "$expected" ] || { echo "$section, $file: found '$found', announced '$expected'"; cat out; return 1; }
        if [ -z "$expected" ]; then
            [ "$(head -n 1 out)" = "no issues found" ]
        fi
    done
}
