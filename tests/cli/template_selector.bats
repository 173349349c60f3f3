# The selector in a real terminal: what the user sees, the file that is written, and the terminal afterwards.
load expect

setup() {
    setup_plain
    export TMUX_TMPDIR="$BATS_TEST_TMPDIR" LC_ALL=C.UTF-8
    unset TMUX
    server=selector
    mkdir -p tpl/many
    printf 'autorun: false\n\n$opt\n  %%keywords "opt [func]/[basis]"\n' >tpl/opt.mq
    printf 'name: "my dft"\ndescription: "Hybrid"\nvariables:\n  func: PBE0\n  basis: "a:b"\n' >tpl/dft.yaml
    export MORQUILL_TEMPLATE_PATH=tpl
}

teardown() {
    tmux -L "$server" kill-server 2>/dev/null || true
}

# many <count>: that many further templates, t01, t02, ..., each in a category of its own so that they are sorted.
many() {
    local i
    for i in $(seq -w "$1"); do
        mkdir -p "tpl/many/c$i"
        printf '$t%s\n' "$i" >"tpl/many/c$i/t$i.mq"
    done
}

# start: the selector in a terminal of 100 columns and 50 rows; afterwards the status and two attributes.
start() {
    cat >run.sh <<'SCRIPT'
"$MQKIT" template interactive
status=$?
echo
echo "ended with $status"
stty -a | tr ' ;' '\n\n' | grep -x -e '-\?icanon' -e '-\?echo' | sort | tr '\n' ' '
echo "and done"
cat
SCRIPT
    tmux -u -L "$server" -f /dev/null new-session -d -x 100 -y 50 "bash run.sh"
    see "Available templates"
}

screen() { tmux -L "$server" capture-pane -p; }
keys() { tmux -L "$server" send-keys "$@"; }
cursor() { tmux -L "$server" display-message -p '#{cursor_flag}'; }

# see <text>: waits until the text is on the screen.
see() {
    local i
    for i in $(seq 200); do
        if screen | grep -qF -- "$1"; then
            return 0
        fi
        sleep 0.05
    done
    echo "never seen: $1" >&2
    screen >&2
    return 1
}

# shows: the whole screen, without the empty rows at its end, is standard input. Waits for it.
shows() {
    local i expected
    expected="$(cat)"
    for i in $(seq 100); do
        if [ "$(screen)" = "$expected" ]; then
            return 0
        fi
        sleep 0.05
    done
    diff <(echo "$expected") <(screen)
}

# shows_list: the same of the page of templates, whose title and controls never change.
shows_list() {
    { printf '=== Morquill interactive template selector ===\n\n'; cat; cat <<'TEXT'; } | shows

Controls:
  ↑/↓  Move cursor
  Space Select/unselect template
  p     Preview selected templates
  v     Edit variables
  t     Choose variable template
  Enter Generate task file
  q     Quit
TEXT
}

# ended <status>: the program is over, the terminal is as before and shows its cursor.
ended() {
    see "and done"
    screen | grep -qx "ended with $1"
    screen | grep -qx "echo icanon and done"
    [ "$(cursor)" -eq 1 ]
}

program() { pgrep -P "$(tmux -L "$server" display-message -p '#{pane_pid}')" mqkit; }

@test "start, move, tick, quit" {
    printf '$a\n' >tpl/many/a.mq
    start
    shows_list <<'TEXT'
Selected templates (0):
  (none)

Available templates (1/2):
→   opt (General) [variables: 2]
    a (many)
TEXT
    [ "$(cursor)" -eq 0 ]
    keys Down Space
    shows_list <<'TEXT'
Selected templates (1):
  ✓ a

Available templates (2/2):
    opt (General) [variables: 2]
→ ✓ a (many)
TEXT
    keys Up
    see "→   opt"
    keys q
    ended 0
}

@test "a long list scrolls under the cursor" {
    many 24
    start
    see "  ↓ more items below"
    keys Down Down Down Down Down Down Down Down Down Down
    keys j j j j j j j j j
    see "(20/25)"
    see "→   t19 (c19)"
    ! screen | grep -q "more items above"
    keys j
    see "(21/25)"
    see "→   t20 (c20)"
    see "  ↑ more items above"
    see "  ↓ more items below"
    ! screen | grep -q "opt (General)"
    keys j j j j j j
    see "(25/25)"
    see "→   t24 (c24)"
    ! screen | grep -q "more items below"
    keys Q
    ended 0
}

@test "from the list to the file: tick, variable template, preview, edit, generate" {
    start
    keys Space
    see "  ✓ opt"
    keys t
    shows <<'TEXT'
=== Variable template selection ===

Available variable templates (1/1):

→ my dft - Hybrid
    Variables: basis=a:b, func=PBE0

Controls:
  ↑/↓  Move cursor
  Enter Apply selected variable template
  Esc   Back to main screen
  q     Quit
TEXT
    keys Enter
    see "Available templates"
    keys p
    shows <<'TEXT'
=== Template preview ===

Selected: opt

Preview:
----------------------------------------
define:
  basis: "a:b"
  func: PBE0

autorun: true

$opt
  %keywords "opt [func]/[basis]"


----------------------------------------

Controls:
  Esc   Back to template selection
  v     Edit variables
  t     Choose variable template
  Enter Generate task file
  q     Quit
TEXT
    keys v
    see "        Variable index?:"
    [ "$(cursor)" -eq 1 ]
    keys 1 Enter
    see "input a new value:"
    keys "6-31G(d)" Enter
    see "[1] basis = 6-31G(d)"
    keys q Enter
    see "=== Template preview ==="
    [ "$(cursor)" -eq 0 ]
    keys Enter
    see "Output filename (default: generated_task.mq):"
    [ "$(cursor)" -eq 1 ]
    keys mine Enter
    shows <<'TEXT'
=== Generate task file ===

Output filename (default: generated_task.mq): mine

[mqkit] wrote task file: mine.mq

Variables:
  - basis: 6-31G(d)
  - func: PBE0

Press q to quit, or any other key to continue editing...
TEXT
    diff - mine.mq <<'TEXT'
define:
  basis: 6-31G(d)
  func: PBE0

autorun: true

$opt
  %keywords "opt [func]/[basis]"

TEXT
    keys x
    see "=== Template preview ==="
    keys Escape x
    see "  ✓ opt"
    keys Enter
    see "generated_task.mq):"
    keys Enter
    see "wrote task file: generated_task.mq"
    cmp mine.mq generated_task.mq
    keys q
    ended 0
    # Behind the last key the cursor is shown and not hidden any more.
    printf ' \r\nq' | "$MQKIT" template interactive >out
    [ "$(grep -o '25[lh]' out | tail -n 2 | tr '\n' ' ')" = "25h 25h " ]
}

@test "values can be loaded in the edit dialogue, whose end of input leaves only the dialogue" {
    start
    keys Space v
    see "Variable index?:"
    keys 9 Enter
    see "[mqkit] Invalid variable index"
    keys t Enter
    see "  [1] my dft (basis = a:b, func = PBE0)"
    keys 1 Enter
    see "[2] func = PBE0"
    keys C-d
    see "Available templates (1/1)"
    keys v
    see "[2] func = PBE0"
    keys C-d
    see "Available templates (1/1)"
    keys Enter
    see "generated_task.mq):"
    keys C-d
    see "Available templates (1/1)"
    [ ! -e generated_task.mq ]
    keys Space
    see "  (none)"
    keys v
    see "The selected templates have no required variables"
    keys x
    see "  (none)"
    keys Enter
    see "[mqkit][ERROR] no templates selected"
    keys q
    see "  (none)"
    keys q
    ended 0
}

@test "signals give the terminal back" {
    local signal
    for signal in INT TERM HUP QUIT USR1 ALRM XCPU RTMAX; do
        server="selector-$signal" # a server of its own: one that is being ended takes no new session
        start
        kill -"$signal" "$(program)"
        ended $((128 + $(kill -l "$signal")))
        tmux -L "$server" kill-server
    done
}

# shell: an interactive shell with job control and the program as its job 1. Its prompt stands alone, so that
# `see` finds what the program shows and not the command line.
shell() {
    cat >rc <<'RC'
PS1='ready> '
bind 'set enable-bracketed-paste off'
modes() { stty -a | tr ' ;' '\n\n' | grep -x -e '-\?icanon' -e '-\?echo' | sort | tr '\n' ' '; }
RC
    tmux -u -L "$server" -f /dev/null new-session -d -x 100 -y 50 "bash --rcfile rc -i"
    see "ready>"
    keys '"$MQKIT" template interactive' "$@" Enter
}

# prompted <text>: the shell has the terminal, with its modes and its cursor, and says <text>.
prompted() {
    see "$1"
    keys 'echo "$(modes)only"' Enter
    see "echo icanon only"
    [ "$(cursor)" -eq 1 ]
}

# stopped: the shell says so, at the next prompt after it happened.
stopped() {
    local i
    for i in $(seq 100); do
        if screen | grep -qF Stopped; then
            return 0
        fi
        keys Enter
        sleep 0.1
    done
    screen >&2
    return 1
}

# gone: the program has ended; whether the shell has taken note of it yet is the shell's business.
gone() {
    local i
    for i in $(seq 100); do
        [ -n "$(program)" ] || return 0
        [[ $(ps -o stat= -p "$(program)") == Z* ]] && return 0
        sleep 0.05
    done
    ps -o pid,stat,wchan,args -p "$(program)" >&2
    return 1
}

@test "the stop key gives the terminal to the shell, and fg draws at once" {
    shell
    see "Available templates"
    keys Space
    see "  ✓ opt"
    keys C-z
    prompted "Stopped"
    keys clear Enter
    see "ready>"
    ! screen | grep -q "✓ opt"
    keys fg Enter
    see "  ✓ opt"
    [ "$(screen | head -n 1)" = "=== Morquill interactive template selector ===" ]
    [ "$(cursor)" -eq 0 ]
    keys Space
    see "  (none)"
    keys q
    prompted "ready>"
    gone
}

@test "a dialogue is drawn again, too" {
    shell
    see "Available templates"
    keys Space v
    see "Variable index?:"
    keys 1 Enter
    see "input a new value:"
    keys C-z
    prompted "Stopped"
    keys clear Enter
    keys fg Enter
    see "input a new value:"
    [ "$(screen | head -n 1)" = "=== Edit variables ===" ]
    screen | grep -qx "        Variable index?: 1"
    [ "$(cursor)" -eq 1 ]
    keys PBE Enter
    see "[1] basis = PBE"
    keys q Enter
    see "Available templates"
    keys q
    prompted "ready>"
}

@test "a suspended program can be ended" {
    local signal
    for signal in TERM HUP INT QUIT USR1; do
        server="suspended-$signal"
        shell
        see "Available templates"
        keys C-z
        prompted "Stopped"
        keys clear Enter
        # The shell lets a job that it ends this way go on, so that the job hears of it.
        keys "kill -$signal %1; kill -CONT %1" Enter
        gone
        prompted "ready>"
        tmux -L "$server" kill-server
    done
}

@test "a program in the background can be ended" {
    shell
    see "Available templates"
    keys C-z
    prompted "Stopped"
    keys clear Enter
    keys bg Enter
    prompted "ready>"
    keys "kill %1" Enter
    keys "kill -CONT %1" Enter
    gone
    keys clear Enter
    keys '"$MQKIT" template interactive &' Enter
    stopped
    prompted "ready>"
    keys "kill %%" Enter
    keys "kill -CONT %%" Enter
    gone
    prompted "ready>"
    ! screen | grep -q "Available templates"
}

@test "started in the background, the program works once it is called to the front" {
    shell '&'
    stopped
    prompted "ready>"
    ! screen | grep -q "Available templates"
    keys clear Enter
    keys fg Enter
    see "Available templates"
    keys Space
    see "  ✓ opt"
    keys q
    prompted "ready>"
    gone
}

@test "a stop that cannot be caught leaves nothing behind in the end" {
    start
    kill -STOP "$(program)"
    kill -CONT "$(program)"
    see "Available templates"
    keys Space
    see "  ✓ opt"
    kill -TERM "$(program)"
    ended 143
}

@test "an interrupt in a dialogue gives the terminal back too" {
    start
    keys Space v
    see "Variable index?:"
    kill -INT "$(program)"
    ended 130
}

@test "without a terminal the keys are read plainly and the end of input is the end" {
    mkdir bin
    printf '#!/bin/sh\necho "<clear>"\n' >bin/clear
    chmod +x bin/clear
    printf ' \np.mq\nx' | PATH="$BATS_TEST_TMPDIR/bin:$PATH" timeout 10 "$MQKIT" template interactive >out 2>err
    [ ! -s err ]
    [ "$(grep -c '<clear>' out)" -eq 4 ]
    tail -c 6 out | cmp - <(printf '\033[?25h')
    head -c 6 out | cmp - <(printf '\033[?25l')
    [ "$(head -n 2 p.mq | tail -n 1)" = "  basis: " ]
    timeout 10 "$MQKIT" template interactive </dev/null >out
    tail -c 6 out | cmp - <(printf '\033[?25h')
}
