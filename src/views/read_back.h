#pragma once

#include "taskdsl/base/diagnostic.h"
#include "taskdsl/task/task_document.h"
#include "views/canonical_writer.h"

#include <string_view>

/// What is lost when the canonical text of a document is read again. Where no form of the layout keeps it, a
/// rewrite reports it: "<what> '<name>' does not read back: <why>", one line for everything that is lost of
/// one thing. Plain words pass at once; only unusual ones are actually read.
namespace morquill::views {

/// The document, the printed form, and the sink for the reports, which must not be empty.
struct ReadBackContext {
    const taskdsl::TaskDocument& document;
    CanonicalView view;
    const taskdsl::WarningSink& warnings;
};

/// Reports the settings, the defines and (in the source view) the matrix axes whose line does not read back.
void reportLostHeadLines(const ReadBackContext& context);

/// Reports what a rewrite drops of the task, and what of
/// `printed`, its block without the plots, does not read back.
void reportLostOfTask(const ReadBackContext& context, const taskdsl::TaskInfo& task,
                      std::string_view printed);

/// Reports a plot or derive (`what`) whose printed text contains a `[key]` that a define replaces.
void reportReplacedKey(const ReadBackContext& context, std::string_view what, std::string_view name,
                       std::string_view printed);

} // namespace morquill::views
