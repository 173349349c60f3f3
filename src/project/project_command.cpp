#include "project/project_command.h"

#include "console/command_line.h"
#include "console/console.h"
#include "console/messages.h"
#include "project/choice.h"
#include "project/workflows.h"
#include "support/fault.h"

#include <algorithm>
#include <cstdint>
#include <exception>

namespace morquill::project {

namespace {

/// Where a help word turns a refused line into one that asks for help.
enum class HelpWord : std::uint8_t { anywhere, nowhere };

/// One shape of the command line.
struct LineShape {
    ProjectOptions (*read)(int argc, const char* const* argv);
    HelpWord helpWord;
};

constexpr LineShape wordShape{readProjectWords, HelpWord::anywhere};
constexpr LineShape compatibilityShape{readCompatibilityWords, HelpWord::anywhere};
constexpr LineShape updateShape{readUpdateWords, HelpWord::nowhere};

int runShape(const LineShape& shape, int argc, char** argv) {
    int status = 0;
    try {
        return runProjectWorkflow(shape.read(argc, argv), argv[0]);
    } catch (const console::HelpRequest&) {
        // the help is all there is
    } catch (const console::UsageError& error) {
        const auto words = console::wordsFrom(argc, argv, 1);
        const bool asksForHelp = shape.helpWord == HelpWord::anywhere &&
                                 std::any_of(words.begin(), words.end(), console::isHelpToken);
        const int refused = console::reportUsageError(error);
        status = asksForHelp ? 0 : refused;
    }
    printProjectHelp(argc > 0 ? argv[0] : "");
    return status;
}

int statusOf(bool success) {
    return success ? 0 : 1;
}

int runAdd(const ProjectOptions& options) {
    if (!options.names.empty()) {
        throw console::UsageError(console::ErrorTag::plain, "project add does not accept -n/--name.");
    }
    return runProjectAdd(options);
}

int runSubCommand(const ProjectOptions& options) {
    switch (options.subCommand) {
    case ProjectSubCommand::Init:
        return statusOf(runProjectInit());
    case ProjectSubCommand::Add:
        return runAdd(options);
    case ProjectSubCommand::Update:
        return statusOf(runProjectUpdate(options.path, options.names,
                                         {.dryRun = options.dryRun, .runComd = options.runComd}));
    case ProjectSubCommand::Rebuild:
        return statusOf(runProjectRebuild(options.path, options.names,
                                          {.dryRun = options.dryRun, .runScript = options.runScript}));
    case ProjectSubCommand::Exec:
        return runProjectExec(options);
    case ProjectSubCommand::Collect:
        return runProjectCollect(options);
    case ProjectSubCommand::None:
        break;
    }
    // Names without anything to do with them: they are checked, so that a wrong one is reported, and the help
    // shows what could be done.
    if (chooseBlocks(options)) {
        throw console::UsageError(console::ErrorTag::none);
    }
    return 1;
}

} // namespace

int runProject(int argc, char** argv) {
    return runShape(wordShape, argc, argv);
}

int runProjectCompatibility(int argc, char** argv) {
    return runShape(compatibilityShape, argc, argv);
}

int runUpdateCompatibility(int argc, char** argv) {
    return argc < 2 ? 1 : runShape(updateShape, argc, argv);
}

int runProjectWorkflow(const ProjectOptions& options, std::string_view programPath) {
    try {
        return runSubCommand(options);
    } catch (const console::UsageError& error) {
        // Not the shape's refusal: a help word among the words of a line that could be read is a name
        // like any other.
        const int status = console::reportUsageError(error);
        printProjectHelp(programPath);
        return status;
    } catch (const std::exception& failure) {
        console::reportError(console::ErrorTag::coloured,
                             faultText(failure, options.path.empty() ? "." : options.path));
        return 1;
    }
}

} // namespace morquill::project
