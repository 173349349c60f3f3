# `mqkit_update_comd.sh`: a new file in whole, or none.
bats_require_minimum_version 1.5.0
load expect
load siblings

setup() {
    setup_project
    sibling morquill
    echo precious >precious
    chmod 0640 precious
    unwritten="[mqkit][ERROR] failed to write comd runner script: $root/mqkit_update_comd.sh
[mqkit][ERROR] update failed."
}

@test "a script that is in the way is replaced, never written through" {
    for way in "ln -s precious" "ln precious" "ln -s nowhere" mkfifo; do
        rm -f mqkit_update_comd.sh
        if [ "$way" = mkfifo ]; then mkfifo mqkit_update_comd.sh; else $way mqkit_update_comd.sh; fi
        run --separate-stderr timeout 20 "$MQKIT" project update -n opt <<<n
        [ "$status" -eq 0 ]
        [ "$stderr" = "" ]
        [ -f mqkit_update_comd.sh ] && [ ! -L mqkit_update_comd.sh ] && [ -x mqkit_update_comd.sh ]
        [ "$(grep -c '^run_comd ' mqkit_update_comd.sh)" -eq 2 ]
        [ "$(cat precious)" = precious ]
        [ "$(stat -c %a precious)" = 640 ]
        [ ! -e nowhere ]
    done
}

@test "a script that cannot be written in whole is not left, and an older one stays" {
    for older in "" yes; do
        [ -z "$older" ] || echo '#!/bin/sh' >mqkit_update_comd.sh
        (
            trap '' XFSZ
            ulimit -f 1
            run --separate-stderr "$MQKIT" project update -n opt <<<n
            [ "$status" -eq 1 ]
            [ "$stderr" = "$unwritten" ]
        )
        if [ -z "$older" ]; then
            [ ! -e mqkit_update_comd.sh ]
        else
            [ "$(cat mqkit_update_comd.sh)" = '#!/bin/sh' ]
        fi
        [ ! -e mqkit_update_comd.sh.new ]
    done
}

@test "a directory of its name is not replaced" {
    mkdir mqkit_update_comd.sh
    run --separate-stderr "$MQKIT" project update -n opt <<<n
    [ "$status" -eq 1 ]
    [ "$stderr" = "$unwritten" ]
}
