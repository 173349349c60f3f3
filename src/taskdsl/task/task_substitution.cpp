#include "taskdsl/task/task_substitution.h"

#include "taskdsl/base/diagnostic.h"
#include "taskdsl/plot/substitute_plot.h"
#include "taskdsl/task/mod_operation.h"
#include "taskdsl/task/source_spec.h"

#include <algorithm>
#include <string>
#include <utility>

namespace morquill::taskdsl {

namespace {

/// The plain text fields that take part in substitution.
constexpr std::string TaskInfo::*textFields[] = {
    &TaskInfo::name,           &TaskInfo::guessSourceTask,
    &TaskInfo::guessConverter, &TaskInfo::gaussianGeomControl,
    &TaskInfo::finalGeom,      &TaskInfo::gpuType,
    &TaskInfo::strucId,        &TaskInfo::templateTaskName,
    &TaskInfo::keywords,       &TaskInfo::interfaceProvider,
    &TaskInfo::args,           &TaskInfo::extraKeywords,
    &TaskInfo::templateName,   &TaskInfo::paramValues,
    &TaskInfo::runner,         &TaskInfo::body,
    &TaskInfo::orcaBlock,
};
constexpr std::vector<std::string> TaskInfo::*listFields[] = {
    &TaskInfo::preProcessCommands, &TaskInfo::processCommands, &TaskInfo::whenConditions};

bool holdsBracket(std::string_view text) noexcept {
    return text.find('[') != std::string_view::npos;
}

bool holdsBracket(const std::vector<std::string>& texts) noexcept {
    return std::any_of(texts.begin(), texts.end(),
                       [](const std::string& text) { return holdsBracket(text); });
}

bool holdsBracket(const SourceBinding& binding) noexcept {
    return holdsBracket(binding.sourceValue) || holdsBracket(binding.sourceTask) ||
           std::any_of(binding.selectors.begin(), binding.selectors.end(),
                       [](const auto& selector) { return holdsBracket(selector.second); });
}

bool sourceHoldsBracket(const TaskInfo& task) noexcept {
    return holdsBracket(task.source) || holdsBracket(task.sourceTasks) ||
           std::any_of(task.sourceBindings.begin(), task.sourceBindings.end(),
                       [](const SourceBinding& binding) { return holdsBracket(binding); });
}

bool modsHoldBracket(const TaskInfo& task) noexcept {
    return std::any_of(task.modEntries.begin(), task.modEntries.end(), [](const ModEntry& entry) {
        return holdsBracket(entry.key) || holdsBracket(entry.value);
    });
}

/// The pieces take the values one by one, so that a blank in a value does not split a word; then what they
/// have become is looked at again.
void substituteBinding(SourceBinding& binding, const ValueMap& values) {
    if (!holdsBracket(binding)) {
        return;
    }
    substituteInto(binding.sourceValue, values);
    for (auto& selector : binding.selectors) {
        substituteInto(selector.second, values);
    }
    rereadBinding(binding);
}

/// The place of the `%source` that counts, the last one; no place for a task that was not read from a text.
SourceSpan sourceDirectiveSpan(const TaskInfo& task) {
    const auto& directives = task.directives.get();
    const auto last = std::find_if(directives.rbegin(), directives.rend(),
                                   [](const TaskDirective& directive) { return directive.name == "source"; });
    return last == directives.rend() ? SourceSpan{} : last->span;
}

void substituteBindings(TaskInfo& task, const ValueMap& values, bool final) {
    try {
        for (auto& binding : task.sourceBindings) {
            substituteBinding(binding, values);
        }
        validateStructuredSource(task.sourceBindings, final);
    } catch (const DiagnosticError& fault) {
        throw structuredSourceFault(sourceDirectiveSpan(task), task.name, fault);
    }
}

void substituteSource(TaskInfo& task, const ValueMap& values, bool final) {
    if (hasStructuredSource(task)) {
        substituteBindings(task, values, final);
        return;
    }
    if (!sourceHoldsBracket(task)) {
        return;
    }
    if (task.sourceTasks.size() > 1) {
        for (auto& name : task.sourceTasks) {
            substituteInto(name, values);
        }
        task.source = task.sourceTasks.front();
        return;
    }
    SourceSpec spec = sourceSpecOf(task);
    if (auto* xyz = std::get_if<SourceXyz>(&spec)) {
        substituteInto(xyz->file, values);
        for (auto& word : xyz->furtherWords) {
            substituteInto(word, values);
        }
        applySource(task, spec, true);
    } else {
        // A name may have become another kind of source.
        applySource(task, parseInlineSource(substituteBrackets(task.source, values)), true);
    }
}

void substituteMods(TaskInfo& task, const ValueMap& values, bool final) {
    if (!modsHoldBracket(task)) {
        return;
    }
    task.modValues.clear();
    for (auto& entry : task.modEntries) {
        substituteInto(entry.key, values);
        substituteInto(entry.value, values);
        task.modValues.insert_or_assign(entry.key, entry.value);
    }
    checkModsAgainstSources(task, final);
}

} // namespace

bool holdsBrackets(const TaskInfo& task) noexcept {
    return std::any_of(std::begin(textFields), std::end(textFields),
                       [&task](auto field) { return holdsBracket(task.*field); }) ||
           std::any_of(std::begin(listFields), std::end(listFields),
                       [&task](auto field) { return holdsBracket(task.*field); }) ||
           holdsBracket(task.filePath.str()) || sourceHoldsBracket(task) || modsHoldBracket(task) ||
           // A plot holds one in its computed output path at the least.
           !task.plots.empty();
}

void substituteTask(TaskInfo& task, const ValueMap& values, bool final) {
    if (!holdsBrackets(task)) {
        return;
    }
    for (const auto field : textFields) {
        substituteInto(task.*field, values);
    }
    for (const auto field : listFields) {
        for (auto& text : task.*field) {
            substituteInto(text, values);
        }
    }
    if (holdsBracket(task.filePath.str())) {
        task.filePath = substituteBrackets(task.filePath.str(), values);
    }
    substituteSource(task, values, final);
    substituteMods(task, values, final);
    for (auto& plot : task.plots) {
        plot::substitutePlot(plot, values);
    }
}

} // namespace morquill::taskdsl
