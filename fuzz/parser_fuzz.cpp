// Any bytes as a task file: what is read holds the laws of documents in both views.

#include "document_law.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    using namespace morquill;
    taskdsl::TaskDocument document;
    try {
        document = taskdsl::TaskParser({.legacyMultiSource = true}).parseText(fuzz::textOf(data, size), "");
    } catch (const taskdsl::DiagnosticError&) {
        return 0;
    }
    fuzz::holdPrintedLaw(document);
    return 0;
}
