#include "app/dispatch.h"

#include "app/command_table.h"
#include "console/command_line.h"
#include "console/console.h"
#include "console/help_text.h"
#include "console/messages.h"
#include "project/project_command.h"
#include "project/project_options.h"
#include "project/rename/rename.h"
#include "support/text.h"
#include "templates/template_command.h"

#include <algorithm>
#include <array>
#include <span>
#include <string>
#include <vector>

namespace morquill::app {

namespace {

// Tried in this order; the first that matches takes the whole command line.
constexpr std::array<OlderShape, 4> olderShapes{{
    {"rename", project::isRenameShape, project::runRenameCompatibility},
    {"update", project::isUpdateShape, project::runUpdateCompatibility},
    {"project", project::isProjectShape, project::runProjectCompatibility},
    {"template", templates::isTemplateShape, templates::runTemplateCompat},
}};

/// The command with that name or prefix; null when there is none. Throws `UsageError` when there are several;
/// its message calls the word `what`.
const CommandEntry* findOneCommand(const std::string& word, std::string_view what) {
    std::vector<std::string> matches;
    const CommandEntry* entry = findCommand(commandTable(), word, matches);
    if (matches.size() > 1) {
        throw console::colouredRefusal(console::ambiguousPrefix(what, word, matches));
    }
    return entry;
}

/// The help operation for the words after the help word. Throws `UsageError`.
HelpOperation findTopic(int argc, char** argv) {
    if (argc == 2) {
        return printTopLevelHelp;
    }
    const std::string topic = argv[2];
    const CommandEntry* entry = findOneCommand(topic, "help topic");
    if (entry == nullptr || entry->help == nullptr) {
        throw console::colouredRefusal("unknown help topic: " + topic);
    }
    return entry->help;
}

int showHelp(int argc, char** argv) {
    findTopic(argc, argv)(argv[0]);
    return 0;
}

/// The operation for a command line of at least one word. Throws `UsageError`.
RunOperation findOperation(int argc, char** argv) {
    const std::string first = argv[1];
    if (console::isHelpToken(toLower(first))) {
        return showHelp;
    }
    if (const CommandEntry* entry = findOneCommand(first, "command")) {
        return entry->run;
    }
    if (const OlderShape* shape = findOlderShape(console::wordsFrom(argc, argv, 1))) {
        return shape->run;
    }
    throw console::colouredRefusal("unknown command or argument: " + first);
}

/// The overview before and after the list of commands.
constexpr std::string_view helpBefore = R"(  Mqkit: A unified entry point for .mq and .projmq workflows.
# Usage:
  `@ <command> [options]`
  `@ help <command>`
  Commands accept unique prefixes, for example `@ proj co`.

# Commands:
)";

constexpr std::string_view helpAfter = R"(
# Examples:
  `@ template merge opt freq -o task.mq`
  `@ project add --path ./demo_project mol1.xyz mol2.xyz`
  `@ project update --path ./demo_project`
  `@ project rebuild --path ./demo_project -n opt,soc --run-script`
  `@ project exec --path demo.projmq -n soc -- 'cat soc*.log'`
  `@ rename demo.projmq old_block new_block`
  `@ migrate legacy.mq --in-place`
  `@ expand task.mq --expanded -o flattened.mq`
  `@ explain task.mq --task opt --expanded`
  `@ fmt task.mq -o formatted.mq`
  `@ lint --strict ./cases`

## Tool split:
  Use `mqdb` for all database sync/query/template/compare workflows; `@` stays focused on templates, projects, rename, format/migrate/expand/explain, and lint.
)";

std::string commandLine(const CommandEntry& entry) {
    std::string field(entry.name);
    field.resize(std::max<std::size_t>(field.size(), 10), ' ');
    return "  `" + field + "` " + std::string(entry.description) + "\n";
}

} // namespace

int dispatchCommand(int argc, char** argv) {
    if (argc < 2) {
        printTopLevelHelp(argc < 1 ? "" : argv[0]);
        return 1;
    }
    return console::runCommandLine([&] { return findOperation(argc, argv)(argc, argv); }, printTopLevelHelp,
                                   argv[0], console::HelpAfter::anyRefusal);
}

const OlderShape* findOlderShape(std::span<const char* const> arguments) {
    const auto found = std::find_if(olderShapes.begin(), olderShapes.end(),
                                    [&](const OlderShape& shape) { return shape.matches(arguments); });
    return found == olderShapes.end() ? nullptr : &*found;
}

void printTopLevelHelp(std::string_view programPath) {
    std::string text(helpBefore);
    for (const auto& entry : commandTable()) {
        text += commandLine(entry);
    }
    console::printHelp(text += helpAfter, programPath);
}

} // namespace morquill::app
