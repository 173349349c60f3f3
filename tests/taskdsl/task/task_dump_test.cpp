// The dump and its reader as a pair; each field's own label is the matter of task_document_test.cpp.

#include "taskdsl/task/task_document.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace morquill::taskdsl {
namespace {

using ::testing::HasSubstr;
using ::testing::Not;

TEST(TaskDump, WhatTheReaderKnowsItReadsBack) {
    TaskInfo task("a b", TaskProgram::xtb);
    task.quoted = true;
    task.source = parseSourceText("xyz=a.xyz frame=2");
    task.interfaceMode = TaskInterfaceMode::consume;
    task.interfaceProvider = "p";
    task.localFirst = true;
    task.finalGeom = "f.xyz";
    task.keywords = "k: v";
    task.args = "--gfn 2";
    task.extraKeywords = "x";
    task.templateName = "t";
    task.paramValues = "p=1";
    task.runner = "bash";
    task.body = "echo";
    task.smiles = "C#N";
    task.filePath = "d/t.mq";
    task.strucId = "s-1";
    task.templateTaskName.clear(); // its label sets no field
    EXPECT_EQ(describeTask(parseTaskDump(describeTask(task))), describeTask(task));
}

TEST(TaskDump, EmptyTextsAndListsLeaveNoLine) {
    TaskInfo task("a");
    task.templateTaskName.clear();
    const std::string text = describeTask(task);
    for (const char* label : {"Keywords", "ProcessCommands", "ModValues", "MatrixValues", "Plots",
                              "OrcaBlock", "Interface", "SourceBindings", "TemplateTaskName"}) {
        EXPECT_THAT(text, Not(HasSubstr(label)));
    }
    task.source = SourceNone{};
    EXPECT_THAT(describeTask(task), Not(HasSubstr("Source: ")));
}

TEST(TaskDump, APlotIsShownByItsTitleOrElseItsId) {
    TaskInfo task("a");
    auto& plots = task.plots.edit();
    plots.resize(2);
    plots[0].kind = plot::PlotKind::bar;
    plots[0].title = "Charges";
    plots[0].id = "a:q";
    plots[1].kind = plot::PlotKind::curve;
    plots[1].id = "a:scan";
    EXPECT_THAT(describeTask(task), HasSubstr("Plots:\n  - bar Charges\n  - curve a:scan\n"));
}

TEST(TaskDump, TheReaderTakesLinesAsTheyAre) {
    const std::pair<const char*, const char*> rows[] = {
        {"Keywords: a: b", "a: b"}, {"\t  Keywords: x ", "x "}, {"Keywords: a\nKeywords: b", "b"},
        {"Keywords:x", ""},         {"keywords: x", ""},        {"# Keywords: x", ""},
        {"NoKeywords: x", ""},      {"  - Keywords: x", ""},    {"Keywords: x\r\nArgs: y", "x\r"},
    };
    for (const auto& [text, keywords] : rows) {
        EXPECT_EQ(parseTaskDump(text).keywords, keywords) << text;
    }
    EXPECT_EQ(describeTask(parseTaskDump("")), describeTask(TaskInfo()));
    EXPECT_EQ(parseTaskDump("Program: none").program, TaskProgram::gaussian);
    EXPECT_EQ(describeTask(parseTaskDump("Source: xyz=a.xyz frame=first")).substr(43, 38),
              "Source: xyz=a.xyz frame=first\nExternal");
    EXPECT_EQ(parseTaskDump("Interface: both").interfaceMode, TaskInterfaceMode::none);
    EXPECT_EQ(parseTaskDump("Interface: consume ").interfaceMode, TaskInterfaceMode::consume);
}

} // namespace
} // namespace morquill::taskdsl
