# Prints what zsh offers at the end of a line, one word a line: zsh -f zsh_offers.zsh <folder of _mqkit> <line>
# An interactive zsh on a terminal of its own completes; the matches are noted where its own compadd adds them.
zmodload zsh/zpty
zpty shell zsh -f -i
note=$(mktemp)
trap 'zpty -d shell; rm -f $note' EXIT

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
done-listing() { print -r -- end >>${(q)note}.end; zle kill-whole-line }
zle -N done-listing
bindkey '^I' complete-word
bindkey '^X' done-listing
unsetopt automenu autolist
print -r -- ready >${(q)note}.ready
END
zpty -w shell "source $note.zsh"
wait-for() { local tries=500; until [[ -s $1 ]] || (( --tries == 0 )); do sleep 0.02; zpty -r -t shell >/dev/null; done }
wait-for $note.ready
zpty -n -w shell "$2"$'\t\x18'
wait-for $note.end
cat $note
rm -f $note.*
