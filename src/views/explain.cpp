#include "views/explain.h"

#include "console/command_line.h"
#include "console/console.h"
#include "console/help_text.h"
#include "console/library_file.h"
#include "console/logger.h"
#include "support/fault.h"
#include "support/json.h"
#include "support/large_memory.h"
#include "support/line_builder.h"
#include "support/text.h"
#include "taskdsl/parser/task_parser.h"
#include "taskdsl/task/source_spec.h"

#include <algorithm>
#include <exception>
#include <span>
#include <string>
#include <vector>

namespace morquill::views {

using console::writeOut;
using taskdsl::TaskDocument;
using taskdsl::TaskInfo;

namespace {

struct ExplainOptions {
    std::string taskName; ///< empty for all tasks
    std::string format = "text";
    bool expanded = false;
    std::string inputPath;
};

/// The tasks of the document in the chosen view.
struct ExplainView {
    const TaskDocument& document;
    std::vector<const TaskInfo*> tasks;
    bool expanded;
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
    options.expanded = true;
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

ExplainView makeView(const TaskDocument& document, const ExplainOptions& options) {
    const auto& tasks =
        options.expanded || document.templateTasks.empty() ? document.tasks : document.templateTasks;
    ExplainView view{document, {}, options.expanded};
    for (const TaskInfo& task : tasks) {
        if (options.taskName.empty() || task.name == options.taskName) {
            view.tasks.push_back(&task);
        }
    }
    return view;
}

/// The source as its directive has it: unlike the canonical writer,
/// this view does not show an "origin" that is not in the file.
std::string declaredSource(const TaskInfo& task) {
    const bool declared = std::any_of(task.directives.begin(), task.directives.end(),
                                      [](const taskdsl::TaskDirective& d) { return d.name == "source"; });
    if (!declared) {
        return {};
    }
    requireNumericFrame(task.source);
    return formatSourceSpec(task.source);
}

std::string dslVersion(const TaskDocument& document, std::string_view missing) {
    const auto found = document.settings.find("dsl_version");
    return found == document.settings.end() ? std::string(missing) : found->second;
}

std::string_view boolText(bool value) noexcept {
    return value ? "true" : "false";
}

void addTaskText(LineBuilder& out, const TaskInfo& task) {
    out.line("task: ", task.name);
    out.line("  block_span: ", formatSpan(task.headerSpan));
    out.line("  program: ", taskdsl::programName(task.program));
    if (taskdsl::hasStructuredSource(task)) {
        out.line("  source:");
        for (const auto& binding : sourceBindings(task)) {
            out.line("    ", taskdsl::formatSourceBinding(binding));
        }
    } else {
        out.line("  source: ", declaredSource(task));
    }
    out.line("  dependencies: [", join(sourceTasks(task), ", "), "]");
    out.line("  use_guess: ", boolText(task.guessEnabled));
    out.line("  alert: ", boolText(task.alert));
    out.line("  localfirst: ", boolText(task.localFirst));
    out.filled("  finalgeom: ", task.finalGeom);
    out.filled("  guess_source: ", task.guessSourceTask);
    out.filled("  guess_converter: ", task.guessConverter);
    if (task.templateTaskName != task.name) {
        out.filled("  template_task_name: ", task.templateTaskName);
    }
    out.filled("  matrix_variant_key: ", task.matrixVariantKey);
    if (!task.whenEntries.empty()) {
        out.line("  when_conditions:");
        for (const auto& condition : task.whenEntries) {
            out.line("    - ", condition.text, "    [", formatSpan(condition.span), "]");
        }
    }
    if (!task.directives.empty()) {
        out.line("  directives:");
        for (const auto& directive : task.directives) {
            out.line("    - %", directive.name, directive.value.empty() ? "" : " ", directive.value, "    [",
                     formatSpan(directive.span), "]");
        }
    }
}

std::string renderText(const ExplainView& view) {
    LineBuilder out;
    out.line("file: ", view.document.filePath);
    out.line("dsl_version: ", dslVersion(view.document, "<missing>"));
    out.line("task_view: ", view.expanded ? "expanded" : "source");
    out.line("task_count: ", std::to_string(view.tasks.size()));
    out.line("expanded_task_count: ", std::to_string(view.document.tasks.size()));
    out.line();
    for (const TaskInfo* task : view.tasks) {
        if (task != view.tasks.front()) {
            out.line();
        }
        addTaskText(out, *task);
    }
    return out.take();
}

/// A one-line JSON array of the values that `item` makes of the elements.
template <class List, class Item>
std::string jsonArray(const List& list, const Item& item) {
    std::string out = "[";
    for (const auto& element : list) {
        out += &element == &*std::begin(list) ? "" : ", ";
        out += item(element);
    }
    return out + "]";
}

void addTaskJson(LineBuilder& out, const TaskInfo& task) {
    const auto key = [&out](std::string_view name, const std::string& value, std::string_view end = ",") {
        out.line("      \"", name, "\": ", value, end);
    };
    const auto text = [&key](std::string_view name, std::string_view value) { key(name, jsonString(value)); };
    const auto flag = [&key](std::string_view name, bool value) { key(name, std::string(boolText(value))); };
    out.line("    {");
    text("name", task.name);
    text("block_span", formatSpan(task.headerSpan));
    text("program", taskdsl::programName(task.program));
    text("source", declaredSource(task));
    key("dependencies",
        jsonArray(sourceTasks(task), [](const std::string& name) { return jsonString(name); }));
    flag("use_guess", task.guessEnabled);
    flag("alert", task.alert);
    flag("localfirst", task.localFirst);
    text("finalgeom", task.finalGeom);
    text("guess_source_task", task.guessSourceTask);
    text("guess_converter", task.guessConverter);
    text("template_task_name", task.templateTaskName);
    text("matrix_variant_key", task.matrixVariantKey);
    key("when_conditions", jsonArray(task.whenEntries, [](const taskdsl::TaskWhenEntry& condition) {
            return R"({"text": )" + jsonString(condition.text) + R"(, "span": )" +
                   jsonString(formatSpan(condition.span)) + "}";
        }));
    key("directives",
        jsonArray(task.directives.get(),
                  [](const taskdsl::TaskDirective& directive) {
                      return R"({"name": )" + jsonString(directive.name) + R"(, "argument": )" +
                             jsonString(directive.value) + R"(, "span": )" +
                             jsonString(formatSpan(directive.span)) + "}";
                  }),
        "");
    out.open("    }");
}

std::string renderJson(const ExplainView& view) {
    LineBuilder out;
    out.line("{");
    const auto key = [&out](std::string_view name, const std::string& value) {
        out.line("  \"", name, "\": ", value, ",");
    };
    key("file", jsonString(view.document.filePath));
    key("dsl_version", jsonString(dslVersion(view.document, "")));
    key("task_view", jsonString(view.expanded ? "expanded" : "source"));
    key("task_count", std::to_string(view.tasks.size()));
    key("expanded_task_count", std::to_string(view.document.tasks.size()));
    out.line(R"(  "tasks": [)");
    for (const TaskInfo* task : view.tasks) {
        addTaskJson(out, *task);
        out.add(task == view.tasks.back() ? "" : ",").close();
    }
    out.line("  ]");
    out.line("}");
    return out.take();
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
        const ExplainView view = makeView(document, options);
        if (view.tasks.empty() && !options.taskName.empty()) {
            throw usageError("task not found in explain view: " + options.taskName);
        }
        writeOut(options.format == "json" ? renderJson(view) : renderText(view));
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
