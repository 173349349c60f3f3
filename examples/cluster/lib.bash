# What the scripts of this folder share. Sourced, never run.
#
# A block directory of a project tells what became of it by three small files:
#   cluster_done.mqwk  its comd ended well; a work marker, so `mqkit project rebuild` forgets it with the others
#   cluster.failed     its comd ended with this exit status
#   cluster.claim      who runs it now
# and cluster.log holds what its comd printed. <project>/.cluster/ holds a list of the blocks of each submission, named
# as its jobs are, and what the jobs themselves printed. The dot keeps it apart from a case called "cluster".

# shellcheck disable=SC2034 # the scripts read what is set here
tools=$(cd "$(dirname "${BASH_SOURCE[0]}")" && pwd)
program=$(basename "$0")
mqkit=${MQKIT:-mqkit}

die() { # <message> [<status>]
    echo "$program: $1" >&2
    exit "${2:-1}"
}

need() { # <program>...
    local tool
    for tool in "$@"; do
        command -v "$tool" >/dev/null || die "'$tool' is needed and not in PATH"
    done
}

# take_options <usage> <allowed options> <arguments>...: fills `option` by name without dashes; what stands behind `--`
# goes to `site_options`. -n may be repeated; --join takes no value.
declare -A option=()
site_options=()
take_options() {
    local usage=$1 allowed=" $2 " key
    shift 2
    while [[ $# -gt 0 ]]; do
        key=$1
        shift
        case $key in
        -h | --help) echo "usage: $program $usage" && exit 0 ;;
        --) site_options=("$@") && keep_options && return ;;
        esac
        [[ $allowed == *" $key "* ]] || die "unknown argument: $key (usage: $program $usage)"
        case $key in
        --join) option[${key#--}]=1 && continue ;;
        esac
        [[ $# -gt 0 ]] || die "$key needs a value (usage: $program $usage)"
        if [[ $key == -n ]]; then
            option[n]=${option[n]:+${option[n]},}$1
        else
            option[${key#--}]=$1
        fi
        shift
    done
}

positive() { # <option> <default>: prints its value
    local value=${option[$1]:-$2}
    [[ $value =~ ^[1-9][0-9]{0,8}$ ]] || die "--$1 needs a positive number, not '$value'"
    echo "$value"
}

# list_blocks <names>: the block directories of a selection, one a line
list_blocks() {
    local status=0 path=() work
    [[ -n $1 ]] || die "name the task blocks with -n, for instance -n opt"
    [[ -z ${option[path]:-} ]] || path=(--path "${option[path]}")
    work=$(mktemp -d) || die "no room for a list in ${TMPDIR:-/tmp}"
    # shellcheck disable=SC2016 # each block's shell expands it
    BLOCK_LIST=$work/list "$mqkit" project exec "${path[@]}" -n "$1" -- 'pwd -P >>"$BLOCK_LIST"' \
        >"$work/out" 2>"$work/err" || status=$?
    # 2 is also a block directory that is missing in some case: those that are there can be sent. One in which even
    # `pwd` failed is not in the list, which then says too little.
    if [[ $status -eq 1 && -s $work/list ]] || grep -q '^\[mqkit\] note: .* failed\.$' "$work/out"; then
        status=partial
    elif [[ $status -ne 0 && ! -s $work/list ]]; then
        status=empty
    else
        grep '^\[mqkit\] note:' "$work/out" >&2
        cat "$work/list" && rm -rf "$work" && return
        status=partial
    fi
    cat "$work/err" >&2
    grep '^\[mqkit\] ' "$work/out" >&2
    rm -rf "$work"
    [[ $status == partial ]] || die "no block directory for -n $1"
    die "the list of blocks is not whole; is there room in ${TMPDIR:-/tmp}?"
}

# project_root <block directory>
project_root() { dirname "$(dirname "$1")"; }

# take_blocks: the block directories of -n, in the file `blocks`; `root` is their project
take_blocks() {
    blocks=$(mktemp) || die "no room for a list in ${TMPDIR:-/tmp}"
    trap 'rm -f "$blocks" "$blocks".*' EXIT
    list_blocks "${option[n]:-}" >"$blocks" || exit 1
    root=$(project_root "$(head -n 1 "$blocks")")
    # Lists have one block a line, <root>/<case>/<block>, and tabs between their columns.
    ROOT=$root/ awk 'index($0, ENVIRON["ROOT"]) != 1 || index($0, "\t") ||
        split(substr($0, length(ENVIRON["ROOT"]) + 1), part, "/") != 2 { exit 1 }' "$blocks" ||
        die "a tab or a line end in the name of a case, or a tab in a directory above: rename it"
}

# claim_in <file>: prints whose claim it is; false when there is none. A claim is made whole, so one that lost its line
# with the power of its machine is of nobody: "empty". One that may not be read is "unreadable".
claim_in() {
    local claim=''
    [[ -e $1 ]] || return 1
    if [[ -r $1 ]]; then
        IFS= read -r claim <"$1"
        [[ $claim =~ ^(slurm|local)\ [^\ ]+\ [^\ ]+ ]] || claim=empty
    else
        claim=unreadable
    fi
    [[ -e $1 ]] && printf '%s\n' "$claim"
} 2>/dev/null # it may go meanwhile

# claims: "<directory> <tab> <claim>" for each line of the file `blocks` that somebody has claimed
claims() {
    local dir claim
    while IFS= read -r dir; do
        if [[ -e $dir/cluster.claim ]] && claim=$(claim_in "$dir/cluster.claim"); then
            printf '%s\t%s\n' "$dir" "$claim" || return 1
        fi
    done <"$blocks"
}

# drop_claim <directory> <claim>: takes this claim away. One that has come since is of somebody who works there now, and
# stays; the status is 1 then.
drop_claim() {
    local claim=$1/cluster.claim aside status=0
    aside=$1/.cluster.claim.$(uname -n).$$
    [[ $(claim_in "$claim") == "$2" ]] && mv "$claim" "$aside" 2>/dev/null || return 1
    [[ $(claim_in "$aside") == "$2" ]] || { ln "$aside" "$claim" && status=1; }
    rm -f "$aside"
    return "$status"
}

# block_states: "<state> <tab> <directory> <tab> <reason> <tab> <claim of a job that is gone>" for each line of the file
# `blocks`. Claims are read before the queue, and the queue before the markers: a job that comes or ends in between is
# then still seen at one of these places.
block_states() {
    local names='' name me queue answer=yes no_room="no room in ${TMPDIR:-/tmp}"
    me=$(id -un)
    case ${option[done]:-any} in
    any | marker) ;;
    *) die "--done is any or marker, not '${option[done]}'" ;;
    esac
    claims >"$blocks.claims" || die "$no_room"
    : >"$blocks.queue"
    : >"$blocks.past"
    : >"$blocks.sent"
    for name in "$root"/.cluster/mqkit-*; do
        [[ -f $name ]] || continue
        [[ -r $name ]] || die "cannot read $name of $(stat -c %U "$name"): the table would miss what it has sent"
        names+=${name##*/},
        sed "s|^|${name##*/}	|" "$name" >>"$blocks.sent" || die "$no_room"
    done
    if [[ -n $names ]]; then
        queue=$(squeue -h -r --name="$names" -o '%j|%K|%A|%T') || die "squeue does not answer, and blocks were sent"
        printf '%s\n' "$queue" >"$blocks.queue" || die "$no_room"
        # Without accounts there is no sacct; then the reason of a lost block stays unknown.
        sacct -n -X -P -S now-30days --name="$names" -o JobName,JobID,State >"$blocks.past" 2>/dev/null || true
    fi
    # A block may run in a job that no list names: run-local inside of one.
    if grep -qF "	slurm $me " "$blocks.claims"; then
        queue=$(squeue -h -r -u "$me" -o '%j|%K|%A|%T' 2>/dev/null) || answer=no
        printf '%s\n' "$queue" >>"$blocks.queue" || die "$no_room"
    fi
    DONE_BY=${option[done]:-any} HOST=$(uname -n) ME=$me ANSWER=$answer \
        JOB=${SLURM_JOB_ID:-} ROUND=${SLURM_RESTART_COUNT:-0} awk -f "$tools/block-states.awk" \
        "$blocks.queue" "$blocks.past" "$blocks.sent" "$blocks.claims" "$blocks"
}

# blocks_to_send: the directories that are neither done nor in the queue; with --only, those that failed or are new
blocks_to_send() {
    local only=${option[only]:-failed,new}
    [[ ,failed,new,failed, == *",$only,"* ]] || die "--only is failed or new, not '$only'"
    block_states >"$blocks.states" || exit 1
    awk -F '\t' '{ ++n[$1] } END { for (s in n) printf "%s%s %d", (i++ ? ", " : ""), s, n[s]; print "" }' \
        "$blocks.states" | sed "s/^/$program: /" >&2
    awk -F '\t' -v only=",$only," 'index(only, "," $1 ",") { print $2 }' "$blocks.states"
}

# drop_claims: takes away the claims that `block_states` has found to be of jobs that are gone
drop_claims() {
    local dir gone
    while IFS=$'\t' read -r dir gone; do
        drop_claim "$dir" "$gone"
    done < <(awk -F '\t' '$4 != "" { print $2 "\t" $4 }' "$blocks.states")
}

# new_list: an empty list of a submission in <project>/.cluster; prints its path, whose last part names the jobs
new_list() {
    local list
    mkdir -p "$root/.cluster/output" || die "cannot write in $root"
    list=$(mktemp "$root/.cluster/mqkit-XXXXXX") || die "cannot write in $root/.cluster"
    chmod "$(printf %o $((0666 & ~$(umask))))" "$list" # colleagues read it, too
    echo "$list"
}

# keep_options: stops at options behind `--` that would hide the jobs from the table, send them twice or not at all. They
# may be shortened (--job), and short ones that take no value stand before others in one word (-HJ).
keep_options() {
    local word refused=JaMW
    [[ $program != submit-chain ]] || refused+=d
    for word in "${site_options[@]}"; do
        case $word in
        --j* | --ar* | --cluster | --cluster=* | --clusters* | --te* | --wait) ;;
        --dep*) [[ $program == submit-chain ]] || continue ;;
        --*) continue ;;
        *) [[ $word =~ ^-[HIOQhksv]*[$refused] ]] || continue ;;
        esac
        die "not behind --, where the jobs would get lost: $word"
    done
}

# send <list> <array, or nothing> <at once> [<block directory>]: submits with `own_options`, those of the site, which may
# differ from them, and `kept_options`, which they may not; prints the job's number
own_options=()
kept_options=()
send() {
    local list=$1 array=$2 number=%j folder answer
    local kept=(--parsable --job-name="${list##*/}" "${kept_options[@]}")
    shift 2
    if [[ -n $array ]]; then
        number=%a
        kept+=(--array="$array")
    fi
    folder=$(dirname "$list")/output
    answer=$(sbatch --output="${folder//%/%%}/%x_$number.out" --open-mode=append --requeue --signal=B:USR1@60 \
        "${own_options[@]}" "${site_options[@]}" "${kept[@]}" "$tools/block-job" "$tools" "$1" "$list" "${@:2}") || return 1
    answer=$(tail -n 1 <<<"${answer%%;*}")
    if [[ ! $answer =~ ^[0-9]+$ ]]; then
        echo "$program: sbatch named no job: '$answer'" >&2
        return 1
    fi
    echo "$answer"
}

largest_array() { # one less than the limit: indices here begin with 1
    local limit
    limit=$(scontrol show config | awk '$1 == "MaxArraySize" { print $3 - 1 }')
    echo "${limit:-1000}"
}
