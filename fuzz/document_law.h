#pragma once

#include "fixtures/comparable_document.h"
#include "fuzz_input.h"
#include "taskdsl/base/diagnostic.h"
#include "taskdsl/parser/task_parser.h"
#include "views/canonical_writer.h"

#include <string>
#include <string_view>

/// The laws of every document, wherever it comes from.
namespace morquill::fuzz {

inline taskdsl::TaskDocument readAgain(const std::string& text) {
    try {
        return taskdsl::TaskParser().parseText(text, "");
    } catch (const taskdsl::DiagnosticError& error) {
        fail("what is printed reads: " + error.text(), text);
    }
}

/// What is printed reads back as the same document and prints the same again, or a warning says what does
/// not.
inline void holdPrintedLaw(const taskdsl::TaskDocument& document, views::CanonicalView view) {
    bool isTold = false;
    const auto note = [&isTold](const std::string&) { isTold = true; };
    const std::string printed = renderCanonicalDocument(document, view, note);
    if (isTold) {
        return;
    }
    const auto read = readAgain(printed);
    require(comparable(read, view) == comparable(document, view), "it reads back as the same document",
            printed);
    const std::string again = renderCanonicalDocument(read, view, note);
    if (again != printed || isTold) {
        fail("it prints the same again", printed + "--- then\n" + again);
    }
}

/// The law in both views: `fmt`, `migrate` and `expand` print one or the other.
inline void holdPrintedLaw(const taskdsl::TaskDocument& document) {
    holdPrintedLaw(document, views::CanonicalView::sourceView);
    holdPrintedLaw(document, views::CanonicalView::matrixExpandedView);
}

} // namespace morquill::fuzz
