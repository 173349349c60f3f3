#pragma once

#include "taskdsl/base/diagnostic.h"
#include "taskdsl/task/task_document.h"
#include "views/canonical_writer.h"

#include <string_view>

/// What the canonical text of a document does not bring back when it is read again. Where the layout leaves
/// no choice of form, a rewrite says so: "<what> '<name>' does not read back: <why>", one line for everything
/// that is lost of one thing. A plain word passes at once; only an unusual one is read.
namespace morquill::views {

/// The document that is printed, how, and who listens. The sink must not be empty.
struct ReadBackContext {
    const taskdsl::TaskDocument& document;
    CanonicalView view;
    const taskdsl::WarningSink& warnings;
};

/// Reports the settings, defines and (in the source view) matrix axes whose line does not read back.
void reportLostHeadLines(const ReadBackContext& context);

/// Reports what a rewrite drops of the task and what of `printed`, its block without the plots, does not read
/// back as printed.
void reportLostOfTask(const ReadBackContext& context, const taskdsl::TaskInfo& task,
                      std::string_view printed);

/// Reports a plot or derive (`what`) whose printed text holds a `[key]` that a define replaces.
void reportReplacedKey(const ReadBackContext& context, std::string_view what, std::string_view name,
                       std::string_view printed);

} // namespace morquill::views
