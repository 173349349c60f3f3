# The command line of `project`: help, sub-commands, options, and the older shapes.
bats_require_minimum_version 1.5.0

setup() {
    unset NO_COLOR
    export TERM=xterm SHELL=/bin/sh
    # So deep that no search upwards leaves the directory of the test.
    mkdir -p "$BATS_TEST_TMPDIR/1/2/3/4/5/6"
    cd "$BATS_TEST_TMPDIR/1/2/3/4/5/6"
}

# The help; {G}, {C} and {Y} stand for green, bold cyan and bold yellow, {N} for the end of each.
marked_help() {
    cat <<'TEXT'
{C}Usage:{N}
  {G}mqkit project [command] <options>{N}
  Project commands accept unique prefixes, for example {G}mqkit proj co{N}.
{C}Commands:{N}
  {G}init{N}
      -- Creates a project skeleton in the current directory.
  {G}add [--path <project_dir|xxx.projmq>] [--dry-run] <xyz...>{N}
      -- Imports one or more xyz files, creates case directories, and wires them into the main .projmq file.
  {G}update [--path <project_dir|xxx.projmq|case_dir|case.mq>] [-n <task>[,<task>...]] [--run-comd] [--dry-run]{N}
      -- Refreshes only the selected task blocks' pre_comd / comd content, effectively using {G}morquill --comd-only{N}.
      -- If comd is not executed immediately, {G}mqkit_update_comd.sh{N} is written for later scheduler/direct execution.
      -- May enter interactive task selection when {G}-n{N} is omitted.
  {G}rebuild [--path <project_dir|xxx.projmq|case_dir|case.mq>] [-n <task>[,<task>...]] [--run-script] [--dry-run]{N}
      -- Cleans and reruns selected task blocks completely, without {G}--comd-only{N}.
      -- When {G}--path{N} points to a case directory or {G}.mq{N}, only that one case is rebuilt.
      -- May enter interactive task selection when {G}-n{N} is omitted.
  {G}exec [--path <project_dir|xxx.projmq>] -n <task>[,<task>...] [--dry-run] -- <cmd...>{N}
      -- Runs one command in each selected task directory.
      -- Requires explicit task names via {G}-n{N}; accepts wildcards such as {G}-n 'opt*'{N} or {G}-n '*'{N}.
  {G}exec [--path <project_dir|xxx.projmq>] -n <task>[,<task>...] --cmd "<cmd...>"{N}
      -- Same as the shell-separator form above, but passes the command as one quoted string.
  {G}collect [--path <project_dir|xxx.projmq>] -n <task>[,<task>...] [--dry-run] <glob...>{N}
      -- Gathers matching files from selected task directories.
      -- Requires explicit task names via {G}-n{N}; accepts wildcards such as {G}-n 'frag*'{N} or {G}-n '*'{N}.
{C}Options:{N}
  {G}--path [project_dir|xxx.projmq|case_dir|case.mq]{N}
      For {G}update/rebuild{N}: accepts a project directory, explicit {G}.projmq{N}, case directory, or case {G}.mq{N} file
      For {G}add/exec/collect{N}: use a project directory or explicit {G}.projmq{N}
      If omitted, the unique {G}.projmq{N} in the current directory is preferred
  {G}-n, --name [task][,task...]{N}
      Task block names; may be repeated or comma-separated, e.g. {G}-n opt -n soc{N} or {G}-n opt,soc{N}
  {G}--dry-run{N}
      Show the planned actions without modifying files
  {G}--run-comd{N}
      For {G}update{N} only: execute comd after regenerating scripts; otherwise write {G}mqkit_update_comd.sh{N} for later use
  {G}--run-script{N}
      For {G}rebuild{N} only: run the configured {G}mqrun kick{N} command after the full rebuild
  {G}--cmd <command>{N}
      For {G}exec{N} only: pass the command as one quoted string
{C}Examples:{N}
  {G}mqkit project init{N}
  {G}mqkit project add --path demo.projmq mol1.xyz mol2.xyz{N}
  {G}mqkit project update --path ./demo_project{N}
  {G}mqkit project update --path demo.projmq -n opt,soc --run-comd{N}
  {G}mqkit project update --path ./demo_project/mol1/mol1.mq -n opt{N}
  {G}mqkit project rebuild --path demo.projmq -n opt,soc --run-script{N}
  {G}mqkit project rebuild --path ./demo_project/mol1 -n opt{N}
  {G}mqkit project exec --path demo.projmq -n soc -- 'cat soc*.log'{N}
  {G}mqkit project exec -n 'opt*' -- 'echo [taskname]'{N}
  {G}mqkit project exec --path ./demo_project -n opt --cmd "grep Normal *.log"{N}
  {G}mqkit project collect --path ./demo_project -n soc 'plot/*.png' '*.txt'{N}
  {G}mqkit proj co --path ./demo_project -n soc '*.log'{N}
{Y}Compatibility forms:{N}
  {G}mqkit -u ./demo_project -n opt --run-comd{N}
      Equivalent to: {G}mqkit project update --path ./demo_project -n opt --run-comd{N}
  {G}mqkit demo.projmq -n opt --rebuild --run-script{N}
      Equivalent to: {G}mqkit project rebuild --path demo.projmq -n opt --run-script{N}
  {G}mqkit demo.projmq -n soc --exec 'cat soc*.log'{N}
      Equivalent to: {G}mqkit project exec --path demo.projmq -n soc -- 'cat soc*.log'{N}
TEXT
}
plain_help() { marked_help | sed 's/{[GCYN]}//g'; }
colored_help() {
    marked_help | sed "s/{G}/$(printf '\033[32m')/g; s/{C}/$(printf '\033[1m\033[36m')/g; \
        s/{Y}/$(printf '\033[1m\033[33m')/g; s/{N}/$(printf '\033[0m')/g"
}

# shows_help <status> <standard error> <arguments>...: the help and nothing but it on standard output.
shows_help() {
    local status=0
    "$MQKIT" "${@:3}" >out 2>err || status=$?
    [ "$status" -eq "$1" ]
    diff <(plain_help) out
    printf '%s' "$2" | diff - err
}

@test "the help is whole, plain in a pipe and coloured on a terminal" {
    shows_help 0 "" help proj
    shows_help 0 "" project help
    script -qec "'$MQKIT' project --help" /dev/null </dev/null | tr -d '\r' >out
    diff <(colored_help) out
    TERM=dumb script -qec "'$MQKIT' project --help" /dev/null </dev/null | tr -d '\r' >out
    diff <(plain_help) out
}

@test "a command line that makes no workflow shows the help and fails, a help token anywhere makes it succeed" {
    shows_help 1 "" project
    shows_help 1 "" project init x
    shows_help 0 "" project init -h
    shows_help 1 "" proj nonsense
    shows_help 1 "" project update --
    shows_help 0 "" project update x help
    shows_help 1 "" project --no-color
    shows_help 1 "[mqkit][ERROR] ambiguous project command prefix:  (matches: init, add, update, rebuild, exec, collect)"$'\n' project ""
    shows_help 1 "[mqkit][ERROR] --run-comd is only valid with project update."$'\n' project rebuild --run-comd
    shows_help 0 "[mqkit][ERROR] --run-script is only valid with project rebuild."$'\n' project u --run-script -h
    shows_help 1 "[mqkit][ERROR] project add does not accept -n/--name."$'\n' project add -n opt a.xyz
}

@test "the older shapes have messages of their own" {
    shows_help 1 "[mqkit][ERROR] unknown argument: --path"$'\n' -n opt --path x --rebuild
    shows_help 1 "[mqkit][ERROR] --run-script is only valid with rebuild."$'\n' a.projmq --run-script
    shows_help 1 "[mqkit][ERROR] --exec expects a value"$'\n' a.projmq -n opt --exec
    shows_help 1 "[mqkit][ERROR] --exec cannot be combined with --collect or --rebuild"$'\n' --rebuild --exec ls
    shows_help 1 "[mqkit][ERROR] --collect expects at least one argument"$'\n' --collect
    shows_help 1 "[mqkit][ERROR] --collect cannot be combined with --exec or --rebuild"$'\n' --exec ls --collect x
    shows_help 1 "[mqkit][ERROR] --rebuild cannot be combined with --exec or --collect"$'\n' --collect x --rebuild
    shows_help 1 "[mqkit][ERROR] --run-comd is only valid with project update."$'\n' a.projmq --run-comd
    shows_help 1 "[mqkit][ERROR] -n/--name expects a value"$'\n' a.projmq -n
    shows_help 0 "[mqkit][ERROR] unknown argument: x"$'\n' -n opt x -h
    shows_help 1 "[mqkit][ERROR] unknown argument: y"$'\n' -u x y -h
    shows_help 1 "[mqkit][ERROR] -n/--name expects a value"$'\n' --update -n
    shows_help 0 "" -b help
}

@test "names without a sub-command are checked before the help" {
    shows_help 1 "[mqkit][ERROR] could not resolve a .projmq project template from path: $PWD/none.projmq"$'\n' none.projmq -n opt
    printf '$opt\n%%keywords a\n' >demo.projmq
    shows_help 1 "" demo.projmq -n opt
    shows_help 1 "[mqkit][ERROR] specify at least one task block with -n/--name."$'\n' demo.projmq
    shows_help 1 "[mqkit][ERROR] task block not found in .projmq: x, y*"$'\n'"available task blocks: opt"$'\n' demo.projmq -n 'x,opt,y*'
}
