// The debug dump of a task and its reader.

#include "taskdsl/task/task_document.h"

#include "support/line_builder.h"
#include "support/text.h"
#include "taskdsl/plot/enumerations.h"

#include <algorithm>
#include <array>
#include <string>

namespace morquill::taskdsl {

namespace {

std::string_view flagText(bool flag) noexcept {
    return flag ? "true" : "false";
}

/// Adds a heading and a line for each entry, nothing for an empty list.
void addList(LineBuilder& dump, std::string_view heading, const std::vector<std::string>& entries) {
    if (entries.empty()) {
        return;
    }
    dump.line(heading);
    for (const auto& entry : entries) {
        dump.line("  - ", entry);
    }
}

/// The same for pairs of a key and a value.
template <class Pairs>
void addPairs(LineBuilder& dump, std::string_view heading, const Pairs& entries) {
    if (entries.empty()) {
        return;
    }
    dump.line(heading);
    for (const auto& [key, value] : entries) {
        dump.line("  ", key, ": ", value);
    }
}

} // namespace

std::string describeTask(const TaskInfo& task) {
    LineBuilder dump;
    dump.line("TaskInfo: ", task.name);
    dump.line("Program: ", programName(task.program));
    dump.line("Quoted: ", flagText(task.quoted));
    if (isProvider(task)) {
        dump.line("Interface: ", "provider");
    } else if (isConsumer(task)) {
        dump.line("Interface: consume ", task.interfaceProvider);
    }
    if (hasStructuredSource(task)) {
        std::vector<std::string> bindings;
        std::transform(sourceBindings(task).begin(), sourceBindings(task).end(), std::back_inserter(bindings),
                       formatSourceBinding);
        addList(dump, "SourceBindings:", bindings);
    } else {
        dump.filled("Source: ", sourceText(task));
    }
    dump.filled("GuessSourceTask: ", task.guessSourceTask);
    dump.line("ExternalInput: ", flagText(task.externalInput));
    dump.line("WaitFreq: ", flagText(task.waitFreq));
    dump.line("Alert: ", flagText(task.alert));
    dump.line("LocalFirst: ", flagText(task.localFirst));
    dump.filled("FinalGeom: ", task.finalGeom);
    dump.filled("Keywords: ", task.keywords);
    dump.filled("Args: ", task.args);
    dump.filled("GaussianGeomControl: ", task.gaussianGeomControl);
    dump.filled("ExtraKeywords: ", task.extraKeywords);
    dump.filled("TemplateName: ", task.templateName);
    dump.filled("ParamValues: ", task.paramValues);
    dump.filled("Runner: ", task.runner);
    dump.filled("Body: ", task.body);
    addList(dump, "PreProcessCommands:", *task.preProcessCommands);
    addList(dump, "ProcessCommands:", *task.processCommands);
    addPairs(dump, "ModValues:", task.modEntries);
    dump.filled("SMILES: ", task.smiles);
    dump.filled("FilePath: ", task.filePath);
    dump.filled("TemplateTaskName: ", task.templateTaskName);
    dump.filled("MatrixVariantKey: ", task.matrixVariantKey);
    addPairs(dump, "MatrixValues:", *task.matrixValues);
    dump.filled("StrucId: ", task.strucId);
    addList(dump, "MetaProperties:", *task.metaProperties);
    if (!task.orcaBlock.empty()) {
        dump.line("OrcaBlock: ", "[omitted]");
    }
    std::vector<std::string> plots;
    std::transform(
        task.plots.begin(), task.plots.end(), std::back_inserter(plots), [](const plot::PlotSpec& plot) {
            return std::string(plotKindName(plot.kind)) + " " + (plot.title.empty() ? plot.id : plot.title);
        });
    addList(dump, "Plots:", plots);
    addList(dump, "WhenConditions:", whenConditions(task));
    return dump.take();
}

namespace {

struct DumpLabel {
    std::string_view label;
    void (*read)(TaskInfo&, std::string_view);
};

template <SharedText TaskInfo::*field>
void readText(TaskInfo& task, std::string_view value) {
    task.*field = value;
}

template <bool TaskInfo::*field>
void readFlag(TaskInfo& task, std::string_view value) {
    task.*field = value == "true";
}

void readInterface(TaskInfo& task, std::string_view value) {
    constexpr std::string_view consume = "consume ";
    if (value == "provider") {
        task.interfaceMode = TaskInterfaceMode::provider;
    } else if (value.starts_with(consume)) {
        task.interfaceMode = TaskInterfaceMode::consume;
        task.interfaceProvider = value.substr(consume.size());
    }
}

constexpr std::array<DumpLabel, 17> dumpLabels{{
    {"TaskInfo: ", [](TaskInfo& task, std::string_view value) { task.name = value; }},
    {"Program: ",
     [](TaskInfo& task, std::string_view value) {
         task.program = parseProgramName(value).value_or(task.program);
     }},
    {"Quoted: ", readFlag<&TaskInfo::quoted>},
    {"Source: ", [](TaskInfo& task, std::string_view value) { applySource(task, readInlineSource(value)); }},
    {"LocalFirst: ", readFlag<&TaskInfo::localFirst>},
    {"Interface: ", readInterface},
    {"FinalGeom: ", readText<&TaskInfo::finalGeom>},
    {"Keywords: ", readText<&TaskInfo::keywords>},
    {"Args: ", readText<&TaskInfo::args>},
    {"ExtraKeywords: ", readText<&TaskInfo::extraKeywords>},
    {"TemplateName: ", readText<&TaskInfo::templateName>},
    {"ParamValues: ", readText<&TaskInfo::paramValues>},
    {"Runner: ", readText<&TaskInfo::runner>},
    {"Body: ", readText<&TaskInfo::body>},
    {"SMILES: ", readText<&TaskInfo::smiles>},
    {"FilePath: ", [](TaskInfo& task, std::string_view value) { task.filePath = SharedText(value); }},
    {"StrucId: ", readText<&TaskInfo::strucId>},
}};

} // namespace

TaskInfo parseTaskDump(std::string_view text) {
    TaskInfo task;
    for (std::string_view line : splitLines(text)) {
        line.remove_prefix(std::min(line.find_first_not_of(" \t"), line.size()));
        if (line.starts_with('#')) {
            continue;
        }
        for (const auto& [label, read] : dumpLabels) {
            if (line.starts_with(label)) {
                read(task, line.substr(label.size()));
                break;
            }
        }
    }
    return task;
}

} // namespace morquill::taskdsl
