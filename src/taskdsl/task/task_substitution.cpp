#include "taskdsl/task/task_substitution.h"

#include "support/match.h"
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
constexpr SharedText TaskInfo::*textFields[] = {
    &TaskInfo::guessSourceTask,
    &TaskInfo::guessConverter,
    &TaskInfo::gaussianGeomControl,
    &TaskInfo::finalGeom,
    &TaskInfo::gpuType,
    &TaskInfo::strucId,
    &TaskInfo::templateTaskName,
    &TaskInfo::keywords,
    &TaskInfo::interfaceProvider,
    &TaskInfo::args,
    &TaskInfo::extraKeywords,
    &TaskInfo::templateName,
    &TaskInfo::paramValues,
    &TaskInfo::runner,
    &TaskInfo::body,
    &TaskInfo::orcaBlock,
};
constexpr Shared<std::vector<std::string>> TaskInfo::*listFields[] = {&TaskInfo::preProcessCommands,
                                                                      &TaskInfo::processCommands};

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

bool holdsBracket(const SourceSpec& source) noexcept {
    return std::visit(
        Match{[](const SourceTaskList& list) { return holdsBracket(list.names); },
              [](const SourceXyz& xyz) { return holdsBracket(xyz.file) || holdsBracket(xyz.furtherWords); },
              [](const SourceStructured& structured) {
                  return std::any_of(structured.bindings.begin(), structured.bindings.end(),
                                     [](const SourceBinding& binding) { return holdsBracket(binding); });
              },
              [](const auto&) { return false; }},
        source);
}

bool conditionsHoldBracket(const TaskInfo& task) noexcept {
    return std::any_of(task.whenEntries.begin(), task.whenEntries.end(),
                       [](const TaskWhenEntry& entry) { return holdsBracket(entry.text); });
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

void substituteBindings(TaskInfo& task, std::vector<SourceBinding>& bindings, const ValueMap& values) {
    try {
        for (auto& binding : bindings) {
            substituteBinding(binding, values);
        }
        validateStructuredSource(bindings, Placeholders::refused);
    } catch (const DiagnosticError& fault) {
        throw structuredSourceFault(sourceDirectiveSpan(task), task.name, fault);
    }
}

void substituteXyz(SourceXyz& xyz, const ValueMap& values) {
    substituteInto(xyz.file, values);
    for (auto& word : xyz.furtherWords) {
        substituteInto(word, values);
    }
    rereadXyz(xyz);
}

/// The names of a list stay names; a name alone may have become another kind of source.
SourceSpec substitutedNames(const SourceTaskList& list, const ValueMap& values) {
    if (list.names.size() == 1) {
        return parseInlineSource(substituteBrackets(list.names.front(), values));
    }
    SourceTaskList changed = list;
    for (auto& name : changed.names) {
        substituteInto(name, values);
    }
    return changed;
}

void substituteSource(TaskInfo& task, const ValueMap& values) {
    if (auto* structured = std::get_if<SourceStructured>(&task.source)) {
        substituteBindings(task, structured->bindings, values);
    } else if (!holdsBracket(task.source)) {
        return;
    } else if (auto* xyz = std::get_if<SourceXyz>(&task.source)) {
        substituteXyz(*xyz, values);
    } else if (const auto* list = std::get_if<SourceTaskList>(&task.source)) {
        applySource(task, substitutedNames(*list, values));
    }
}

void substituteMods(TaskInfo& task, const ValueMap& values) {
    if (!modsHoldBracket(task)) {
        return;
    }
    for (auto& entry : task.modEntries.edit()) {
        substituteInto(entry.key, values);
        substituteInto(entry.value, values);
    }
    checkModsAgainstSources(task, Placeholders::refused);
}

} // namespace

bool holdsBrackets(const TaskInfo& task) noexcept {
    return std::any_of(std::begin(textFields), std::end(textFields),
                       [&task](auto field) { return holdsBracket((task.*field).view()); }) ||
           std::any_of(std::begin(listFields), std::end(listFields),
                       [&task](auto field) { return holdsBracket(*(task.*field)); }) ||
           holdsBracket(task.name) || holdsBracket(task.filePath.view()) || holdsBracket(task.source) ||
           conditionsHoldBracket(task) || modsHoldBracket(task) ||
           // A plot holds one in its computed output path at the least.
           !task.plots.empty();
}

void substituteTask(TaskInfo& task, const ValueMap& values) {
    if (!holdsBrackets(task)) {
        return;
    }
    // What holds no bracket stays shared with the tasks that this one was copied from.
    substituteInto(task.name, values);
    substituteInto(task.filePath, values);
    for (const auto field : textFields) {
        substituteInto(task.*field, values);
    }
    for (const auto field : listFields) {
        if (holdsBracket(*(task.*field))) {
            for (auto& text : (task.*field).edit()) {
                substituteInto(text, values);
            }
        }
    }
    if (conditionsHoldBracket(task)) {
        for (auto& entry : task.whenEntries.edit()) {
            substituteInto(entry.text, values);
        }
    }
    substituteSource(task, values);
    substituteMods(task, values);
    if (!task.plots.empty()) {
        for (auto& plot : task.plots.edit()) {
            plot::substitutePlot(plot, values);
        }
    }
}

} // namespace morquill::taskdsl
