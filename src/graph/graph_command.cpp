#include "graph/graph_command.h"

#include "console/command_line.h"
#include "console/console.h"
#include "console/help_text.h"
#include "console/library_file.h"
#include "console/logger.h"
#include "graph/dot_text.h"
#include "graph/mermaid_text.h"
#include "graph/study_graph.h"
#include "support/fault.h"
#include "support/word_table.h"
#include "system/filter.h"
#include "taskdsl/parser/task_parser.h"

#include <exception>
#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>
#include <utility>

namespace morquill::graph {

namespace {

/// The picture of a graph in one format.
using Renderer = std::string (*)(const StudyGraph& graph);

struct GraphOptions {
    Renderer render = renderDot;
    VariantView view = VariantView::collapsed;
    std::string inputPath;
};

/// Throws what the user has to know when Graphviz does not draw the picture.
std::string renderSvg(const StudyGraph& graph) {
    auto [process, output] = system::runFilter({"dot", "-Tsvg"}, renderDot(graph));
    if (!process.launched) {
        throw std::runtime_error("--format svg needs Graphviz: " + process.error +
                                 "; install it, or take --format dot or mermaid");
    }
    if (!succeeded(process)) {
        throw std::runtime_error("Graphviz could not draw the picture: " +
                                 describeProcessFailure("program 'dot'", process));
    }
    return std::move(output);
}

constexpr auto formats =
    wordTable<Renderer>({{"dot", renderDot}, {"mermaid", renderMermaid}, {"svg", renderSvg}});

void setFormat(GraphOptions& options, console::Words values) {
    const auto format = formats.findExact(values.front());
    if (!format) {
        throw console::bareRefusal("unsupported graph format: " + std::string(values.front()));
    }
    options.render = *format;
}

void setExpanded(GraphOptions& options, console::Words /*values*/) {
    options.view = VariantView::expanded;
}

// clang-format off
constexpr console::OptionRow<GraphOptions> optionRows[] = {
    {"-h",         console::noValue,  console::askHelp},
    {"--help",     console::noValue,  console::askHelp},
    {"--format",   console::oneValue, setFormat, "--format expects a value", console::ErrorTag::none},
    {"--expanded", console::noValue,  setExpanded},
};
// clang-format on

/// Reads the words after the program. Throws `UsageError`.
GraphOptions readCommandLine(int argc, char** argv) {
    GraphOptions options;
    std::optional<std::string> path;
    console::readWords(console::wordsFrom(argc, argv, 1), optionRows, options,
                       [&](console::Words words) { return console::takeOnlyPath(path, words, "graph"); });
    if (!path) {
        throw console::bareRefusal("mqkit-graph expects a <task.mq> path");
    }
    options.inputPath = *std::move(path);
    return options;
}

constexpr std::string_view helpText = R"(Usage:
  @ <task.mq> [--expanded] [--format dot|mermaid|svg]

Options:
  --expanded           draw every matrix variant, not one box for all of a task
  --format <fmt>       dot (default), mermaid, or svg, which needs Graphviz
)";

void printGraphHelp(std::string_view programPath) {
    console::printHelp(helpText, programPath);
}

int drawFile(const GraphOptions& options) {
    const auto document =
        taskdsl::TaskParser({.findLibraryFile = console::findLibraryFile, .warnings = console::logWarning})
            .parseInput(options.inputPath);
    console::writeOut(options.render(buildStudyGraph(document, options.view)));
    return 0;
}

} // namespace

int runGraph(int argc, char** argv) {
    GraphOptions options;
    const auto run = [&] { return drawFile(options = readCommandLine(argc, argv)); };
    try {
        return console::runCommandLine(run, printGraphHelp, argv[0], console::HelpAfter::emptyRefusal);
    } catch (const std::exception& error) {
        console::reportError(console::ErrorTag::none, faultText(error, options.inputPath));
        return 1;
    }
}

} // namespace morquill::graph
