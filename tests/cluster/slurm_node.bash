# A one-node Slurm in a scratch folder, sourced by script/test-cluster. Daemons listen on ports of their own on
# 127.0.0.1 and are stopped by the process ids they were started with; nothing of the system's own set-up is read or
# changed.

daemons=() # "<name> <process id>", in the order of their start
survivors='' # what the end of the node has left

# started <name> <program> <arguments>...: a daemon in the foreground of its own process, its output in <name>.out
started() {
    local name=$1
    shift
    "$@" >"$node/$name.out" 2>&1 </dev/null &
    daemons+=("$name $!")
}

# wait_until <seconds> <command>...: true as soon as the command is
wait_until() {
    local end=$((SECONDS + $1))
    shift
    until "$@" >/dev/null 2>&1; do
        ((SECONDS < end)) || return 1
        sleep 0.3
    done
}

# free_port: a TCP port of 127.0.0.1 that nothing listens on
free_port() {
    local port
    for _ in $(seq 50); do
        port=$((20000 + RANDOM % 20000))
        if ! (exec 3<>"/dev/tcp/127.0.0.1/$port") 2>/dev/null; then
            echo "$port"
            return
        fi
    done
    return 1
}

munge_answers() { munge -n -S "$node/munge/socket" | unmunge -S "$node/munge/socket"; }
database_answers() { mariadb --no-defaults --socket="$node/db/socket" -e 'select 1'; }
# shellcheck disable=SC2317 # called through wait_until
node_is_idle() { [[ $(sinfo -h -o %t) == idle ]]; }

start_munge() {
    mkdir -p "$node/munge"
    dd if=/dev/urandom of="$node/munge/key" bs=64 count=1 2>/dev/null
    chmod 600 "$node/munge/key"
    chmod 711 "$node/munge"
    chown -R munge: "$node/munge"
    started munged setpriv --reuid munge --regid munge --clear-groups \
        munged --foreground --force --num-threads=4 --key-file="$node/munge/key" --socket="$node/munge/socket" \
        --pid-file="$node/munge/pid" --seed-file="$node/munge/seed" --log-file="$node/munge/log"
    wait_until 10 munge_answers
}

# The accounts that sacct reads: a database and slurmdbd.
start_accounting() {
    mkdir -p "$node/db"
    mariadb-install-db --no-defaults --user=root --datadir="$node/db/data" --auth-root-authentication-method=normal \
        --skip-test-db >"$node/db/install.log" 2>&1
    started mariadbd mariadbd --no-defaults --user=root --datadir="$node/db/data" --socket="$node/db/socket" \
        --bind-address=127.0.0.1 --port="$database_port" --pid-file="$node/db/pid" --innodb-buffer-pool-size=64M \
        --innodb-flush-log-at-trx-commit=0 --skip-networking=0
    wait_until 30 database_answers || return 1
    mariadb --no-defaults --socket="$node/db/socket" -e "create database accounts;
        create user 'slurm'@'%' identified by 'scratch'; grant all on accounts.* to 'slurm'@'%';"
    cat >"$node/slurmdbd.conf" <<END
AuthType=auth/munge
AuthInfo=socket=$node/munge/socket
DbdHost=localhost
DbdAddr=127.0.0.1
DbdPort=$dbd_port
SlurmUser=root
StorageType=accounting_storage/mysql
StorageHost=127.0.0.1
StoragePort=$database_port
StorageUser=slurm
StoragePass=scratch
StorageLoc=accounts
LogFile=$node/slurmdbd.log
PidFile=$node/slurmdbd.pid
END
    chmod 600 "$node/slurmdbd.conf"
    started slurmdbd env SLURM_CONF="$node/slurm.conf" slurmdbd -D
    wait_until 30 sacctmgr -n show cluster || return 1
    sacctmgr -i add cluster scratch >/dev/null || true # the controller may have been quicker
}

# A requeued job waits for as long as its old credentials are good, 120 s unless cred_expire says otherwise.
write_slurm_conf() {
    cat >"$node/slurm.conf" <<END
ClusterName=scratch
SlurmctldHost=localhost(127.0.0.1)
SlurmctldTimeout=10
SlurmctldPort=$controller_port
SlurmdPort=$slurmd_port
SlurmUser=root
AuthType=auth/munge
AuthInfo=socket=$node/munge/socket,ttl=300,cred_expire=5
CredType=cred/munge
StateSaveLocation=$node/state
SlurmdSpoolDir=$node/spool
SlurmctldPidFile=$node/slurmctld.pid
SlurmdPidFile=$node/slurmd.pid
SlurmctldLogFile=$node/slurmctld.log
SlurmdLogFile=$node/slurmd.log
ProctrackType=proctrack/linuxproc
TaskPlugin=task/none
JobAcctGatherType=jobacct_gather/none
MpiDefault=none
ReturnToService=2
SelectType=select/cons_tres
SelectTypeParameters=CR_Core_Memory
SchedulerType=sched/backfill
SchedulerParameters=batch_sched_delay=0,sched_min_interval=50000,sched_interval=2,bf_interval=2
SlurmdParameters=config_overrides
PrologEpilogTimeout=10
DefMemPerCPU=10
KillWait=2
MinJobAge=600
MaxArraySize=1001
AccountingStorageType=accounting_storage/slurmdbd
AccountingStorageHost=127.0.0.1
AccountingStoragePort=$dbd_port
AccountingStoragePass=$node/munge/socket
NodeName=localhost NodeHostname=$(hostname_of_kernel) NodeAddr=127.0.0.1 CPUs=$node_cpus RealMemory=64000 State=UNKNOWN
PartitionName=main Nodes=localhost Default=YES MaxTime=INFINITE State=UP
END
}

hostname_of_kernel() { cat /proc/sys/kernel/hostname; }

start_slurm() {
    mkdir -p "$node/state" "$node/spool"
    started slurmctld slurmctld -D -c
    wait_until 20 scontrol ping || return 1
    started slurmd slurmd -D -N localhost
    wait_until 20 node_is_idle
}

# start_node <scratch folder> <cpus>: true when a job can be sent; what failed is in $failed_daemon
start_node() {
    node=$1
    node_cpus=$2
    chmod 711 "$node"
    controller_port=$(free_port) slurmd_port=$(free_port) dbd_port=$(free_port) database_port=$(free_port)
    export SLURM_CONF=$node/slurm.conf
    write_slurm_conf
    local step
    for step in start_munge start_accounting start_slurm; do
        # shellcheck disable=SC2034 # read by script/test-cluster
        failed_step=$step
        "$step" || return 1
    done
}

# left_behind: the processes that were started with the set-up of this node, daemons and jobs alike
left_behind() {
    local file
    for file in $(env -u SLURM_CONF grep -slzxF "SLURM_CONF=$node/slurm.conf" /proc/[0-9]*/environ); do
        file=${file%/environ}
        echo "${file#/proc/}"
    done
}

# shellcheck disable=SC2317 # called through wait_until
{
    no_job_is_left() { ! squeue -h | grep -q .; }
    nothing_is_left() { [[ -z $(left_behind) ]]; }
}

# stop_node: ends the jobs, which would outlive the daemons, then the daemons, the last one first. What is left all the
# same is named in `survivors` and killed.
stop_node() {
    local i name pid
    [[ ${#daemons[@]} -gt 0 ]] || return 0
    if [[ " ${daemons[*]} " == *" slurmd "* ]]; then
        timeout 10 scancel --user="$(id -un)"
        wait_until 20 no_job_is_left
    fi
    for ((i = ${#daemons[@]} - 1; i >= 0; --i)); do
        read -r name pid <<<"${daemons[i]}"
        kill "$pid" 2>/dev/null || continue
        wait_until 15 eval "! kill -0 $pid" || kill -9 "$pid" 2>/dev/null
        wait "$pid" 2>/dev/null || true
    done
    daemons=()
    wait_until 10 nothing_is_left
    survivors=''
    for pid in $(left_behind); do
        survivors+="$pid $(tr '\0' ' ' <"/proc/$pid/cmdline")"$'\n'
        kill -9 "$pid"
    done 2>/dev/null # gone at last
}
