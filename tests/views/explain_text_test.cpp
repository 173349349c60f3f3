// The choice of tasks, and the two forms of a small document. The command-line tests have larger ones.

#include "views/explain_text.h"

#include "fixtures/parse_text.h"

#include <gtest/gtest.h>

namespace morquill::views {
namespace {

constexpr std::string_view twoVariants = "matrix:\n  a: 1, 2\n$opt\n%keywords [a]\n$sp\n";

std::vector<std::string> namesIn(const ExplainView& view) {
    std::vector<std::string> names;
    for (const auto* task : view.tasks) {
        names.push_back(task->name);
    }
    return names;
}

TEST(ExplainText, TheViewHasTheTasksThatAreDeclaredOrThoseThatRun) {
    const auto document = taskdsl::parse(twoVariants).document;
    using Names = std::vector<std::string>;
    EXPECT_EQ(namesIn(makeExplainView(document, ExplainedTasks::declared, "")), (Names{"opt", "sp"}));
    EXPECT_EQ(namesIn(makeExplainView(document, ExplainedTasks::expanded, "")),
              (Names{"opt__a_1", "sp__a_1", "opt__a_2", "sp__a_2"}));
    EXPECT_EQ(namesIn(makeExplainView(document, ExplainedTasks::declared, "sp")), Names{"sp"});
    EXPECT_EQ(namesIn(makeExplainView(document, ExplainedTasks::expanded, "sp")), Names{});
}

TEST(ExplainText, AViewWithoutTasksIsItsHead) {
    const auto document = taskdsl::parse("dsl_version: 2\n$opt\n").document;
    const auto view = makeExplainView(document, ExplainedTasks::declared, "sp");
    EXPECT_EQ(explainText(view), "file: t.mq\n"
                                 "dsl_version: 2\n"
                                 "task_view: source\n"
                                 "task_count: 0\n"
                                 "expanded_task_count: 1\n"
                                 "\n");
    EXPECT_EQ(explainJson(view), "{\n"
                                 "  \"file\": \"t.mq\",\n"
                                 "  \"dsl_version\": \"2\",\n"
                                 "  \"task_view\": \"source\",\n"
                                 "  \"task_count\": 0,\n"
                                 "  \"expanded_task_count\": 1,\n"
                                 "  \"tasks\": [\n"
                                 "  ]\n"
                                 "}\n");
}

TEST(ExplainText, AVersionThatNobodyWroteIsMissingInTextAndEmptyInJson) {
    const auto document = taskdsl::parse("$opt\n").document;
    const auto view = makeExplainView(document, ExplainedTasks::expanded, "opt");
    EXPECT_NE(explainText(view).find("dsl_version: <missing>\ntask_view: expanded\ntask_count: 1\n"),
              std::string::npos);
    EXPECT_NE(explainJson(view).find("\"dsl_version\": \"\",\n  \"task_view\": \"expanded\",\n"),
              std::string::npos);
}

} // namespace
} // namespace morquill::views
