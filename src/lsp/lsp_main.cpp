#include "lsp/stream_loop.h"

#include <unistd.h>

int main() {
    return morquill::lsp::serve(STDIN_FILENO, STDOUT_FILENO);
}
