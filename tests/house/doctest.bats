#!/usr/bin/env bats
# The runner of the pages: it passes what is true and finds every kind of lie, one changed letter included.

setup() {
    cd "$BATS_TEST_TMPDIR"
    cat >true.md <<'PAGE'
A page, with `a word` in it.

```mq file=opt.mq canonical
$opt
  %source origin
  %keywords "b3lyp opt"
```

```console
$ mqkit fmt opt.mq
dsl_version: 2

$opt
  %source origin
  %keywords "b3lyp opt"
$ mkdir cases
$ cd cases
$ printf 'no line end'
no line end
```

1. In the folder that was entered:

   ```console status=1
   $ cat >fault.mq <<MQ
   > \$opt
   >   %keyword x
   > MQ
   $ mqkit lint ./fault.mq
   /home/ada/cases/fault.mq:2:3: error [parse-error] task 'opt' contains unknown directive '%keyword'
   checked 1 file(s), 1 error(s), 0 warning(s)
   ```

```mq lint=ignored-guess,ignored-guess,legacy-source-guess,legacy-source-guess warns="deprecated '%source ... guess'"
$opt
  %keywords "b3lyp opt"
$sp
  %source opt guess
  %control
    guess opt
  %keywords "b3lyp"
```

```mq lint=clean
$opt
  %keywords "b3lyp opt"
```

```mq fails="unknown directive '%keyword'"
$opt
  %keyword x
```

```mq part-of=examples/matrix/functional_basis.mq
$opt_min
  %source origin
  %keywords "[functional]/[basis] em=[dispersion] [grid] opt"
```

```yaml example=examples/extra/extra.yaml
PAGE
    cat "$MQKIT_SOURCE/examples/extra/extra.yaml" >>true.md
    cat >>true.md <<'PAGE'
```

```sh
value=1
```

```yaml file=values/extra.yaml
totcore: 4
```

```console
$ cat values/extra.yaml; echo $value
totcore: 4
1
```

```text not-run="it is a form"
mqkit <command>
```

```console single
$ echo '$ ls'
$ ls
```

```console
$ mqkit-graph ../opt.mq --format mermaid | head -n 1
flowchart TD
```

```mq warns="invalid %control gpus value 'many' | without alert false"
$opt
  %control
    gpus many
    alert false
  %keywords "b3lyp"
```

```mq lint=clean canonical
$opt
  %source origin
  %keywords "b3lyp opt"
```

```console
$ printf '%s\n' '> one' \
> '> two'
> one
> two
```
PAGE
}

doctest() { run "$MQKIT_SOURCE/script/doctest" "$@"; }

# lie <sed command> <first line of the report>: the page with that change is refused with that report.
lie() {
    sed "$1" "$BATS_TEST_TMPDIR/true.md" >"$BATS_TEST_TMPDIR/lie.md"
    ! cmp -s "$BATS_TEST_TMPDIR/true.md" "$BATS_TEST_TMPDIR/lie.md"
    doctest "$BATS_TEST_TMPDIR/lie.md"
    [ "$status" -eq 1 ]
    [ "${lines[0]}" = "$BATS_TEST_TMPDIR/lie.md:$2" ] || { echo "$output"; return 1; }
}

# block <info string> <report>: a page of this block alone is refused with this report.
block() {
    printf '```%s\ntext\n```\n' "$1" >one.md
    doctest "$PWD/one.md"
    [ "$status" -eq 1 ]
    [ "$output" = "$PWD/one.md:$2" ] || { echo "$output"; return 1; }
}

# page <format of printf> <report>: a page of this text is refused with this report, or is true when that is empty.
page() {
    [ "$1" != -- ] || shift
    # shellcheck disable=SC2059 # the text is the format
    printf -- "$1" >one.md
    doctest "$PWD/one.md"
    [ "$status" -eq "$([ -z "$2" ]; echo $?)" ]
    [ "$output" = "${2:+$PWD/one.md:$2}" ] || { echo "$output"; return 1; }
}

@test "a true page passes in silence" {
    doctest "$PWD/true.md"
    [ "$status" -eq 0 ] || { echo "$output"; return 1; }
    [ "$output" = "" ]
}

@test "a changed letter is found wherever it stands" {
    lie '15s/b3lyp/b3lyq/' "10: mqkit fmt opt.mq"
    lie '5s/  %source/   %source/' "3: canonical form"
    lie '19s/end/emd/' "18: printf 'no line end'"
    lie '30s/2:3/2:4/' "29: mqkit lint ./fault.mq"
    lie '34s/ignored-guess,//' "34: findings of lint"
    lie '34s/,legacy-source-guess / /' "34: findings of lint"
    lie '34s/deprecated/outdated/' "34: the reader does not say just what the block announces"
    lie '34s/ warns=.*//' "34: the reader does not say just what the block announces"
    lie '46s/keywords/args/' "44: findings of lint"
    lie '51s/keyword/keywords/' "49: fmt ends with status 0, not 1"
    lie '51s/keyword/keywrod/' "49: the reader does not say just what the block announces"
    lie '57s/grid/mesh/' "54: these lines are not in examples/matrix/functional_basis.mq"
    lie '63s/toluene/benzene/' "60: examples/extra/extra.yaml"
    lie '69s/$/; echo told/' "68: value=1; echo told"
    lie '88s/ls/rm/' "87: echo '\$ ls'"
    lie '96s/many/lots/' "96: the reader does not say just what the block announces"
    lie '96s/ |.*/"/' "96: the reader does not say just what the block announces"
    lie '96s/warns=.*/lint=clean/' "96: the reader does not say just what the block announces"
    lie '106s/  %source/   %source/' "104: canonical form"
    lie '9s/$/\nIt prints this:/' "9: text in front of the first command"
    lie '73s/4/5/' "77: cat values/extra.yaml; echo \$value"
}

@test "a status that nobody announced is found" {
    lie '24s/ status=1//' "29: status 1, not 0: mqkit lint ./fault.mq"
    lie '16s/mkdir cases/mkdir cases; false/' "16: status 1, not 0: mkdir cases; false"
    lie '69s/^/false\n/' "68: it failed: false"
}

@test "a faulty file that announces nothing is found" {
    lie '49s/ fails=.*//' "49: fmt ends with status 1, not 0"
    lie '49s/fails/warns/' "49: fmt ends with status 1, not 0"
}

@test "a page that ends its shell is not read to its end" {
    page '```sh\nexit 0\n```\n' "1: it ends the shell of the page: exit 0"
    page '```sh\nfinished=yes; exit 0\n```\n' "1: it ends the shell of the page: finished=yes; exit 0"
}

@test "what a page defines does not reach what compares it" {
    page '```sh\nfault() { :; }; compare() { :; }; status=0 failed=""\n```\n```console\n$ echo one\ntwo\n```\n' "5: echo one
    --- shown
    +++ found
    @@ -1 +1 @@
    -two
    +one"
}

@test "a line of output that looks like a continued command is compared" {
    page '```console\n$ true\n> # text\n```\n' "2: true
    --- shown
    +++ found
    @@ -1 +0,0 @@
    -> # text"
    page '```console\n$ true # \\\n> # text\n```\n' "2: true # \\
    --- shown
    +++ found
    @@ -1 +0,0 @@
    -> # text"
}

@test "every block says what it is" {
    block "" "1: '' does not say what to do with the block"
    block yaml "1: 'yaml' does not say what to do with the block"
    block "text not-run" "1: 'not-run' says nothing"
    block "text not-run=because" "1: 'not-run' says less than two words"
    block 'text not-run=" "' "1: 'not-run' says less than two words"
    block 'text not-run="why not" file=a' "1: 'not-run' stands alone"
    block "mq example=none.mq lint=clean" "1: 'example' stands alone"
    block "mq lint=clean lint=clean" "1: the info string 'mq lint=clean lint=clean' cannot be read"
    block "mq warns" "1: 'warns' says nothing"
    block 'mq fails=" "' "1: 'fails' says less than two words"
    block 'mq fails="task"' "1: 'fails' says less than two words"
    block 'mq warns="without alert | e"' "1: 'warns' says less than two words"
    block 'mq warns="a b" fails="c d"' "1: a fault is the last word: 'fails' alone"
    block 'mq canonical fails="a b"' "1: what fails has no canonical form"
    block "mq canonical=no" "1: 'canonical' takes no value"
    block "console status=status" "1: 'status' is a number above 0"
    block "sh file=a" "1: mq, yaml and ini can be files: 'sh' would be compared with nothing"
    block "text file=a" "1: mq, yaml and ini can be files: 'text' would be compared with nothing"
    block "mq canonicle" "1: unknown word 'canonicle' in the info string"
    block "sh status=1" "1: unknown word 'status' in the info string"
    block 'mq file="a' "1: the info string 'mq file=\"a' cannot be read"
    block console "1: no line of this console begins with \"\$ \""
    block "mq example=examples/none.mq" "1: there is no examples/none.mq"
    block "mq part-of=docs/pictures/none.mq" "1: there is no docs/pictures/none.mq"
    block "text part-of=README.md" "1: README.md is neither an example nor a picture"
    block "text example=examples/../README.md" "1: examples/../README.md is neither an example nor a picture"
}

@test "a block without a text, and a command in a file, are refused" {
    page '```mq part-of=examples/extra/extra.mq\n```\n' "1: an empty block"
    page '```console\n```\n' "1: an empty block"
    page '```yaml file=out.yaml\n$ mqkit fmt a.mq\n```\n' "1: a file that shows a command"
}

@test "what a reader sees as typed is a fenced block, wherever it stands" {
    local blanks="a tab, a carriage return or four blanks, as in an indented block: write a fenced one"
    page 'text\n\n    mqkit fmt\n' "3: $blanks"
    page '# Title\n    mqkit fmt\n' "2: $blanks"
    page '\tmqkit fmt\n' "1: $blanks"
    page '>     $ mqkit fmt\n' "1: $blanks"
    page -- '-     $ mqkit fmt\n' "1: $blanks"
    page '1. - >  \t$ mqkit fmt\n' "1: $blanks"
    page 'text\r' "1: $blanks"
    local kind="a block of another kind: write one between three backticks"
    page '~~~ text\n' "1: $kind"
    page '> ~~~ text\n' "1: $kind"
    page -- '- ```sh\n' "1: $kind"
    page '````text\n' "1: $kind"
    page '```text not-run="it is `code`"\n' "1: $kind"
    page '`` ` ``<pre>`` ` ``\n' "1: $kind"
    page '<PRE>\n' "1: HTML"
    page 'text <p><pre>text\n' "1: HTML"
    page '> <!-- a note --> text\n' "1: HTML"
    page '`one` two <pre> `three`\n' "1: HTML"
    local span="a backtick that begins no code span of this line"
    page '\\` `\n`<pre>`\n' "1: $span"
    page '\\`<pre>\\`\n' "1: $span"
    page '`one\ntwo`\n' "1: $span
$PWD/one.md:2: $span"
    page '<!-- manual: mqkit(1): a purpose -->\nA `<file>` is < 1 MB, `\\` and `\\\\` `<words>`.\n' ""
}

@test "a block ends where a reader sees it end" {
    page 'text\n```sh\ntrue\n' "2: a block without an end"
    local like="a fence ends like it begins: with three backticks, as far to the right"
    page '```sh\ntrue\n ```\n' "3: $like"
    page '```sh\ntrue\n````\n' "3: $like"
    page '   ```sh\n   true\n```\n' "3: $like"
    page '```sh\ntrue\n``` \n' "3: $like"
    page '   ```sh\n   true\n  true\n' "3: a line of a block that is indented less than its fence"
    page '```sh\n# ``` and\n# ~~~ are lines of it\n```\n' ""
}

@test "a missing page is refused" {
    doctest "$PWD/missing.md"
    [ "$status" -eq 1 ]
    [ "$output" = "$PWD/missing.md: cannot be read" ]
}

@test "what depends on the order of a directory is found" {
    printf '```console\n$ ls -U examples/extra\nextra.mq\nextra.yaml\nredox.mq\n```\n' >order.md
    [ -w /dev/shm ] || skip "no file system in memory"
    doctest "$PWD/order.md"
    [ "$status" -eq 1 ]
}

@test "the runner and the stand-ins of the pages pass shellcheck" {
    shellcheck "$MQKIT_SOURCE"/script/doctest "$MQKIT_SOURCE"/examples/siblings/*
}
