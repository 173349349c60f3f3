#!/usr/bin/env bats
# The life of mqkit-lsp as a client meets it: what goes in, what comes out, with which status it ends.

bats_require_minimum_version 1.5.0

setup() {
    load transcript
    cd "$BATS_TEST_TMPDIR"
}

@test "a session from initialize to exit" {
    { begin; finish; } >in
    run -0 "$MQKIT_LSP" <in
    [[ $output == *'"serverInfo":{"name":"mqkit-lsp",'* ]]
    [[ $output == *'{"id":99,"jsonrpc":"2.0","result":null}' ]]
}

@test "exit without shutdown, and the end of input without it, are failures" {
    { begin; notify exit; } >in
    run -1 "$MQKIT_LSP" <in
    begin >in
    run -1 "$MQKIT_LSP" <in
    { begin; request 2 shutdown; } >in
    run -0 "$MQKIT_LSP" <in
}

@test "faults of the stream are answered, and the next message is read" {
    {
        request 5 textDocument/hover '{}'
        printf 'nonsense\r\n\r\n'
        frame '{"jsonrpc":'
        frame '{"jsonrpc":"2.0","id":6}'
        begin
        request 7 nonsense
        notify '$/nonsense'
        finish
    } >in
    serve <in >out
    diff out - <<'END'
{"error":{"code":-32002,"message":"initialize comes first"},"id":5,"jsonrpc":"2.0"}
{"error":{"code":-32700,"message":"a header has no Content-Length"},"id":null,"jsonrpc":"2.0"}
{"error":{"code":-32700,"message":"a message is no JSON"},"id":null,"jsonrpc":"2.0"}
{"error":{"code":-32600,"message":"a message has no method"},"id":6,"jsonrpc":"2.0"}
{"error":{"code":-32601,"message":"unknown method: nonsense"},"id":7,"jsonrpc":"2.0"}
END
}

@test "it says nothing on standard error, and the words of some clients change nothing" {
    { begin; finish; } >in
    "$MQKIT_LSP" <in >out 2>err
    diff err /dev/null
    "$MQKIT_LSP" --stdio <in | diff - out
}

@test "-h and --help say what it is" {
    "$MQKIT_LSP" --help >out
    "$MQKIT_LSP" -h | diff out -
    diff out - <<'END'
Usage: mqkit-lsp
A language server for task files. An editor starts it and speaks the Language Server
Protocol over its standard streams. Arguments other than -h and --help are passed over.
END
    run -1 sh -c '"$MQKIT_LSP" --help >/dev/full'
}
