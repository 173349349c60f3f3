#include "catalog/property_document.h"
#include "support/file.h"

#include <cstdio>

/// Writes docs/properties.md; the one argument is its path.
int main(int argc, char** argv) {
    if (argc != 2 || !morquill::writeTextFile(argv[1], morquill::renderPropertyDocument())) {
        std::fputs("usage: mqkit_properties_doc <path of properties.md>\n", stderr);
        return 1;
    }
    return 0;
}
