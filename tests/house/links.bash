# Links of pages.

# prose <page>: the page without its fenced blocks.
prose() {
    # shellcheck disable=SC2016 # three backticks
    sed '/^ *```/,/^ *```$/d' "$1"
}

# sections <page>: the name of every section as a link writes it behind #.
sections() {
    prose "$1" | sed -n 's/^##* //p' | tr '[:upper:]' '[:lower:]' | sed 's/[^a-z0-9 _-]//g; s/ /-/g'
}

# dead_links <page>...: every link, page by page, that leads to no file or to no section of it.
dead_links() {
    local page target file
    for page; do
        while read -r target; do
            file=${target%%#*}
            file=${file:+$(dirname "$page")/$file}
            if [[ ! -e ${file:-$page} ]] || { [[ $target == *'#'* ]] && ! grep -qxF -e "${target#*#}" <(sections "${file:-$page}"); }; then
                echo "$page: $target"
            fi
        done < <(prose "$page" | grep -oE '\]\([^): ]+' | sed 's/^](//' | sort -u)
    done
}
