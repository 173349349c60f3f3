#!/usr/bin/env bats
# What the pages have to show; that it is true is the work of script/doctest.

setup() {
    cd "$MQKIT_SOURCE"
}

rules() { # <sed replacement of code and severity>
    sed -n "s/^ *{\"\([a-z0-9-]*\)\", \([WE]\), \".*/$1/p" src/lint/rules.cpp | LC_ALL=C sort -u
}

@test "every lint code has one section and one row in the table, with its severity" {
    [ "$(rules '\1' | wc -l)" -eq 27 ]
    diff <(rules '\1') <(sed -n 's/^### //p' docs/lint.md | LC_ALL=C sort)
    diff <(rules '\1 \2' | sed 's/W$/warning/; s/E$/error/') \
        <(sed -n 's/^| \[`\([a-z0-9-]*\)`\](#\1) | \([a-z]*\) | .*/\1 \2/p' docs/lint.md | LC_ALL=C sort)
}

@test "every section of a lint code has an example of it, and its last one is mended" {
    awk '/^### / { if (code) print code, shown, last; code = $2; shown = "missing" }
         sub(/^```mq .*lint=/, "") { last = $1; if (("," $1 ",") ~ ("," code ",")) shown = "shown" }
         END { print code, shown, last }' docs/lint.md |
        LC_ALL=C sort | diff <(rules '\1 shown clean') -
}

@test "every name that a formula may not take is on the page of derived values" {
    awk '/reservedNames\[\]/ { on = 1 } on; on && /};/ { exit }' src/taskdsl/derive/formulas.cpp |
        grep -o '"[a-z_]*"' | tr -d '"' >"$BATS_TEST_TMPDIR/names"
    [ "$(wc -l <"$BATS_TEST_TMPDIR/names")" -gt 70 ]
    while read -r name; do
        grep -qE "\`$name[\`( ]" docs/derive.md || { echo "$name"; return 1; }
    done <"$BATS_TEST_TMPDIR/names"
}

@test "every example of a plot is shown in the guide" {
    diff <(ls examples/plots/*.mq) <(sed -n 's/^```mq part-of=//p' docs/plots.md | LC_ALL=C sort)
}

@test "every page is led to from another one" {
    for page in docs/*.md; do
        grep -qE "\]\((docs/)?$(basename "$page")[)#]" $(ls README.md docs/*.md | grep -vx "$page") ||
            { echo "no link to $page"; return 1; }
    done
}

@test "every link leads somewhere" {
    for page in README.md CONTRIBUTING.md docs/*.md; do
        grep -oE '\]\([^)#: ]+' "$page" | sed 's/^](//' | while read -r target; do
            [ -e "$(dirname "$page")/$target" ] || { echo "$page: $target"; exit 1; }
        done
    done
}

@test "the pictures are what the program shows" {
    mkdir "$BATS_TEST_TMPDIR/pictures"
    MQKIT_SOURCE=$PWD script/pictures "$BATS_TEST_TMPDIR/pictures"
    diff -r docs/pictures "$BATS_TEST_TMPDIR/pictures"
}
