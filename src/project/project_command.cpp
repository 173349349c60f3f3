#include "project/project_command.h"

#include "console/command_line.h"
#include "console/console.h"
#include "project/choice.h"
#include "project/workflows.h"
#include "support/fault.h"
#include "system/prompt.h"

#include <exception>

namespace morquill::project {

namespace {

bool isHelpWanted(int argc, char** argv) {
    for (int i = 1; i < argc; ++i) {
        if (console::isHelpToken(argv[i])) {
            return true;
        }
    }
    return false;
}

int runFrame(int argc, char** argv, ProjectOptions (*read)(int argc, const char* const* argv)) {
    try {
        return runProjectWorkflow(read(argc, argv), argv[0]);
    } catch (const console::UsageError& error) {
        console::reportUsageError(error);
    }
    printProjectHelp(argc > 0 ? argv[0] : "");
    return isHelpWanted(argc, argv) ? 0 : 1;
}

int statusOf(bool success) {
    return success ? 0 : 1;
}

int runAdd(const ProjectOptions& options, std::string_view programPath) {
    if (!options.names.empty()) {
        system::printErrorLine("[mqkit][ERROR] project add does not accept -n/--name.");
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
    if (chooseBlocks(options, programPath)) {
        printProjectHelp(programPath);
    }
    return 1;
}

} // namespace

int runProject(int argc, char** argv) {
    return runFrame(argc, argv, readProjectWords);
}

int runProjectCompatibility(int argc, char** argv) {
    return runFrame(argc, argv, readCompatibilityWords);
}

int runUpdateCompatibility(int argc, char** argv) {
    if (argc < 2) {
        return 1;
    }
    int status = 0;
    try {
        return runProjectWorkflow(readUpdateWords(argc, argv), argv[0]);
    } catch (const console::HelpRequest&) {
        // the help is all there is
    } catch (const console::UsageError& error) {
        status = console::reportUsageError(error);
    }
    printProjectHelp(argv[0]);
    return status;
}

int runProjectWorkflow(const ProjectOptions& options, std::string_view programPath) {
    try {
        return runSubCommand(options, programPath);
    } catch (const std::exception& failure) {
        system::printErrorLine(console::errorTag() + " " +
                               faultText(failure, options.path.empty() ? "." : options.path));
        return 1;
    }
}

} // namespace morquill::project
