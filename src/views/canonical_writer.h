#pragma once

#include "taskdsl/base/diagnostic.h"
#include "taskdsl/task/task_document.h"

#include <string>
#include <string_view>

namespace morquill::views {

/// Which form of a document is printed.
enum class CanonicalView {
    sourceView = 0,         ///< the declared form: `matrix:` and the tasks as written
    matrixExpandedView = 1, ///< no `matrix:`, one block per matrix variant
};

/// The canonical DSL v2 text of a document: one order, one indentation, one quoting rule. A pure function;
/// what it prints reads back to the same document, or `warnings` gets a line that says what does not and why.
/// Nothing is checked when nobody listens.
[[nodiscard]] std::string renderCanonicalDocument(const taskdsl::TaskDocument& document, CanonicalView view,
                                                  const taskdsl::WarningSink& warnings = {});

/// The line of a setting and of a define, without line feed.
[[nodiscard]] std::string canonicalSetting(std::string_view key, std::string_view value);
[[nodiscard]] std::string canonicalDefine(std::string_view key, std::string_view value);

/// True when the axes of the document are printed as a list: one of them has names or follows another.
[[nodiscard]] bool needsLongMatrix(const taskdsl::TaskDocument& document) noexcept;

/// The lines of a matrix axis, without the last line feed.
[[nodiscard]] std::string canonicalAxis(const taskdsl::MatrixAxis& axis, bool isLong);

} // namespace morquill::views
