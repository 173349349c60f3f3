# The template command: the catalogue, merging, define sections, the sample workspace and the old forms.
bats_require_minimum_version 1.5.0
load expect

setup() {
    setup_plain
}

help_text() {
    cat <<'TEXT'
Usage:
  mqkit template [command] <options>
Commands:
  list [-d <template_dir>]
      -- Prints available template names.
  categories [-d <template_dir>]
      -- Groups templates by category.
  merge [-o <output.mq>] [-d <template_dir>] <template...>
      -- Combines one or more templates into a task file.
  variable <task.mq> <var_template>
      -- Generates a variable-definition template for a given task.mq.
  interactive
      -- Enters the interactive template-selection flow.
Options:
  -d, --dir <template_dir>
      Template directory; overrides the default template path
      Used by list / categories / merge
  -o, --output <output.mq>
      Output file for merge; default is merged_task.mq; pass - to write to stdout
Examples:
  mqkit template list
  mqkit template categories
  mqkit template merge opt freq -o task.mq
  mqkit template merge -d ./conf/mq_templates opt freq -o -
  mqkit template variable task.mq mytemplate
  mqkit template interactive
Compatibility forms:
  mqkit -l
      Equivalent to: mqkit template list
  mqkit -c
      Equivalent to: mqkit template categories
  mqkit -m opt freq -o task.mq
      Equivalent to: mqkit template merge opt freq -o task.mq
  mqkit -v task.mq mytemplate
      Equivalent to: mqkit template variable task.mq mytemplate
  mqkit -i
      Equivalent to: mqkit template interactive
TEXT
}

@test "the help is shown with 0 when asked for and with 1 for want of a known word" {
    local help
    help="$(help_text)"$'\n'
    for token in -h help --help; do
        expect 0 "$help" "" template "$token"
    done
    expect 0 "$help" "" help templ
    expect 0 "$help" "" T --help
    expect 1 "$help" "" template
    expect 1 "$help" "" template bogus
    expect 1 "$help" "" template List
    expect 1 "$help" "" template li
    expect 1 "$help" "" template ""
    expect 1 "$help" "" template -t
}

@test "headings are bold cyan and forms green on a terminal" {
    export TERM=xterm SHELL=/bin/sh
    unset NO_COLOR
    script -qec "'$MQKIT' template -h" /dev/null </dev/null | tr -d '\r' >out
    local esc=$'\033'
    grep -qxF "$esc[1m$esc[36mUsage:$esc[0m" out
    grep -qxF "  $esc[32mmqkit template [command] <options>$esc[0m" out
    grep -qxF "  $esc[32minteractive$esc[0m" out
    grep -qxF "      -- Generates a variable-definition template for a given $esc[32mtask.mq$esc[0m." out
    grep -qxF "      Equivalent to: $esc[32mmqkit template list$esc[0m" out
    [ "$(sed "s/$esc\[[0-9]*m//g" out)" = "$(help_text)" ]
}

@test "list and categories show names with the directory they lie in" {
    put tpl/opt.mq ''
    put tpl/a/deep/sp.mq ''
    put tpl/Upper.MQ ''
    "$MQKIT" template list -d tpl >out
    head -n 1 out | diff <(echo "Available templates:") -
    tail -n +2 out | sort | diff <(printf '  opt (General)\n  sp (deep)\n') -
    expect 0 $'General:\n  opt\n\ndeep:\n  sp\n\n' "" template categories --dir tpl/
}

@test "an empty library is told and is no failure" {
    mkdir empty
    for word in list categories; do
        expect 0 $'[mqkit] no templates found.\n' "" template "$word" -d empty
        expect 0 $'[mqkit] no templates found.\n' $'[mqkit][ERROR] template directory is empty\n' template "$word" -d ""
        expect 0 $'[mqkit] no templates found.\n' \
            $'[mqkit][ERROR] template directory does not exist: "no/such"\n' template "$word" -d no/such
    done
}

@test "of two directory options the last one counts" {
    put one/a.mq ''
    put two/b.mq ''
    export MORQUILL_TEMPLATE_PATH=one
    expect 0 $'Available templates:\n  b (General)\n' "" template list -d nowhere --dir two
}

@test "several directories are searched in order" {
    put one/a.mq ''
    put two/b.mq ''
    MORQUILL_TEMPLATE_PATH=two:one expect 0 $'Available templates:\n  b (General)\n  a (General)\n' "" template list
    expect 0 $'Available templates:\n  a (General)\n  b (General)\n' \
        $'[mqkit][ERROR] template directory does not exist: "gone"\n' template list -d one:gone:two
}

@test "the template path comes from the environment, then the file, then the working directory" {
    put conf/mq_templates/here.mq ''
    put fromfile/file.mq ''
    put fromenv/env.mq ''
    expect 0 $'Available templates:\n  here (General)\n' "" template list
    echo 'MORQUILL_TEMPLATE_PATH = $MORQUILL_CONFIG_DIR/fromfile' >morquill.conf
    expect 0 $'Available templates:\n  file (General)\n' "" template list
    MORQUILL_TEMPLATE_PATH= expect 0 $'Available templates:\n  file (General)\n' "" template list
    MORQUILL_TEMPLATE_PATH=fromenv expect 0 $'Available templates:\n  env (General)\n' "" template list
    echo 'MORQUILL_TEMPLATE_PATH=' >morquill.conf
    expect 0 $'[mqkit] no templates found.\n' $'[mqkit][ERROR] template directory is empty\n' template list
}

@test "list refuses what it does not know" {
    for word in list categories; do
        refused "-d/--dir expects a value" template "$word" -d
        refused "-d/--dir expects a value" template "$word" -d a --dir
        refused "unknown argument: -h" template "$word" -h
        refused "unknown argument: x" template "$word" -d a x -d
        refused "unknown argument: " template "$word" ""
    done
}

@test "directories, pipes, devices and endless links among the templates are passed over" {
    put tpl/real.mq '$a'
    mkdir tpl/dir.mq tpl/dir.yaml
    mkfifo tpl/pipe.mq tpl/pipe.yaml
    ln -s /dev/zero tpl/zero.mq
    ln -s loop.mq tpl/loop.mq
    ln -s . tpl/around
    expect 0 $'Available templates:\n  real (General)\n' "" template list -d tpl
    put task.mq '[x]'
    MORQUILL_TEMPLATE_PATH=tpl expect 0 "" $'[mqkit][ERROR] variable template not found: \'v\'\n' template variable task.mq v
}

@test "merge joins templates in the order of the command line" {
    put tpl/a.mq $'# a\n$opt\n  %source origin\n  %process\n    one\n    two\n    three\n'
    put tpl/b.mq $'$opt\n  %source origin\n  %process\n    one\n    more\n    three\n$sp\n  %source opt\n'
    expect 0 $'[mqkit] wrote task file: merged_task.mq\n' "" template merge -d tpl a b
    holds merged_task.mq $'# a\n\n$opt\n  %source origin\n  %process\n        one\n        two\n        more\n        three\n\n$sp\n  %source opt\n\n'
    expect 0 $'[mqkit] wrote task file: t.mq\n' "" template merge b a --output x.mq --dir tpl -o t.mq
    [ ! -e x.mq ]
    head -n 1 t.mq | diff <(echo '# a') -
}

@test "merge to - prints the text and writes no file" {
    put tpl/a.mq $'$a\n  x\n'
    export MORQUILL_TEMPLATE_PATH=tpl
    expect 0 $'$a\n  x\n\n' "" template merge a -o -
    [ ! -e merged_task.mq ] && [ ! -e ./- ]
}

@test "merge refuses and then writes nothing" {
    put tpl/a.mq ''
    export MORQUILL_TEMPLATE_PATH=tpl
    refused "-o/--output expects a value" template merge a -o
    refused "-d/--dir expects a value" template merge a --dir
    refused "unknown argument: -x" template merge a -x
    refused "unknown argument: --" template merge -- a
    refused "unknown argument: " template merge a ""
    refused "specify at least one template to merge" template merge
    refused "specify at least one template to merge" template merge -o x.mq -d tpl
    refused "template not found: 'b'" template merge a b c
    refused "could not write output file: no/such.mq" template merge a -o no/such.mq
    refused "could not write output file: tpl" template merge a -o tpl
    [ ! -e merged_task.mq ]
}

@test "a define section is written in front" {
    put tpl/dft.yaml $'name: "my dft"\nvariables:\n  func: "PBE0"\n  basis: "a:b"\n  other: 1\n'
    put task.mq $'# task\n$opt\n  %keywords "[func]/[basis] [extra] [inputname]"\n'
    export MORQUILL_TEMPLATE_PATH=nowhere:tpl
    expect 0 $'[mqkit] wrote define section for ./task.mq using variable template: my dft\n' "" \
        template variable ./task.mq "my dft"
    holds task.mq $'define:\n  basis: "a:b"\n  extra: \n  func: PBE0\n\n# task\n$opt\n  %keywords "[func]/[basis] [extra] [inputname]"\n'
}

@test "an existing define section is replaced, the text around it stays" {
    put tpl/dft.yml $'variables:\n  func: PBE0\n'
    put task.mq $'totcore: 8\ndefine:\n  func: old\n  gone: 1\n$opt\n  %keywords [func]\n'
    export MORQUILL_TEMPLATE_PATH=tpl
    expect 0 $'[mqkit] wrote define section for task.mq using variable template: dft\n' "" template variable task.mq dft
    holds task.mq $'totcore: 8\ndefine:\n  func: PBE0\n\n$opt\n  %keywords [func]\n'
}

@test "variable tells what it could not do with status 0 and leaves the file alone" {
    local text=$'$a\n%keywords [x]\n'
    put task.mq "$text"
    mkdir tpl
    export MORQUILL_TEMPLATE_PATH=tpl
    expect 0 "" $'[mqkit][ERROR] could not read file: no.mq\n' template variable no.mq v
    expect 0 "" $'[mqkit][ERROR] could not read file: tpl\n' template variable tpl v
    expect 0 "" $'[mqkit][ERROR] variable template not found: \'v\'\n' template variable task.mq v
    holds task.mq "$text"
    put plain.mq $'$a\n%keywords [inputname] [taskname] [charge]\n'
    expect 0 $'[mqkit] file plain.mq has no placeholders that require define values\n' "" template variable plain.mq v
    put tpl/v.yaml ''
    mkdir locked
    put locked/full.mq '[x]'
    if [ "$(id -u)" -ne 0 ]; then
        chmod a-w locked/full.mq
        expect 0 "" $'[mqkit][ERROR] could not write file: locked/full.mq\n' template variable locked/full.mq v
    fi
}

@test "a write that fails leaves the old file whole" {
    local i value
    value="$(printf 'v%.0s' {1..3000})"
    put tpl/opt.mq "$(for i in {1..500}; do echo "\$t$i"; echo "  %keywords [x]"; done)"
    put tpl/v.yaml "variables:"$'\n'"  x: $value"$'\n'
    export MORQUILL_TEMPLATE_PATH=tpl
    cp tpl/opt.mq task.mq
    put merged.mq "an old text"
    put old/generated_task.mq "an old text"
    limited 4 template variable task.mq v
    [ "$output" = "[mqkit][ERROR] could not write file: task.mq"$'\n'"status 0" ]
    cmp tpl/opt.mq task.mq
    limited 4 template merge opt -o merged.mq
    [ "$output" = "[mqkit][ERROR] could not write output file: merged.mq"$'\n'"status 1" ]
    holds merged.mq "an old text"
    limited 4 template merge opt
    [ "$output" = "[mqkit][ERROR] could not write output file: merged_task.mq"$'\n'"status 1" ]
    [ ! -e merged_task.mq ]
    run bash -c '{ ulimit -f 4; printf " \r%s\nq" old/generated_task.mq | "$MQKIT" template interactive 2>&1; } | cat'
    [[ "$output" == *"[mqkit][ERROR] could not write file old/generated_task.mq"* ]]
    holds old/generated_task.mq "an old text"
}

@test "without memory there is one message with the path" {
    ( ulimit -v 60000; "$MQKIT" help >/dev/null 2>&1 ) || skip "the program cannot be started with a limit of memory"
    awk 'BEGIN { for (i = 0; i < 300000; ++i) printf "[v%d]\n", i }' >large.mq
    cp large.mq before.mq
    mkdir tpl
    export MORQUILL_TEMPLATE_PATH=tpl
    run --separate-stderr -1 bash -c 'ulimit -v 22000; exec "$MQKIT" template variable large.mq v'
    [ "$stderr" = "[mqkit][ERROR] out of memory: large.mq" ]
    cmp before.mq large.mq
    mv large.mq tpl/large.mq
    run --separate-stderr -0 bash -c 'ulimit -v 22000; exec "$MQKIT" template list'
    [ "$stderr" = '[mqkit][ERROR] failed to load template "tpl/large.mq": out of memory' ]
    rm tpl/large.mq
    awk 'BEGIN { for (i = 0; i < 60000; ++i) printf "$t%d\n%%keywords a\n", i }' >tpl/many.mq
    local kilobytes told=0
    for kilobytes in $(seq 20000 2000 80000); do
        run --separate-stderr bash -c 'ulimit -c 0; ulimit -v "$1"; exec "$MQKIT" template merge many -o m.mq' _ "$kilobytes"
        [ "$status" -eq 1 ] || break
        [ ! -e m.mq ]
        if [ "$stderr" = "[mqkit][ERROR] out of memory: m.mq" ]; then
            told=$((told + 1))
        else
            [ "$stderr" = $'[mqkit][ERROR] failed to load template "tpl/many.mq": out of memory\n[mqkit][ERROR] template not found: \'many\'' ]
        fi
    done
    [ "$told" -gt 0 ]
}

@test "variable takes exactly two arguments" {
    refused "template variable expects: <task.mq> <var_template>" template variable
    refused "template variable expects: <task.mq> <var_template>" template variable a.mq
    refused "template variable expects: <task.mq> <var_template>" template variable a.mq b c
    refused "template variable expects: <task.mq> <var_template>" -v a.mq
}

@test "interactive takes no further argument and needs a template" {
    refused "template interactive does not accept extra arguments" template interactive -h
    mkdir tpl
    export MORQUILL_TEMPLATE_PATH=tpl:./tpl
    expect 1 "" $'[mqkit][ERROR] no templates were found in directory tpl:./tpl\n' template interactive
    expect 1 "" $'[mqkit][ERROR] no templates were found in directory tpl:./tpl\n' -i
    expect 1 "" $'[mqkit][ERROR] no templates were found in directory tpl:./tpl\n' --interactive ignored
}

@test "the old forms do what the words do" {
    put tpl/a.mq $'$a\n'
    put tpl/v.yaml ''
    put task.mq '[x]'
    export MORQUILL_TEMPLATE_PATH=tpl
    for form in -l --list; do
        expect 0 $'Available templates:\n  a (General)\n' "" $form
        refused "-d/--dir expects a value" $form -d
    done
    for form in -c --category; do
        expect 0 $'General:\n  a\n\n' "" $form -d tpl
    done
    for form in -m --merge; do
        expect 0 $'$a\n\n' "" $form a -o -
        refused "specify at least one template to merge" $form
    done
    for form in -v --variable; do
        expect 0 $'[mqkit] wrote define section for task.mq using variable template: v\n' "" $form task.mq v
    done
}

@test "--test creates the sample workspace over what is there" {
    mkdir test
    echo old >test/test.mq
    for form in -t --test; do
        expect 0 $'[mqkit] Test workspace created: test/\n' "" $form
    done
    holds test/test.xyz '3
0 1
O         0.00000000     0.00000000     0.22039400
H        -0.00000000     0.75585400    -0.48157700
H        -0.00000000    -0.75585400    -0.48157700
'
    head -n 1 test/test.mq | grep -qx '#!.*morquill'
    [ "$(sed -n 2,3p test/test.mq | grep -c '^# .*inputname\|^# ')" -eq 2 ]
    sed -n 4p test/test.mq | grep -qx 'autorun: true'
    [ "$(sed -n '/^define:/,/^$/s/^  \([^:]*\):.*/\1/p' test/test.mq | tr '\n' ' ')" = \
        "func func_orca bset basis_orca scrf solvent_orca DFT-D " ]
    [ "$(grep '^\$' test/test.mq | tr '\n' ' ')" = '$opt $N-1 $N+1 $CDFT $orcatest ' ]
}

@test "the sample is accepted by fmt and lint and is stable under fmt" {
    "$MQKIT" --test
    "$MQKIT" fmt test/test.mq -o once.mq 2>err
    [ ! -s err ]
    "$MQKIT" fmt once.mq | diff once.mq -
    "$MQKIT" lint --strict test
}

@test "--test tells what is in its way" {
    echo file >test
    expect 1 "" $'[mqkit][ERROR] could not create directory: test/\n' --test
    holds test $'file\n'
    rm test
    mkdir -p test/test.xyz
    expect 1 "" $'[mqkit][ERROR] could not write file: test/test.xyz\n' --test
}

@test "every template of the examples is clean once its values are filled in" {
    export MORQUILL_TEMPLATE_PATH="$MQKIT_SOURCE/examples/templates"
    local names name values
    names="$("$MQKIT" template categories | sed -n 's/^  //p')"
    [ "$(wc -w <<<"$names")" -ge 15 ]
    mkdir filled
    for name in $names; do
        "$MQKIT" template merge "$name" -o "filled/$name.mq"
        case $name in
        orca_opt | refine | xtb_search) values=composite ;;
        minimal) values=singlepoint_keywords ;;
        *) values=dft_water ;;
        esac
        "$MQKIT" template variable "filled/$name.mq" $values
        # All names are known to that variable template but those that are meant to be empty.
        [ -z "$(sed -n '/^define:/,/^$/s/^  \(.*\): $/\1/p' "filled/$name.mq")" ]
    done
    "$MQKIT" lint --strict filled
    for name in $names; do
        "$MQKIT" fmt "filled/$name.mq" -o again.mq
        "$MQKIT" fmt again.mq | diff again.mq -
    done
}

@test "templates of the examples that share a block unite in one task file" {
    export MORQUILL_TEMPLATE_PATH="$MQKIT_SOURCE/examples/templates"
    "$MQKIT" template merge opt_freq gibbs absorption charges summary -o all.mq
    "$MQKIT" template variable all.mq dft_gas
    [ "$(grep '^\$' all.mq | tr '\n' ' ')" = '$opt_min $sp_large $gibbs $absorption $charges $gather_notes ' ]
    [ "$(grep -c 'Stationary point found' all.mq)" -eq 1 ]
    "$MQKIT" lint --strict all.mq
}
