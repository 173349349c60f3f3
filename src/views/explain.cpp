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
#include <optional>
#include <string>
#include <utility>

namespace morquill::views {

using console::writeOut;
using taskdsl::TaskDocument;

namespace {

struct ExplainOptions {
    std::string taskName; ///< empty for all tasks
    console::ReportFormat format = console::ReportFormat::text;
    ExplainedTasks tasks = ExplainedTasks::declared;
    std::string inputPath;
};

void setTask(ExplainOptions& options, console::Words values) {
    options.taskName = values.front();
}

void setFormat(ExplainOptions& options, console::Words values) {
    const auto format = console::reportFormats.findExact(values.front());
    if (!format) {
        throw console::bareRefusal("unsupported explain format: " + std::string(values.front()));
    }
    options.format = *format;
}

void setExpanded(ExplainOptions& options, console::Words /*values*/) {
    options.tasks = ExplainedTasks::expanded;
}

// clang-format off
constexpr console::OptionRow<ExplainOptions> optionRows[] = {
    {"-h",         console::noValue,  console::askHelp},
    {"--help",     console::noValue,  console::askHelp},
    {"--task",     console::oneValue, setTask,   "--task expects a value",   console::ErrorTag::none},
    {"--format",   console::oneValue, setFormat, "--format expects a value", console::ErrorTag::none},
    {"--expanded", console::noValue,  setExpanded},
};
// clang-format on

/// Reads the words after the command word. Throws `UsageError`: without a path, the help is to be shown.
ExplainOptions readCommandLine(int argc, char** argv) {
    if (argc < 3) {
        throw console::bareRefusal("explain expects a <task.mq> path");
    }
    ExplainOptions options;
    std::optional<std::string> path;
    console::readWords(console::wordsFrom(argc, argv, 2), optionRows, options, [&](console::Words words) {
        const std::string_view word = words.front();
        if (word.starts_with('-')) {
            throw console::bareRefusal("unknown explain option: " + std::string(word));
        }
        return console::takeOnePath(path, words, console::ErrorTag::none, "unexpected extra argument: ");
    });
    if (!path || path->empty()) {
        throw console::HelpRequest();
    }
    options.inputPath = *std::move(path);
    return options;
}

constexpr std::string_view explainHelp = R"(Usage:
  @ explain <task.mq> [--task <name>] [--format text|json] [--expanded]

Options:
  --task <name>        explain only one task block
  --format <fmt>       text (default) or json
  --expanded           explain matrix-expanded task names
)";

int explainFile(const ExplainOptions& options) {
    const taskdsl::TaskParser parser(
        {.findLibraryFile = console::findLibraryFile, .warnings = console::logWarning});
    const TaskDocument& document = keepUntilExit(parser.parseInput(options.inputPath));
    const ExplainView view = makeExplainView(document, options.tasks, options.taskName);
    if (view.tasks.empty() && !options.taskName.empty()) {
        throw console::bareRefusal("task not found in explain view: " + options.taskName);
    }
    writeOut(options.format == console::ReportFormat::json ? explainJson(view) : explainText(view));
    return 0;
}

} // namespace

int runExplain(int argc, char** argv) {
    ExplainOptions options;
    const auto run = [&] { return explainFile(options = readCommandLine(argc, argv)); };
    try {
        return console::runCommandLine(run, printExplainHelp, argv[0], console::HelpAfter::emptyRefusal);
    } catch (const std::exception& error) {
        console::reportError(console::ErrorTag::none, faultText(error, options.inputPath));
        return 1;
    }
}

void printExplainHelp(std::string_view programPath) {
    console::printHelp(explainHelp, programPath);
}

} // namespace morquill::views
