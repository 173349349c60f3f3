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

TEST(TaskDump, AFreshTask) {
    EXPECT_EQ(describeTask(TaskInfo("a")), "TaskInfo: a\n"
                                           "Program: gaussian\n"
                                           "Quoted: false\n"
                                           "Source: origin\n"
                                           "ExternalInput: false\n"
                                           "WaitFreq: true\n"
                                           "Alert: true\n"
                                           "LocalFirst: false\n"
                                           "TemplateTaskName: a\n");
}

TEST(TaskDump, EveryFieldInItsOrder) {
    TaskInfo task("v", TaskProgram::orca);
    task.quoted = true;
    task.interfaceMode = TaskInterfaceMode::consume;
    task.interfaceProvider = "p";
    task.source = SourceStructured{{parseSourceBinding("geom t")}};
    task.guessSourceTask = "g";
    task.externalInput = true;
    task.waitFreq = false;
    task.alert = false;
    task.localFirst = true;
    task.finalGeom = "f.xyz";
    task.keywords = "k";
    task.args = "ar";
    task.gaussianGeomControl = "check";
    task.extraKeywords = "e";
    task.templateName = "tn";
    task.paramValues = "pv";
    task.runner = "r";
    task.body = "b";
    task.preProcessCommands.edit() = {"p1", "p2"};
    task.processCommands.edit() = {"c1"};
    task.modEntries.edit() = {{"charge", "1"}, {"spin", "2"}};
    task.smiles = "CCO";
    task.filePath = "x.mq";
    task.templateTaskName = "tt";
    task.matrixVariantKey = "a_1";
    task.matrixValues = AxisValues(ValueMap{{"a", "1"}});
    task.strucId = "s";
    task.metaProperties.edit() = {"m"};
    task.orcaBlock = "%scf end";
    task.whenEntries.edit() = {{"completed t", {}}};
    EXPECT_EQ(describeTask(task), "TaskInfo: v\n"
                                  "Program: orca\n"
                                  "Quoted: true\n"
                                  "Interface: consume p\n"
                                  "SourceBindings:\n"
                                  "  - geom t\n"
                                  "GuessSourceTask: g\n"
                                  "ExternalInput: true\n"
                                  "WaitFreq: false\n"
                                  "Alert: false\n"
                                  "LocalFirst: true\n"
                                  "FinalGeom: f.xyz\n"
                                  "Keywords: k\n"
                                  "Args: ar\n"
                                  "GaussianGeomControl: check\n"
                                  "ExtraKeywords: e\n"
                                  "TemplateName: tn\n"
                                  "ParamValues: pv\n"
                                  "Runner: r\n"
                                  "Body: b\n"
                                  "PreProcessCommands:\n"
                                  "  - p1\n"
                                  "  - p2\n"
                                  "ProcessCommands:\n"
                                  "  - c1\n"
                                  "ModValues:\n"
                                  "  charge: 1\n"
                                  "  spin: 2\n"
                                  "SMILES: CCO\n"
                                  "FilePath: x.mq\n"
                                  "TemplateTaskName: tt\n"
                                  "MatrixVariantKey: a_1\n"
                                  "MatrixValues:\n"
                                  "  a: 1\n"
                                  "StrucId: s\n"
                                  "MetaProperties:\n"
                                  "  - m\n"
                                  "OrcaBlock: [omitted]\n"
                                  "WhenConditions:\n"
                                  "  - completed t\n");
    task.modEntries.reset();
    task.interfaceMode = TaskInterfaceMode::provider;
    const std::string provider = describeTask(task);
    EXPECT_EQ(provider.find("ModValues:"), std::string::npos);
    EXPECT_NE(provider.find("Interface: provider\n"), std::string::npos);
}

TEST(TaskDump, ReadsItsLabelsBackAndIgnoresOthers) {
    const TaskInfo task = parseTaskDump("# a comment\n"
                                        "\n"
                                        " \tTaskInfo: a b\n"
                                        "Program: Orca\n"
                                        "Quoted: true\n"
                                        "Source: t\n"
                                        "LocalFirst: yes\n"
                                        "Interface: consume p\n"
                                        "FinalGeom: f\n"
                                        "Keywords: k\n"
                                        "Args: ar\n"
                                        "ExtraKeywords: e\n"
                                        "TemplateName: tn\n"
                                        "ParamValues: pv\n"
                                        "Runner: r\n"
                                        "Body: b\n"
                                        "SMILES: CCO\n"
                                        "FilePath: x.mq\n"
                                        "StrucId: s\n"
                                        "WaitFreq: false\n"
                                        "Unknown: z\n");
    EXPECT_EQ(task.name, "a b");
    EXPECT_EQ(task.program, TaskProgram::orca);
    EXPECT_TRUE(task.quoted);
    EXPECT_EQ(sourceText(task), "t");
    EXPECT_FALSE(task.localFirst) << "only the text true is true";
    EXPECT_EQ(task.interfaceMode, TaskInterfaceMode::consume);
    EXPECT_EQ(task.interfaceProvider, "p");
    EXPECT_EQ(task.finalGeom, "f");
    EXPECT_EQ(task.keywords, "k");
    EXPECT_EQ(task.args, "ar");
    EXPECT_EQ(task.extraKeywords, "e");
    EXPECT_EQ(task.templateName, "tn");
    EXPECT_EQ(task.paramValues, "pv");
    EXPECT_EQ(task.runner, "r");
    EXPECT_EQ(task.body, "b");
    EXPECT_EQ(task.smiles, "CCO");
    EXPECT_EQ(task.filePath, "x.mq");
    EXPECT_EQ(task.strucId, "s");
    EXPECT_TRUE(task.waitFreq) << "the label sets no field";
    EXPECT_EQ(parseTaskDump("Interface: provider").interfaceMode, TaskInterfaceMode::provider);
}

} // namespace
} // namespace morquill::taskdsl
