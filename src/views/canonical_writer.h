#pragma once

#include "taskdsl/base/diagnostic.h"
#include "taskdsl/task/task_document.h"

#include <cstdint>
#include <string>
#include <string_view>

namespace morquill::views {

/// The form in which a document is printed.
enum class CanonicalView {
    sourceView = 0,         ///< the declared form: `matrix:` and the tasks as written
    matrixExpandedView = 1, ///< no `matrix:`, one block per matrix variant
};

/// Returns the canonical DSL v2 text of a document: one order, one indentation, one quoting rule. A pure
/// function: the text reads back as the same document, or `warnings` receives a line that says what does not
/// and why. With an empty sink, nothing is checked.
[[nodiscard]] std::string renderCanonicalDocument(const taskdsl::TaskDocument& document, CanonicalView view,
                                                  const taskdsl::WarningSink& warnings = {});

/// Returns the line of a setting, without line feed.
[[nodiscard]] std::string canonicalSetting(std::string_view key, std::string_view value);
/// Returns the line of a define, without line feed.
[[nodiscard]] std::string canonicalDefine(std::string_view key, std::string_view value);

/// The layouts of a matrix.
enum class MatrixForm : std::uint8_t {
    lines, ///< one line per axis
    list,  ///< an entry of a list per axis, because one has names or follows another
};

/// Returns the layout in which the matrix of the document is printed.
[[nodiscard]] MatrixForm matrixForm(const taskdsl::TaskDocument& document) noexcept;

/// Returns the lines of a matrix axis, without the last line feed.
[[nodiscard]] std::string canonicalAxis(const taskdsl::MatrixAxis& axis, MatrixForm form);

} // namespace morquill::views
