# Packages as a user gets them, from MQKIT_PACKAGES.

version() { sed -n 's/^project(mqkit VERSION \([0-9.]*\).*/\1/p' "$MQKIT_SOURCE/CMakeLists.txt"; }

# released: the day of the version, from the changelog.
released() { sed -n "s/^## $(version) (\(.*\))\$/\1/p" "$MQKIT_SOURCE/CHANGELOG.md"; }

load ../house/links

# completes <completion file> <line>: what bash offers at the end of the line.
completes() {
    bash --norc -c '
        source "$1"
        read -r -a COMP_WORDS <<<"$2"
        [[ $2 == *" " ]] && COMP_WORDS+=("")
        COMP_CWORD=$((${#COMP_WORDS[@]} - 1))
        _mqkit
        echo "${COMPREPLY[*]}"
    ' bash "$@"
}

# documents_lead_somewhere <folder>: all links of the installed documents, those of the folder among them.
documents_lead_somewhere() {
    diff <(find "$1" -xtype l; dead_links "$1"/{README,CONTRIBUTING}.md "$1"/docs/*.md) /dev/null
}

# works_from <prefix>: what is installed below it works without anything else of mqkit.
works_from() {
    local study=$BATS_TEST_TMPDIR/study.mq
    printf '$opt\n%%keywords "hf opt"\n' >"$study"
    [ "$(PATH="$1/bin:/usr/bin:/bin" mqkit fmt "$study")" = $'dsl_version: 2\n\n$opt\n  %source origin\n  %keywords "hf opt"' ]
    [ "$(PATH="$1/bin:/usr/bin:/bin" mqkit-graph "$study" --format mermaid | sed -n 2p)" = '  n1["opt<br/>gaussian"]:::gaussian' ]
    [ "$(printf 'Content-Length: 39\r\n\r\n{"id":1,"jsonrpc":"2.0","method":"ask"}' | "$1/bin/mqkit-lsp" | tail -n 1)" = \
        '{"error":{"code":-32002,"message":"initialize comes first"},"id":1,"jsonrpc":"2.0"}' ]
    [ "$(PATH="$1/bin:/usr/bin:/bin" mqkit template list -d "$1/share/mqkit/templates" | grep -c '(thermochemistry)')" -eq 2 ]
    [ "$(PATH="$1/bin:/usr/bin:/bin" completes "$1/share/bash-completion/completions/mqkit" "mqkit explain $study --task ")" = opt ]
    [ "$(PATH="$1/bin:/usr/bin:/bin" completes "$1/share/bash-completion/completions/mqkit-graph" 'mqkit-graph --format m')" = mermaid ]
    documents_lead_somewhere "$1/share/doc/mqkit"
    MANPATH=$1/share/man man -w mqkit mqkit-fmt mqkit-migrate mqkit-template mqkit-graph mqkit-lsp 5 mq >/dev/null
}
