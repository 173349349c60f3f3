#!/usr/bin/env bats
# The manual pages.

load packages

setup_file() {
    export pages=$BATS_FILE_TMPDIR/pages
    load packages
    "$MQKIT_SOURCE/script/manual" "$pages" "$(version)" "$(released)"
}

own_pages() { grep -L '^\.so ' "$pages"/man?/*; }

# shows_options <page>: every option of the help on standard input is on the page, which is named when one is not.
shows_options() {
    MANPATH=$pages man "$1" | col -b >"$BATS_TEST_TMPDIR/page"
    grep -oE -e '(^| |\[)--?[a-z][a-z-]*' | tr -d ' [' | grep -v -e '^--comd-only$' -e '^-[a-z]$' | sort -u |
        while read -r option; do
            grep -qF -e "$option" "$BATS_TEST_TMPDIR/page" || { echo "$1(1) lacks $option"; return 1; }
        done
}

@test "every command has a page that shows all options of its help" {
    "$MQKIT" --help | sed -n '/^Commands:/,/^$/s/^  \([a-z]*\) .*/\1/p' >"$BATS_TEST_TMPDIR/commands"
    [ "$(wc -l <"$BATS_TEST_TMPDIR/commands")" -eq 8 ]
    while read -r command; do
        "$MQKIT" help "$command" | shows_options "mqkit-$command"
    done <"$BATS_TEST_TMPDIR/commands"
}

@test "mqkit-graph has a page that shows all options of its help" {
    "$(dirname "$MQKIT")/mqkit-graph" --help | shows_options mqkit-graph
}

@test "mqkit-lsp has a page that shows its one option" {
    "$(dirname "$MQKIT")/mqkit-lsp" --help | shows_options mqkit-lsp
}

@test "no page has warnings" {
    [ "$(own_pages | wc -l)" -ge 10 ]
    own_pages | while read -r page; do
        mandoc -T lint -W warning "$page"
        MANWIDTH=80 man --warnings=all -l "$page" 2>&1 >/dev/null
    done >"$BATS_TEST_TMPDIR/found"
    diff "$BATS_TEST_TMPDIR/found" /dev/null
}

@test "mqkit(1) says where everything is, and it is there" {
    cmake --install "$(dirname "$MQKIT")" --prefix "$BATS_TEST_TMPDIR/p" >/dev/null
    MANWIDTH=200 man -l "$pages/man1/mqkit.1" | col -b | sed -n '/^FILES/,/^THE VERSION/p' >"$BATS_TEST_TMPDIR/files"
    [ "$(grep -o 'share/[a-z/]*' "$BATS_TEST_TMPDIR/files" | sort -u | wc -l)" -eq 7 ]
    grep -o 'share/[a-z/]*' "$BATS_TEST_TMPDIR/files" | while read -r file; do
        [ -n "$(ls "$BATS_TEST_TMPDIR/p/$file")" ] || { echo "$file"; return 1; }
    done
}

@test "every page has its name and purpose where whatis looks for them, and the version in its foot" {
    own_pages | while read -r page; do
        lexgrog "$page" >/dev/null || { echo "$page"; return 1; }
        tail -n 1 <(MANWIDTH=80 man -l "$page") | grep -q "^mqkit $(version) *$(released) *" || { echo "$page"; return 1; }
    done
    [ "$(lexgrog "$pages/man1/mqkit-fmt.1" | wc -l)" -eq 3 ]
}

@test "links lead to pages that there are" {
    for page in "$pages"/man?/*; do
        sed -n 's/^\.so //p' "$page"
        grep -oE '\\f\[B\][a-z.-]+\([15]\)' "$page" | sed -E 's/.*\[B\](.*)\((.)\)/man\2\/\1.\2/'
    done | sort -u >"$BATS_TEST_TMPDIR/links"
    [ "$(wc -l <"$BATS_TEST_TMPDIR/links")" -ge 10 ]
    while read -r link; do
        [ -s "$pages/$link" ] || { echo "$link"; return 1; }
    done <"$BATS_TEST_TMPDIR/links"
}

@test "what a page says is what the document says" {
    cd "$BATS_TEST_TMPDIR"
    mkdir -p tree/script tree/cmake tree/docs
    cp "$MQKIT_SOURCE/script/manual" tree/script
    cp "$MQKIT_SOURCE/cmake/manual.lua" tree/cmake
    cat >tree/docs/one.md <<'END'
<!-- manual: one(1), uno(1): count to one -->
# One

    one [--up] <number>

Counts `up`; see [two](two.md), [there](#there) and [the rest](rest.md).

## There

| option | effect |
|---|---|
| `--up` | counts up |

| name | kind | meaning |
|---|---|---|
| `n` | integer | what is counted |

| name | kind | unit | meaning |
|---|---|---|---|
| `m` | integer | | what is [left](two.md#there) |
END
    printf '<!-- manual: two(5): a file of twos -->\n# Two\n\nText.\n' >tree/docs/two.md
    tree/script/manual pages 1.2.3 2001-02-03
    # Behind the first word of a line blanks are squeezed: the width of a heading is man's affair.
    MANWIDTH=70 man -l pages/man1/one.1 | sed -E 's/([^ ]) +/\1 /g' >found
    diff found - <<'END'
ONE(1) mqkit manual ONE(1)

NAME
       one, uno - count to one

SYNOPSIS
              one [--up] <number>

DESCRIPTION
       Counts up; see two (two(5)), there and the rest.

THERE
       --up counts up

       n, integer
              what is counted

       m kind: integer; meaning: what is left (two(5))

SEE ALSO
       mqkit(1), two(5)

mqkit 1.2.3 2001-02-03 ONE(1)
END
    [ "$(cat pages/man1/uno.1)" = ".so man1/one.1" ]
}
