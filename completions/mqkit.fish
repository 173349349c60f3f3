# Completion of mqkit for fish: commands, options and their values, task files, block names, templates. Needs mqkit itself,
# which only reads for it. Block names are asked of regular files alone: a pipe would be drained.

# The words before the cursor that belong to no option, the program first.
function __mqkit_words
    set -l skip 0
    for word in (commandline -opc)
        if test $skip = 1
            set skip 0
        else if contains -- $word -o --out --output --task --format --path -n --name --cmd -d --dir
            set skip 1
        else if test "$word" = --
            break
        else if not string match -q -- '-*' $word
            printf '%s\n' $word
        end
    end
end

# The value that stands behind one of the options.
function __mqkit_value
    set -l words (commandline -opc)
    for i in (seq 2 (math (count $words) - 1))
        if contains -- $words[$i] $argv
            string replace -r '^~/' "$HOME/" -- $words[(math $i + 1)]
            return
        end
    end
end

# __mqkit_whole <word> <name>...: the one of the names that begins with the word, in any case of letters.
function __mqkit_whole
    set -l word (string lower -- $argv[1])
    contains -- $word $argv[2..]; and echo $word; and return
    set -l found
    for name in $argv[2..]
        test (string sub -l (string length -- $word) -- $name) = $word; and set -a found $name
    end
    test (count $found) = 1; and echo $found
end

# The command of the line with its sub-command, nothing when it is no command.
function __mqkit_command
    set -l words (__mqkit_words)
    test (count $words) -ge 2; or return
    set -l command (__mqkit_whole $words[2] template project rename fmt migrate expand explain lint)
    test (string lower -- $words[2]) = help; and set command help
    switch "$command"
        case project
            set -l names init add update rebuild exec collect
            test (count $words) -ge 3; and set -a command (__mqkit_whole $words[3] $names)
        case template
            set -l names list categories merge variable interactive
            test (count $words) -ge 3; and set -a command (__mqkit_whole $words[3] $names)
    end
    echo "$command"
end

# __mqkit_is <command>...: whether the line is one of these commands.
function __mqkit_is
    not __mqkit_behind; and contains -- (__mqkit_command) $argv
end

# __mqkit_at <number> <command>...: whether the line is one of these and the given other word behind it is typed.
function __mqkit_at
    set -l command (__mqkit_command)
    contains -- "$command" $argv[2..]; and not __mqkit_behind
    and test (count (__mqkit_words)) = (math $argv[1] + (count (string split ' ' -- $command)))
end

# Whether a command of its own is typed, behind --.
function __mqkit_behind
    contains -- -- (commandline -opc)
end

# __mqkit_other <number>: the given word that belongs neither to the command nor to an option.
function __mqkit_other
    set -l words (__mqkit_words)
    set -l at (math $argv[1] + 1 + (count (string split ' ' -- (__mqkit_command))))
    test (count $words) -ge $at; and string replace -r '^~/' "$HOME/" -- $words[$at]
end

# __mqkit_run <argument>...: what the program of the line prints.
function __mqkit_run
    set -l program (string replace -r '^~/' "$HOME/" -- (commandline -opc)[1])
    $program $argv 2>/dev/null
end

# __mqkit_blocks <file> [--expanded]: the names of the file's blocks.
function __mqkit_blocks
    test -f "$argv[1]"; or return
    __mqkit_run explain $argv --format json |
        string replace -rf '^      "name": "(.*)",$' '$1' | string replace -ra '\\\\(["\\\\])' '$1'
end

function __mqkit_blocks_of_line
    set -l expanded
    contains -- --expanded (commandline -opc); and set expanded --expanded
    __mqkit_blocks (__mqkit_other 1) $expanded
end

# __mqkit_project_file <path>: the task file or template that the path stands for: itself, or the only template of the
# nearest folder above that has one.
function __mqkit_project_file
    set -l folder .
    test -n "$argv[1]"; and set folder $argv[1]
    if test -f $folder
        string match -rq '\.(mq|projmq)$' -- $folder; and echo $folder; and return
        set folder (dirname -- $folder)
    end
    set folder (builtin realpath -s -- $folder)
    for level in (seq 6)
        set -l templates $folder/*.projmq
        if test (count $templates) -gt 0
            test (count $templates) = 1; and echo $templates
            return
        end
        set folder (dirname -- $folder)
    end
end

# The blocks of the project, as written and, while they are not too many to read, by their variants; behind the names of
# the list that stand there already.
function __mqkit_block_list
    set -l path (__mqkit_value --path)
    test -n "$path"; or set path (__mqkit_other 1)
    set -l file (__mqkit_project_file "$path")
    set -l names (__mqkit_blocks "$file")
    set -l count (__mqkit_run explain "$file" --format json | string replace -rf '^  "expanded_task_count": (\d+),$' '$1')
    test -n "$count"; and test $count -le 500; and set -a names (__mqkit_blocks "$file" --expanded)
    set -l before (string match -r '^.*,' -- (commandline -ct))
    set -l chosen (string split , -- "$before")
    for name in $names
        contains -- $name $chosen; or printf '%s\n' "$before$name"
    end
end

function __mqkit_templates
    set -l folder (__mqkit_value -d --dir)
    test -n "$folder"; and set folder -d $folder
    __mqkit_run template list $folder | string replace -rf '^  (.*) \(.*\)$' '$1'
end

# The variable templates below MORQUILL_TEMPLATE_PATH.
function __mqkit_variables
    set -l folders ./conf/mq_templates
    set -q MORQUILL_TEMPLATE_PATH; and set folders (string split : -- "$MORQUILL_TEMPLATE_PATH")
    for file in $folders/**.{yaml,yml}
        set -l name (string replace -rf '^name:\s*["\']?([^"\']*[^"\'\s]).*$' '$1' <$file)
        test -n "$name[1]"; and echo $name[1]; or basename $file | string replace -r '\.[^.]*$' ''
    end
end

# __mqkit_files <ending>...: folders, and the files with one of these endings in any case of letters.
function __mqkit_files
    __fish_complete_path (commandline -ct) | string match -ri '^[^\t]*(?:/|\.(?:'(string join '|' $argv)'))(?:\t.*)?$'
end

complete -c mqkit -f

complete -c mqkit -n 'test (count (__mqkit_words)) = 1' -l help -d 'Show the help'
for row in 'template|List, merge and fill in recipes' 'project|Keep a project of many molecules' \
        'rename|Rename a task block everywhere' 'fmt|Write the canonical form' \
        'migrate|Write an old file in modern forms' \
        'expand|Write what includes, loops and the matrix stand for' 'explain|Show what was understood' \
        'lint|Check task files'
    set -l row (string split '|' -- $row)
    complete -c mqkit -n 'test (count (__mqkit_words)) = 1' -a $row[1] -d $row[2]
    complete -c mqkit -n '__mqkit_at 1 help' -a $row[1] -d $row[2]
    complete -c mqkit -n "__mqkit_is $row[1]" -l help -d 'Show the help'
end
complete -c mqkit -n 'test (count (__mqkit_words)) = 1' -a help -d 'Help for a command'

for row in 'init|Make a project from the files of this folder' 'add|Add molecules' \
        'update|Refresh the commands of blocks' 'rebuild|Make blocks anew' \
        'exec|Run a command in block folders' 'collect|Gather files of block folders'
    set -l row (string split '|' -- $row)
    complete -c mqkit -n '__mqkit_at 1 project' -a $row[1] -d $row[2]
    test $row[1] = init; or complete -c mqkit -n "__mqkit_is 'project $row[1]'" -l help -d 'Show the help'
end
for row in 'list|Names of the templates' 'categories|Templates by category' 'merge|Join templates into a task file' \
        'variable|Write the values that a file needs' 'interactive|Browse, tick and fill in'
    set -l row (string split '|' -- $row)
    complete -c mqkit -n '__mqkit_at 1 template' -a $row[1] -d $row[2]
end

set -l writing '__mqkit_is fmt migrate expand "template merge"'
complete -c mqkit -n $writing -s o -l output -rF -d 'Write into this file'
complete -c mqkit -n '__mqkit_is fmt migrate expand' -l out -rF -d 'Write into this file'
complete -c mqkit -n '__mqkit_is fmt migrate' -s i -l in-place -d 'Write over the file'
complete -c mqkit -n '__mqkit_is expand' -l expanded -d 'One block per matrix variant'
complete -c mqkit -n '__mqkit_is expand' -l matrix-expanded -d 'One block per matrix variant'
complete -c mqkit -n '__mqkit_at 1 fmt migrate expand explain rename "template variable"' -a '(__mqkit_files mq projmq)'

complete -c mqkit -n '__mqkit_is explain' -l task -xa '(__mqkit_blocks_of_line)' -d 'One block alone'
complete -c mqkit -n '__mqkit_is explain lint' -l format -xa 'text json' -d 'Kind of output'
complete -c mqkit -n '__mqkit_is explain' -l expanded -d 'The variants of the matrix'
complete -c mqkit -n '__mqkit_is lint' -l strict -d 'Warnings count as errors'
complete -c mqkit -n '__mqkit_is lint' -l quiet -d 'Only the line that counts'
complete -c mqkit -n '__mqkit_is lint' -a '(__mqkit_files mq)'
complete -c mqkit -n '__mqkit_at 2 rename' -a '(__mqkit_blocks_of_line)'

set -l named '__mqkit_is "project update" "project rebuild" "project exec" "project collect"'
complete -c mqkit -n $named -s n -l name -xa '(__mqkit_block_list)' -d 'Task blocks'
set -l placed '__mqkit_is "project add" "project update" "project rebuild" "project exec" "project collect"'
complete -c mqkit -n $placed -l path -xa '(__mqkit_files mq projmq)' -d 'Anything inside the project'
complete -c mqkit -n $placed -l dry-run -d 'Show what would be done'
complete -c mqkit -n '__mqkit_is "project update"' -l run-comd -d 'Run what was refreshed'
complete -c mqkit -n '__mqkit_is "project rebuild"' -l run-script -d 'Start the runner afterwards'
complete -c mqkit -n '__mqkit_is "project exec"' -l cmd -x -d 'The command, quoted'
complete -c mqkit -n '__mqkit_is "project exec"' -a -- -d 'The command follows'
complete -c mqkit -n '__mqkit_is "project add"' -a '(__mqkit_files xyz projmq)'
set -l no_path 'test -z (__mqkit_value --path)'
complete -c mqkit -n "__mqkit_at 1 'project update' 'project rebuild'; and $no_path" -a '(__mqkit_files mq projmq)'
complete -c mqkit -n "__mqkit_at 1 'project exec' 'project collect'; and $no_path" -a '(__mqkit_files projmq)'
complete -c mqkit -n __mqkit_behind -a '(__fish_complete_subcommand --fcs-skip=(contains -i -- -- (commandline -opc)))'

complete -c mqkit -n '__mqkit_is "template list" "template categories" "template merge"' -s d -l dir \
    -xa '(__fish_complete_directories (commandline -ct))' -d 'Template folder'
complete -c mqkit -n '__mqkit_is "template merge"' -a '(__mqkit_templates)'
complete -c mqkit -n '__mqkit_at 2 "template variable"' -a '(__mqkit_variables)'
