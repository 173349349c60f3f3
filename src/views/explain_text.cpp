#include "views/explain_text.h"

#include "support/json.h"
#include "support/line_builder.h"
#include "support/text.h"
#include "taskdsl/task/source_spec.h"

namespace morquill::views {

using taskdsl::TaskDocument;
using taskdsl::TaskInfo;

namespace {

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

} // namespace

ExplainView makeExplainView(const TaskDocument& document, ExplainedTasks which, std::string_view name) {
    const bool expanded = which == ExplainedTasks::expanded;
    const auto& tasks = expanded ? document.tasks : declaredTasks(document);
    ExplainView view{document, {}, expanded};
    for (const TaskInfo& task : tasks) {
        if (name.empty() || task.name == name) {
            view.tasks.push_back(&task);
        }
    }
    return view;
}

std::string explainText(const ExplainView& view) {
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

std::string explainJson(const ExplainView& view) {
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

} // namespace morquill::views
