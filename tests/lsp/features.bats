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

@test "symbols, folding, selection" {
    ask textDocument/foldingRange '{"textDocument":{"uri":"untitled:1"}}' >out
    diff out <(answer '[{"endLine":1,"startLine":0},{"endLine":4,"startLine":2}]')
    ask textDocument/documentSymbol '{"textDocument":{"uri":"untitled:1"}}' >out
    [ "$(grep -o '"name":"[^"]*"' out | tr '\n' ' ')" = \
        '"name":"opt" "name":"%keywords" "name":"freq" "name":"%source" "name":"%keywords" ' ]
}

@test "semantic tokens" {
    ask textDocument/semanticTokens/full '{"textDocument":{"uri":"untitled:1"}}' >out
    diff out <(answer '{"data":[0,1,3,0,1,1,3,8,8,0,0,9,2,10,0,1,1,4,0,1,1,3,6,8,0,0,7,3,0,0,1,3,8,8,0,0,9,2,10,0],"resultId":"1"}')
}
