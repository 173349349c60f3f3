#pragma once

#include "taskdsl/task/task_document.h"

#include <compare>
#include <cstdint>
#include <set>
#include <string>
#include <vector>

/// Where a document names tasks, as it is declared: before values are put in and matrices expanded.
namespace morquill::project {

enum class ReferenceForm : std::int32_t {
    task, ///< the name of a task
    field ///< `<task>.<field>`, as between `{{` and `}}`
};

struct TaskReference {
    ReferenceForm form = ReferenceForm::task;
    std::string text;

    // NOLINTNEXTLINE(modernize-use-nullptr): the check takes the zero that the compiler generates for a null
    friend auto operator<=>(const TaskReference&, const TaskReference&) = default;
};

/// What one directive or block names.
struct ReferencePlace {
    std::string file; ///< where it is written; for the lines of a fragment, the file that includes it
    std::set<TaskReference> references;
};

/// The places of all tasks, plots and derives. A task has the same number of places whatever it names,
/// so that the places of two texts that differ only in names correspond one to one.
[[nodiscard]] std::vector<ReferencePlace> collectTaskReferences(const taskdsl::TaskDocument& document);

} // namespace morquill::project
