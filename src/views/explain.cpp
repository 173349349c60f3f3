#include "views/explain.h"

#include "frontend/console.h"
#include "support/fault.h"
#include "support/json.h"
#include "support/text.h"
#include "taskdsl/source_spec.h"
#include "taskdsl/task_parser.h"

#include <algorithm>
#include <exception>
#include <optional>
#include <string>
#include <vector>

namespace morquill::views {

using frontend::writeErr;
using frontend::writeOut;
using taskdsl::TaskDocument;
using taskdsl::TaskInfo;

namespace {

struct ExplainOptions {
    std::string taskName; ///< empty for all
    std::string format = "text";
    bool expanded = false;
    std::string inputPath;
};

/// What is shown of a document: the tasks of the chosen view.
struct ExplainView {
    const TaskDocument& document;
    std::vector<const TaskInfo*> tasks;
    bool expanded;
};

int refuse(const std::string& text) {
    writeErr(text + "\n");
    return 1;
}

/// Reads the arguments behind the command word; the exit status when the command ends here.
std::optional<int> readArguments(int argc, char** argv, ExplainOptions& options) {
    if (argc < 3) {
        return refuse("explain expects a <task.mq> path");
    }
    bool hasPath = false;
    for (int i = 2; i < argc; ++i) {
        const std::string argument = argv[i];
        if (argument == "-h" || argument == "--help") {
            options.inputPath.clear();
            break;
        }
        if (argument == "--task" || argument == "--format") {
            if (i + 1 == argc) {
                return refuse(argument + " expects a value");
            }
            const std::string value = argv[++i];
            if (argument == "--task") {
                options.taskName = value;
            } else if (value == "text" || value == "json") {
                options.format = value;
            } else {
                return refuse("unsupported explain format: " + value);
            }
        } else if (argument == "--expanded") {
            options.expanded = true;
        } else if (argument.starts_with('-')) {
            return refuse("unknown explain option: " + argument);
        } else if (hasPath) {
            return refuse("unexpected extra argument: " + argument);
        } else {
            options.inputPath = argument;
            hasPath = true;
        }
    }
    if (options.inputPath.empty()) {
        printExplainHelp(argv[0]);
        return 0;
    }
    return std::nullopt;
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

/// The source as its directive gave it: unlike the canonical writer, this view shows no "origin" that nobody
/// wrote.
std::string sourceText(const TaskInfo& task) {
    const bool declared = std::any_of(task.directives.begin(), task.directives.end(),
                                      [](const taskdsl::TaskDirective& d) { return d.name == "source"; });
    return declared ? taskdsl::formatSourceSpec(taskdsl::sourceSpecOf(task)) : std::string();
}

/// The place of the condition with that number, in the task's file.
std::string conditionSpan(const TaskInfo& task, std::size_t number) {
    return number < task.whenEntries.size() ? formatSpan(task.whenEntries[number].span) : "<unknown>";
}

std::string dslVersion(const TaskDocument& document, std::string_view missing) {
    const auto found = document.settings.find("dsl_version");
    return found == document.settings.end() ? std::string(missing) : found->second;
}

std::string_view boolText(bool value) noexcept {
    return value ? "true" : "false";
}

template <class... Pieces>
void addLine(std::string& out, const Pieces&... pieces) {
    (out.append(std::string_view(pieces)), ...);
    out += '\n';
}

void addFilled(std::string& out, std::string_view label, std::string_view value) {
    if (!value.empty()) {
        addLine(out, label, value);
    }
}

void addTaskText(std::string& out, const TaskInfo& task) {
    addLine(out, "task: ", task.name);
    addLine(out, "  block_span: ", formatSpan(task.headerSpan));
    addLine(out, "  program: ", taskdsl::programName(task.program));
    if (taskdsl::hasStructuredSource(task)) {
        addLine(out, "  source:");
        for (const auto& binding : task.sourceBindings) {
            addLine(out, "    ", taskdsl::formatSourceBinding(binding));
        }
    } else {
        addLine(out, "  source: ", sourceText(task));
    }
    addLine(out, "  dependencies: [", join(task.sourceTasks, ", "), "]");
    addLine(out, "  use_guess: ", boolText(task.guessEnabled));
    addLine(out, "  alert: ", boolText(task.alert));
    addLine(out, "  localfirst: ", boolText(task.localFirst));
    addFilled(out, "  finalgeom: ", task.finalGeom);
    addFilled(out, "  guess_source: ", task.guessSourceTask);
    addFilled(out, "  guess_converter: ", task.guessConverter);
    if (task.templateTaskName != task.name) {
        addFilled(out, "  template_task_name: ", task.templateTaskName);
    }
    addFilled(out, "  matrix_variant_key: ", task.matrixVariantKey);
    if (!task.whenConditions.empty()) {
        addLine(out, "  when_conditions:");
        for (std::size_t i = 0; i < task.whenConditions.size(); ++i) {
            addLine(out, "    - ", task.whenConditions[i], "    [", conditionSpan(task, i), "]");
        }
    }
    if (!task.directives.empty()) {
        addLine(out, "  directives:");
        for (const auto& directive : task.directives) {
            addLine(out, "    - %", directive.name, directive.value.empty() ? "" : " ", directive.value,
                    "    [", formatSpan(directive.span), "]");
        }
    }
}

std::string renderText(const ExplainView& view) {
    std::string out;
    addLine(out, "file: ", view.document.filePath);
    addLine(out, "dsl_version: ", dslVersion(view.document, "<missing>"));
    addLine(out, "task_view: ", view.expanded ? "expanded" : "source");
    addLine(out, "task_count: ", std::to_string(view.tasks.size()));
    addLine(out, "expanded_task_count: ", std::to_string(view.document.tasks.size()));
    addLine(out);
    for (const TaskInfo* task : view.tasks) {
        if (task != view.tasks.front()) {
            addLine(out);
        }
        addTaskText(out, *task);
    }
    return out;
}

/// One-line array of the JSON values that `item` makes of the elements.
template <class List, class Item>
std::string jsonArray(const List& list, const Item& item) {
    std::string out = "[";
    std::size_t number = 0;
    for (const auto& element : list) {
        out += number == 0 ? "" : ", ";
        out += item(element, number++);
    }
    return out + "]";
}

void addTaskJson(std::string& out, const TaskInfo& task) {
    const auto key = [&out](std::string_view name, const std::string& value, std::string_view end = ",") {
        addLine(out, "      \"", name, "\": ", value, end);
    };
    const auto text = [&key](std::string_view name, std::string_view value) { key(name, jsonString(value)); };
    const auto flag = [&key](std::string_view name, bool value) { key(name, std::string(boolText(value))); };
    addLine(out, "    {");
    text("name", task.name);
    text("block_span", formatSpan(task.headerSpan));
    text("program", taskdsl::programName(task.program));
    text("source", sourceText(task));
    key("dependencies",
        jsonArray(task.sourceTasks, [](const std::string& name, std::size_t) { return jsonString(name); }));
    flag("use_guess", task.guessEnabled);
    flag("alert", task.alert);
    flag("localfirst", task.localFirst);
    text("finalgeom", task.finalGeom);
    text("guess_source_task", task.guessSourceTask);
    text("guess_converter", task.guessConverter);
    text("template_task_name", task.templateTaskName);
    text("matrix_variant_key", task.matrixVariantKey);
    key("when_conditions",
        jsonArray(task.whenConditions, [&task](const std::string& condition, std::size_t number) {
            return R"({"text": )" + jsonString(condition) + R"(, "span": )" +
                   jsonString(conditionSpan(task, number)) + "}";
        }));
    key("directives",
        jsonArray(task.directives.get(),
                  [](const taskdsl::TaskDirective& directive, std::size_t) {
                      return R"({"name": )" + jsonString(directive.name) + R"(, "argument": )" +
                             jsonString(directive.value) + R"(, "span": )" +
                             jsonString(formatSpan(directive.span)) + "}";
                  }),
        "");
    out += "    }";
}

std::string renderJson(const ExplainView& view) {
    std::string out = "{\n";
    const auto key = [&out](std::string_view name, const std::string& value) {
        addLine(out, "  \"", name, "\": ", value, ",");
    };
    key("file", jsonString(view.document.filePath));
    key("dsl_version", jsonString(dslVersion(view.document, "")));
    key("task_view", jsonString(view.expanded ? "expanded" : "source"));
    key("task_count", std::to_string(view.tasks.size()));
    key("expanded_task_count", std::to_string(view.document.tasks.size()));
    addLine(out, R"(  "tasks": [)");
    for (const TaskInfo* task : view.tasks) {
        addTaskJson(out, *task);
        addLine(out, task == view.tasks.back() ? "" : ",");
    }
    addLine(out, "  ]");
    addLine(out, "}");
    return out;
}

} // namespace

int runExplain(int argc, char** argv) {
    ExplainOptions options;
    if (const auto status = readArguments(argc, argv, options)) {
        return *status;
    }
    try {
        taskdsl::TaskParser parser;
        const TaskDocument document = parser.parseInput(options.inputPath);
        const ExplainView view = makeView(document, options);
        if (view.tasks.empty() && !options.taskName.empty()) {
            return refuse("task not found in explain view: " + options.taskName);
        }
        writeOut(options.format == "json" ? renderJson(view) : renderText(view));
        return 0;
    } catch (const std::exception& error) {
        return refuse(faultText(error, options.inputPath));
    }
}

void printExplainHelp(std::string_view programPath) {
    writeOut("Usage:\n  " + frontend::toolBaseName(programPath) +
             " explain <task.mq> [--task <name>] [--format text|json] [--expanded]\n"
             "\n"
             "Options:\n"
             "  --task <name>        explain only one task block\n"
             "  --format <fmt>       text (default) or json\n"
             "  --expanded           explain matrix-expanded task names\n");
}

} // namespace morquill::views
