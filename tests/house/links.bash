# Links of pages.

# sections <page>: the name of every section as a link writes it behind #.
sections() {
    sed '/^ *```/,/^ *```$/d' "$1" | sed -n 's/^##* //p' | tr '[:upper:]' '[:lower:]' | sed 's/[^a-z0-9 _-]//g; s/ /-/g'
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
        done < <(sed '/^ *```/,/^ *```$/d' "$page" | grep -oE '\]\([^): ]+' | sed 's/^](//' | sort -u)
    done
}
