#include "project/project_command.h"

#include "console/command_line.h"
#include "console/messages.h"
#include "project/choice.h"
#include "project/workflows.h"
#include "support/fault.h"

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

/// Reads a line of the shape. Throws `HelpRequest`, after the message of the refusal, where a help word makes
/// the line ask for help; otherwise `UsageError`.
ProjectOptions readShape(const LineShape& shape, int argc, char** argv) {
    const auto read = [&] { return shape.read(argc, argv); };
    return shape.helpWord == HelpWord::nowhere ? read()
                                               : console::readOrHelp(console::wordsFrom(argc, argv, 1), read);
}

int runShape(const LineShape& shape, int argc, char** argv) {
    return console::runCommandLine([&] { return runProjectWorkflow(readShape(shape, argc, argv), argv[0]); },
                                   printProjectHelp, argc > 0 ? argv[0] : "", console::HelpAfter::anyRefusal);
}

int statusOf(bool success) {
    return success ? 0 : 1;
}

int runAdd(const ProjectOptions& options) {
    if (!options.names.empty()) {
        throw console::plainRefusal("project add does not accept -n/--name.");
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
        // Its refusals are not those of the shape: a help word among the words of a line that could be read
        // is a name like any other.
        return console::runCommandLine([&] { return runSubCommand(options); }, printProjectHelp, programPath,
                                       console::HelpAfter::anyRefusal);
    } catch (const std::exception& failure) {
        console::reportError(console::ErrorTag::coloured,
                             faultText(failure, options.path.empty() ? "." : options.path));
        return 1;
    }
}

} // namespace morquill::project
