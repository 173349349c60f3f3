// Bytes -> parse -> print -> parse: what is printed is the same document again, or the printer said what is
// not. Everything that is not a text the parser accepts must end in its own error.

#include "fixtures/comparable_document.h"

#include "taskdsl/parser/task_parser.h"
#include "views/canonical_writer.h"

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string>

namespace {

using namespace morquill;
using taskdsl::DiagnosticError;
using taskdsl::TaskDocument;

TaskDocument parse(const std::string& text, const taskdsl::ParserOptions& options = {}) {
    return taskdsl::TaskParser(options).parseText(text, "");
}

[[noreturn]] void fail(const char* fault, const std::string& text) {
    std::fprintf(stderr, "%s\n%s\n", fault, text.c_str());
    std::abort();
}

void holdLaw(const TaskDocument& document, views::CanonicalView view) {
    bool isTold = false;
    const std::string printed =
        renderCanonicalDocument(document, view, [&isTold](const std::string&) { isTold = true; });
    if (isTold) {
        return;
    }
    TaskDocument read;
    try {
        read = parse(printed);
    } catch (const DiagnosticError& error) {
        fail(error.what(), printed);
    }
    if (!(comparable(read, view) == comparable(document, view))) {
        fail("reads back as another document:", printed);
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    TaskDocument document;
    try {
        document = parse(std::string(reinterpret_cast<const char*>(data), size), {.legacyMultiSource = true});
    } catch (const DiagnosticError&) {
        return 0;
    }
    holdLaw(document, views::CanonicalView::sourceView);
    holdLaw(document, views::CanonicalView::matrixExpandedView);
    return 0;
}
