# Expected texts that unit and command-line tests share stand in tests/golden. In a help text {C}, {Y} and {G} stand
# for the escape sequences of bold cyan, bold yellow and green, {N} for their end.

# plain_help <name>: the help as it goes into a pipe.
plain_help() { sed 's/{[CYGN]}//g' "$MQKIT_SOURCE/tests/golden/help/$1.txt"; }

# colored_help <name>: the help as a terminal gets it.
colored_help() {
    sed $'s/{C}/\e[1m\e[36m/g; s/{Y}/\e[1m\e[33m/g; s/{G}/\e[32m/g; s/{N}/\e[0m/g' \
        "$MQKIT_SOURCE/tests/golden/help/$1.txt"
}
