# Which project a path or the current directory stands for, as a user meets it.
bats_require_minimum_version 1.5.0
load expect

setup() {
    setup_deep
    mkdir -p p/mol1/opt p/none
    printf '$opt\n%%keywords a\n' >p/demo.projmq
    ln -s ../demo.projmq p/mol1/mol1.mq
    : >new.xyz
}

# resolves <template> <arguments of project add>...: the template that a dry run names.
resolves() {
    run --separate-stderr "$MQKIT" project add --dry-run "${@:2}"
    [ "${lines[1]}" = "  project template: $1" ]
}

# refuses <message> <arguments>...
refuses() {
    run --separate-stderr -1 "$MQKIT" "${@:2}"
    [ "$stderr" = "[mqkit][ERROR] $1" ]
    [ "${lines[0]}" = "Usage:" ]
}

@test "a project is found from any place inside it" {
    resolves "$root/p/demo.projmq" --path p new.xyz
    resolves "$root/p/demo.projmq" --path p/mol1/opt new.xyz
    resolves "$root/p/demo.projmq" --path p/mol1/mol1.mq new.xyz
    resolves "$root/p/demo.projmq" --path p/not/there new.xyz
    resolves "$root/p/demo.projmq" p/demo.projmq new.xyz
    cd p/none
    resolves "$root/p/demo.projmq" ../../new.xyz
}

@test "several templates have to be told apart" {
    cp p/demo.projmq p/other.projmq
    refuses "multiple .projmq files were found in the project directory; specify one explicitly: $root/p" project add --path p/mol1 new.xyz
    resolves "$root/p/other.projmq" --path p/other.projmq new.xyz
    cd p
    refuses "multiple .projmq files were found in the current directory; specify one explicitly." project add ../new.xyz
    cd none
    refuses "multiple .projmq files were found in the enclosing project directory; specify one explicitly: $root/p" -n opt
}

@test "odd kinds of files are not templates" {
    mkdir -p q/dir.projmq
    ln -s nowhere q/dangling.projmq
    ln -s loop.projmq q/loop.projmq
    refuses "could not resolve a .projmq project template from path: $root/q" project add --path q new.xyz
    refuses "could not resolve a .projmq project template from path: $root/q/dir.projmq" project add q/dir.projmq new.xyz
}

@test "names of any bytes" {
    mkdir -- $'-q \'"$(x)\n\xff'
    cp -- p/demo.projmq $'-q \'"$(x)\n\xff/a b.projmq'
    : >$'-m \'"\n\xfe.xyz'
    "$MQKIT" project add --path $'-q \'"$(x)\n\xff' $'./-m \'"\n\xfe.xyz' >out
    [ "$(readlink -- $'-q \'"$(x)\n\xff/-m \'"\n\xfe/-m \'"\n\xfe.mq')" = "../a b.projmq" ]
}

@test "a wildcard meets the blocks of template and cases, a broken case is left out" {
    printf '$own\n%%keywords a\n' >p/none/none.mq
    mkdir p/broken
    printf '$x\n%%oops\n' >p/broken/broken.mq
    ln -s gone.mq p/broken/a.mq
    run --separate-stderr -1 "$MQKIT" p/demo.projmq -n 'z*'
    [ "$stderr" = "[mqkit][ERROR] task block not found in .projmq: z*
available task blocks: opt, own" ]
    run --separate-stderr -1 "$MQKIT" p/demo.projmq -n 'o*'
    [ "$stderr" = "" ]
}
