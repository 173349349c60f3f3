#include "lsp/help_page.h"
#include "support/file.h"

#include <cstdio>

/// Writes docs/words.md; the one argument is its path.
int main(int argc, char** argv) {
    if (argc != 2 || !morquill::writeTextFile(argv[1], morquill::lsp::renderHelpPage())) {
        std::fputs("usage: mqkit_words_doc <path of words.md>\n", stderr);
        return 1;
    }
    return 0;
}
