#include "fixtures/parse_text.h"
#include "taskdsl/task/directive_reader.h"
#include "taskdsl/task/mod_operation.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace morquill::taskdsl {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

TEST(Heredoc, TakesRawLinesUpToItsTerminator) {
    EXPECT_EQ(firstTask("$a\n%keywords << END\n b3lyp # kept\n$x\n\n%y\n  END  \n%runner r\n").keywords,
              "b3lyp # kept\n$x\n\n%y");
    EXPECT_EQ(firstTask("$a\n%body <<\nx\nEOF\n").body, "x");
    EXPECT_EQ(firstTask("$a\n%body << E # note\nx\nE\n").body, "x");
    EXPECT_EQ(firstTask("$a\n%body << E\nE\n").body, "");
}

TEST(Heredoc, OnLinesThatNoExpansionSawAMissingTerminatorIsAFaultOfKeywordsAndAWarningElsewhere) {
    const std::vector<SourceLine> lines{{"%body <<", "t.mq", 1}, {"x", "t.mq", 2}, {"$b", "t.mq", 3}};
    TaskInfo task("a");
    std::vector<std::string> warnings;
    const WarningSink sink = [&warnings](const std::string& warning) { warnings.push_back(warning); };
    const auto read = [&](std::string_view keyword, std::string_view value) {
        DirectiveReader reader(task, lines, 0, value, {sink});
        findDirective(keyword)->handler(reader);
    };
    read("body", "<<");
    EXPECT_EQ(task.body, "x\n$b");
    read("extrainput", "<< X");
    EXPECT_EQ(task.extraKeywords, "x\n$b");
    EXPECT_THAT(warnings, ElementsAre("task 'a' heredoc %body block is missing terminator 'EOF'.",
                                      "task 'a' heredoc %extrainput block is missing terminator 'X'."));
    try {
        read("keywords", "<< END");
        FAIL();
    } catch (const DiagnosticError& error) {
        EXPECT_STREQ(error.what(), "task 'a' heredoc %keywords block is missing terminator 'END'.");
    }
}

TEST(Keywords, TheLastOneCounts) {
    EXPECT_EQ(firstTask("$a\n%keywords x\n%keywords y\n").keywords, "y");
    EXPECT_EQ(firstTask("$a\n%keywords \"a \\\"b\\\" # c\" # d\n").keywords, "a \"b\" # c");
}

TEST(Keywords, AHashAfterAnOddQuoteIsAComment) {
    EXPECT_EQ(firstTask("$a\n%keywords it's # c\n").keywords, "it's");
}

TEST(Body, IsInlineOrIndentedTextAndTheLastOneCounts) {
    EXPECT_EQ(firstTask("$a\n%body x\n%body \"a b\"\n").body, "\"a b\"");
    EXPECT_EQ(firstTask("$a\n%body\n  one # kept\n\n    two\n\n%runner r\n").body,
              "  one # kept\n\n    two\n");
    EXPECT_EQ(firstTask("$a\n%body\n  $\n  @endx\n$b\n").body, "  $\n  @endx");
}

TEST(Body, AnEmptyBlockIsAFault) {
    EXPECT_EQ(
        faultOf("$a\n%body\n%runner x\n"),
        "task 'a' has empty %body; use inline content, an indented text/include block, or heredoc syntax: "
        "'%body << EOF'.");
    EXPECT_EQ(
        faultOf("$a\n%extrainput\n"),
        "task 'a' has empty %extrainput; use inline content, an indented text/include block, or heredoc "
        "syntax: '%extrainput << EOF'.");
}

TEST(ExtraInput, Accumulates) {
    EXPECT_EQ(
        firstTask("$a\n%extrainput one\n%extrainput\n  two\n%extrainput << E\nthree\nE\n").extraKeywords,
        "one\n  two\nthree");
    EXPECT_EQ(firstTask("$a\n%extrainput\nx\n\n%extrainput y\n").extraKeywords, "x\ny");
    EXPECT_EQ(firstTask("$a\n%extrainput << EOF\nEOF\n").extraKeywords, "");
}

TEST(ParamAndArgs, JoinValueAndBlock) {
    const TaskInfo task = firstTask("$a\n%program xtb\n%param a=1 # c\n\n  b=2\n%args --gfn 2\n  --opt\n");
    EXPECT_EQ(task.paramValues, "a=1\nb=2");
    EXPECT_EQ(task.args, "--gfn 2 --opt");
    EXPECT_EQ(firstTask("$a\n%program xtb\n%args \"--gfn \\\"2\\\"\"\n").args, "--gfn \"2\"");
    EXPECT_EQ(firstTask("$a\n%program xtb\n%args '--gfn 2'\n").args, "'--gfn 2'");
}

TEST(Commands, AreReadFromTheBlockAlone) {
    const TaskInfo task = firstTask("$a\n%process ignored\n  one # c\n\n  two \\\\\n%preprocess\nthree\n");
    EXPECT_THAT(*task.processCommands, ElementsAre("one", "two \\\\"));
    EXPECT_THAT(*task.preProcessCommands, ElementsAre("three"));
}

TEST(Commands, AContinuationTakesTheNextFilledLineWhateverItIs) {
    const TaskInfo task = firstTask("$a\n%preprocess\n  a \\\n\n  # c\n  %b\n  c\\\n\\\n d\n");
    EXPECT_THAT(*task.preProcessCommands, ElementsAre("a %b", "c d"));
}

TEST(Commands, AnOpenContinuationAtTheEndWarns) {
    const auto parsed = parse("$a\n%process\n  a \\\n\n");
    EXPECT_THAT(*parsed.document.tasks[0].processCommands, ElementsAre("a"));
    EXPECT_THAT(parsed.warnings, ElementsAre("task 'a' has a continued %process command without a following "
                                             "non-empty line; using the command parsed so far."));
    const auto empty = parse("$a\n%preprocess\n \\\n");
    EXPECT_THAT(*empty.document.tasks[0].preProcessCommands, IsEmpty());
    EXPECT_THAT(empty.warnings,
                ElementsAre("task 'a' has a continued %preprocess command without a following "
                            "non-empty line; using the command parsed so far."));
}

TEST(Interface, ProviderAndConsume) {
    EXPECT_EQ(firstTask("$a\n%interface Provider\n").interfaceMode, TaskInterfaceMode::provider);
    const TaskInfo consumer = firstTask("$a\n%interface consume 'p q'\n");
    EXPECT_EQ(consumer.interfaceMode, TaskInterfaceMode::consume);
    EXPECT_EQ(consumer.interfaceProvider, "p q");
    EXPECT_EQ(firstTask("$a\n%interface consume p\n%interface provider\n").interfaceProvider, "");
}

TEST(Interface, FaultsCarryTheLine) {
    const std::pair<const char*, const char*> rows[] = {
        {"%interface",
         "t.mq:2:1-2:11: error: task 'a' has empty %interface directive; expected 'provider' or 'consume "
         "<provider-task>'"},
        {"%interface provider x", "t.mq:2:1-2:22: error: task 'a' has invalid %interface provider directive; "
                                  "expected '%interface provider'"},
        {"%interface consume", "t.mq:2:1-2:19: error: task 'a' has invalid %interface consume directive; "
                               "expected '%interface consume "
                               "<provider-task>'"},
        {"%interface consume ' '", "t.mq:2:1-2:23: error: task 'a' has invalid %interface consume directive; "
                                   "expected '%interface consume "
                                   "<provider-task>'"},
        {"%interface Use x", "t.mq:2:1-2:17: error: task 'a' has unknown %interface mode 'Use'; expected "
                             "'provider' or 'consume'"},
    };
    for (const auto& [line, message] : rows) {
        EXPECT_EQ(faultOf("$a\n" + std::string(line) + "\n"), message);
    }
}

TEST(Meta, TakesTheSecondFieldOfStrucid) {
    EXPECT_EQ(firstTask("$a\n%meta ignored\n\n  strucid s-1 rest\n").strucId, "s-1");
    EXPECT_EQ(firstTask("$a\n%meta\n  strucid\n").strucId, "");
    EXPECT_EQ(faultOf("$a\n%meta\n  strucname x\n"), "task 'a' has unknown %meta field 'strucname'.");
}

TEST(When, KeepsTextsAndPlaces) {
    const TaskInfo task = firstTask("$a\n%when completed b\n  {{ b.e }} < 1 # c\n\n  defined x\n");
    EXPECT_THAT(whenConditions(task), ElementsAre("completed b", "{{ b.e }} < 1", "defined x"));
    EXPECT_EQ(task.whenEntries[1].text, "{{ b.e }} < 1");
    EXPECT_EQ(formatSpan(task.whenEntries[1].span), "t.mq:3:3-3:20");
}

TEST(Mod, KeepsEntriesAndTheLastValuePerKey) {
    const TaskInfo task = firstTask("$a\n%mod charge 1\n  charge 2\n  geom select 1-3 5\n  spin add 1 2\n");
    EXPECT_THAT(*task.modEntries, ElementsAre(ModEntry{"charge", "1"}, ModEntry{"charge", "2"},
                                              ModEntry{"geom:select", "1-3 5"}, ModEntry{"spin:add", "1"}));
    EXPECT_EQ(modValues(task).at("charge"), "2");
}

TEST(When, AnImpliedConditionIsNotWrittenTwice) {
    const auto placed = parse("$a\n%source b,c,d\n%when x\n%when\n  completed d\n  completed c\n", true);
    EXPECT_THAT(whenConditions(placed.document.tasks[0]), ElementsAre("x", "completed d", "completed c"))
        << "a condition that is written stands where it is written";
    EXPECT_EQ(placed.document.tasks[0].whenEntries[0].text, "x");
    EXPECT_EQ(placed.document.tasks[0].whenEntries.size(), 3U);
    const auto parsed = parse("$a\n%source b,c\n%when\n  completed c\n  completed b\n  completed b\n", true);
    EXPECT_THAT(whenConditions(parsed.document.tasks[0]),
                ElementsAre("completed c", "completed b", "completed b"));
}

TEST(ScopeAfter, IsWhatTheRowOfTheDirectiveOpens) {
    struct Row {
        const char* line;
        FragmentKind scope;
    };
    const Row rows[] = {
        {"%process", FragmentKind::process},       {"%process x", FragmentKind::process},
        {"%preprocess", FragmentKind::preprocess}, {"%control", FragmentKind::control},
        {"%when completed a", FragmentKind::when}, {"%meta", FragmentKind::meta},
        {"%param x", FragmentKind::param},         {"%args", FragmentKind::args},
        {"%batch", FragmentKind::batch},           {"%mod", FragmentKind::mod},
        {"%mod a b", FragmentKind::task_body},     {"%body", FragmentKind::text},
        {"%body << END", FragmentKind::text},      {"%body x", FragmentKind::task_body},
        {"%extrainput", FragmentKind::text},       {"%extrainputs <<", FragmentKind::text},
        {"%keywords <<", FragmentKind::text},      {"%keywords hf", FragmentKind::task_body},
        {"%program xtb", FragmentKind::task_body}, {"%source a", FragmentKind::task_body},
        {"%plot", FragmentKind::task_body},        {"%nonsense", FragmentKind::task_body},
    };
    for (const auto& [line, scope] : rows) {
        EXPECT_EQ(fragmentKindName(scopeAfter(splitDirective(line))), fragmentKindName(scope)) << line;
    }
}

TEST(KnownDirectives, AreThoseOfTheTable) {
    EXPECT_TRUE(isKnownDirective("%keywords hf"));
    EXPECT_TRUE(isKnownDirective("%body"));
    EXPECT_FALSE(isKnownDirective("%nonsense"));
    EXPECT_FALSE(isKnownDirective("%body\tx"));
    EXPECT_FALSE(isKnownDirective("keywords hf"));
    EXPECT_FALSE(isKnownDirective(""));
}

} // namespace
} // namespace morquill::taskdsl
