// The passes over records filled by hand. What they do to files is the matter of task_parser_test.cpp.

#include "taskdsl/parser/task_passes.h"

#include "fixtures/faults.h"

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

} // namespace
} // namespace morquill::taskdsl
