# `rename`: a whole project before and after.
bats_require_minimum_version 1.5.0
load expect
load siblings
load golden

setup() {
    setup_project
    printf '$opt\n%%keywords a\n\n$soc\n%%source opt\n%%when completed opt and {{ opt.energy }} < 0\n$opt2\n%%keywords b\n' >demo.projmq
    rmdir m2/opt
    put_line m1/opt/opt_m1.log 'opt_m1 opt_m2 $opt opt2'
    put_line m1/opt/opt_dir/opt_deep/opt_x 'opt opt  opt'
    put_line m1/opt/comd 'input=opt_[x]'
    put_line m1/mq.status 'opt RENDERED t -'
    printf 'opt\0opt' >m1/opt/raw
    put_line m1/opt/opt_m1.chk 'opt'
    put_line m1/.morq/store/objects/opt_m1 'opt'
    put_line m1/.morq/store/records/opt_m1.json '"opt"'
    put_line m1/.morq/store/records/sub/opt_m1.json '"opt"'
    put_line m1/.morq/store/revisions/sub/opt_m1_2.json '"opt"'
    put_line m1/.morq/cache/snapshots/opt_m1.kv opt_m1
    put_line m1/.morq/run/db-queue/opt_m10 '-'
    put_line m1/Results/DB/repository/opt_m1 'opt'
    put_line m1/Results/DB/queue/opt_m1 '-'
    put_line m1/Results/DB/revisions/a/opt_m1 '-'
    touch m1/.morq/cache/project.db{,-wal,-shm} m1/Results/DB/project.db
    mkdir -p .morq/cache
    touch .morq/cache/project.db-wal
    put_line notes.txt 'opt'
    put_line m2/soc/in 'geom from opt;opt_m2'
    ln -s ../../demo.projmq m2/soc/template
    ln -s ../../../../../outside m2/soc/away
    echo opt >../../../outside
}

put_line() { put "$1" "$2"$'\n'; }

@test "the help is whole, plain in a pipe and coloured on a terminal" {
    for words in "rename help" "help rename" "ren -h"; do
        "$MQKIT" $words >out 2>err
        diff <(plain_help rename) out
        [ ! -s err ]
    done
    env -u NO_COLOR TERM=xterm SHELL=/bin/sh script -qec "'$MQKIT' rename --help" /dev/null </dev/null |
        tr -d '\r' >out
    diff <(colored_help rename) out
}

@test "a block is renamed everywhere it left a trace" {
    expect_lines 0 "[mqkit] rename finished: \$opt -> \$new
  cases processed: 2
  directories renamed: 1
  files renamed: 11
  text files updated: 10
  databases invalidated: 3
  note: rerun mqdb case/project sync or rebuild before querying database results." "" rename demo.projmq opt new
    [ "$(tree)" = './.morq/
./.morq/cache/
./demo.projmq = $new|%keywords a||$soc|%source new|%when completed new and {{ new.energy }} < 0|$opt2|%keywords b|
./m1/
./m1/.morq/
./m1/.morq/cache/
./m1/.morq/cache/snapshots/
./m1/.morq/cache/snapshots/new_m1.kv = new_m1|
./m1/.morq/run/
./m1/.morq/run/db-queue/
./m1/.morq/run/db-queue/new_m10 = -|
./m1/.morq/store/
./m1/.morq/store/objects/
./m1/.morq/store/objects/opt_m1 = opt|
./m1/.morq/store/records/
./m1/.morq/store/records/new_m1.json = "new"|
./m1/.morq/store/records/sub/
./m1/.morq/store/records/sub/opt_m1.json = "new"|
./m1/.morq/store/revisions/
./m1/.morq/store/revisions/sub/
./m1/.morq/store/revisions/sub/new_m1_2.json = "new"|
./m1/Results/
./m1/Results/DB/
./m1/Results/DB/queue/
./m1/Results/DB/queue/new_m1 = -|
./m1/Results/DB/repository/
./m1/Results/DB/repository/opt_m1 = opt|
./m1/Results/DB/revisions/
./m1/Results/DB/revisions/a/
./m1/Results/DB/revisions/a/new_m1 = -|
./m1/m1.mq -> ../demo.projmq
./m1/mq.status = new RENDERED t -|
./m1/new/
./m1/new/comd = input=new_[x]|
./m1/new/new_dir/
./m1/new/new_dir/new_deep/
./m1/new/new_dir/new_deep/new_x = new opt  new|
./m1/new/new_m1.chk = opt|
./m1/new/new_m1.log = new_m1 opt_m2 $new opt2|
./m1/new/raw = opt0opt
./m1/soc/
./m2/
./m2/m2.mq -> ../demo.projmq
./m2/soc/
./m2/soc/away -> ../../../../../outside
./m2/soc/in = geom from new;new_m2|
./m2/soc/template -> ../../demo.projmq
./notes.txt = opt|' ]
    [ "$(cat ../../../outside)" = opt ]
}

@test "a link to the template stands for the whole project" {
    run --separate-stderr "$MQKIT" m2/m2.mq --rename opt new
    [ "$status" -eq 0 ]
    [ "${lines[1]}" = "  cases processed: 2" ]
    [ "$(head -n 1 demo.projmq)" = '$new' ]
    [ -d m1/new ]
}

@test "a target that exists is kept, reported, and does not stop the rest" {
    mkdir m1/new
    put_line m1/.morq/store/records/new_m1.json old
    # The link in m1 is rewritten with the template; the prefixed files of the block stay with their directory.
    expect_lines 1 "[mqkit] rename finished: \$opt -> \$new
  cases processed: 2
  directories renamed: 0
  files renamed: 5
  text files updated: 10
  databases invalidated: 3
  note: rerun mqdb case/project sync or rebuild before querying database results." "
[mqkit][ERROR] errors:
  - target block directory already exists: $root/m1/new
  - target already exists; cannot rename: $root/m1/.morq/store/records/new_m1.json" rename demo.projmq opt new
    [ "$(cat m1/.morq/store/records/new_m1.json)" = old ]
    [ -e m1/opt/opt_m1.log ]
    [ "$(cat m2/soc/in)" = "geom from new;new_m2" ]
}

@test "what cannot be read or removed is a warning on standard output" {
    rm m1/.morq/cache/project.db
    mkdir m1/.morq/cache/project.db
    expect_lines 0 "[mqkit] rename finished: \$opt -> \$new
  cases processed: 2
  directories renamed: 1
  files renamed: 11
  text files updated: 10
  databases invalidated: 3
  note: rerun mqdb case/project sync or rebuild before querying database results.

[mqkit][WARN] warnings:
  - case(m1) cache DB failed to remove stale database: Is a directory" "" rename demo.projmq opt new
}

@test "usage and help" {
    run --separate-stderr "$MQKIT" rename --help
    [ "$status" -eq 0 ]
    [ "${lines[1]}" = "  mqkit rename <task.mq|task.projmq> <old_block> <new_block>" ]
    help="$output"
    expect_lines 0 "$help" "" help rename
    expect_lines 1 "$help" "" rename demo.projmq opt
    expect_lines 1 "$help" "[mqkit][ERROR] -r/--rename expects two values: <old_block> <new_block>" demo.projmq -r opt
    expect_lines 1 "" "[mqkit][ERROR] old and new block names are identical; nothing to rename" rename demo.projmq opt opt
}

# refused <message> <arguments>...: one message, status 1, and nothing is touched.
refused_untouched() {
    local before
    before=$(tree | cksum)
    expect_lines 1 "" "[mqkit][ERROR] $1" "${@:2}"
    [ "$(tree | cksum)" = "$before" ]
}

@test "a new name that does not read back as itself is refused, nothing is touched" {
    long=$(printf 'a%.0s' {1..300})
    refused_untouched "a block name cannot hold '/': \$../esc" rename demo.projmq opt ../esc
    refused_untouched "a block name cannot be '.' or '..'" rename demo.projmq opt .
    refused_untouched "a block name cannot be '.' or '..'" rename demo.projmq opt ..
    refused_untouched "a block name cannot begin or end with a blank: \$ a" rename demo.projmq opt ' a'
    refused_untouched "a block name cannot begin or end with a blank: \$a " demo.projmq -r opt 'a '
    refused_untouched "a block name cannot hold '#': \$a #b" rename demo.projmq opt 'a #b'
    refused_untouched "a block name cannot hold a quote: \$\"a\"" rename demo.projmq opt '"a"'
    refused_untouched "a block name cannot hold a quote: \$a'" rename demo.projmq opt "a'"
    refused_untouched "a block name cannot hold ',': \$a,b" rename demo.projmq opt a,b
    refused_untouched "a block name cannot hold a line break or another control character" rename demo.projmq opt $'a\nb'
    refused_untouched "a block name cannot be longer than 255 bytes: \$$long" rename demo.projmq opt "$long"
    before=$(tree | cksum)
    run --separate-stderr -1 "$MQKIT" demo.projmq -r opt "" # with the help, as every wrong use
    [ "$stderr" = "[mqkit][ERROR] provide the old and new block names via -r/--rename" ]
    [ "$(tree | cksum)" = "$before" ]
    # The language knows these words: no reference to the block would be left.
    refused_untouched "with \$origin for \$opt the task file would no longer say the same" rename demo.projmq opt origin
    refused_untouched "with \$and for \$opt the task file would no longer say the same" rename demo.projmq opt and
}

@test "a rename that would change another header is refused, nothing is touched" {
    printf '$opt-2\n%%keywords c\n' >>demo.projmq
    refused_untouched "renaming \$opt would also turn \$opt-2 into \$new-2" rename demo.projmq opt new
}

@test "names are those whose header is written in the file itself" {
    printf '$extra\n%%keywords k\n' >extra.mq
    printf '$inner\n%%keywords k\n' >inner.mq
    printf 'define:\n  size: big\nmatrix:\n  method: x,y\npairs:\n  - name: p\n  - name: q\n&INCLUDE inner.mq\n@foreach pairs\n$lp_[pairs.name]\n%%keywords k\n@end\n@foreach? none\n$np_[none.name]\n%%keywords k\n@end\n$opt_[method]\n%%keywords k\n$sp_[size]\n%%source opt_[method]\n' >demo.projmq
    written="lp_[pairs.name], np_[none.name], opt_[method], sp_[size]"
    for name in extra inner lp_p opt_x opt_x__method_x sp_big; do
        refused_untouched "block not found in task file: \$$name"$'\n'"[mqkit] available blocks: $written" rename demo.projmq $name new
    done
    refused_untouched "target block already exists: \$inner" rename demo.projmq 'sp_[size]' inner
    run --separate-stderr "$MQKIT" rename demo.projmq 'lp_[pairs.name]' 'mp_[pairs.name]'
    [ "$status" -eq 0 ]
    run --separate-stderr "$MQKIT" rename demo.projmq 'opt_[method]' 'freq_[method]'
    [ "$status" -eq 0 ]
    [ "$(sed -n '9,$p' demo.projmq)" = '@foreach pairs
$mp_[pairs.name]
%keywords k
@end
@foreach? none
$np_[none.name]
%keywords k
@end
$freq_[method]
%keywords k
$sp_[size]
%source freq_[method]' ]
}

@test "a case that is only the include stub of the template stands for the whole project" {
    rm m2/m2.mq
    printf '# autogenerated by mqkit\n&INCLUDE ../demo.projmq\n' >m2/m2.mq
    run --separate-stderr "$MQKIT" rename m2/m2.mq opt new
    [ "$status" -eq 0 ]
    [ "${lines[1]}" = "  cases processed: 2" ]
    [ "$(head -n 1 demo.projmq)" = '$new' ]
    [ -d m1/new ]
    [ "$(cat m2/m2.mq)" = "# autogenerated by mqkit
&INCLUDE ../demo.projmq" ]
}

@test "a case with blocks of its own beside the include of the template has only those" {
    printf 'matrix:\n  a: x,y\n$lp\n%%keywords [a]\n$plain\n%%keywords k\n' >demo.projmq
    rm m1/m1.mq
    printf '&INCLUDE ../demo.projmq\n$own\n%%keywords k\n' >m1/m1.mq
    for name in lp lp__a_x plain; do
        refused_untouched "block not found in task file: \$$name"$'\n'"[mqkit] available blocks: own" rename m1/m1.mq $name z
    done
    refused_untouched "target block already exists: \$plain" rename m1/m1.mq own plain
}

@test "a new name that holds the old one is put in once" {
    run --separate-stderr "$MQKIT" rename demo.projmq opt opt-tight
    [ "$status" -eq 0 ]
    [ "$stderr" = "" ]
    [ "$(cat demo.projmq)" = '$opt-tight
%keywords a

$soc
%source opt-tight
%when completed opt-tight and {{ opt-tight.energy }} < 0
$opt2
%keywords b' ]
    [ "$(cat m1/opt-tight/opt-tight_m1.log)" = 'opt-tight_m1 opt_m2 $opt-tight opt2' ]
    [ "$(cat m1/opt-tight/comd)" = 'input=opt-tight_[x]' ]
    [ "$(cat m1/opt-tight/opt-tight_dir/opt-tight_deep/opt-tight_x)" = 'opt-tight opt  opt-tight' ]
    [ "$(cat m1/mq.status)" = 'opt-tight RENDERED t -' ]
    [ "$(cat m2/soc/in)" = 'geom from opt-tight;opt-tight_m2' ]
}

@test "a case may not turn another block into one of the new name" {
    printf '$opt_m1\n%%keywords c\n' >>demo.projmq
    put_line m1/mq.status $'opt RENDERED t -\nopt_m1 RENDERED t -'
    refused_untouched "renaming \$opt would also turn \$opt_m1 into \$sp_m1 in case m1" rename demo.projmq opt sp
    refused_untouched "renaming \$opt would also turn \$opt_m1 into \$sp_m1 in case m1" rename m1/m1.mq opt sp
}

@test "the other task files of the cases are checked, too" {
    rm m1/m1.mq
    printf '&INCLUDE ../demo.projmq\n$sp\n%%keywords k\n%%source opt\n' >m1/m1.mq
    refused_untouched "target block already exists: \$sp (in $root/m1/m1.mq)" rename demo.projmq opt sp
    rm m2/m2.mq
    printf '$opt\n%%keywords k\n' >m2/m2.mq
    printf '$sp\n%%keywords k\n' >m2/second.mq
    refused_untouched "target block already exists: \$sp (in $root/m2/second.mq)" rename m2/m2.mq opt sp
}

@test "a key that is replaced in the new name is refused, and blocks that would become one" {
    printf 'define:\n  size: big\npairs:\n  - name: p\n  - name: q\n$opt\n%%keywords k\n@foreach pairs\n$lp_[pairs.name]\n%%keywords k\n@end\n' >demo.projmq
    refused_untouched "a block name cannot hold [size], which is replaced with its value: \$opt_[size]" rename demo.projmq opt 'opt_[size]'
    refused_untouched "with \$lp for \$lp_[pairs.name] several blocks would be named \$lp" rename demo.projmq 'lp_[pairs.name]' lp
}

@test "a reference that would dangle is refused, nothing is touched" {
    printf '$soc\n%%source opt\n%%keywords k\n' >common.mq
    printf '&INCLUDE common.mq\n$opt\n%%keywords k\n' >demo.projmq
    refused_untouched "with \$new for \$opt the reference to 'opt' in $root/common.mq would be left behind" rename demo.projmq opt new
    printf '$opt\n%%keywords k\n$soc\n%%keywords k\n%%control\n  guess opt\n' >demo.projmq
    refused_untouched "with \$true for \$opt the task file would no longer say the same" rename demo.projmq opt true
}

@test "a file name that would be too long is refused, nothing is touched" {
    long="opt_$(printf 'x%.0s' {1..248})"
    put_line "m1/opt/deep/$long" -
    refused_untouched "renaming \$opt would make a file name longer than 255 bytes: $root/m1/opt/deep/$long" rename demo.projmq opt opt1234
    run --separate-stderr "$MQKIT" rename demo.projmq opt opt123
    [ "$status" -eq 0 ]
    [ -e "m1/opt123/deep/opt123_${long#opt_}" ]
}

@test "a byte order mark before the include stub hides nothing" {
    rm m2/m2.mq
    printf '\xEF\xBB\xBF&INCLUDE ../demo.projmq\n' >m2/m2.mq
    run --separate-stderr "$MQKIT" rename m2/m2.mq opt new
    [ "$status" -eq 0 ]
    [ "${lines[1]}" = "  cases processed: 2" ]
    [ "$(head -n 1 demo.projmq)" = '$new' ]
}
