#include "taskdsl/task/resolved_task.h"

#include <gtest/gtest.h>

namespace morquill::taskdsl {
namespace {

TEST(ResolvedTask, WhatIsWrittenWinsOverWhatOlderFilesKeepInKeywords) {
    TaskInfo task("a", TaskProgram::other);
    task.keywords = "job=nbo mem=4";
    EXPECT_EQ(resolvedTemplateName(task), "nbo");
    EXPECT_EQ(resolvedParams(task), "mem=4");
    task.templateName = "own";
    task.paramValues = "x=1";
    EXPECT_EQ(resolvedTemplateName(task), "own");
    EXPECT_EQ(resolvedParams(task), "x=1");
    TaskInfo script("b", TaskProgram::script);
    script.keywords = "bash";
    EXPECT_EQ(resolvedRunner(script), "bash");
    script.runner = "python3";
    EXPECT_EQ(resolvedRunner(script), "python3");
    EXPECT_EQ(resolvedTemplateName(TaskInfo("c")), "");
}

TEST(ResolvedTask, TheBlockOfAnOrcaTaskComesAfterItsExtraInput) {
    TaskInfo task("a", TaskProgram::orca);
    task.extraKeywords = "%scf\nend";
    EXPECT_EQ(resolvedExtraInput(task), "%scf\nend");
    task.orcaBlock = "%pal\nend";
    EXPECT_EQ(resolvedExtraInput(task), "%scf\nend\n%pal\nend");
    task.extraKeywords = "%scf\nend\n";
    EXPECT_EQ(resolvedExtraInput(task), "%scf\nend\n%pal\nend");
    task.extraKeywords.clear();
    EXPECT_EQ(resolvedExtraInput(task), "%pal\nend");
    task.program = TaskProgram::gaussian;
    EXPECT_EQ(resolvedExtraInput(task), "");
}

} // namespace
} // namespace morquill::taskdsl
