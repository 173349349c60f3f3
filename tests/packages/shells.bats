#!/usr/bin/env bats
# Completion in zsh and fish, and typed at the prompt of all three shells.

load ../completions/completions

setup() { setup_completions; }

@test "fish offers what the table says" {
    mkdir -p "$BATS_TEST_TMPDIR/home/.config/fish/completions"
    cp "$MQKIT_SOURCE"/completions/*.fish "$BATS_TEST_TMPDIR/home/.config/fish/completions"
    offered() {
        HOME=$BATS_TEST_TMPDIR/home XDG_CONFIG_HOME='' fish -c 'complete -C $argv[1]' "$1" </dev/null | cut -f 1 |
            grep -v '^-.$'
    }
    hold_cases offered
}

@test "zsh offers what the table says" {
    mkfifo lines words
    zsh -f "$MQKIT_SOURCE/tests/packages/zsh_offers.zsh" "$MQKIT_SOURCE/completions" <lines >words 3>&- &
    exec 8>lines 9<words
    offered() {
        echo "$1" >&8
        while IFS= read -r word <&9 && [[ $word != . ]]; do
            [[ $word == -? ]] || echo "$word"
        done
    }
    hold_cases offered
    exec 8>&-
    wait
}

@test "typed at the prompt of zsh" {
    mkdir zsh
    echo "PS1='@>'; fpath=('$MQKIT_SOURCE/completions' \$fpath); autoload -Uz compinit; compinit -D -u" >zsh/.zshrc
    typed_in "env ZDOTDIR=$PWD/zsh zsh -i"
}

@test "typed at the prompt of fish" {
    mkdir -p home/.config/fish/completions
    cp "$MQKIT_SOURCE/completions/mqkit.fish" home/.config/fish/completions
    echo "function fish_prompt; echo -n '@>'; end" >home/.config/fish/config.fish
    typed_in "env HOME=$PWD/home TERM=screen fish -i"
}
