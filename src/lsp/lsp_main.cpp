#include "lsp/stream_loop.h"

#include <cstdio>
#include <string_view>

#include <unistd.h>

namespace {

constexpr char helpText[] =
    "Usage: mqkit-lsp\n"
    "A language server for task files. An editor starts it and speaks the Language Server\n"
    "Protocol over its standard streams. Arguments other than -h and --help are passed over.\n";

} // namespace

int main(int argc, char** argv) {
    const std::string_view word = argc == 2 ? argv[1] : "";
    if (word == "-h" || word == "--help") {
        return std::fputs(helpText, stdout) < 0 || std::fflush(stdout) != 0 ? 1 : 0;
    }
    return morquill::lsp::serve(STDIN_FILENO, STDOUT_FILENO);
}
