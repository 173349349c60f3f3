#pragma once

#include "taskdsl/task/task_document.h"

#include <string>

namespace morquill::views {

/// Which form of a document is printed.
enum class CanonicalView {
    sourceView = 0,         ///< the declared form: `matrix:` and the tasks as written
    matrixExpandedView = 1, ///< no `matrix:`, one block per matrix variant
};

/// The canonical DSL v2 text of a document: one order, one indentation, one quoting rule. A pure function;
/// what it prints reads back to the same tasks, and printing that gives the same text.
[[nodiscard]] std::string renderCanonicalDocument(const taskdsl::TaskDocument& document, CanonicalView view);

} // namespace morquill::views
