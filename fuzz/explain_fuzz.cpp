// Any bytes as a task file that is explained: whatever is read has a text, and its JSON is JSON.

#include "fuzz_input.h"
#include "json_law.h"
#include "support/text.h"
#include "taskdsl/base/diagnostic.h"
#include "taskdsl/parser/task_parser.h"
#include "views/explain_text.h"

#include <algorithm>
#include <cstddef>

namespace {

using namespace morquill;

void holdLaw(const taskdsl::TaskDocument& document, views::ExplainedTasks tasks) {
    const auto view = views::makeExplainView(document, tasks, "");
    fuzz::holdJson(views::explainJson(view));
    const auto text = views::explainText(view);
    const auto lines = splitLines(text);
    const auto headings = std::count_if(lines.begin(), lines.end(),
                                        [](std::string_view line) { return line.starts_with("task: "); });
    fuzz::require(static_cast<std::size_t>(headings) >= view.tasks.size(), "each task has its heading", text);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    try {
        const auto document = taskdsl::TaskParser().parseText(fuzz::textOf(data, size), "");
        holdLaw(document, views::ExplainedTasks::declared);
        holdLaw(document, views::ExplainedTasks::expanded);
    } catch (const taskdsl::DiagnosticError&) {
        return 0; // of the parser, or of a source whose frame is no number
    }
    return 0;
}
