#!/usr/bin/env bats
# One transcript per feature of mqkit-lsp, through the real program.

bats_require_minimum_version 1.5.0

setup() {
    load transcript
    cd "$BATS_TEST_TMPDIR"
    text='$opt\n  %keywords hf\n$freq\n  %source opt\n  %keywords hf\n'
}

ask() { # <method> <params>: the answer to one request about the text
    {
        begin '{"textDocument":{"diagnostic":{}}}'
        open_text untitled:1 "$text"
        request 2 "$1" "$2"
        finish
    } | serve
}

at() { # <line> <character>
    echo "{\"textDocument\":{\"uri\":\"untitled:1\"},\"position\":{\"line\":$1,\"character\":$2}"
}
range() { # <line> <character> <line> <character>
    echo "{\"end\":{\"character\":$4,\"line\":$3},\"start\":{\"character\":$2,\"line\":$1}}"
}
answer() { # <result>
    echo "{\"id\":2,\"jsonrpc\":\"2.0\",\"result\":$1}"
}

@test "diagnostics are pushed when typing rests, and taken back on close" {
    {
        begin
        open_text untitled:1 '$opt\n'
        sleep 0.3
        notify textDocument/didClose '{"textDocument":{"uri":"untitled:1"}}'
        finish
    } | serve >out
    diff out - <<END
{"jsonrpc":"2.0","method":"textDocument/publishDiagnostics","params":{"diagnostics":[{"code":"missing-keywords","message":"keywords are not set","range":$(range 0 0 0 4),"severity":1,"source":"mqkit"}],"uri":"untitled:1","version":1}}
{"jsonrpc":"2.0","method":"textDocument/publishDiagnostics","params":{"diagnostics":[],"uri":"untitled:1"}}
END
}

@test "diagnostics are pulled" {
    text='$opt\n'
    ask textDocument/diagnostic '{"textDocument":{"uri":"untitled:1"}}' >out
    diff out <(answer "{\"items\":[{\"code\":\"missing-keywords\",\"message\":\"keywords are not set\",\"range\":$(range 0 0 0 4),\"severity\":1,\"source\":\"mqkit\"}],\"kind\":\"full\"}")
}

@test "definition, references, highlight" {
    ask textDocument/definition "$(at 3 11)}" >out
    diff out <(answer "[{\"range\":$(range 0 1 0 4),\"uri\":\"untitled:1\"}]")
    ask textDocument/references "$(at 0 1),\"context\":{\"includeDeclaration\":false}}" >out
    diff out <(answer "[{\"range\":$(range 3 10 3 13),\"uri\":\"untitled:1\"}]")
    ask textDocument/documentHighlight "$(at 0 1)}" >out
    diff out <(answer "[{\"kind\":3,\"range\":$(range 0 1 0 4)},{\"kind\":2,\"range\":$(range 3 10 3 13)}]")
}

@test "rename" {
    ask textDocument/prepareRename "$(at 3 11)}" >out
    diff out <(answer "{\"placeholder\":\"opt\",\"range\":$(range 3 10 3 13)}")
    ask textDocument/rename "$(at 3 11),\"newName\":\"min\"}" >out
    diff out <(answer "{\"changes\":{\"untitled:1\":[{\"newText\":\"min\",\"range\":$(range 0 1 0 4)},{\"newText\":\"min\",\"range\":$(range 3 10 3 13)}]}}")
    ask textDocument/rename "$(at 3 11),\"newName\":\"freq\"}" >out
    diff out - <<'END'
{"error":{"code":-32803,"message":"there is a task called 'freq' already"},"id":2,"jsonrpc":"2.0"}
END
}

@test "formatting" {
    ask textDocument/formatting '{"textDocument":{"uri":"untitled:1"}}' >out
    diff out <(answer "[{\"newText\":\"dsl_version: 2\\n\\n\",\"range\":$(range 0 0 0 0)},{\"newText\":\"  %source origin\\n\",\"range\":$(range 1 0 1 0)},{\"newText\":\"\\n\",\"range\":$(range 2 0 2 0)}]")
}

edited_text() { # <file> <answer>: the text of the file after the edits of the answer, which are of whole lines
    jq -rj --rawfile text "$1" '
        reduce (.result | reverse[]) as $edit ([$text | scan("[^\n]*\n|[^\n]+")];
            if $edit.range.start.character + $edit.range.end.character > 0 then error("an edit within a line")
            else .[:$edit.range.start.line] + [$edit.newText] + .[$edit.range.end.line:] end)
        | add // ""' "$2"
}

@test "formatting is what mqkit fmt --in-place writes, or is refused for a loss or where fmt fails" {
    local formatted=0 lossy=0 file
    cp -r "$MQKIT_SOURCE/examples" .
    for file in "$PWD"/examples/*/*.mq; do
        # Without comments, which formatting does not lose, and with tasks in a layout that is not canonical.
        sed -i -E '/^ *#/d; s/[ \t]+#.*$//; /^\$/,$ s/^    /      /' "$file"
        {
            begin
            open_text "file://$file" "$(jq -Rs . "$file" | sed 's/^"//; s/"$//')"
            request 2 textDocument/formatting "{\"textDocument\":{\"uri\":\"file://$file\"}}"
            finish
        } | serve | grep '"id":2,' >answer
        if ! grep -q '"error"' answer; then
            edited_text "$file" answer >edited
            "$MQKIT" fmt "$file" --in-place >note
            diff edited "$file"
            formatted=$((formatted + 1))
        elif jq -r .error.message answer | grep '^formatting would lose: '; then
            lossy=$((lossy + 1))
        else
            echo "$file: $(jq -r .error.message answer)"
            run ! "$MQKIT" fmt "$file" --in-place
        fi
    done
    echo "$formatted formatted, $lossy with a loss"
    [ "$formatted" -ge 20 ] && [ "$lossy" -ge 4 ]
}

@test "symbols" {
    ask textDocument/documentSymbol '{"textDocument":{"uri":"untitled:1"}}' >out
    symbol() { # <name> <kind> <range> [<container>]
        echo "{${4:+\"containerName\":\"$4\",}\"kind\":$2,\"location\":{\"range\":$3,\"uri\":\"untitled:1\"},\"name\":\"$1\"}"
    }
    diff out <(answer "[$(symbol opt 5 "$(range 0 0 1 14)"),$(symbol %keywords 7 "$(range 1 0 1 14)" opt),$(
        symbol freq 5 "$(range 2 0 4 14)"),$(symbol %source 7 "$(range 3 0 3 13)" freq),$(
        symbol %keywords 7 "$(range 4 0 4 14)" freq)]")
}

@test "symbols of the folder" {
    mkdir -p study/Results
    printf '$opt\n$freq\n' >study/a.mq
    printf '$opt_b\n' >study/b.mq
    printf '$opt_c\n' >study/Results/c.mq
    {
        request 1 initialize "{\"capabilities\":{},\"rootUri\":\"file://$PWD/study\"}"
        notify initialized '{}'
        sleep 1 # the folder is looked through while nothing is asked
        request 2 workspace/symbol '{"query":"OPT"}'
        finish
    } | serve >out
    diff out <(answer "[{\"containerName\":\"a.mq\",\"kind\":5,\"location\":{\"range\":$(range 0 1 0 4),\"uri\":\"file://$PWD/study/a.mq\"},\"name\":\"opt\"},{\"containerName\":\"b.mq\",\"kind\":5,\"location\":{\"range\":$(range 0 1 0 6),\"uri\":\"file://$PWD/study/b.mq\"},\"name\":\"opt_b\"}]")
}

@test "folding" {
    ask textDocument/foldingRange '{"textDocument":{"uri":"untitled:1"}}' >out
    diff out <(answer '[{"endLine":1,"startLine":0},{"endLine":4,"startLine":2}]')
}

selection() { # <range>...: each in the next one
    local first=$1
    shift
    echo "{${1:+\"parent\":$(selection "$@"),}\"range\":$first}"
}

@test "a selection grows from the name to the line, the task and the text" {
    ask textDocument/selectionRange '{"textDocument":{"uri":"untitled:1"},"positions":[{"line":3,"character":11}]}' >out
    diff out <(answer "[$(selection "$(range 3 10 3 13)" "$(range 3 2 3 13)" "$(range 3 0 3 13)" "$(range 2 0 4 14)" "$(range 0 0 5 0)")]")
}

@test "links" {
    text='&INCLUDE \"b c.mq\"\n&INCLUDE gone.mq\n$a\n  %source xyz=mol.xyz\n'
    touch 'b c.mq' mol.xyz
    {
        begin
        open_text "file://$PWD/a.mq" "$text"
        request 2 textDocument/documentLink "{\"textDocument\":{\"uri\":\"file://$PWD/a.mq\"}}"
        finish
    } | serve | grep '"id":2,' >out
    diff out <(answer "[{\"range\":$(range 0 10 0 16),\"target\":\"file://$PWD/b%20c.mq\"},{\"range\":$(range 3 14 3 21),\"target\":\"file://$PWD/mol.xyz\"}]")
}

@test "hover" {
    hovered() { # <text as the inside of a JSON string> <range>
        answer "{\"contents\":{\"kind\":\"markdown\",\"value\":\"$1\"},\"range\":$2}"
    }
    ask textDocument/hover "$(at 1 4)}" >out
    diff out <(hovered '`%keywords <text> | << EOF`\n\nThe route or keyword line of the program; the last one counts.' "$(range 1 3 1 11)")
    ask textDocument/hover "$(at 3 11)}" >out
    diff out <(hovered '````mq\n$opt\n  %source origin\n  %keywords hf\n````' "$(range 3 10 3 13)")
    ask textDocument/hover "$(at 1 13)}" >out
    diff out <(answer null)
}

@test "completion" {
    text='$opt\n  %keywords hf\n$freq\n  %source o\n  %keywords hf\n'
    item() { # <label> <kind> <detail> <documentation>
        echo "{${3:+\"detail\":\"$3\",}${4:+\"documentation\":\"$4\",}\"kind\":$2,\"label\":\"$1\",\"textEdit\":{\"newText\":\"$1\",\"range\":$(range 3 10 3 11)}}"
    }
    ask textDocument/completion "$(at 3 11)}" >out
    diff out <(answer "{\"isIncomplete\":false,\"items\":[$(
        item origin 14 "" "The molecule's own input, the source unless another is written."),$(
        item restart 14 "" "The task's own restart data."),$(
        item xyz 14 "xyz=<file> [frame=<n>]" "A frame of a file, counted from 1."),$(
        item opt 7 task "")]}")
}

@test "completion of geometries" {
    touch mol.xyz mol.txt
    {
        begin
        open_text "file://$PWD/a.mq" '$a\n  %source xyz=m\n'
        request 2 textDocument/completion "{\"textDocument\":{\"uri\":\"file://$PWD/a.mq\"},\"position\":{\"line\":1,\"character\":15}}"
        finish
    } | serve | grep '"id":2,' >out
    diff out <(answer "{\"isIncomplete\":false,\"items\":[{\"kind\":17,\"label\":\"mol.xyz\",\"textEdit\":{\"newText\":\"mol.xyz\",\"range\":$(range 1 14 1 15)}}]}")
}

@test "signature help" {
    text='@derive d\n  let g = convert(energy(a), \n@end\n'
    ask textDocument/signatureHelp "$(at 1 29)}" >out
    diff out <(answer "{\"activeParameter\":1,\"activeSignature\":0,\"signatures\":[{\"documentation\":\"The value in another unit.\",\"label\":\"convert(value, unit)\",\"parameters\":[{\"label\":\"value\"},{\"label\":\"unit\"}]}]}")
}

@test "inlay hints count variants" {
    text='matrix:\n  f: a, b\n  g: c, d\n$opt\n  %keywords [f]/[g]\n'
    ask textDocument/inlayHint "{\"textDocument\":{\"uri\":\"untitled:1\"},\"range\":$(range 0 0 9 0)}" >out
    diff out <(answer '[{"label":"4 variants","paddingLeft":true,"position":{"character":4,"line":3}}]')
}

@test "code lenses name the users of a task" {
    ask textDocument/codeLens '{"textDocument":{"uri":"untitled:1"}}' >out
    diff out <(answer "[{\"command\":{\"command\":\"\",\"title\":\"used by freq\"},\"range\":$(range 0 1 0 4)}]")
}

acted() { # <only>: the actions over the whole text
    ask textDocument/codeAction "{\"textDocument\":{\"uri\":\"untitled:1\"},\"range\":$(range 0 0 9 0),\"context\":{\"diagnostics\":[],\"only\":[\"$1\"]}}"
}

@test "quick fixes and source.fixAll" {
    text='$a\n  %program xtb\n  %keywords --opt\n$b\n  %source aa\n  %keywords hf\n'
    local older name
    older="{\"changes\":{\"untitled:1\":[{\"newText\":\"args\",\"range\":$(range 2 3 2 11)}]}}"
    name="{\"changes\":{\"untitled:1\":[{\"newText\":\"a\",\"range\":$(range 4 10 4 12)}]}}"
    acted quickfix >out
    diff out <(answer "[{\"edit\":$older,\"isPreferred\":true,\"kind\":\"quickfix\",\"title\":\"Replace with 'args'\"},{\"edit\":$name,\"isPreferred\":false,\"kind\":\"quickfix\",\"title\":\"Replace with 'a'\"}]")
    acted source.fixAll >out
    diff out <(answer "[{\"edit\":$older,\"kind\":\"source.fixAll\",\"title\":\"Write all older forms in their modern form\"}]")
}

@test "formatting of a range moves blanks alone" {
    text='$opt # c\n      %keywords   hf\n\n\n\n$freq\n%source opt\n'
    ask textDocument/rangeFormatting "{\"textDocument\":{\"uri\":\"untitled:1\"},\"range\":$(range 0 0 5 0)}" >out
    printf '%b' "$text" >before
    edited_text before out >edited
    diff edited - <<'END'
$opt # c
  %keywords   hf

$freq
%source opt
END
}

@test "semantic tokens" {
    ask textDocument/semanticTokens/full '{"textDocument":{"uri":"untitled:1"}}' >out
    diff out <(answer '{"data":[0,1,3,0,1,1,3,8,8,0,0,9,2,10,0,1,1,4,0,1,1,3,6,8,0,0,7,3,0,0,1,3,8,8,0,0,9,2,10,0],"resultId":"1"}')
}

@test "semantic tokens of a range, and as a difference" {
    ask textDocument/semanticTokens/range "{\"textDocument\":{\"uri\":\"untitled:1\"},\"range\":$(range 2 0 3 0)}" >out
    diff out <(answer '{"data":[2,1,4,0,1]}')
    : >raw
    {
        begin '{"textDocument":{"diagnostic":{}}}'
        open_text untitled:1 "$text"
        request 3 textDocument/semanticTokens/full '{"textDocument":{"uri":"untitled:1"}}'
        answered 3 raw
        notify textDocument/didChange "{\"textDocument\":{\"uri\":\"untitled:1\",\"version\":2},\"contentChanges\":[{\"range\":$(range 5 0 5 0),\"text\":\"\$c\\n\"}]}"
        request 2 textDocument/semanticTokens/full/delta '{"textDocument":{"uri":"untitled:1"},"previousResultId":"1"}'
        finish
    } | "$MQKIT_LSP" >raw
    bodies <raw | grep '"id":2,' >out
    diff out <(answer '{"edits":[{"data":[1,1,1,0,1],"deleteCount":0,"start":40}],"resultId":"2"}')
}
