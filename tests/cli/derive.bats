# Derives: what fmt prints of them reads back.

bats_require_minimum_version 1.5.0
load expect

setup() {
    setup_plain
}

@test "names that are words of the language are printed in parentheses where they would be misread" {
    cat >words.mq <<'MQ'
@derive words
  formula shifted(x) = x + 1
  require (else) else "no else"
  emit e = (unit)
  emit f = 2 * (unit(x)) unit m
  report words = (else) + (unit)
  emit value e to kv out.kv
@end
@derive rows
  formula shifted(x) = x + 1
  from tasks()
  where (in) == 1 or x in [or, and]
  where (matches) matches "x"
  group by (as) as k, f(as)+(by) as l
  aggregate n = shifted(energy), m = sum(energy)
  sort (by), by(x) desc
  emit table t
@end
@derive atoms
  from atoms(opt) as a
  select as = (as)
  emit kv "p" from (as) as q
  emit artifact "p" from (as)
@end
MQ
    cat >expected <<'MQ'
dsl_version: 2

@derive words
  require (else) else "no else"
  emit e = (unit)
  emit f = (2 * unit(x)) unit "m"
  report "words" = else + unit
  emit value e to kv "out.kv"
@end

@derive rows
  from tasks("*")
  where (in) == 1 or x in [or, and]
  where (matches) matches "x"
  group by (as) as k, f(as) + by as l
  aggregate n = (energy + 1)
  aggregate m = sum(energy)
  sort (by) asc
  sort by(x) desc
  emit table t
@end

@derive atoms
  from atoms(opt) as a
  select as = as
  emit kv "p" from (as) as q
  emit artifact "p" from (as) as as
@end
MQ
    run -0 "$MQKIT" fmt words.mq
    diff - expected <<<"$output"
    "$MQKIT" fmt words.mq --in-place
    run -0 "$MQKIT" fmt words.mq
    diff - expected <<<"$output"
}

@test "a call inside a string makes no aggregate, and a table of a derive goes by identifiers" {
    printf '@derive d\n  from tasks()\n  group by a\n  aggregate n = "f(x)"\n  emit table t\n@end\n' >string.mq
    run -1 "$MQKIT" fmt string.mq
    [ "$output" = "[mqkit][ERROR] string.mq:4:3-4:22: error: aggregate entry must be 'name = function(expression)'" ]
    printf '@derive d\n  from derived(d.t.u)\n  emit table t\n@end\n' >table.mq
    run -1 "$MQKIT" fmt table.mq
    [ "$output" = "[mqkit][ERROR] table.mq:2:3-2:21: error: derived() table name must be an identifier" ]
}

@test "what a derive cannot say again is a warning, and the file is written all the same" {
    printf '@derive d\n  require not (a or b) else "m"\n  emit e = 1\n@end\n' >a.mq
    run --separate-stderr "$MQKIT" fmt a.mq
    [ "$status" -eq 0 ]
    [ "$output" = 'dsl_version: 2

@derive d
  require not a or b else "m"
  emit e = 1
@end' ]
    [ "$stderr" = "[WARNING] derive 'd' does not read back: 'not' before a group prints without parentheses" ]
}
