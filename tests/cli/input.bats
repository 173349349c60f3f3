# What is read: pipes and terminals, byte order marks, every byte of a message, YAML to its end, extra files.

bats_require_minimum_version 1.5.0
load expect

setup() {
    setup_plain
    printf '$a\n%%keywords hf\n' >a.mq
    printf 'dsl_version: 2\n\n$a\n  %%source origin\n  %%keywords hf\n' >a.expected
    mark=$'\xef\xbb\xbf'
}

@test "a task file on the command line may be a pipe" {
    for command in fmt migrate expand; do
        cat a.mq | expect 0 "$(cat a.expected)"$'\n' "" $command /dev/stdin
        expect 0 "$(cat a.expected)"$'\n' "" $command <(sleep 0.2; cat a.mq)
    done
    mkfifo pipe
    cat a.mq >pipe &
    expect 0 $'[mqkit] wrote task file: b.mq\n' "" fmt pipe -o b.mq
    diff a.expected b.mq
    "$MQKIT" explain a.mq >explained
    cat a.mq | "$MQKIT" explain /dev/stdin | sed 's|/dev/stdin|a.mq|; s|^file: /dev/|file: ./|' | diff explained -
    # Empty, and larger than a pipe holds at once.
    expect 0 $'dsl_version: 2\n\n' "" fmt /dev/stdin < <(true)
    { printf '$a\n%%keywords '; head -c 1000000 /dev/zero | tr '\0' x; } | "$MQKIT" fmt /dev/stdin >out
    [ "$(wc -c <out)" -eq 1000049 ]
}

@test "a task file on the command line may be a terminal" {
    { cat a.mq; printf '\x04'; } | script -qec "$MQKIT fmt /dev/tty -o b.mq" /dev/null
    diff a.expected b.mq
}

@test "a pipe that is to be overwritten, directories and devices are refused" {
    mkfifo pipe
    mkdir dir
    refused "--in-place needs a regular file to write to, pipe is none" fmt -i pipe
    refused "--in-place needs a regular file to write to, pipe is none" migrate --in-place pipe
    refused "--in-place needs a regular file to write to, /dev/stdin is none" fmt /dev/stdin -i < <(echo '$a')
    refused "could not open file: dir" fmt dir
    refused "could not open file: /dev/null" expand /dev/null
    expect 1 "" $'could not open file: /dev/zero\n' explain /dev/zero
}

@test "includes, libraries, trees and the file of a define section stay with regular files" {
    mkfifo pipe.mq pipe.yaml pipe.mqlib
    printf '&INCLUDE pipe.yaml\n$a\n&INCLUDE pipe.mq\n' >t.mq
    run --separate-stderr "$MQKIT" fmt t.mq
    [ "$status" -eq 0 ]
    [[ "$stderr" = *"Warning: Included YAML file not found: $PWD/pipe.yaml"*"Warning: Included task file not found: $PWD/pipe.mq" ]]
    printf '&INCLUDE pipe.mqlib as l\n' >l.mq
    refused "fragment library not found: $PWD/pipe.mqlib" fmt l.mq
    rm t.mq l.mq a.mq
    expect 1 "" $'no .mq files found\n' lint . pipe.mq
    run "$MQKIT" template variable pipe.mq none
    [ "$output" = "[mqkit][ERROR] could not read file: pipe.mq" ]
}

@test "a byte order mark at the start of a file is skipped" {
    printf '%s' "$mark" | cat - a.mq >m.mq
    expect 0 "$(cat a.expected)"$'\n' "" fmt m.mq
    printf '%s$b\n  %%sourse x\n' "$mark" >m.mq
    refused "m.mq:2:3-2:12: error: task 'b' contains unknown directive '%sourse'" fmt m.mq
    # Lint's columns count from behind it.
    printf '%s#include x.mq\n$a\n%%keywords k\n' "$mark" >m.mq
    rm a.mq
    "$MQKIT" lint m.mq >out 2>err
    holds out "$PWD/m.mq:1:1: warning [legacy-hash-include] #INCLUDE is legacy; use &INCLUDE
checked 1 file(s), 0 error(s), 1 warning(s)
"
    # So does the version in its first line: what it says is unknown.
    printf '%sdsl_version: 3\n$a\n%%keywords k\n' "$mark" >m.mq
    expect 0 "$PWD/m.mq: warning [unknown-dsl-version] unexpected dsl_version '3'
checked 1 file(s), 0 error(s), 1 warning(s)
" "" lint m.mq
}

@test "templates and their variables may begin with a byte order mark" {
    mkdir lib
    printf '%s$x\n  %%keywords [k]\n' "$mark" >lib/x.mq
    printf '%sname: v\nvariables:\n  k: hf\n' "$mark" >lib/other.yaml
    printf '$y\n  %%keywords mp2\n' >lib/y.mq
    "$MQKIT" template merge -o - -d lib y x >out
    run grep -c "$mark" out
    [ "$output" = 0 ]
    grep -qx '\$x' out
    # A define section goes behind the mark, which stays where it is.
    printf '%s$t\n  %%keywords [k]\n' "$mark" >t.mq
    MORQUILL_TEMPLATE_PATH=$PWD/lib expect 0 \
        $'[mqkit] wrote define section for t.mq using variable template: v\n' "" template variable t.mq v
    holds t.mq "${mark}define:
  k: hf

\$t
  %keywords [k]
"
    printf '%sMORQUILL_TEMPLATE_PATH=%s/lib\n' "$mark" "$PWD" >morquill.conf
    "$MQKIT" template list >out
    grep -qx '  x (General)' out
}

@test "a message holds all bytes of the input" {
    printf '$a\n  %%program x\0y z\n' >a.mq
    printf "task 'a': unknown %%program 'x\0y z'; supported values are gaussian, orca, gamess, xtb, mrcc, maple, amesp, bdf, mopac, fcclasses, other, script\n" >expected
    # fails <arguments>...: standard output and standard error to files.
    fails() { if "$MQKIT" "$@" >out 2>err; then false; fi; }
    for command in fmt migrate expand; do
        fails $command a.mq
        { printf '[mqkit][ERROR] '; cat expected; } | diff -a - err
        [ ! -s out ]
    done
    fails explain a.mq
    diff -a expected err
    fails lint a.mq
    { printf '%s/a.mq: error [parse-error] ' "$PWD"; cat expected; } >lint.expected
    echo "checked 1 file(s), 1 error(s), 0 warning(s)" >>lint.expected
    diff -a lint.expected out
    fails lint --format json a.mq
    grep -qF "\"message\": \"task 'a': unknown %program 'x\\u0000y z'; supported values are gaussian," out
    # With a place: %interface tells it.
    printf '$a\n%%interface \0\n' >a.mq
    printf "[mqkit][ERROR] a.mq:2:1-2:13: error: task 'a' has unknown %%interface mode '\0'; expected 'provider' or 'consume'\n" >expected
    fails fmt a.mq
    diff -a expected err
    fails lint --format json a.mq
    grep -qF "has unknown %interface mode '\\u0000'; expected" out
}

@test "a directive without its task header is told, and the file is left alone" {
    for text in $'dsl_version: 2\n%source origin\n%keywords hf\n' $'dsl_version: 2\n  %keywords hf\n'; do
        printf '%s' "$text" >a.mq
        refused "a.mq:2: task directive appears outside a task block" fmt --in-place a.mq
        holds a.mq "$text"
        expect 1 "$PWD/a.mq: error [parse-error] $PWD/a.mq:2: task directive appears outside a task block
checked 1 file(s), 1 error(s), 0 warning(s)
" "" lint a.mq
    done
}

@test "YAML that is not read is told, and the file is left alone" {
    local text=$'dsl_version: 2\n---\nsite: here\n$a\n'
    printf '%s' "$text" >a.mq
    refused "failed to parse YAML prelude in 'a.mq': yaml-cpp: error at line 2, column 1: a second YAML document is not read" fmt -i a.mq
    holds a.mq "$text"
    printf -- '---\nsite: here\n$a\n' >a.mq
    refused "a.mq:1: a YAML document marker ends the prelude; the lines behind it are not read" fmt -i a.mq
    printf 'site: here\n---\n\n$a\n' >a.mq
    expect 0 $'dsl_version: 2\nsite: here\n\n$a\n  %source origin\n' "" fmt a.mq
}

# extras: a file beside both extra files, which say everything that they can say.
extras() {
    mkdir -p dir/other
    printf 'totcore: 4\nsite: extra\ndefine:\n  k: extra\n  m: extra\nmatrix:\n  x: 1, 2\n' >dir/extra.yaml
    printf 'queue: long\n$first\n@plot barrier p\npoint x value 1\npoint y value 2\n@end\n' >dir/extra.mq
    printf 'site: own\ndefine:\n  k: own\n$t\n%%source first\n%%keywords [k] [m] [x]\n@derive d\nemit e = 1\n@end\n' >dir/t.mq
    own='dsl_version: 2
site: own
define:
  k: own

$t
  %source first
  %keywords "[k] [m] [x]"

@derive d
  emit e = 1
@end
'
}

@test "what the extra files beside a file bring is not written beside them" {
    extras
    "$MQKIT" expand --expanded dir/t.mq >before
    for command in fmt migrate; do
        expect 0 $'[mqkit] wrote task file: dir/t.mq\n' "" $command -i dir/t.mq
        holds dir/t.mq "$own"
        expect 0 $'[mqkit] wrote task file: dir/../dir/b.mq\n' "" $command dir/t.mq -o dir/../dir/b.mq
        holds dir/b.mq "$own"
    done
    # The same document comes out of what was written.
    "$MQKIT" expand --expanded dir/t.mq | diff before -
    "$MQKIT" expand --expanded dir/b.mq | diff before -
    (cd dir && "$MQKIT" fmt ./t.mq -o c.mq >/dev/null)
    holds dir/c.mq "$own"
}

@test "elsewhere, on standard output and in place of an extra file, a document is whole" {
    extras
    local whole='dsl_version: 2
queue: long
site: own
totcore: 4
define:
  k: own
  m: extra
matrix:
  x: 1, 2

$first__x_1
  %source origin
  %control
    totcore 4

$first__x_2
  %source origin
  %control
    totcore 4

$t
  %source first
  %control
    totcore 4
  %keywords "[k] [m] [x]"

@plot barrier p
  point x value 1
  point y value 2
  unit kcal/mol
  output "Results/Plots/p.png"
  format png
@end

@derive d
  emit e = 1
@end
'
    expect 0 "$whole" "" fmt dir/t.mq
    expect 0 "$whole" "" expand dir/t.mq
    for target in t.mq dir/other/t.mq dir/extra.mq; do
        cp dir/extra.mq kept.mq
        expect 0 "[mqkit] wrote task file: $target"$'\n' "" migrate dir/t.mq -o $target
        holds $target "$whole"
        cp kept.mq dir/extra.mq
    done
}

@test "in-place fmt leaves the header values of the extra files where they are" {
    printf 'totcore: 8\n' >extra.yaml
    printf '$m\n%%keywords z\n$n\n%%keywords y\n%%control\n totcore 8\n totmem 4\n' >m.mq
    "$MQKIT" fmt -i m.mq >/dev/null
    diff m.mq - <<'END'
dsl_version: 2

$m
  %source origin
  %keywords z

$n
  %source origin
  %control
    totcore 8
    totmem 4
  %keywords y
END
}
