#!/usr/bin/env bats
# Completion in bash.

load completions

setup() { setup_completions; }

# offered <line>: the words that bash offers at the end of the line.
offered() {
    bash --norc -c '
        source "$1"
        read -r -a COMP_WORDS <<<"$2"
        [[ $2 == *" " ]] && COMP_WORDS+=("")
        COMP_LINE=$2 COMP_POINT=${#2} COMP_CWORD=$((${#COMP_WORDS[@]} - 1))
        _mqkit
        [[ ${#COMPREPLY[@]} -eq 0 ]] || printf "%s\n" "${COMPREPLY[@]}"
    ' bash "$MQKIT_SOURCE/completions/mqkit.bash" "$1"
}

@test "the table of completions" {
    # Shells differ in whether they offer short options beside long ones.
    long() { offered "$1" | grep -v '^-.$'; }
    hold_cases long
}

@test "typed at a prompt" {
    echo "PS1='@>'; source '$MQKIT_SOURCE/completions/mqkit.bash'" >rc
    typed_in 'bash --rcfile rc -i'
}

# long_options: the long options in a text of help, without those of other programs.
long_options() { grep -oE -e '(^| |\[)--[a-z][a-z-]*' | tr -d ' [' | grep -v -e '^--comd-only$' | sort -u; }

@test "every command and long option of the help is offered" {
    [ "$(offered 'mqkit ' | sort)" = "$("$MQKIT" --help | sed -n '/^Commands:/,/^$/s/^  \([a-z]*\) .*/\1/p' | sort - <(echo help))" ]
    for command in fmt migrate expand explain lint; do
        "$MQKIT" help $command | sed '/^Compatibility/,$d' | long_options >wanted
        [ -s wanted ]
        diff <(offered "mqkit $command --" | sort | comm -13 - wanted) /dev/null
    done
    for command in add update rebuild exec collect; do
        "$MQKIT" help project | grep "^  $command " | long_options >wanted
        [ -s wanted ]
        diff <(offered "mqkit project $command --" | sort | comm -13 - wanted) /dev/null
    done
    "$(dirname "$MQKIT")/mqkit-graph" --help | long_options >wanted
    [ -s wanted ]
    diff <(offered 'mqkit-graph --' | sort | comm -13 - wanted) /dev/null
    [ "$(offered 'mqkit project ' | sort)" = "$("$MQKIT" help project | sed -n '/^Commands:/,/^Options:/s/^  \([a-z]*\).*/\1/p' | sed '/^$/d' | sort -u)" ]
    [ "$(offered 'mqkit template ' | sort)" = "$("$MQKIT" help template | sed -n '/^Commands:/,/^Options:/s/^  \([a-z]*\).*/\1/p' | sed '/^$/d' | sort -u)" ]
}

@test "names are quoted, words in quotes are left in them, and nothing on the line is executed" {
    printf '$"a b;c"\n  %%keywords hf\n' >odd.mq
    [ "$(offered 'mqkit explain odd.mq --task ')" = 'a\ b\;c' ]
    [ "$(offered 'mqkit explain odd.mq --task "a')" = 'a b;c' ]
    [ -z "$(offered 'mqkit explain $(touch${IFS}made) --task ')" ]
    [ -z "$(offered 'mqkit explain `touch${IFS}made` --task ')" ]
    [ ! -e made ]
    cp a.mq "$HOME/study.mq"
    [ "$(offered 'mqkit explain ~/study.mq --task b')" = bond_scan ]
}

@test "behind -- a command of its own is completed" {
    [ "$(offered 'mqkit project exec -n opt -- tou' | sort -u | grep -x touch)" = touch ]
    [ "$(offered 'mqkit project exec -n opt -- touch ma')" = matrix.mq ]
    [ "$(offered 'mqkit fmt a.mq > n')" = new.txt ]
    [ "$(offered 'mqkit-graph a.mq > n')" = new.txt ]
}
