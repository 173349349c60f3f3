#pragma once

#include "taskdsl/base/diagnostic.h"
#include "taskdsl/task/task_document.h"

#include <string_view>
#include <vector>

/// The passes over the tasks of a document after its last line was read.
namespace morquill::taskdsl {

/// Brings a task into its final form: unquotes scalars, moves legacy forms to where they belong (each with
/// a warning), checks mods against the source. `axes` are the matrix axes of the document being read:
/// a "program" axis switches the guesses about the program off. Throws `DiagnosticError`.
void finishTask(TaskInfo& task, const std::vector<MatrixAxis>& axes, const WarningSink& warn);

/// Copies "totcore" and "totmem" of the header to every task that has no value of its own. An invalid value
/// counts as absent and warns, unless its key is among `inherited`: the file it came from has already warned.
void applyHeaderMetadata(TaskDocument& document, std::string_view path, const KeySet& inherited,
                         const WarningSink& warn);

/// Stores the names of all tasks that are not providers in every task; the list is held once.
void shareTaskNames(TaskDocument& document);

/// Warns when at least two tasks wait for all others to complete.
void warnAboutDeadlocks(const TaskDocument& document, std::string_view path, const WarningSink& warn);

} // namespace morquill::taskdsl
