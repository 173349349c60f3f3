# What became of each block. Reads the queue (name|index|job|state), the accounts (name|job[_index]|state), the lists of
# all submissions (name <tab> key <tab> directory; the key is an array index or a job number) and the blocks, one a line.
# Prints state (done, running, queued, failed or new), directory, reason and, where there is one, the claim of a job that
# is gone.

function first_line(path,    line) {
    line = ""
    if ((getline line < path) <= 0) line = ""
    close(path)
    return line
}

# A finished block of mq.status: the status RENDERED, or a line with the name alone.
function rendered(case_dir, task,    line, word, path, found) {
    path = case_dir "/mq.status"
    found = 0
    while ((getline line < path) > 0) {
        split(line, word, " ")
        if (word[1] == task) found = toupper(word[2]) == "RENDERED" || word[2] == ""
    }
    close(path)
    return found
}

# A claim is "slurm <user> <job>" or "local <user> <host> <process>". One of somebody else or of another machine is taken
# as alive: a queue may show its owner alone what is in it.
function claim_lives(claim,    word) {
    split(claim, word, " ")
    if (word[2] != ENVIRON["ME"]) return 1
    if (word[1] == "slurm") return word[3] in live
    return word[3] != ENVIRON["HOST"] || system("kill -0 " (word[4] + 0) " 2>/dev/null") == 0
}

FILENAME == ARGV[1] {
    split($0, f, "|")
    if (f[4] != "PENDING") live[f[3]] = 1
    if (f[2] != "N/A") queue[f[1], f[2]] = f[4]
    queue[f[1], f[3]] = f[4]
    next
}

FILENAME == ARGV[2] {
    split($0, f, "|")
    key = f[2]
    sub(/^.*_/, "", key)
    past[f[1], key] = f[3]
    next
}

FILENAME == ARGV[3] {
    at = index($0, "\t")
    name = substr($0, 1, at - 1)
    rest = substr($0, at + 1)
    at = index(rest, "\t")
    key = substr(rest, 1, at - 1)
    dir = substr(rest, at + 1)
    sent[dir] = 1
    if ((name, key) in queue) waits[dir] = queue[name, key]
    if ((name, key) in past) went[dir] = past[name, key]
    next
}

{
    dir = $0
    n = split(dir, part, "/")
    case_dir = substr(dir, 1, length(dir) - length(part[n]) - 1)
    state = "new"
    reason = ""
    gone = ""
    claim = first_line(dir "/cluster.claim")
    failure = first_line(dir "/cluster.failed")
    if (ENVIRON["DONE_BY"] != "status" && first_line(dir "/cluster_done.mqwk") != "") {
        state = "done"
        reason = "marker"
    } else if (ENVIRON["DONE_BY"] != "marker" && rendered(case_dir, part[n])) {
        state = "done"
        reason = "mq.status"
    } else if (claim != "" && claim_lives(claim)) {
        state = "running"
        reason = claim
    } else if (dir in waits) {
        state = "queued"
        reason = waits[dir]
    } else if (failure != "") {
        state = "failed"
        reason = failure
    } else if (dir in sent) {
        state = "failed"
        reason = "lost: " ((dir in went) ? went[dir] : "no job in the queue")
    } else if (claim != "") {
        state = "failed"
        reason = "lost: " claim
    }
    if (state == "failed" || state == "new") gone = claim
    print state "\t" dir "\t" reason "\t" gone
}
