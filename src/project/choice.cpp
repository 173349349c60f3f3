#include "project/choice.h"

#include "project/cases/selection.h"
#include "project/cases/task_catalog.h"
#include "project/project_command.h"
#include "support/text.h"
#include "system/prompt.h"

#include <utility>

namespace morquill::project {

std::optional<ChosenBlocks> chooseBlocks(const ProjectOptions& options, std::string_view programPath) {
    const auto project = resolveProjectTemplate(options.path);
    if (!project) {
        system::printErrorLine("[mqkit][ERROR] " + project.error());
        printProjectHelp(programPath);
        return std::nullopt;
    }
    if (options.names.empty()) {
        system::printErrorLine("[mqkit][ERROR] specify at least one task block with -n/--name.");
        printProjectHelp(programPath);
        return std::nullopt;
    }
    const auto catalog = loadCatalog(project->root, project->file);
    if (!catalog) {
        system::printErrorLine("[mqkit][ERROR] " + catalog.error());
        return std::nullopt;
    }
    auto [selected, missing] = selectTaskBlocks(*catalog, options.names, Wildcards::matched);
    if (!missing.empty()) {
        system::printErrorLine("[mqkit][ERROR] task block not found in .projmq: " + join(missing, ", "));
        printKnownBlocks(*catalog);
        printProjectHelp(programPath);
        return std::nullopt;
    }
    return ChosenBlocks{project->root, project->file, std::move(selected)};
}

std::optional<std::vector<std::string>> chooseCases(const std::string& root, std::string_view programPath) {
    auto caseDirs = listCaseDirectories(root);
    if (caseDirs.empty()) {
        system::printErrorLine("[mqkit][ERROR] no case subdirectories were found in project: " + root);
        printProjectHelp(programPath);
        return std::nullopt;
    }
    return caseDirs;
}

std::optional<ChosenWork> chooseWork(const std::string& path, const std::vector<std::string>& names,
                                     std::string_view title) {
    const auto target = resolveTarget(path);
    if (!target) {
        system::printErrorLine("[mqkit][ERROR] " + target.error());
        return std::nullopt;
    }
    auto selected = target->kind == TargetKind::Case
                        ? selectFromFile(target->caseFile, "task file", names, title)
                        : selectFromProject(target->projectRoot, target->projectFile, names, title);
    if (!selected) {
        return std::nullopt;
    }
    if (selected->empty()) {
        system::printLine("[mqkit] no task blocks were selected; exiting.");
    }
    return ChosenWork{*target, *std::move(selected)};
}

} // namespace morquill::project
