# Completion of mqkit and mqkit-graph for bash: commands, options and their values, task files, block names, templates.
# Needs bash 4.2 and mqkit itself, which only reads for it. Block names are asked of regular files alone: a pipe would
# be drained.

# _mqkit_plain <word>: the word without quotes, backslashes and a leading ~/ into REPLY. Nothing in it is executed.
_mqkit_plain() {
    REPLY=$1
    [[ ${REPLY:0:2} == \~/ ]] && REPLY=$HOME/${REPLY:2}
    if [[ $REPLY != [\'\"]* ]]; then
        REPLY=${REPLY//\\\\/$'\n'}
        REPLY=${REPLY//\\/}
        REPLY=${REPLY//$'\n'/\\}
    fi
    REPLY=${REPLY//[\'\"]/}
}

# _mqkit_whole <word> <name>...: the one of the names that begins with the word, in any case of letters, into REPLY.
_mqkit_whole() {
    local word=${1,,} name found=()
    for name in "${@:2}"; do
        [[ $name == "$word" ]] && REPLY=$name && return
        [[ $name == "$word"* ]] && found+=("$name")
    done
    REPLY=
    [[ ${#found[@]} -eq 1 ]] && REPLY=${found[0]}
}

# _mqkit_blocks <file> [--expanded]: the names of the file's blocks, one a line.
_mqkit_blocks() {
    [[ -f $1 ]] || return 0
    "$program" explain "$1" --format json "${@:2}" 2>/dev/null |
        sed -n 's/^      "name": "\(.*\)",$/\1/p' | sed 's/\\\(["\\]\)/\1/g'
}

# _mqkit_blocks_and_variants <file>: the names as written, and those of the variants while they are not too many to read.
_mqkit_blocks_and_variants() {
    local count
    _mqkit_blocks "$1"
    [[ -f $1 ]] || return 0
    count=$("$program" explain "$1" --format json 2>/dev/null | sed -n 's/^  "expanded_task_count": \([0-9]*\),$/\1/p')
    [[ -n $count && $count -le 500 ]] && _mqkit_blocks "$1" --expanded
}

# _mqkit_project_file <path>: the task file or template that the path stands for: itself, or the only template of the
# nearest folder above that has one.
_mqkit_project_file() {
    local folder=${1:-.} levels=6 templates
    if [[ -f $folder ]]; then
        [[ $folder == *.mq || $folder == *.projmq ]] && echo "$folder" && return
        folder=$(dirname -- "$folder")
    fi
    folder=$(cd -- "$folder" 2>/dev/null && pwd) || return
    while ((levels-- > 0)); do
        templates=("$folder"/*.projmq)
        if [[ -f ${templates[0]} ]]; then
            [[ ${#templates[@]} -eq 1 ]] && echo "${templates[0]}"
            return
        fi
        folder=$(dirname -- "$folder")
    done
}

# _mqkit_template_names [-d <folder>]: the names of the templates, one a line.
_mqkit_template_names() {
    "$program" template list "$@" 2>/dev/null | sed -n 's/^  \(.*\) (.*)$/\1/p'
}

# _mqkit_variable_names: the names of the variable templates below MORQUILL_TEMPLATE_PATH, one a line.
_mqkit_variable_names() {
    local folders folder file name
    IFS=: read -r -a folders <<<"${MORQUILL_TEMPLATE_PATH:-./conf/mq_templates}"
    for folder in "${folders[@]}"; do
        find "$folder" -type f \( -name '*.yaml' -o -name '*.yml' \) 2>/dev/null | while read -r file; do
            name=$(sed -n 's/^name:[[:blank:]]*["'\'']\{0,1\}\([^"'\'']*[^"'\''[:blank:]]\).*$/\1/p' "$file" | head -n 1)
            file=${file##*/}
            echo "${name:-${file%.*}}"
        done
    done
}

# _mqkit_offer: those of the lines on standard input that begin with the word, behind the `prefix` that is kept.
_mqkit_offer() {
    local name
    while IFS= read -r name; do
        [[ -n $name && $name == "$word"* ]] || continue
        # Readline puts back the quote with which a word begins; otherwise the name has to be quoted here.
        [[ $typed == [\'\"]* ]] || printf -v name %q "$name"
        COMPREPLY+=("$prefix$name")
    done < <(sort -u)
}

# _mqkit_words <word>...: offers these.
_mqkit_words() { _mqkit_offer < <(printf '%s\n' "$@"); }

# _mqkit_files <pattern>: offers folders and the files whose names match the extended pattern, in any case of letters.
_mqkit_files() {
    local file
    compopt -o filenames 2>/dev/null
    while IFS= read -r file; do
        # shellcheck disable=SC2053 # a pattern
        [[ -d $file || ${file,,} == $1 ]] && COMPREPLY+=("$file")
    done < <(compgen -f -- "$word")
}

# _mqkit_names: offers the names on standard input for a list with commas, without those that stand there already.
_mqkit_names() {
    local chosen=, name
    if [[ $word == *,* ]]; then
        chosen=,${word%,*},
        prefix=${word%,*},
        word=${word##*,}
    fi
    _mqkit_offer < <(while IFS= read -r name; do [[ $chosen == *",$name,"* ]] || printf '%s\n' "$name"; done)
}

# _mqkit_read_line: what stands before the cursor, from word `first` on: `others` that belong to no option, `values` of
# options, the option `pending` whose value is typed, and whether a command begins behind `--`.
_mqkit_read_line() {
    local i
    for ((i = first; i < COMP_CWORD; i++)); do
        _mqkit_plain "${COMP_WORDS[i]}"
        case $REPLY in
        --)
            behind=$((i + 1))
            return
            ;;
        -o | --out | --output | --task | --format | --path | -n | --name | --cmd | -d | --dir)
            pending=$REPLY
            if ((++i < COMP_CWORD)); then
                _mqkit_plain "${COMP_WORDS[i]}"
                values[$pending]=$REPLY
                pending=
            fi
            ;;
        -*) values[$REPLY]=yes ;;
        *) others+=("$REPLY") ;;
        esac
    done
}

# _mqkit_value: offers values of the pending option.
_mqkit_value() {
    case $pending in
    -o | --out | --output) _mqkit_files '*' ;;
    --format)
        local formats=(text json)
        [[ $command != mqkit-graph ]] || formats=(dot mermaid svg)
        _mqkit_words "${formats[@]}"
        ;;
    --task) _mqkit_offer < <(_mqkit_blocks "${others[0]}" ${values[--expanded]:+--expanded}) ;;
    --path) _mqkit_files '*.@(mq|projmq)' ;;
    -n | --name) _mqkit_names < <(_mqkit_blocks_and_variants "$(_mqkit_project_file "${values[--path]:-${others[0]}}")") ;;
    -d | --dir) _mqkit_files '/' ;;
    esac
}

# _mqkit_other: offers words that belong to no option.
_mqkit_other() {
    case $command,${#others[@]} in
    fmt,0 | migrate,0 | expand,0 | explain,0 | rename,0 | 'template variable,0' | mqkit-graph,0) _mqkit_files '*.@(mq|projmq)' ;;
    lint,*) _mqkit_files '*.mq' ;;
    rename,1) _mqkit_offer < <(_mqkit_blocks "${others[0]}") ;;
    'project add',*) _mqkit_files '*.@(xyz|projmq)' ;;
    'project update,0' | 'project rebuild,0') [[ -n ${values[--path]} ]] || _mqkit_files '*.@(mq|projmq)' ;;
    'project exec,0' | 'project collect,0') [[ -n ${values[--path]} ]] || _mqkit_files '*.projmq' ;;
    'template merge',*)
        local folder=${values[--dir]:-${values[-d]}}
        _mqkit_offer < <(_mqkit_template_names ${folder:+-d "$folder"})
        ;;
    'template variable,1') _mqkit_offer < <(_mqkit_variable_names) ;;
    esac
}

# _mqkit_options: the options of the command, into REPLY.
_mqkit_options() {
    case $command in
    fmt | migrate) REPLY='-o --out --output -i --in-place --help' ;;
    expand) REPLY='-o --out --output --expanded --matrix-expanded --help' ;;
    explain) REPLY='--task --format --expanded --help' ;;
    lint) REPLY='--strict --quiet --format --help' ;;
    rename | project | template) REPLY='--help' ;;
    'project add') REPLY='--path --dry-run --help' ;;
    'project update') REPLY='--path -n --name --run-comd --dry-run --help' ;;
    'project rebuild') REPLY='--path -n --name --run-script --dry-run --help' ;;
    'project exec') REPLY='--path -n --name --cmd --dry-run -- --help' ;;
    'project collect') REPLY='--path -n --name --dry-run --help' ;;
    'template list' | 'template categories') REPLY='-d --dir' ;;
    'template merge') REPLY='-o --output -d --dir' ;;
    mqkit-graph) REPLY='--expanded --format -h --help' ;;
    *) REPLY= ;;
    esac
}

# _mqkit_command: the command of the line into `command`, with its sub-command, and into `first` where its words begin;
# status 1 when it is the command itself that is typed: its names were offered. mqkit-graph is a command of its own.
_mqkit_command() {
    local -a names=(template project rename fmt migrate expand explain lint)
    local depth
    if [[ ${program##*/} == mqkit-graph ]]; then
        command=mqkit-graph first=1
        return 0
    fi
    command=
    for depth in 1 2; do
        if ((COMP_CWORD == depth)); then
            [[ -n $command ]] || names+=(help)
            [[ $word != -* || $command == help ]] || names=(--help)
            _mqkit_words "${names[@]}"
            return 1
        fi
        _mqkit_plain "${COMP_WORDS[depth]}"
        [[ $depth -eq 1 && ${REPLY,,} == help ]] || _mqkit_whole "$REPLY" "${names[@]}"
        command+=${command:+ }$REPLY
        first=$((depth + 1))
        case $command in
        help) ;;
        project) names=(init add update rebuild exec collect) ;;
        template) names=(list categories merge variable interactive) ;;
        *) return 0 ;;
        esac
    done
}

_mqkit() {
    local REPLY program word typed=${COMP_WORDS[COMP_CWORD]} prefix='' command first pending='' behind=0
    local -a others=()
    local -A values=()
    COMPREPLY=()
    _mqkit_plain "${COMP_WORDS[0]}"
    program=$REPLY
    _mqkit_plain "$typed"
    word=$REPLY
    if [[ ${COMP_WORDS[COMP_CWORD - 1]} == *[\<\>] ]]; then
        _mqkit_files '*'
    elif _mqkit_command; then
        _mqkit_read_line
        if ((behind > 0)); then
            compopt -o filenames 2>/dev/null
            mapfile -t COMPREPLY < <(if ((behind == COMP_CWORD)); then compgen -c -- "$word"; else compgen -f -- "$word"; fi)
        elif [[ -n $pending ]]; then
            _mqkit_value
        elif [[ $word == -* ]]; then
            _mqkit_options
            # shellcheck disable=SC2086 # a list of words
            _mqkit_words $REPLY
        else
            _mqkit_other
        fi
    fi
}

complete -F _mqkit mqkit mqkit-graph
