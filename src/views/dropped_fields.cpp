#include "views/dropped_fields.h"

#include "taskdsl/task/legacy_keywords.h"

#include <algorithm>
#include <array>
#include <string_view>

namespace morquill::views {

using taskdsl::TaskInfo;
using taskdsl::TaskProgram;

namespace {

using PayloadPair = std::array<Payload, 2>;

constexpr PayloadPair payloadOf(TaskProgram program) noexcept {
    switch (program) {
    case TaskProgram::xtb:
        return {Payload::args, Payload::extraInput};
    case TaskProgram::other:
        return {Payload::templateName, Payload::params};
    case TaskProgram::script:
        return {Payload::runner, Payload::body};
    default:
        return {Payload::keywords, Payload::extraInput};
    }
}

struct PayloadRow {
    Payload payload;
    std::string_view directive;
    SharedText TaskInfo::*text;
};

constexpr std::array<PayloadRow, 7> payloadRows{{
    {Payload::keywords, "%keywords", &TaskInfo::keywords},
    {Payload::args, "%args", &TaskInfo::args},
    {Payload::extraInput, "%extrainput", &TaskInfo::extraKeywords},
    {Payload::templateName, "%template", &TaskInfo::templateName},
    {Payload::params, "%param", &TaskInfo::paramValues},
    {Payload::runner, "%runner", &TaskInfo::runner},
    {Payload::body, "%body", &TaskInfo::body},
}};

/// True when all of `%keywords` is printed under modern names.
bool isCarriedOver(const TaskInfo& task) {
    switch (task.program) {
    case TaskProgram::other:
        return taskdsl::isLegacyPairList(task);
    case TaskProgram::script:
        return task.runner.empty();
    default:
        return false;
    }
}

} // namespace

bool printsPayload(TaskProgram program, Payload payload) noexcept {
    const auto printed = payloadOf(program);
    return payload == Payload::none || std::find(printed.begin(), printed.end(), payload) != printed.end();
}

std::vector<std::string> droppedFields(const TaskInfo& task) {
    std::vector<std::string> dropped;
    if (task.interfaceMode == taskdsl::TaskInterfaceMode::provider) {
        dropped.emplace_back("%interface provider");
    } else if (task.interfaceMode == taskdsl::TaskInterfaceMode::consume) {
        dropped.push_back("%interface consume " + task.interfaceProvider.str());
    }
    if (task.totalCores < 0) {
        dropped.push_back("totcore " + std::to_string(task.totalCores));
    }
    if (task.totalMemory < 0) {
        dropped.push_back("totmem " + std::to_string(task.totalMemory));
    }
    if (!task.alert) {
        dropped.emplace_back("alert false");
    }
    if (!task.gaussianGeomControl.empty()) {
        dropped.push_back("geom " + task.gaussianGeomControl.str());
    }
    for (const auto& row : payloadRows) {
        if ((task.*row.text).empty() || printsPayload(task.program, row.payload)) {
            continue;
        }
        if (row.payload != Payload::keywords || !isCarriedOver(task)) {
            dropped.emplace_back(row.directive);
        }
    }
    return dropped;
}

} // namespace morquill::views
