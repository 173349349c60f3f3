#include "app/dispatch.h"

#include "app/command_table.h"
#include "console/command_line.h"
#include "console/console.h"
#include "console/help_text.h"
#include "console/logger.h"
#include "console/messages.h"
#include "project/project_command.h"
#include "project/rename/rename.h"
#include "support/fault.h"
#include "support/text.h"
#include "templates/template_command.h"

#include <algorithm>
#include <array>
#include <cstdlib>
#include <exception>
#include <span>
#include <string>
#include <system_error>
#include <vector>

namespace morquill::app {

namespace {

using Arguments = std::span<const char* const>;

template <std::size_t N>
bool isOneOf(const std::array<std::string_view, N>& words, std::string_view word) {
    return std::find(words.begin(), words.end(), word) != words.end();
}

/// True for an argument that names a file with this ending rather than being an option.
bool namesFile(std::string_view argument, std::string_view ending) {
    return !argument.starts_with('-') && argument.ends_with(ending);
}

bool isRenameShape(Arguments arguments) {
    static constexpr std::array<std::string_view, 2> options{"-r", "--rename"};
    return std::any_of(arguments.begin(), arguments.end(),
                       [](std::string_view argument) { return isOneOf(options, argument); }) &&
           std::any_of(arguments.begin(), arguments.end(), [](std::string_view argument) {
               return namesFile(argument, ".mq") || namesFile(argument, ".projmq");
           });
}

bool isUpdateShape(Arguments arguments) {
    static constexpr std::array<std::string_view, 4> options{"-b", "--batch", "-u", "--update"};
    return !arguments.empty() && isOneOf(options, arguments.front());
}

bool isProjectShape(Arguments arguments) {
    static constexpr std::array<std::string_view, 9> options{"-n",         "--name",       "--exec",
                                                             "--collect",  "--rebuild",    "--dry-run",
                                                             "--run-comd", "--run-script", "--run-runner"};
    return std::any_of(arguments.begin(), arguments.end(), [](std::string_view argument) {
        return isOneOf(options, argument) || namesFile(argument, ".projmq");
    });
}

bool isTemplateShape(Arguments arguments) {
    static constexpr std::array<std::string_view, 12> options{
        "-t",         "-i",      "-l",        "-c", "-m", "-v", "--test", "--list", "--interactive",
        "--category", "--merge", "--variable"};
    return !arguments.empty() && isOneOf(options, arguments.front());
}

// In the order in which they are tried: the first that matches takes the whole command line.
constexpr std::array<OlderShape, 4> olderShapes{{
    {"rename", isRenameShape, project::runRenameCompatibility},
    {"update", isUpdateShape, project::runUpdateCompatibility},
    {"project", isProjectShape, project::runProjectCompatibility},
    {"template", isTemplateShape, templates::runTemplateCompat},
}};

console::UsageError refusal(const std::string& message) {
    return console::UsageError(console::ErrorTag::coloured, message);
}

/// The command that a word or its prefix names; null when there is none. Throws `UsageError` when there are
/// several; `what` is what the word was meant to be.
const CommandEntry* findOneCommand(const std::string& word, std::string_view what) {
    std::vector<std::string> matches;
    const CommandEntry* entry = findCommand(commandTable(), word, matches);
    if (matches.size() > 1) {
        throw refusal("ambiguous " + std::string(what) + " prefix: " + word +
                      " (matches: " + join(matches, ", ") + ")");
    }
    return entry;
}

/// The help that is asked for behind the help word. Throws `UsageError`.
HelpOperation findTopic(int argc, char** argv) {
    if (argc == 2) {
        return printTopLevelHelp;
    }
    const std::string topic = argv[2];
    const CommandEntry* entry = findOneCommand(topic, "help topic");
    if (entry == nullptr || entry->help == nullptr) {
        throw refusal("unknown help topic: " + topic);
    }
    return entry->help;
}

int showHelp(int argc, char** argv) {
    findTopic(argc, argv)(argv[0]);
    return 0;
}

/// What answers a command line of at least one word. Throws `UsageError`.
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
    throw refusal("unknown command or argument: " + first);
}

/// The overview in front of the list of commands, and behind it.
constexpr std::string_view helpBefore = R"(  Mqkit: A unified entry point for .mq and .projmq workflows.
# Usage:
  `@ <command> [options]`
  `@ help <command>`
  Commands accept unique prefixes, for example `@ proj co`.

# Commands:
)";

constexpr std::string_view helpBehind = R"(
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

/// Kept apart from its caller: the stack is unwound up to a function that may not throw, but that function's
/// own objects are not destroyed.
[[gnu::noinline]] int runUnguarded(int argc, char** argv, int (*command)(int argc, char** argv)) {
    const console::LogSession session("mqkit", argc, argv, console::LogLevel::Warning,
                                      console::LogLevel::Skip);
    try {
        return console::finishOutput(command(argc, argv));
    } catch (const std::exception& fault) {
        // Neither a lack of memory nor a failing file system is a fault of the program; whatever else gets
        // here is one and ends it.
        if (!isOutOfMemory(fault) && dynamic_cast<const std::system_error*>(&fault) == nullptr) {
            throw;
        }
        console::reportError(console::ErrorTag::coloured, faultText(fault, {}));
        return console::finishOutput(1);
    }
}

std::terminate_handler usualEnd = nullptr;

/// True when there was no memory for the exception itself, or none for the message about it.
bool endsForLackOfMemory() noexcept {
    if (std::current_exception() == nullptr) {
        return true;
    }
    try {
        throw;
    } catch (const std::exception& fault) {
        return isOutOfMemory(fault);
    } catch (...) {
        return false;
    }
}

[[noreturn]] void endWithoutMemory() {
    if (endsForLackOfMemory()) {
        console::reportErrorInPieces({"out of memory"});
        std::_Exit(1);
    }
    usualEnd();
    std::abort();
}

} // namespace

int dispatchCommand(int argc, char** argv) {
    if (argc < 2) {
        printTopLevelHelp(argc < 1 ? "" : argv[0]);
        return 1;
    }
    try {
        return findOperation(argc, argv)(argc, argv);
    } catch (const console::UsageError& error) {
        const int status = console::reportUsageError(error);
        printTopLevelHelp(argv[0]);
        return status;
    }
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
    console::printHelp(text += helpBehind, programPath);
}

int runInSession(int argc, char** argv, int (*command)(int argc, char** argv)) noexcept {
    console::prepareStandardStreams();
    usualEnd = std::set_terminate(endWithoutMemory);
    return runUnguarded(argc, argv, command);
}

} // namespace morquill::app
