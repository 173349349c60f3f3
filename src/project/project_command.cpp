#include "project/project_command.h"

#include "frontend/console.h"
#include "project/prompt.h"
#include "project/selection.h"
#include "project/target.h"
#include "project/workflows.h"
#include "support/text.h"
#include "support/whole_text.h"

#include <exception>

namespace morquill::project {

namespace {

bool isHelpWanted(int argc, char** argv) {
    for (int i = 1; i < argc; ++i) {
        if (frontend::isHelpToken(argv[i])) {
            return true;
        }
    }
    return false;
}

using ParseOperation = bool (*)(int argc, const char* const* argv, ProjectOptions& options);

int runFrame(int argc, char** argv, ParseOperation parse) {
    ProjectOptions options;
    if (parse(argc, argv, options)) {
        return runProjectWorkflow(options, argv[0]);
    }
    printProjectHelp(argc > 0 ? argv[0] : "");
    return isHelpWanted(argc, argv) ? 0 : 1;
}

int statusOf(bool success) {
    return success ? 0 : 1;
}

int runAdd(const ProjectOptions& options, std::string_view programPath) {
    if (!options.names.empty()) {
        printErrorLine("[mqkit][ERROR] project add does not accept -n/--name.");
        printProjectHelp(programPath);
        return 1;
    }
    return runProjectAdd(options, programPath);
}

int runSubCommand(const ProjectOptions& options, std::string_view programPath) {
    switch (options.subCommand) {
    case ProjectSubCommand::Init:
        return statusOf(runProjectInit());
    case ProjectSubCommand::Add:
        return runAdd(options, programPath);
    case ProjectSubCommand::Update:
        return statusOf(runProjectUpdate(options.path, options.names, {options.dryRun, options.runComd}));
    case ProjectSubCommand::Rebuild:
        return statusOf(
            runProjectRebuild(options.path, options.names, {options.dryRun, options.runScript, true}));
    case ProjectSubCommand::Exec:
        return runProjectExec(options, programPath);
    case ProjectSubCommand::Collect:
        return runProjectCollect(options, programPath);
    case ProjectSubCommand::None:
        break;
    }
    // Names without anything to do with them: they are checked, so that a wrong one is told, and the help
    // says what could be done.
    if (ChosenBlocks chosen; chooseBlocks(options, programPath, chosen)) {
        printProjectHelp(programPath);
    }
    return 1;
}

} // namespace

int runProject(int argc, char** argv) {
    return runFrame(argc, argv, parseProjectArguments);
}

int runProjectCompatibility(int argc, char** argv) {
    return runFrame(argc, argv, parseCompatibilityArguments);
}

int runUpdateCompatibility(int argc, char** argv) {
    if (argc < 2) {
        return 1;
    }
    ProjectOptions options;
    const UpdateShape shape = parseUpdateArguments(argc, argv, options);
    if (shape == UpdateShape::run) {
        return runProjectWorkflow(options, argv[0]);
    }
    printProjectHelp(argv[0]);
    return shape == UpdateShape::help ? 0 : 1;
}

int runProjectWorkflow(const ProjectOptions& options, std::string_view programPath) {
    try {
        return runSubCommand(options, programPath);
    } catch (const std::exception& failure) {
        printErrorLine(frontend::errorTag() + " " + wholeText(failure));
        return 1;
    }
}

bool chooseBlocks(const ProjectOptions& options, std::string_view programPath, ChosenBlocks& chosen) {
    std::string error;
    if (!resolveProjectTemplate(options.path, chosen.root, chosen.file, error)) {
        printErrorLine(error);
        printProjectHelp(programPath);
        return false;
    }
    if (options.names.empty()) {
        printErrorLine("[mqkit][ERROR] specify at least one task block with -n/--name.");
        printProjectHelp(programPath);
        return false;
    }
    TaskCatalog catalog;
    if (!loadCatalog(chosen.root, chosen.file, catalog, error)) {
        printErrorLine(error);
        return false;
    }
    std::vector<std::string> missing;
    if (!selectTaskBlocks(catalog, options.names, true, chosen.selected, missing)) {
        printErrorLine("[mqkit][ERROR] task block not found in .projmq: " + join(missing, ", "));
        printKnownBlocks(catalog);
        printProjectHelp(programPath);
        return false;
    }
    return true;
}

} // namespace morquill::project
