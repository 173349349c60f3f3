# Completion of mqkit-graph for fish: its options with their values, and the task file.

# The task file is still to come: no word before the cursor but options and the format.
function __mqkit_graph_wants_file
    set -l words (commandline -opc)[2..]
    set -l at 1
    while test $at -le (count $words)
        switch $words[$at]
            case --format
                set at (math $at + 1)
            case '-*'
            case '*'
                return 1
        end
        set at (math $at + 1)
    end
end

function __mqkit_graph_files
    __fish_complete_path (commandline -ct) | string match -ri '^[^\t]*(?:/|\.(?:mq|projmq))(?:\t.*)?$'
end

complete -c mqkit-graph -f
complete -c mqkit-graph -s h -l help -d 'Show the help'
complete -c mqkit-graph -l format -xa 'dot mermaid svg' -d 'Kind of picture'
complete -c mqkit-graph -l expanded -d 'Every variant of the matrix'
complete -c mqkit-graph -n __mqkit_graph_wants_file -a '(__mqkit_graph_files)'
