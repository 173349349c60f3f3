#pragma once

#include "taskdsl/task/task_document.h"

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

/// What `explain` prints of a document.
namespace morquill::views {

/// The tasks as they are declared, or one for each variant of the matrix.
enum class ExplainedTasks : std::uint8_t { declared, expanded };

/// The tasks of the document in the chosen view; refers to the document.
struct ExplainView {
    const taskdsl::TaskDocument& document;
    std::vector<const taskdsl::TaskInfo*> tasks;
    bool expanded;
};

/// Returns the view with all tasks, or with those of one name; an empty name means all.
[[nodiscard]] ExplainView makeExplainView(const taskdsl::TaskDocument& document, ExplainedTasks which,
                                          std::string_view name);

/// Returns the view as text. Throws `DiagnosticError` for a source whose frame is no number.
[[nodiscard]] std::string explainText(const ExplainView& view);
/// Returns the view as one JSON document. Throws likewise.
[[nodiscard]] std::string explainJson(const ExplainView& view);

} // namespace morquill::views
