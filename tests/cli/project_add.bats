# `project add`: further cases for a project.
bats_require_minimum_version 1.5.0
load expect
load full_disk

setup() {
    setup_deep
    mkdir p
    cp "$MQKIT_SOURCE/examples/water-clusters/water-clusters.mq" p/demo.projmq
    cp "$MQKIT_SOURCE"/examples/water-clusters/more/*.xyz .
}

@test "two molecules become two cases, the second time they are there already" {
    expect_here 0 "" project add --path p water5.xyz ./water6.xyz <<END

[Project Add]
  project template: $root/p/demo.projmq
  case files      : water5.xyz ./water6.xyz
[mqkit] add case: water5 <- $root/water5.xyz
created task: water5 (symlinked to .projmq)
[mqkit] add case: water6 <- $root/water6.xyz
created task: water6 (symlinked to .projmq)

[mqkit] finished: added 2 case(s).
END
    diff - <(names_below p) <<END
demo.projmq
water5/
water5/water5.mq -> ../demo.projmq
water5/water5.xyz
water6/
water6/water6.mq -> ../demo.projmq
water6/water6.xyz
END
    expect_here 0 "" proj a p/demo.projmq water5.xyz water6.xyz <<END

[Project Add]
  project template: $root/p/demo.projmq
  case files      : water5.xyz water6.xyz
[mqkit][SKIP] case directory already exists: $root/p/water5
[mqkit][SKIP] case directory already exists: $root/p/water6

[mqkit] finished: added 0 case(s).
[mqkit] note: 2 case(s) already existed and were skipped.
END
}

@test "warnings and statuses of what cannot be added" {
    expect_here 2 "[mqkit][WARN] xyz file not found: $root/none.xyz
[mqkit][WARN] not an .xyz file: $root/p/demo.gjf
[mqkit][WARN] duplicate case name in arguments: water5
" project add --path p --dry-run none.xyz p/demo.gjf water5.xyz ../"${root##*/}"/water5.xyz <<END

[Project Add]
  project template: $root/p/demo.projmq
  case files      : none.xyz p/demo.gjf water5.xyz ../${root##*/}/water5.xyz  (dry-run)
[mqkit] add case: water5 <- $root/water5.xyz

[mqkit] finished: added 1 case(s).
[mqkit] note: 3 case(s) failed validation or creation.
END
    [ "$(names_below p)" = "demo.projmq" ]
}

@test "no project and no files are usage errors" {
    "$MQKIT" project help >help
    expect_here 1 "[mqkit][ERROR] no .projmq file was found in the current directory or enclosing project; use --path or <xxx.projmq>.
" project add water5.xyz <help
    expect_here 1 "[mqkit][ERROR] project add requires at least one .xyz file.
" project add --path p <help
    expect_here 1 "[mqkit][ERROR] project add requires at least one .xyz file.
" project add p <help
}

@test "a thousand molecules" {
    mkdir many
    for i in $(seq 1000); do : >"many/m$i.xyz"; done
    "$MQKIT" project add --path p many/*.xyz >out
    [ "$(tail -n 1 out)" = "[mqkit] finished: added 1000 case(s)." ]
    [ "$(ls p | wc -l)" -eq 1001 ]
    [ "$(readlink p/m1000/m1000.mq)" = "../demo.projmq" ]
}

@test "a geometry that is too large leaves no half case, and the next call makes it" {
    yes water | head -c 5000 >big.xyz
    opening="
[Project Add]
  project template: $root/p/demo.projmq
  case files      : big.xyz water5.xyz
[mqkit] add case: big <- $root/big.xyz"
    run --separate-stderr bash -c "ulimit -f 4; '$MQKIT' project add --path p big.xyz water5.xyz"
    [ "$status" -eq 2 ]
    [ "$output" = "$opening
[mqkit] add case: water5 <- $root/water5.xyz
created task: water5 (symlinked to .projmq)

[mqkit] finished: added 1 case(s).
[mqkit] note: 1 case(s) failed validation or creation." ]
    [ "$stderr" = "[ERROR] failed to create task big - File too large" ]
    [ ! -e p/big ]
    expect_here 0 "" project add --path p big.xyz water5.xyz <<END
$opening
created task: big (symlinked to .projmq)
[mqkit][SKIP] case directory already exists: $root/p/water5

[mqkit] finished: added 1 case(s).
[mqkit] note: 1 case(s) already existed and were skipped.
END
    cmp big.xyz p/big/big.xyz
}

@test "a full disk leaves no half case, and the next call makes it" {
    yes water | head -c 5000 >big.xyz
    full_disk "cp '$root/p/demo.projmq' .
fill
'$MQKIT' project add --path . '$root/big.xyz' >/dev/null 2>'$BATS_TEST_TMPDIR/err'
[ \$? -eq 2 ] && [ ! -e big ] || exit 1
rm filling
'$MQKIT' project add --path . '$root/big.xyz' && cmp '$root/big.xyz' big/big.xyz"
    [ "$(cat "$BATS_TEST_TMPDIR/err")" = "[ERROR] failed to create task big - No space left on device" ]
}
