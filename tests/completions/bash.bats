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
