#include "project/choice.h"

#include "console/command_line.h"
#include "console/messages.h"
#include "project/cases/selection.h"
#include "project/cases/task_catalog.h"
#include "project/phrases.h"
#include "support/text.h"

#include <utility>

namespace morquill::project {

std::optional<ChosenBlocks> chooseBlocks(const ProjectOptions& options) {
    const auto project = resolveProjectTemplate(options.path);
    if (!project) {
        throw console::plainRefusal(project.error());
    }
    if (options.names.empty()) {
        throw console::plainRefusal("specify at least one task block with -n/--name.");
    }
    const auto catalog = loadCatalog(project->root, project->file);
    if (!catalog) {
        console::reportError(catalog.error());
        return std::nullopt;
    }
    auto [selected, missing] = selectTaskBlocks(*catalog, options.names, Wildcards::matched);
    if (!missing.empty()) {
        throw console::plainRefusal("task block not found in .projmq: " + join(missing, ", ") +
                                    knownBlockLines(*catalog));
    }
    return ChosenBlocks{project->root, project->file, std::move(selected)};
}

std::vector<std::string> chooseCases(const std::string& root) {
    auto caseDirs = listCaseDirectories(root);
    if (caseDirs.empty()) {
        throw console::plainRefusal(noCases(root));
    }
    return caseDirs;
}

std::optional<ChosenWork> chooseWork(const std::string& path, const std::vector<std::string>& names,
                                     std::string_view title) {
    const auto target = resolveTarget(path);
    if (!target) {
        console::reportError(target.error());
        return std::nullopt;
    }
    auto selected = target->kind == TargetKind::Case
                        ? selectFromFile(target->caseFile, "task file", names, title)
                        : selectFromProject(target->projectRoot, target->projectFile, names, title);
    if (!selected) {
        return std::nullopt;
    }
    if (selected->empty()) {
        console::printNote("no task blocks were selected; exiting.");
    }
    return ChosenWork{*target, *std::move(selected)};
}

} // namespace morquill::project
