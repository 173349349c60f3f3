# explain: the text and the JSON view, whole, and every refusal.
load expect

setup() {
    setup_plain
    cat >t.mq <<'MQ'
$opt
  %program xtb
  %args "--gfn 2"
  %control
    guess old
    guess_converter mwfn
    finalgeom "last one.xyz"
    alert no
    localfirst
$"two words"
  %source opt # comment
  %when completed opt
    {{ opt.energy }} < -1 and defined "x"
$slots
  %source
    geom opt
    geom.b xyz=b.xyz frame=2
MQ
}

# bare <message> <arguments of explain>...: the message without a prefix, status 1.
bare() { expect 1 "" "$1"$'\n' explain "${@:2}"; }

@test "the text view shows every task with its settings, conditions and directives" {
    expect 0 "$(cat <<'TEXT'
file: ./t.mq
dsl_version: <missing>
task_view: source
task_count: 3
expanded_task_count: 3

task: opt
  block_span: ./t.mq:1:1-1:5
  program: xtb
  source: 
  dependencies: []
  use_guess: true
  alert: false
  localfirst: true
  finalgeom: last one.xyz
  guess_source: old
  guess_converter: multiwfn
  directives:
    - %program xtb    [./t.mq:2:3-2:15]
    - %args "--gfn 2"    [./t.mq:3:3-3:18]
    - %control    [./t.mq:4:3-4:11]

task: two words
  block_span: ./t.mq:10:1-10:13
  program: gaussian
  source: opt
  dependencies: [opt]
  use_guess: false
  alert: true
  localfirst: false
  when_conditions:
    - completed opt    [./t.mq:12:3-12:22]
    - {{ opt.energy }} < -1 and defined "x"    [./t.mq:13:5-13:42]
  directives:
    - %source opt    [./t.mq:11:3-11:24]
    - %when completed opt    [./t.mq:12:3-12:22]

task: slots
  block_span: ./t.mq:14:1-14:7
  program: gaussian
  source:
    geom opt
    geom.b xyz=b.xyz frame=2
  dependencies: []
  use_guess: false
  alert: true
  localfirst: false
  directives:
    - %source    [./t.mq:15:3-15:10]
TEXT
)"$'\n' "" explain ./t.mq
}

@test "the JSON view has every key, in order" {
    sed -i '/^\$slots/,$d' t.mq
    printf '$x\n\n\n\n$"two words"\n' >>t.mq
    expect 0 "$(cat <<'TEXT'
{
  "file": "t.mq",
  "dsl_version": "",
  "task_view": "expanded",
  "task_count": 2,
  "expanded_task_count": 4,
  "tasks": [
    {
      "name": "two words",
      "block_span": "t.mq:10:1-10:13",
      "program": "gaussian",
      "source": "opt",
      "dependencies": ["opt"],
      "use_guess": false,
      "alert": true,
      "localfirst": false,
      "finalgeom": "",
      "guess_source_task": "",
      "guess_converter": "",
      "template_task_name": "two words",
      "matrix_variant_key": "",
      "when_conditions": [{"text": "completed opt", "span": "t.mq:12:3-12:22"}, {"text": "{{ opt.energy }} < -1 and defined \"x\"", "span": "t.mq:13:5-13:42"}],
      "directives": [{"name": "source", "argument": "opt", "span": "t.mq:11:3-11:24"}, {"name": "when", "argument": "completed opt", "span": "t.mq:12:3-12:22"}]
    },
    {
      "name": "two words",
      "block_span": "t.mq:18:1-18:13",
      "program": "gaussian",
      "source": "",
      "dependencies": [],
      "use_guess": false,
      "alert": true,
      "localfirst": false,
      "finalgeom": "",
      "guess_source_task": "",
      "guess_converter": "",
      "template_task_name": "two words",
      "matrix_variant_key": "",
      "when_conditions": [],
      "directives": []
    }
  ]
}
TEXT
)"$'\n' "" explain --format json --task "two words" --expanded t.mq
}

@test "a structured source is one JSON string with line feeds, a list is one line" {
    "$MQKIT" explain t.mq --task slots --format json >out
    grep -qxF '      "source": "geom opt\ngeom.b xyz=b.xyz frame=2",' out
    grep -qxF '      "directives": [{"name": "source", "argument": "", "span": "t.mq:15:3-15:10"}]' out
}

@test "a file without tasks" {
    printf '# nothing\n' >t.mq
    expect 0 $'file: t.mq\ndsl_version: <missing>\ntask_view: source\ntask_count: 0\nexpanded_task_count: 0\n\n' "" explain t.mq
    expect 0 "$(cat <<'TEXT'
{
  "file": "t.mq",
  "dsl_version": "",
  "task_view": "source",
  "task_count": 0,
  "expanded_task_count": 0,
  "tasks": [
  ]
}
TEXT
)"$'\n' "" explain t.mq --format json
}

@test "control bytes and quotes are escaped in JSON" {
    printf '$"a\001\tb"\n%%keywords "x\\y"\n' >t.mq
    "$MQKIT" explain --format json t.mq >out
    grep -qxF '      "name": "a\u0001\tb",' out
    grep -qF '"argument": "\"x\\y\""' out
}

@test "refusals, one line each" {
    bare "explain expects a <task.mq> path"
    bare "--task expects a value" t.mq --task
    bare "--format expects a value" t.mq --format
    bare "unsupported explain format: yaml" --format yaml missing.mq
    bare "unsupported explain format: JSON" --format JSON
    bare "unknown explain option: -x" t.mq -x
    bare "unexpected extra argument: b" t.mq b
    bare "unexpected extra argument: " t.mq ""
    bare "task not found in explain view: Opt" t.mq --task Opt
    bare "could not open file: missing.mq" missing.mq
    printf '$a\n%%foo\n' >t.mq
    bare "t.mq:2:1-2:5: error: task 'a' contains unknown directive '%foo'" t.mq
}

@test "help, asked for or for want of a path" {
    local help="Usage:
  mqkit explain <task.mq> [--task <name>] [--format text|json] [--expanded]

Options:
  --task <name>        explain only one task block
  --format <fmt>       text (default) or json
  --expanded           explain matrix-expanded task names
"
    expect 0 "$help" "" help explain
    expect 0 "$help" "" explain -h
    expect 0 "$help" "" explain t.mq -h --nonsense
    expect 0 "$help" "" explain --expanded
    expect 0 "$help" "" explain ""
}
