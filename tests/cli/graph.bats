# mqkit-graph: a task file as dot, Mermaid and SVG text, whole, and every refusal.
load expect

setup() {
    setup_plain
    graph=$(dirname "$MQKIT")/mqkit-graph
    golden=$MQKIT_SOURCE/tests/golden/graph
}

# drawn <golden file> <arguments>...: standard output is that file, and nothing else is said.
drawn() {
    "$graph" "${@:2}" >out 2>err
    diff "$golden/$1" out
    diff /dev/null err
}

@test "a file as dot and as Mermaid text" {
    drawn chain.dot "$golden/chain.mq"
    drawn chain.dot "$golden/chain.mq" --format dot --expanded
    drawn chain.mmd --format mermaid "$golden/chain.mq"
}

@test "variants as one box, or one by one in clusters" {
    drawn matrix.dot "$golden/matrix.mq"
    drawn matrix.mmd "$golden/matrix.mq" --format mermaid
    drawn matrix.expanded.dot --expanded "$golden/matrix.mq"
    drawn matrix.expanded.mmd --expanded --format mermaid "$golden/matrix.mq"
}

@test "a pipe is read to its end" {
    drawn matrix.dot <(cat "$golden/matrix.mq")
}

@test "names of any bytes in dot and Mermaid" {
    printf '$"a\\"\n$b\000\377\x1b\n$<b>&lt;\n%%source a\\\n$"{x|[y]} #"\n%%when defined "q\\n"\n' >odd.mq
    "$graph" odd.mq >out
    grep -o 'label="[^,]*gaussian[^,]*", shape\|n. -> .*' out >found
    diff found - <<'END'
label="a\\\ngaussian", shape
label="b\\x00\\xff\\x1b\ngaussian", shape
label="<b>&amp;lt;\ngaussian", shape
label="{x|[y]} #\ngaussian\nwhen defined \"q\\n\"", shape
n1 -> n3;
END
    "$graph" odd.mq --format mermaid >out
    grep '^  n' out >found
    diff found - <<'END'
  n1["a#92;<br/>gaussian"]:::gaussian
  n2["b#92;x00#92;xff#92;x1b<br/>gaussian"]:::gaussian
  n3["#60;b#62;#38;lt#59;<br/>gaussian"]:::gaussian
  n4["#123;x#124;#91;y#93;#125; #35;<br/>gaussian<br/>when defined #34;q#92;#8288;n#34;"]:::gaussian
  n1 --> n3
END
}

@test "SVG is drawn by Graphviz, with every name as it is shown" {
    command -v dot >/dev/null || skip "Graphviz is not installed"
    printf '$"a\\N"\n$b\000\377\n$<b>&lt;\n$\303\251\n' >odd.mq
    "$graph" odd.mq --format svg >out 2>err
    diff /dev/null err
    sed -n 's/.*<text.*>\(.*\)<\/text>.*/\1/p' out | grep -v gaussian >found
    diff found - <<'END'
a\N
b\x00\xff
&lt;b&gt;&amp;lt;
é
END
    [ "$(head -c 5 out)" = "<?xml" ]
    [ "$(tail -n 1 out)" = "</svg>" ]
}

@test "without Graphviz a message says what to do" {
    mkdir empty
    status=0
    PATH=$PWD/empty "$graph" "$golden/chain.mq" --format svg >out 2>err || status=$?
    [ "$status" -eq 1 ]
    diff /dev/null out
    diff err - <<'END'
--format svg needs Graphviz: failed to execute 'dot': No such file or directory; install it, or take --format dot or mermaid
END
}

@test "a signal reaches Graphviz, too, and nothing is left behind" {
    mkdir bin
    printf '#!/bin/sh\necho $$ >started\nexec sleep 60\n' >bin/dot
    chmod +x bin/dot
    PATH=$PWD/bin:$PATH "$graph" "$golden/chain.mq" --format svg >out 2>err &
    program=$!
    for _ in $(seq 200); do [ -s started ] && break || sleep 0.05; done
    kill -TERM "$program"
    status=0
    wait "$program" || status=$?
    [ "$status" -eq 143 ]
    ! kill -0 "$(cat started)" 2>/dev/null
    diff /dev/null out
}

@test "output that nobody takes is a failure" {
    status=0
    "$graph" "$golden/chain.mq" >/dev/full 2>err || status=$?
    [ "$status" -eq 1 ]
    [ "$(cat err)" = "[mqkit][ERROR] could not write to standard output: No space left on device" ]
}

@test "warnings of the file go to standard error" {
    printf '$a\n%%args x\n' >old.mq
    "$graph" old.mq --format mermaid >out 2>err
    [ "$(cat err)" = "[WARNING] task 'a' uses %args without an explicit %program; defaulting to '%program xtb'." ]
    [ "$(sed -n 2p out)" = '  n1("a<br/>xtb"):::xtb' ]
}

@test "refusals, one line each" {
    expect_of "$graph" 1 "" $'mqkit-graph expects a <task.mq> path\n'
    expect_of "$graph" 1 "" $'--format expects a value\n' a.mq --format
    expect_of "$graph" 1 "" $'unsupported graph format: png\n' a.mq --format png
    expect_of "$graph" 1 "" $'unknown graph option: -o\n' a.mq -o b
    expect_of "$graph" 1 "" $'unexpected extra argument: b.mq\n' a.mq b.mq
    expect_of "$graph" 1 "" $'could not open file: a.mq\n' a.mq
    printf '$a\n%%foo\n' >t.mq
    expect_of "$graph" 1 "" $'t.mq:2:1-2:5: error: task \'a\' contains unknown directive \'%foo\'\n' t.mq
}

@test "help" {
    local help="Usage:
  mqkit-graph <task.mq> [--expanded] [--format dot|mermaid|svg]

Options:
  --expanded           draw every matrix variant, not one box for all of a task
  --format <fmt>       dot (default), mermaid, or svg, which needs Graphviz
"
    expect_of "$graph" 0 "$help" "" --help
    expect_of "$graph" 0 "$help" "" -h --nonsense
    expect_of "$graph" 0 "$help" "" a.mq --help
}
