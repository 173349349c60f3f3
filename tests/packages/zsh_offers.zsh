# For every line on standard input prints what zsh offers at its end, one word a line, and a line with a dot:
#   zsh -f zsh_offers.zsh <folder of _mqkit>
# An interactive zsh on a terminal of its own completes; the matches are noted where its own compadd adds them.
zmodload zsh/zpty
note=$(mktemp)
trap 'zpty -d shell; rm -f $note*' EXIT

cat >$note.zsh <<END
PS1= PS2=
fpath=(${(q)1} \$fpath)
autoload -Uz compinit && compinit -D -u
compadd() {
    # A call that fills arrays adds no matches.
    if [[ \${@[1,(i)(-|--)]} == *-(O|A|D)\ * ]]; then
        builtin compadd "\$@"
        return
    fi
    local -a matched
    local -A with
    builtin compadd -A matched "\$@"
    zparseopts -E -A with P: p:
    (( \$#matched )) && print -rl -- \$IPREFIX\$with[-P]\$with[-p]\${^matched} >>${(q)note}
    builtin compadd "\$@"
}
done-listing() { zle kill-whole-line; print -r -- end >>${(q)note}.end }
zle -N done-listing
bindkey '^I' complete-word
bindkey '^G' done-listing
unsetopt automenu autolist
print -r -- ready >>${(q)note}.end
END

settled() { # waits until the shell has done what it was given
    local tries=1000
    until [[ -s $note.end ]] || (( --tries == 0 )); do
        sleep 0.01
        zpty -r -t shell >/dev/null
    done
    rm $note.end
}

zpty shell zsh -f -i
zpty -w shell "source $note.zsh"
settled
while IFS= read -r line; do
    : >$note
    zpty -n -w shell "$line"$'\t\x07'
    settled
    cat $note
    print .
done
