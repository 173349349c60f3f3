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

#include <exception>
#include <optional>
#include <span>
#include <string>
#include <utility>
#include <vector>

namespace morquill::views {

using console::writeOut;
using taskdsl::TaskDocument;
using taskdsl::TaskInfo;

namespace {

struct ExplainOptions {
    std::string taskName; ///< empty for all tasks
    console::ReportFormat format = console::ReportFormat::text;
    bool expanded = false;
    std::string inputPath;
};

/// The tasks of the document in the chosen view.
struct ExplainView {
    const TaskDocument& document;
    std::vector<const TaskInfo*> tasks;
    bool expanded;
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
    options.expanded = true;
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
    console::readWords(console::wordsFrom(argc, argv, 2), optionRows, options,
                       [&](console::Words words) { return console::takeOnlyPath(path, words, "explain"); });
    if (!path || path->empty()) {
        throw console::HelpRequest();
    }
    options.inputPath = *std::move(path);
    return options;
}

ExplainView makeView(const TaskDocument& document, const ExplainOptions& options) {
    const auto& tasks = options.expanded ? document.tasks : declaredTasks(document);
    ExplainView view{document, {}, options.expanded};
    for (const TaskInfo& task : tasks) {
        if (options.taskName.empty() || task.name == options.taskName) {
            view.tasks.push_back(&task);
        }
    }
    return view;
}

constexpr std::size_t typicalTaskSize = 1024; ///< bytes in print

/// The source as its directive has it: unlike the canonical writer,
/// this view does not show an "origin" that is not in the file.
std::string declaredSource(const TaskInfo& task) {
    if (firstDirective(task, "source") == nullptr) {
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

/// Ends a line with a place in brackets.
void closeWithPlace(LineBuilder& out, const taskdsl::SourceSpan& span) {
    out.add("    [").addWith([&span](std::string& text) { appendSpan(text, span); }).add("]").close();
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
            out.open("    - ", condition.text);
            closeWithPlace(out, condition.span);
        }
    }
    if (!task.directives.empty()) {
        out.line("  directives:");
        for (const auto& directive : task.directives) {
            out.open("    - %", directive.name, directive.value.empty() ? "" : " ", directive.value);
            closeWithPlace(out, directive.span);
        }
    }
}

std::string renderText(const ExplainView& view) {
    LineBuilder out;
    out.reserve(view.tasks.size() * typicalTaskSize);
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

/// The lines of one task's JSON object, each but the last followed by a comma.
class TaskJson {
  public:
    explicit TaskJson(LineBuilder& out) : out_(out) {}

    void text(std::string_view name, std::string_view value) {
        key(name);
        string(value);
        out_.add(",").close();
    }
    void flag(std::string_view name, bool value) {
        key(name);
        out_.add(boolText(value), ",").close();
    }
    void span(std::string_view name, const taskdsl::SourceSpan& value) {
        key(name);
        place(value);
        out_.add(",").close();
    }
    /// A one-line array; `item` adds an element. The comma is left to the caller.
    template <class List, class Item>
    LineBuilder& array(std::string_view name, const List& list, const Item& item) {
        key(name);
        out_.add("[");
        for (const auto& element : list) {
            out_.add(&element == &*std::begin(list) ? "" : ", ");
            item(element);
        }
        return out_.add("]");
    }
    void string(std::string_view value) {
        out_.addWith([value](std::string& text) { appendJsonString(text, value); });
    }
    void place(const taskdsl::SourceSpan& value) {
        place_.clear();
        appendSpan(place_, value);
        string(place_);
    }

  private:
    void key(std::string_view name) { out_.open("      \"", name, "\": "); }

    LineBuilder& out_;
    std::string place_;
};

void addTaskJson(LineBuilder& out, const TaskInfo& task) {
    TaskJson json(out);
    out.line("    {");
    json.text("name", task.name);
    json.span("block_span", task.headerSpan);
    json.text("program", taskdsl::programName(task.program));
    json.text("source", declaredSource(task));
    json.array("dependencies", sourceTasks(task), [&json](const std::string& name) { json.string(name); })
        .add(",")
        .close();
    json.flag("use_guess", task.guessEnabled);
    json.flag("alert", task.alert);
    json.flag("localfirst", task.localFirst);
    json.text("finalgeom", task.finalGeom);
    json.text("guess_source_task", task.guessSourceTask);
    json.text("guess_converter", task.guessConverter);
    json.text("template_task_name", task.templateTaskName);
    json.text("matrix_variant_key", task.matrixVariantKey);
    json.array("when_conditions", task.whenEntries,
               [&](const taskdsl::TaskWhenEntry& condition) {
                   out.add(R"({"text": )");
                   json.string(condition.text);
                   out.add(R"(, "span": )");
                   json.place(condition.span);
                   out.add("}");
               })
        .add(",")
        .close();
    json.array("directives", task.directives,
               [&](const taskdsl::TaskDirective& directive) {
                   out.add(R"({"name": )");
                   json.string(directive.name);
                   out.add(R"(, "argument": )");
                   json.string(directive.value);
                   out.add(R"(, "span": )");
                   json.place(directive.span);
                   out.add("}");
               })
        .close();
    out.open("    }");
}

std::string renderJson(const ExplainView& view) {
    LineBuilder out;
    out.reserve(view.tasks.size() * typicalTaskSize);
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

int explainFile(const ExplainOptions& options) {
    const taskdsl::TaskParser parser(
        {.findLibraryFile = console::findLibraryFile, .warnings = console::logWarning});
    const TaskDocument& document = keepUntilExit(parser.parseInput(options.inputPath));
    const ExplainView view = makeView(document, options);
    if (view.tasks.empty() && !options.taskName.empty()) {
        throw console::bareRefusal("task not found in explain view: " + options.taskName);
    }
    writeOut(options.format == console::ReportFormat::json ? renderJson(view) : renderText(view));
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
