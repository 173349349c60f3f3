# A project whose blocks can run, for the tests of examples/cluster. Goes with siblings.bash.

# setup_recipes: enters "$root" of setup_project; `recipes` is the folder of the scripts.
setup_recipes() {
    setup_project
    recipes="$MQKIT_SOURCE/examples/cluster"
    unset SLURM_JOB_ID SLURMD_NODENAME SLURM_RESTART_COUNT
    for case in m1 m2; do
        echo 'echo start >>runs; [ ! -e fail ] || exit 3; echo end >>runs; echo "ran in $PWD"' >$case/opt/comd
    done
}

table() { # <done> <failed> <never sent>: of the block opt
    diff <("$recipes/block-status" -n opt | awk 'NR == 2 { print $2, $5, $6, $3 + $4 }') <(echo "$1 $2 $3 0")
}
