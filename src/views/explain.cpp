#include "views/explain.h"

#include "console/command_line.h"
#include "console/console.h"
#include "console/help_text.h"
#include "console/library_file.h"
#include "console/logger.h"
#include "support/fault.h"
#include "support/large_memory.h"
#include "taskdsl/parser/task_parser.h"
#include "views/explain_text.h"

#include <exception>
#include <string>

namespace morquill::views {

using console::writeOut;
using taskdsl::TaskDocument;

namespace {

struct ExplainOptions {
    std::string taskName; ///< empty for all tasks
    std::string format = "text";
    ExplainedTasks tasks = ExplainedTasks::declared;
    std::string inputPath;
};

console::UsageError usageError(const std::string& message) {
    return console::UsageError(console::ErrorTag::none, message);
}

void setTask(ExplainOptions& options, console::Words values) {
    options.taskName = values.front();
}

void setFormat(ExplainOptions& options, console::Words values) {
    const std::string_view value = values.front();
    if (value != "text" && value != "json") {
        throw usageError("unsupported explain format: " + std::string(value));
    }
    options.format = value;
}

void setExpanded(ExplainOptions& options, console::Words /*values*/) {
    options.tasks = ExplainedTasks::expanded;
}

/// Requests the help: there is no path, and the words after this one are ignored.
void askHelp(ExplainOptions& options, console::Words /*values*/) {
    options.inputPath.clear();
}

// clang-format off
constexpr console::OptionRow<ExplainOptions> optionRows[] = {
    {"-h",         console::restOfLine, askHelp},
    {"--help",     console::restOfLine, askHelp},
    {"--task",     console::oneValue,   setTask,   "--task expects a value",   console::ErrorTag::none},
    {"--format",   console::oneValue,   setFormat, "--format expects a value", console::ErrorTag::none},
    {"--expanded", console::noValue,    setExpanded},
};
// clang-format on

/// Reads the words after the command word; without a path, the help is to be shown. Throws `UsageError`.
ExplainOptions readCommandLine(int argc, char** argv) {
    if (argc < 3) {
        throw usageError("explain expects a <task.mq> path");
    }
    ExplainOptions options;
    bool hasPath = false;
    console::readWords(console::wordsFrom(argc, argv, 2), optionRows, options, [&](console::Words words) {
        const std::string_view word = words.front();
        if (word.starts_with('-')) {
            throw usageError("unknown explain option: " + std::string(word));
        }
        if (hasPath) {
            throw usageError("unexpected extra argument: " + std::string(word));
        }
        options.inputPath = word;
        hasPath = true;
        return std::size_t{1};
    });
    return options;
}

constexpr std::string_view explainHelp = R"(Usage:
  @ explain <task.mq> [--task <name>] [--format text|json] [--expanded]

Options:
  --task <name>        explain only one task block
  --format <fmt>       text (default) or json
  --expanded           explain matrix-expanded task names
)";

} // namespace

int runExplain(int argc, char** argv) {
    ExplainOptions options;
    try {
        options = readCommandLine(argc, argv);
        if (options.inputPath.empty()) {
            printExplainHelp(argv[0]);
            return 0;
        }
        const taskdsl::TaskParser parser(
            {.findLibraryFile = console::findLibraryFile, .warnings = console::logWarning});
        const TaskDocument& document = keepUntilExit(parser.parseInput(options.inputPath));
        const ExplainView view = makeExplainView(document, options.tasks, options.taskName);
        if (view.tasks.empty() && !options.taskName.empty()) {
            throw usageError("task not found in explain view: " + options.taskName);
        }
        writeOut(options.format == "json" ? explainJson(view) : explainText(view));
        return 0;
    } catch (const console::UsageError& error) {
        return console::reportUsageError(error);
    } catch (const std::exception& error) {
        console::reportError(console::ErrorTag::none, faultText(error, options.inputPath));
        return 1;
    }
}

void printExplainHelp(std::string_view programPath) {
    console::printHelp(explainHelp, programPath);
}

} // namespace morquill::views
