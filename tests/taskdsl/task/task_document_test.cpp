#include "taskdsl/task/task_document.h"

#include <gtest/gtest.h>

namespace morquill::taskdsl {
namespace {

TEST(TaskProgram, NamesStandInTheirOrder) {
    const char* names[] = {"gaussian", "orca", "gamess", "xtb",       "mrcc",  "maple",
                           "amesp",    "bdf",  "mopac",  "fcclasses", "other", "script"};
    for (int i = 0; i < 12; ++i) {
        EXPECT_EQ(programName(static_cast<TaskProgram>(i)), names[i]);
        EXPECT_EQ(parseProgramName(" " + std::string(names[i]) + "\t"), static_cast<TaskProgram>(i));
    }
    EXPECT_EQ(programName(static_cast<TaskProgram>(12)), "gaussian");
    EXPECT_EQ(programName(static_cast<TaskProgram>(-1)), "gaussian");
}

TEST(TaskProgram, IsReadInAnyCaseWithoutAliases) {
    EXPECT_EQ(parseProgramName("XTB"), TaskProgram::xtb);
    EXPECT_EQ(parseProgramName("g16"), std::nullopt);
    EXPECT_EQ(parseProgramName(""), std::nullopt);
}

TEST(TaskProgram, AnUnknownOneIsToldWithItsLocation) {
    const auto message = [](std::string_view location) {
        try {
            (void)requireProgram("vasp", location);
        } catch (const DiagnosticError& error) {
            return std::string(error.what());
        }
        return std::string();
    };
    EXPECT_EQ(message(""),
              "unknown %program 'vasp'; supported values are gaussian, orca, gamess, xtb, mrcc, maple, "
              "amesp, bdf, mopac, fcclasses, other, script");
    EXPECT_EQ(
        message("task 'a'"),
        "task 'a': unknown %program 'vasp'; supported values are gaussian, orca, gamess, xtb, mrcc, maple, "
        "amesp, bdf, mopac, fcclasses, other, script");
}

TEST(TaskInfo, AFreshOneWaitsAndAlerts) {
    const TaskInfo task("a", TaskProgram::orca);
    EXPECT_EQ(task.name, "a");
    EXPECT_EQ(task.templateTaskName, "a");
    EXPECT_EQ(task.program, TaskProgram::orca);
    EXPECT_EQ(task.source, SourceSpec(SourceOrigin{}));
    EXPECT_TRUE(task.waitFreq);
    EXPECT_TRUE(task.alert);
    EXPECT_FALSE(task.localFirst);
    EXPECT_FALSE(task.externalInput);
}

TEST(TaskInfo, ProviderAndConsumer) {
    TaskInfo task("a");
    EXPECT_FALSE(isProvider(task));
    task.interfaceMode = TaskInterfaceMode::consume;
    EXPECT_FALSE(isConsumer(task));
    task.interfaceProvider = "p";
    EXPECT_TRUE(isConsumer(task));
    task.interfaceMode = TaskInterfaceMode::provider;
    EXPECT_TRUE(isProvider(task));
}

TEST(TaskInfo, AnExternalSourceNeedsItsFlag) {
    TaskInfo task("a");
    EXPECT_FALSE(hasExternalSource(task));
    task.externalInput = true;
    EXPECT_TRUE(hasExternalSource(task));
    task.program = TaskProgram::fcclasses;
    EXPECT_FALSE(hasExternalSource(task));
    task.source = SourceStructured{{SourceBinding{}}};
    EXPECT_TRUE(hasExternalSource(task));
    EXPECT_TRUE(hasStructuredSource(task));
    task.interfaceMode = TaskInterfaceMode::provider;
    EXPECT_FALSE(hasExternalSource(task));
}

TEST(TaskInfo, ConditionsAreTheTextsOfTheirEntries) {
    TaskInfo task("a");
    EXPECT_TRUE(whenConditions(task).empty());
    task.whenEntries.edit() = {{"completed b", {"t.mq", 2, 1, 2, 18}}, {"defined x", {}}};
    EXPECT_EQ(whenConditions(task), (std::vector<std::string>{"completed b", "defined x"}));
}

TEST(TaskInfo, TheFirstDirectiveOfANameIsFound) {
    TaskInfo task("a");
    EXPECT_EQ(firstDirective(task, "source"), nullptr);
    task.directives.edit() = {{"keywords", {}, {"t.mq", 2, 1, 2, 9}},
                              {"source", {}, {"t.mq", 3, 1, 3, 9}},
                              {"source", {}, {"t.mq", 4, 1, 4, 9}}};
    ASSERT_NE(firstDirective(task, "source"), nullptr);
    EXPECT_EQ(firstDirective(task, "source")->span.line, 3);
    EXPECT_EQ(firstDirective(task, "Source"), nullptr);
}

TEST(TaskDocument, DeclaredTasksAreThoseThatRunWhereNoneAreDeclared) {
    TaskDocument document;
    document.tasks.edit().emplace_back("a_1");
    EXPECT_EQ(declaredTasks(document).front().name, "a_1");
    document.templateTasks.edit().emplace_back("a");
    EXPECT_EQ(declaredTasks(document).front().name, "a");
}

} // namespace
} // namespace morquill::taskdsl
