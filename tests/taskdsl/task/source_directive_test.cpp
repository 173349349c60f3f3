// `%source` read into a task of its own, and as the parser reads it in a file.

#include "fixtures/parse_text.h"
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

/// The task after `%source <value>` and the lines after it.
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

TEST(Source, InlineForms) {
    EXPECT_EQ(sourceText(firstTask("$a\n%source b\n")), "b");
    EXPECT_THAT(sourceTasks(firstTask("$a\n%source b\n")), ElementsAre("b"));
    EXPECT_EQ(sourceText(firstTask("$a\n%source xyz=a,b.xyz frame=2\n")), "xyz=a,b.xyz frame=2");
    EXPECT_EQ(sourceText(firstTask("$a\n%source \"xyz=a.xyz frame=2\"\n")), "xyz=a.xyz frame=2");
    EXPECT_EQ(sourceText(firstTask("$a\n%source ,\n")), "");
    EXPECT_THAT(sourceTasks(firstTask("$a\n%source restart\n")), IsEmpty());
    EXPECT_EQ(faultOf("$a\n%source xyz=a frame=0\n"),
              "%source xyz frame selector must be a positive integer");
}

TEST(Source, TheGuessWordMovesAndWarns) {
    for (const char* word : {"guess", "gues"}) {
        const auto parsed = parse("$a\n%source b  " + std::string(word) + "\n");
        const TaskInfo& task = parsed.document.tasks[0];
        EXPECT_EQ(sourceText(task), "b");
        EXPECT_TRUE(task.guessEnabled);
        EXPECT_THAT(
            parsed.warnings,
            ElementsAre("task 'a' uses deprecated '%source ... guess' syntax; move guess into '%control' as "
                        "'guess true' or 'guess <task>'."));
    }
    const auto cleared = parse("$a\n%control\nguess x\n%source b\n").document.tasks[0];
    EXPECT_FALSE(cleared.guessEnabled);
    EXPECT_EQ(cleared.guessSourceTask, "");
}

TEST(Source, SeveralTasksAreToleratedOnRequest) {
    EXPECT_EQ(faultOf("$a\n%source b,c\n"), "t.mq:2:1-2:12: error: task 'a' uses removed multi-dependency "
                                            "'%source a,b,...' syntax; keep the first "
                                            "task in %source and move the rest into '%when completed ...'");
    const auto parsed = parse("$a\n%when completed c\n%source b, c,d\n", true);
    const TaskInfo& task = parsed.document.tasks[0];
    EXPECT_EQ(sourceText(task), "b");
    EXPECT_THAT(sourceTasks(task), ElementsAre("b", "c", "d"));
    EXPECT_THAT(whenConditions(task), ElementsAre("completed c", "completed d"));
    EXPECT_EQ(formatSpan(task.whenEntries[1].span), "t.mq:3:1-3:15");
    EXPECT_THAT(
        parsed.warnings,
        ElementsAre("task 'a' uses deprecated multi-dependency '%source a,b,...' syntax; use the first "
                    "upstream as '%source' and express extra dependencies with '%when' completed <task> "
                    "conditions."));
}

TEST(Source, AStructuredBlockReplacesTheInlineSource) {
    const TaskInfo task = firstTask("$a\n%source b\n%source\n  geom.main c\n\n  geom.x xyz=f.xyz frame=2\n");
    EXPECT_EQ(sourceText(task), "");
    EXPECT_THAT(sourceTasks(task), IsEmpty());
    ASSERT_EQ(sourceBindings(task).size(), 2U);
    EXPECT_EQ(sourceBindings(task)[0].key, "geom");
    EXPECT_EQ(sourceBindings(task)[1].frameIndex, 2);
}

TEST(Source, BlockFaultsAreWrapped) {
    const std::pair<const char*, const char*> rows[] = {
        {"%source",
         "t.mq:2:1-2:8: error: task 'a' has empty %source; provide an inline source or one or more "
         "structured bindings"},
        {"%source\n  geom", "t.mq:3:3-3:7: error: task 'a' has invalid structured %source entry: structured "
                            "%source entry must have "
                            "'<binding-key> <source> [selector=value ...]': 'geom'"},
        {"%source\n  geom.a b", "t.mq:2:1-2:8: error: task 'a' has invalid structured %source: structured "
                                "%source with auxiliary geometry "
                                "bindings must also declare geom"},
    };
    for (const auto& [lines, message] : rows) {
        EXPECT_EQ(faultOf("$a\n" + std::string(lines) + "\n"), message);
    }
}

} // namespace
} // namespace morquill::taskdsl
