#include "fixtures/parse_text.h"
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
    task.matrixValues = ValueMap{{"a", "1"}};
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
