# Functions for the transcripts of mqkit-lsp: what a client sends, and what comes back, one message a line.

frame() { # <body>: the message in its frame
    local LC_ALL=C
    printf 'Content-Length: %d\r\n\r\n%s' "${#1}" "$1"
}

request() { # <id> <method> [<params>]
    frame "{\"jsonrpc\":\"2.0\",\"id\":$1,\"method\":\"$2\",\"params\":${3:-null}}"
}

notify() { # <method> [<params>]
    frame "{\"jsonrpc\":\"2.0\",\"method\":\"$1\",\"params\":${2:-null}}"
}

begin() { # [<capabilities>]
    request 1 initialize "{\"capabilities\":${1:-{\}}}"
    notify initialized '{}'
}

finish() {
    request 99 shutdown
    notify exit
}

open_text() { # <uri> <text as the inside of a JSON string>
    notify textDocument/didOpen \
        "{\"textDocument\":{\"uri\":\"$1\",\"languageId\":\"mq\",\"version\":1,\"text\":\"$2\"}}"
}

serve() { # answers of the server to standard input, one body a line, without those of initialize and shutdown
    "$MQKIT_LSP" | bodies
}

bodies() {
    LC_ALL=C sed 's/Content-Length: [0-9]*\r$//; /^\r$/d' |
        LC_ALL=C sed 's/}Content-Length: [0-9]*$/}/' | grep -v -e '^$' -e '"serverInfo"' -e '"id":99,'
}

answered() { # <id> <file>: waits until the server, which writes to the file, has answered
    for _ in {1..1000}; do
        ! grep -q "\"id\":$1," "$2" || return 0
        sleep 0.02
    done
    return 1
}
