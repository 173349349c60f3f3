#include "parse_text.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace morquill::taskdsl {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

std::vector<std::string> namesOf(const Shared<std::vector<TaskInfo>>& tasks) {
    std::vector<std::string> names;
    for (const auto& task : tasks) {
        names.push_back(task.name);
    }
    return names;
}

TEST(TaskParser, DeclaredTasksAreReadAloneAndFromNoOtherFile) {
    TaskParser parser(true, [](const std::string&) {});
    const auto document = parser.parseDeclaredTasks("$a[k]\n%source b,c\n%mod\n charge [n]\n$b\n");
    EXPECT_THAT(namesOf(document.tasks), ElementsAre("a[k]", "b"));
    EXPECT_THAT(document.tasks[0].whenConditions, ElementsAre("completed c"));
    EXPECT_TRUE(document.tasks.sharesWith(document.templateTasks));
    for (const char* text : {"$a\n&INCLUDE other.mq\n", "$a\n%process\n  &INCLUDE other.mqfrag\n",
                             "&INCLUDE other.mqlib as x\n", "%keywords x\n", "k: v\n%program orca\n"}) {
        EXPECT_THROW((void)parser.parseDeclaredTasks(text), DiagnosticError) << text;
    }
}

TEST(TaskParser, AnEmptyTextIsAnEmptyDocument) {
    for (const char* text : {"", "\n\n", "# only a comment\n", "#!/usr/bin/env mqkit\n"}) {
        const auto parsed = parse(text);
        EXPECT_THAT(parsed.document.tasks, IsEmpty());
        EXPECT_THAT(parsed.warnings, IsEmpty());
    }
}

TEST(TaskParser, ReadsHeadersWithAndWithoutQuotes) {
    const auto parsed = parse("$\n$\"a b\"\n$ c  # note\n$d \"e\"\n");
    EXPECT_THAT(namesOf(parsed.document.tasks), ElementsAre("a b", "c", "d \"e\""));
    EXPECT_TRUE(parsed.document.tasks[0].quoted);
    EXPECT_FALSE(parsed.document.tasks[1].quoted);
    EXPECT_FALSE(parsed.document.tasks[2].quoted);
    EXPECT_THAT(parsed.warnings, IsEmpty());
}

TEST(TaskParser, CountsTheDocumentOrderOverTasksAndDerives) {
    const auto parsed = parse("$a\n@derive d\nemit e = 1\n@end\n$b\n");
    EXPECT_EQ(parsed.document.tasks[0].documentOrder, 0U);
    EXPECT_EQ(parsed.document.derives[0].documentOrder, 1U);
    EXPECT_EQ(parsed.document.tasks[1].documentOrder, 2U);
}

TEST(TaskParser, PlacesHeadersAndDirectives) {
    const auto parsed = parse("\n $a\n\t%keywords  x # c\n%when completed b\n");
    const TaskInfo& task = parsed.document.tasks[0];
    EXPECT_EQ(formatSpan(task.headerSpan), "t.mq:2:2-2:4");
    ASSERT_EQ(task.directives.size(), 2U);
    EXPECT_EQ(task.directives->at(0).name, "keywords");
    EXPECT_EQ(task.directives->at(0).value, "x");
    EXPECT_EQ(formatSpan(task.directives->at(0).span), "t.mq:3:2-3:18");
    EXPECT_EQ(formatSpan(task.whenEntries.at(0).span), "t.mq:4:1-4:18");
}

TEST(TaskParser, FreeTextBetweenDirectivesHasNoMeaning) {
    EXPECT_EQ(firstTask("free\n$a\nfree text\n%keywords k\n%\nmore\n").keywords, "k");
}

TEST(TaskParser, AnUnknownDirectiveIsToldWithItsPlace) {
    EXPECT_EQ(faultOf("$a\n  %foo bar\n"),
              "t.mq:2:3-2:11: error: task 'a' contains unknown directive '%foo'");
    EXPECT_EQ(faultOf("$a\n%Keywords x\n"),
              "t.mq:2:1-2:12: error: task 'a' contains unknown directive '%Keywords'");
    EXPECT_EQ(faultOf("$a\n%keywords\tHF\n"),
              "t.mq:2:1-2:13: error: task 'a' contains unknown directive '%keywords\tHF'");
}

TEST(TaskParser, ExtraInputsIsRecordedUnderItsName) {
    const TaskInfo task = firstTask("$a\n%extrainputs x\n");
    EXPECT_EQ(task.directives->at(0).name, "extrainput");
    EXPECT_EQ(task.extraKeywords, "x");
}

TEST(TaskParser, TheRemovedIncludeFormWarnsAndIsPassedOver) {
    const std::string head = "context 't.mq' uses the removed '#INCLUDE' syntax; replace it with '&INCLUDE'";
    EXPECT_THAT(parse("#INCLUDE \"a b.mq\" # note\n").warnings,
                ElementsAre(head + " (original path: a b.mq)\xE3\x80\x82"));
    EXPECT_THAT(parse("#include\n").warnings, ElementsAre(head + "\xE3\x80\x82"));
    EXPECT_THAT(parse("#INCLUDED x\n").warnings, IsEmpty());
    const auto inTask = parse("$a\n#INCLUDE x\n%keywords k\n", false, "dir/t.mq");
    EXPECT_THAT(inTask.warnings, ElementsAre(head + " (original path: x)\xE3\x80\x82"));
    EXPECT_EQ(inTask.document.tasks[0].keywords, "k");
}

TEST(TaskParser, HeaderMetadataFillsTasksWithoutAValueOfTheirOwn) {
    const auto parsed =
        parse("totcore: 8\ntotmem: 16000\n$a\n$b\n%control\ntotcore 4\n$c\n%control\ntotcore -4\n");
    for (const auto* tasks : {&parsed.document.tasks, &parsed.document.templateTasks}) {
        EXPECT_EQ(tasks->at(0).totalCores, 8);
        EXPECT_EQ(tasks->at(0).totalMemory, 16000);
        EXPECT_TRUE(tasks->at(0).controlDeclared);
        EXPECT_EQ(tasks->at(1).totalCores, 4);
        EXPECT_EQ(tasks->at(1).totalMemory, 16000);
        EXPECT_EQ(tasks->at(2).totalCores, 8);
    }
    EXPECT_THAT(parsed.warnings, IsEmpty());
}

TEST(TaskParser, InvalidHeaderMetadataWarnsAndCountsAsAbsent) {
    const auto parsed = parse("totcore: 0\ntotmem: x\n$a\n");
    EXPECT_THAT(parsed.warnings,
                ElementsAre("task file 't.mq' has invalid header metadata totcore='0'; ignoring it.",
                            "task file 't.mq' has invalid header metadata totmem='x'; ignoring it."));
    EXPECT_EQ(parsed.document.tasks[0].totalCores, 0);
    EXPECT_FALSE(parsed.document.tasks[0].controlDeclared);
    EXPECT_THAT(
        parse("totcore: 99999999999\n$a\n", false, "").warnings,
        ElementsAre("task file '<memory>' has invalid header metadata totcore='99999999999'; ignoring it."));
}

TEST(TaskParser, SharesTheNamesOfAllTasksThatAreNoProviders) {
    const auto parsed = parse("$a\n$p\n%interface provider\n$b\n");
    EXPECT_THAT(*parsed.document.tasks[0].documentTaskNames, ElementsAre("a", "b"));
    EXPECT_EQ(&*parsed.document.tasks[0].documentTaskNames,
              &*parsed.document.templateTasks[2].documentTaskNames);
}

TEST(TaskParser, WhatNothingIsPutIntoIsStoredOnce) {
    const auto plain = parse("totcore: 8\n$a\n$b\n");
    EXPECT_TRUE(plain.document.tasks.sharesWith(plain.document.templateTasks));
    const auto substituted = parse("define:\n  k: v\n$a\n%keywords [k]\n$b\n");
    EXPECT_EQ(substituted.document.tasks[0].keywords, "v");
    EXPECT_EQ(substituted.document.templateTasks[0].keywords, "[k]");
}

TEST(TaskParser, TwoTasksThatWaitForAllOthersMayDeadlock) {
    const std::string one = "$a\n%when\n  completed ALLOTHERS and defined x\n  completed allothers\n$c\n";
    EXPECT_THAT(parse(one).warnings, IsEmpty());
    EXPECT_THAT(
        parse(one + "$b\n%when completed allothers\n").warnings,
        ElementsAre("potential deadlock: multiple tasks in 't.mq' use '%when completed allothers': a, b"));
    EXPECT_THAT(
        parse(one + "$b\n%when completed allothers\n", false, "").warnings,
        ElementsAre(
            "potential deadlock: multiple tasks in '<memory>' use '%when completed allothers': a, b"));
}

TEST(TaskParser, MissingFilesAndOtherThingsThanFilesAreRefused) {
    TaskParser parser;
    for (const char* path : {"no/such.mq", "/", "/dev/null"}) {
        try {
            (void)parser.parseFile(path);
            FAIL() << path;
        } catch (const std::runtime_error& error) {
            EXPECT_EQ(std::string(error.what()), "could not open file: " + std::string(path));
        }
    }
}

TEST(TaskParser, KeepsThePathAsItWasGiven) {
    TaskParser parser;
    const auto document = parser.parseFile("./examples/tasks/water_opt_freq.mq");
    EXPECT_EQ(document.filePath, "./examples/tasks/water_opt_freq.mq");
    EXPECT_EQ(document.directory, "./examples/tasks");
    EXPECT_EQ(document.tasks[0].filePath, "./examples/tasks/water_opt_freq.mq");
}

TEST(TaskParser, AnyBytesAreText) {
    const std::string bytes("$a\xff\xA0\x85 # c\r\n%keywords x\0y\r\n", 27);
    const auto parsed = parse(bytes);
    EXPECT_EQ(parsed.document.tasks[0].name, "a\xff\xA0\x85");
    EXPECT_EQ(parsed.document.tasks[0].keywords, std::string("x\0y", 3));
}

// How a task is finished.

struct Finishing {
    const char* text;
    TaskProgram program;
    const char* keywords;
    const char* args;
    std::vector<std::string> warnings;
};

TEST(FinishTask, MovesLegacyFormsAndTellsThem) {
    const Finishing rows[] = {
        {"%args --gfn 2",
         TaskProgram::xtb,
         "",
         "--gfn 2",
         {"task 'a' uses %args without an explicit %program; defaulting to '%program xtb'."}},
        {"%args --gfn 2\n%body x",
         TaskProgram::gaussian,
         "",
         "--gfn 2",
         {"task 'a' declares %args, but only '%program xtb' currently consumes that directive; the args will "
          "be "
          "ignored."}},
        {"%program xtb\n%keywords --gfn 2",
         TaskProgram::xtb,
         "",
         "--gfn 2",
         {"task 'a' uses deprecated '%keywords' syntax for '%program xtb'; move command-line arguments to "
          "'%args'."}},
        {"%program xtb\n%keywords k\n%args x", TaskProgram::xtb, "k", "x", {}},
        {"%program other\n%keywords job=x",
         TaskProgram::other,
         "job=x",
         "",
         {"task 'a' uses deprecated '%keywords' syntax for '%program other'; move template selection to "
          "'%template' plus '%param'."}},
        {"%program script\n%keywords /bin/sh",
         TaskProgram::script,
         "/bin/sh",
         "",
         {"task 'a' uses deprecated '%keywords' as script runner/shebang; move the runner to '%runner'."}},
        {"%program script\n%runner sh\n%keywords k", TaskProgram::script, "k", "", {}},
        {"%program orca\n%args x",
         TaskProgram::orca,
         "",
         "x",
         {"task 'a' declares %args, but only '%program xtb' currently consumes that directive; the args will "
          "be "
          "ignored."}},
    };
    for (const auto& row : rows) {
        const auto parsed = parse("$a\n" + std::string(row.text) + "\n");
        const TaskInfo& task = parsed.document.tasks[0];
        EXPECT_EQ(task.program, row.program) << row.text;
        EXPECT_EQ(task.keywords, row.keywords) << row.text;
        EXPECT_EQ(task.args, row.args) << row.text;
        EXPECT_EQ(parsed.warnings, row.warnings) << row.text;
    }
}

TEST(FinishTask, UnquotesKeywordsTemplateAndRunner) {
    const TaskInfo task =
        firstTask("$a\n%keywords 'b3lyp opt'\n%template \"a b\"\n%runner '/bin/sh -e'\n%body \"a b\"\n");
    EXPECT_EQ(task.keywords, "b3lyp opt");
    EXPECT_EQ(task.templateName, "a b");
    EXPECT_EQ(task.runner, "/bin/sh -e");
    EXPECT_EQ(task.body, "\"a b\"");
}

TEST(FinishTask, FcclassesNeedsAStructuredSource) {
    EXPECT_EQ(faultOf("$a\n%program fcclasses\n%source b\n"),
              "task 'a' uses '%program fcclasses' but does not declare a multi-line structured %source");
    EXPECT_EQ(faultOf("$a\n%program fcclasses\n%source\n  geom b\n"), "no fault");
}

TEST(FinishTask, ModsMustFitTheGeometrySlots) {
    EXPECT_EQ(faultOf("$a\n%source\n  geom b\n%mod\n  charge.x 1\n"),
              "%mod targets geometry slot 'x', but %source does not declare geom.x");
    EXPECT_EQ(faultOf("$a\n%mod charge\n"), "%mod charge requires a value");
    EXPECT_EQ(faultOf("$a\n%source\n  geom b\n  geom.x c\n%mod\n  charge.x 1\n"), "no fault");
}

} // namespace
} // namespace morquill::taskdsl
