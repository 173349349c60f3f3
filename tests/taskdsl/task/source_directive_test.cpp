// `%source` read into a task of its own. What the parser makes of it in a file is the matter of
// directives_test.cpp.

#include "fixtures/test_lines.h"
#include "support/text.h"
#include "taskdsl/task/directive_reader.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace morquill::taskdsl {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

struct Outcome {
    TaskInfo task{"a"};
    std::vector<std::string> warnings;
    std::size_t position = 0;
};

/// The task after `%source <value>` and the lines behind it.
Outcome read(const std::string& value, std::string_view block = "", bool multiSource = false,
             const TaskInfo& before = TaskInfo("a")) {
    Outcome outcome;
    outcome.task = before;
    const WarningSink sink = [&outcome](const std::string& text) { outcome.warnings.push_back(text); };
    const auto lines = linesOf("%source " + value + "\n" + std::string(block));
    DirectiveReader reader(outcome.task, lines, 0, value, {sink, multiSource});
    readSourceDirective(reader);
    outcome.position = reader.position();
    return outcome;
}

TEST(SourceDirective, KeepsTheInlineFormAndItsTasks) {
    struct Row {
        const char* value;
        const char* source;
        std::vector<std::string> tasks;
    };
    const Row rows[] = {
        {"opt", "opt", {"opt"}},
        {"origin", "origin", {}},
        {"restart", "restart", {}},
        {"xyz=a,b.xyz frame=3", "xyz=a,b.xyz frame=3", {}},
        {R"("xyz=\"a b.xyz\" frame=2")", "xyz=\"a b.xyz\" frame=2", {}}, // as the writer quotes it
        {",", "", {}},
        {"opt,", "opt", {"opt"}},
    };
    for (const auto& [value, source, tasks] : rows) {
        const auto outcome = read(value);
        EXPECT_EQ(sourceText(outcome.task), source) << value;
        EXPECT_EQ(sourceTasks(outcome.task), tasks) << value;
        EXPECT_THAT(outcome.warnings, IsEmpty());
        EXPECT_EQ(outcome.position, 0U);
    }
    EXPECT_EQ(messageOf([] { (void)read("xyz=a.xyz frame=first"); }),
              "%source xyz frame selector must be a positive integer");
}

TEST(SourceDirective, ReplacesWhateverWasThereBefore) {
    TaskInfo before("a");
    before.guessEnabled = true;
    before.guessSourceTask = "g";
    before.source = SourceStructured{{parseSourceBinding("geom t")}};
    const auto outcome = read("origin", "", false, before);
    EXPECT_FALSE(outcome.task.guessEnabled);
    EXPECT_EQ(outcome.task.guessSourceTask, "");
    EXPECT_THAT(sourceTasks(outcome.task), IsEmpty());
    EXPECT_THAT(sourceBindings(outcome.task), IsEmpty());
    EXPECT_EQ(sourceText(read("", "  geom t\n", false, outcome.task).task), "");
}

TEST(SourceDirective, AGuessWordIsOnlyTheLastOne) {
    const auto guess = read("opt guess");
    EXPECT_TRUE(guess.task.guessEnabled);
    EXPECT_EQ(sourceText(guess.task), "opt");
    ASSERT_EQ(guess.warnings.size(), 1U);
    const auto alone = read("guess");
    EXPECT_TRUE(alone.task.guessEnabled);
    EXPECT_EQ(sourceText(alone.task), "");
    for (const char* value : {"guess,opt", "xyz=guess", "opt Guess"}) {
        EXPECT_FALSE(read(value, "", true).task.guessEnabled) << value;
    }
}

TEST(SourceDirective, FurtherTasksAreConditionsForThoseWhoTolerateThem) {
    TaskInfo before("a");
    before.whenEntries.edit() = {{"completed c", {}}};
    const auto outcome = read("b, c,d", "", true, before);
    EXPECT_EQ(sourceText(outcome.task), "b");
    EXPECT_THAT(sourceTasks(outcome.task), ElementsAre("b", "c", "d"));
    EXPECT_THAT(whenConditions(outcome.task), ElementsAre("completed c", "completed d"));
    EXPECT_EQ(outcome.task.whenEntries.size(), 2U);
    EXPECT_EQ(outcome.warnings.size(), 1U);
    EXPECT_EQ(messageOf([] { (void)read("b,c"); }).substr(0, 71),
              "t.mq:1:1-1:12: error: task 'a' uses removed multi-dependency '%source a");
}

TEST(SourceDirective, WithoutAValueItTakesTheBlock) {
    const auto outcome = read("", "  geom opt\n\n  geom.ts xyz=ts.xyz frame=2 # saddle\n%keywords x\n");
    ASSERT_EQ(sourceBindings(outcome.task).size(), 2U);
    EXPECT_EQ(formatSourceBinding(sourceBindings(outcome.task)[0]), "geom opt");
    EXPECT_EQ(formatSourceBinding(sourceBindings(outcome.task)[1]), "geom.ts xyz=ts.xyz frame=2");
    EXPECT_EQ(outcome.position, 3U);
    EXPECT_EQ(messageOf([] { (void)read("", "%keywords x\n"); }),
              "t.mq:1:1-1:9: error: task 'a' has empty %source; provide an inline source or one or more "
              "structured bindings");
}

} // namespace
} // namespace morquill::taskdsl
