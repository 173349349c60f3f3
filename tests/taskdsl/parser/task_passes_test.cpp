// The passes over records filled by hand and over tasks as they are read from a text.

#include "taskdsl/parser/task_passes.h"

#include "fixtures/faults.h"
#include "fixtures/parse_text.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace morquill::taskdsl {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

/// Collects what is warned of.
struct Warnings {
    std::vector<std::string> texts;
    WarningSink sink = [this](const std::string& text) { texts.push_back(text); };
};

TEST(FinishTask, UnquotesKeywordsToTheCoreAndTheOthersOnce) {
    Warnings warnings;
    TaskInfo task("a");
    task.keywords = "\"'b3lyp opt'\"";
    task.templateName = "\"'t'\"";
    task.runner = "'sh -e'";
    task.body = "'kept'";
    finishTask(task, {}, warnings.sink);
    EXPECT_EQ(task.keywords, "b3lyp opt");
    EXPECT_EQ(task.templateName, "'t'");
    EXPECT_EQ(task.runner, "sh -e");
    EXPECT_EQ(task.body, "'kept'");
    EXPECT_THAT(warnings.texts, IsEmpty());
}

TEST(FinishTask, AProgramAxisSwitchesGuessesAboutTheProgramOff) {
    const std::vector<MatrixAxis> varies{{"program", {"xtb", "orca"}, {}, {}}};
    TaskInfo guessed("a");
    guessed.args = "--gfn 2";
    TaskInfo waiting = guessed;
    Warnings warnings;
    finishTask(guessed, {{"other", {}, {}, {}}}, warnings.sink);
    EXPECT_EQ(guessed.program, TaskProgram::xtb);
    EXPECT_EQ(warnings.texts.size(), 1U);
    finishTask(waiting, varies, warnings.sink);
    EXPECT_EQ(waiting.program, TaskProgram::gaussian);
}

TEST(FinishTask, KeywordsOfXtbBecomeArgumentsWhenThereAreNone) {
    Warnings warnings;
    TaskInfo task("a", TaskProgram::xtb);
    task.keywords = "--gfn 2";
    finishTask(task, {}, warnings.sink);
    EXPECT_EQ(task.args, "--gfn 2");
    EXPECT_EQ(task.keywords, "");
    EXPECT_THAT(warnings.texts,
                ElementsAre("task 'a' uses deprecated '%keywords' syntax for '%program xtb'; move "
                            "command-line arguments to '%args'."));
    TaskInfo structured("f", TaskProgram::fcclasses);
    EXPECT_EQ(messageOf([&] { finishTask(structured, {}, warnings.sink); }),
              "task 'f' uses '%program fcclasses' but does not declare a multi-line structured %source");
}

/// A document of which the declared tasks are those that run: one list.
TaskDocument documentOf(std::vector<TaskInfo> tasks) {
    TaskDocument document;
    document.tasks = Shared<std::vector<TaskInfo>>(std::move(tasks));
    document.templateTasks = document.tasks;
    return document;
}

TEST(ApplyHeaderMetadata, FillsWhatATaskDoesNotSayInBothLists) {
    TaskInfo own("own");
    own.totalCores = 4;
    TaskDocument document = documentOf({TaskInfo("a"), own});
    document.settings = {{"totcore", " 8 "}, {"totmem", "16000"}};
    Warnings warnings;
    applyHeaderMetadata(document, "t.mq", {}, warnings.sink);
    EXPECT_EQ(document.tasks[0].totalCores, 8);
    EXPECT_EQ(document.tasks[0].totalMemory, 16000);
    EXPECT_TRUE(document.tasks[0].controlDeclared);
    EXPECT_EQ(document.tasks[1].totalCores, 4);
    EXPECT_EQ(document.tasks[1].totalMemory, 16000);
    EXPECT_TRUE(document.tasks.sharesWith(document.templateTasks)) << "still stored once";
    EXPECT_THAT(warnings.texts, IsEmpty());
}

TEST(ApplyHeaderMetadata, AnInvalidValueWarnsAndCountsAsAbsent) {
    for (const char* value : {"0", "-1", "many", "1.5", "99999999999", ""}) {
        TaskDocument document = documentOf({TaskInfo("a")});
        document.settings = {{"totcore", value}};
        Warnings warnings;
        applyHeaderMetadata(document, "t.mq", {}, warnings.sink);
        EXPECT_EQ(document.tasks[0].totalCores, 0) << value;
        EXPECT_FALSE(document.tasks[0].controlDeclared) << value;
        EXPECT_THAT(warnings.texts, ElementsAre("task file 't.mq' has invalid header metadata totcore='" +
                                                std::string(value) + "'; ignoring it."));
    }
    TaskDocument memory = documentOf({});
    memory.settings = {{"totmem", "x"}};
    Warnings warnings;
    applyHeaderMetadata(memory, "", {}, warnings.sink);
    EXPECT_THAT(warnings.texts,
                ElementsAre("task file '<memory>' has invalid header metadata totmem='x'; ignoring it."));
}

TEST(ShareTaskNames, NamesAllTasksButProvidersInEveryTask) {
    TaskInfo provider("p");
    provider.interfaceMode = TaskInterfaceMode::provider;
    TaskDocument document = documentOf({TaskInfo("a"), provider, TaskInfo("b")});
    shareTaskNames(document);
    for (const TaskInfo& task : document.tasks) {
        EXPECT_THAT(task.documentTaskNames.get(), ElementsAre("a", "b"));
        EXPECT_TRUE(task.documentTaskNames.sharesWith(document.tasks[0].documentTaskNames));
    }
    EXPECT_THAT(document.templateTasks[1].documentTaskNames.get(), ElementsAre("a", "b"));
}

TEST(WarnAboutDeadlocks, NeedsTwoTasksThatWaitForAllOthers) {
    TaskInfo waits("a");
    waits.whenEntries.edit() = {{"defined x", {}}, {"(completed ALLOTHERS) or defined z", {}}};
    TaskInfo waitsToo("b");
    waitsToo.whenEntries.edit() = {{"completed allothers and defined y", {}}};
    TaskInfo names("c");
    names.whenEntries.edit() = {{"completed allothers_1", {}}, {"defined allothers", {}}};
    Warnings warnings;
    warnAboutDeadlocks(documentOf({waits, names}), "t.mq", warnings.sink);
    EXPECT_THAT(warnings.texts, IsEmpty());
    warnAboutDeadlocks(documentOf({waits, names, waitsToo}), "", warnings.sink);
    EXPECT_THAT(
        warnings.texts,
        ElementsAre(
            "potential deadlock: multiple tasks in '<memory>' use '%when completed allothers': a, b"));
}

/// What a task written so is once it is finished.
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

TEST(ApplyHeaderMetadata, OfAFileFillsTasksWithoutAValueOfTheirOwn) {
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

TEST(ApplyHeaderMetadata, OfAFileWarnsWithItsName) {
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

TEST(ShareTaskNames, OfAFileInBothLists) {
    const auto parsed = parse("$a\n$p\n%interface provider\n$b\n");
    EXPECT_THAT(*parsed.document.tasks[0].documentTaskNames, ElementsAre("a", "b"));
    EXPECT_EQ(&*parsed.document.tasks[0].documentTaskNames,
              &*parsed.document.templateTasks[2].documentTaskNames);
}

TEST(WarnAboutDeadlocks, NamesTheFile) {
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

} // namespace
} // namespace morquill::taskdsl
