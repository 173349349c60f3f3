# Plots as fmt writes them and lint reports them: whole output, and what is on disk.

bats_require_minimum_version 1.5.0
load expect

setup() {
    setup_plain
}

@test "what would be misread is quoted or put in parentheses, and fmt in place keeps it" {
    cat >a.mq <<'MQ'
$opt
  %keywords hf
@plot convergence c
  from task opt
  x (label)
  y 2*log(k)
  series s = (unit) + (log)
  y e unit "arb. units"
  y -log(k) unit km/mol
  threshold (value) value 1 unit "a b"
@end
@plot barrier b
  point "A + B" value 0
  point "#" value log(k)
  relative to "A + B"
@end
MQ
    local expected='dsl_version: 2

$opt
  %source origin
  %keywords hf

@plot convergence c
  from task opt
  x (label)
  y (2 * log(k))
  series s = (unit + log)
  y e unit "arb. units"
  y -log(k) unit km/mol
  threshold (value) value 1 unit "a b"
  output "Results/Plots/c.png"
  format png
@end

@plot barrier b
  point "A + B" value 0
  point "#" value log(k)
  relative to "A + B"
  unit kcal/mol
  output "Results/Plots/b.png"
  format png
@end
'
    expect 0 "$expected" "" fmt a.mq
    "$MQKIT" fmt --in-place a.mq
    printf '%s' "$expected" | diff - a.mq
    "$MQKIT" fmt --in-place a.mq
    printf '%s' "$expected" | diff - a.mq
}

@test "roots may have a plus sign" {
    printf '@plot excited e\nfrom task t\nroots +4 2\narrow a root +1 to b +2\n@end\n' >a.mq
    expect 0 'dsl_version: 2

@plot excited e
  from task t
  roots 4 2
  arrow from a root 1 to b root 2 style solid
  unit eV
  output "Results/Plots/e.png"
  format png
@end
' "" fmt a.mq
}

@test "a finding about an arrow shows the line of the arrow" {
    printf '@plot excited e\n  column a\n  arrow a 1 to b 1\n@end\n' >a.mq
    expect 1 "" "[mqkit][ERROR] a.mq:3:3-3:18: error: plot 'e': excited-state arrow references unknown column 'b'
" fmt a.mq
}

@test "a stray character is named whole, so that JSON stays UTF-8" {
    printf '@plot bar b\n  from project\n  x ΔG\n  y a\n@end\n' >a.mq
    expect 1 "" "[mqkit][ERROR] a.mq:3:3-3:7: error: unexpected character 'Δ' in plot expression
" fmt a.mq
    run -1 "$MQKIT" lint --format json a.mq
    grep -F "unexpected character 'Δ' in plot expression" <<<"$output"
    iconv -f UTF-8 -t UTF-8 <<<"$output" >/dev/null
}

@test "what a plot cannot say again is a warning, and the file is written all the same" {
    printf "@plot bar 'my plot'\n  from project\n  x a\n  y a + (b + c)\n@end\n" >a.mq
    run --separate-stderr "$MQKIT" fmt a.mq
    [ "$status" -eq 0 ]
    [ "$output" = "dsl_version: 2

@plot bar my plot
  from project
  x a
  y a + b + c
  style boxes
  output \"Results/Plots/my plot.png\"
  format png
@end" ]
    [ "$stderr" = "[WARNING] plot 'my plot' does not read back: the name holds a blank; parentheses on the right of '+' are not printed" ]
}
