#pragma once

#include "../taskdsl/derive/without_spans.h"
#include "../taskdsl/plot/without_spans.h"
#include "support/text.h"
#include "taskdsl/mod_operation.h"
#include "taskdsl/source_spec.h"
#include "taskdsl/task_parser.h"
#include "views/canonical_writer.h"
#include "views/legacy_keywords.h"

#include <algorithm>
#include <string>
#include <utility>
#include <vector>

/// Documents as they are compared: without their places (spans, files, order) and without the notes on how a
/// file was written or a task came about (`quoted`, the directives' texts, `controlDeclared`, the template
/// and the matrix values of a variant, the version that the head names).
namespace morquill::views {

/// A task with its source and its mods as they are understood.
struct ComparableTask {
    taskdsl::TaskInfo task;
    taskdsl::SourceSpec source;
    std::vector<std::vector<std::string>> mods; ///< key and words of every operation

    friend bool operator==(const ComparableTask&, const ComparableTask&) = default;
};

struct ComparableDocument {
    taskdsl::ValueMap settings;
    taskdsl::ValueMap defines;
    std::map<std::string, std::vector<std::string>, std::less<>> matrixValues;
    std::vector<taskdsl::MatrixAxis> matrixAxes;
    std::vector<ComparableTask> tasks;
    std::vector<taskdsl::plot::PlotSpec> plots;
    std::vector<taskdsl::derive::DeriveSpec> derives;

    friend bool operator==(const ComparableDocument&, const ComparableDocument&) = default;
};

/// What older files keep in `%keywords`, moved to where it belongs.
inline void moveLegacyKeywords(taskdsl::TaskInfo& task) {
    if (task.program == taskdsl::TaskProgram::script && task.runner.empty()) {
        task.runner = std::exchange(task.keywords, {});
    } else if (task.program == taskdsl::TaskProgram::other) {
        const bool isAllMoved =
            isLegacyPairList(task.keywords, task.templateName.empty(), task.paramValues.empty());
        const std::string params =
            task.paramValues.empty() ? legacyParamValues(task.keywords) : task.paramValues;
        task.templateName = task.templateName.empty() ? legacyTemplateName(task.keywords) : task.templateName;
        task.paramValues = std::string(trim(params));
        task.keywords = isAllMoved ? std::string() : task.keywords;
    }
}

inline ComparableTask comparable(taskdsl::TaskInfo task) {
    ComparableTask result;
    result.source = sourceSpecOf(task);
    for (const auto& entry : modEntriesOf(task)) {
        const auto operation = taskdsl::normalizeMod(entry.key, entry.value, false);
        auto& words = result.mods.emplace_back();
        words.push_back(formatModKey(operation));
        const std::string value = formatModValue(operation); // blanks and tabs between words are alike
        for (const auto word : splitBlank(value)) {
            words.emplace_back(word);
        }
    }
    for (auto& plot : task.plots) {
        plot = withoutSpans(std::move(plot));
    }
    moveLegacyKeywords(task);
    task.headerSpan = {};
    task.directives.reset();
    task.whenEntries.clear(); // the conditions stand in `whenConditions`, too
    task.quoted = false;
    task.documentOrder = 0;
    task.source.clear();
    task.sourceBindings.clear();
    task.sourceTasks.clear();
    task.filePath = {};
    task.documentTaskNames.reset();
    task.modValues.clear();
    task.modEntries.clear();
    task.controlDeclared = false;
    task.templateTaskName.clear();
    task.matrixVariantKey.clear();
    task.matrixValues.reset();
    result.task = std::move(task);
    return result;
}

/// The document of a view: the declared form, or the head without its matrix and the tasks that run.
inline ComparableDocument comparable(const taskdsl::TaskDocument& document, CanonicalView view) {
    const bool isSource = view == CanonicalView::sourceView;
    ComparableDocument result;
    result.settings = document.settings;
    result.settings.erase("dsl_version");
    result.defines = document.defines;
    if (isSource) {
        result.matrixValues = document.matrixValues;
        result.matrixAxes = document.matrixAxes;
    }
    for (const auto& task : isSource ? document.templateTasks : document.tasks) {
        result.tasks.push_back(comparable(task));
    }
    for (const auto& plot : document.plots) {
        result.plots.push_back(withoutSpans(plot));
    }
    for (const auto& derive : document.derives) {
        result.derives.push_back(withoutSpans(derive.spec));
    }
    return result;
}

} // namespace morquill::views
