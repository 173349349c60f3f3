# What became of each block. Reads the queue (name|index|job|state), the accounts (name|job[_index]|state), the lists of
# all submissions (name <tab> key <tab> directory), the claims (directory <tab> claim) and the blocks, one a line. Prints
# state (done, running, queued, failed or new), directory, reason and, where there is one, the claim of a job that is
# gone. A submission, and so a name, is one array or single jobs: the key is the index in the array, or else the job.

function first_line(path,    line) {
    line = ""
    if ((getline line < path) <= 0) line = ""
    close(path)
    return line
}

# An empty one counts, too: the machine may have lost its line, and only a block that ended well has one.
function exists(path,    line, found) {
    found = (getline line < path) >= 0
    close(path)
    return found
}

# Whether the last line of its log, which run-block writes at the end, says that the block ended well.
function ended_well(dir,    path, line, last) {
    path = dir "/cluster.log"
    last = ""
    while ((getline line < path) > 0) last = line
    close(path)
    return last ~ /^== .*: ended well$/
}

# Whether a block that was sent, and of which nothing is left, was done and then forgotten, by a rebuild for instance. The
# account of a job that failed, or that nobody keeps, leaves open which of its blocks did.
function forgotten(dir) {
    if (!(dir in went) || went[dir] ~ /^FAILED/) return ended_well(dir)
    return went[dir] ~ /^COMPLETED/
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

# Whether a process of this machine is alive, and the one that began then, if that is known.
function alive(process, start,    stat, word) {
    if (system("kill -0 " process " 2>/dev/null") != 0) return 0
    stat = first_line("/proc/" process "/stat")
    sub(/^.*\) /, "", stat) # the name may hold blanks
    split(stat, word, " ")
    return start == "" || stat == "" || word[20] == start
}

# What a claim makes of its block: running, queued, or nothing when its owner is gone. It is "slurm <user> <job> <round>"
# or "local <user> <host> <process> <its start>", or "empty", which is of nobody. One of somebody else or of another
# machine is taken as alive, as a queue may show its owner alone what is in it; and so is one of Slurm where Slurm does not
# answer. A job that waits has been put back into the queue with its claim, or began while the queue was read. What an
# earlier round of the very job that asks has left is gone, although the queue has that job.
function claimed(claim,    word) {
    if (claim == "" || claim == "empty") return ""
    split(claim, word, " ")
    if (word[2] != ENVIRON["ME"]) return "running"
    if (word[1] == "slurm" && word[3] == ENVIRON["JOB"] && word[4] + 0 < ENVIRON["ROUND"] + 0) return ""
    if (word[1] == "slurm" && !(word[3] in job)) return ENVIRON["ANSWER"] == "no" ? "running" : ""
    if (word[1] == "slurm") return job[word[3]] == "PENDING" ? "queued" : "running"
    if (word[3] != ENVIRON["HOST"]) return "running"
    return alive(word[4] + 0, word[5]) ? "running" : ""
}

FILENAME == ARGV[1] {
    split($0, f, "|")
    job[f[3]] = f[4]
    queue[f[1], f[2] == "N/A" ? f[3] : f[2]] = f[4]
    next
}

FILENAME == ARGV[2] {
    split($0, f, "|")
    key = f[2]
    sub(/^.*_/, "", key)
    past[f[1], key] = f[3]
    number[f[1], key] = f[2] + 0 # of the job or of the whole array
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
    if ((name, key) in past && number[name, key] >= latest[dir]) {
        latest[dir] = number[name, key]
        went[dir] = past[name, key]
    }
    next
}

FILENAME == ARGV[4] {
    at = index($0, "\t")
    claims[substr($0, 1, at - 1)] = substr($0, at + 1)
    next
}

{
    dir = $0
    n = split(dir, part, "/")
    case_dir = substr(dir, 1, length(dir) - length(part[n]) - 1)
    state = "new"
    reason = ""
    gone = ""
    claim = (dir in claims) ? claims[dir] : ""
    owner = claimed(claim)
    failure = first_line(dir "/cluster.failed")
    if (exists(dir "/cluster_done.mqwk")) {
        state = "done"
        reason = "marker"
    } else if (ENVIRON["DONE_BY"] != "marker" && rendered(case_dir, part[n])) {
        state = "done"
        reason = "mq.status"
    } else if (owner == "running") {
        state = owner
        reason = claim
    } else if (owner == "queued" || dir in waits) {
        state = "queued"
        reason = (dir in waits) ? waits[dir] : "PENDING"
    } else if (failure != "") {
        state = "failed"
        reason = failure
    } else if (dir in sent && !(claim == "" && forgotten(dir))) {
        state = "failed"
        reason = "lost: " ((dir in went) ? went[dir] : "no job in the queue")
    } else if (claim != "") {
        state = "failed"
        reason = "lost: " (claim == "empty" ? "an empty claim" : claim)
    }
    if (state == "failed" || state == "new") gone = claim
    print state "\t" dir "\t" reason "\t" gone
}
