#include "taskdsl/task/task_substitution.h"

#include "fixtures/parse_text.h"
#include "taskdsl/task/mod_operation.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace morquill::taskdsl {
namespace {

using ::testing::ElementsAre;

TEST(Substitution, GoesIntoEveryFieldThatTakesPart) {
    TaskInfo task("[k]");
    const std::vector<SharedText*> fields{&task.guessSourceTask,
                                          &task.guessConverter,
                                          &task.gaussianGeomControl,
                                          &task.finalGeom,
                                          &task.gpuType,
                                          &task.strucId,
                                          &task.templateTaskName,
                                          &task.interfaceProvider,
                                          &task.keywords,
                                          &task.args,
                                          &task.extraKeywords,
                                          &task.templateName,
                                          &task.paramValues,
                                          &task.runner,
                                          &task.body,
                                          &task.orcaBlock};
    for (auto* field : fields) {
        *field = "a [k] [x]";
    }
    task.smiles = "[k]";
    task.verbosity = "[k]";
    task.filePath = "d/[k].mq";
    task.preProcessCommands.edit() = {"p [k]"};
    task.processCommands.edit() = {"q", "[k]"};
    task.whenEntries.edit() = {{"completed [k]", {"t.mq", 3, 2, 3, 9}}};
    task.source = SourceTaskList{{"a [k] [x]"}};
    task.modEntries.edit() = {{"charge", "[k]"}, {"[k]", "v"}};
    substituteTask(task, {{"k", "7"}});
    EXPECT_EQ(task.name, "7");
    for (const auto* field : fields) {
        EXPECT_EQ(*field, "a 7 [x]");
    }
    EXPECT_EQ(task.smiles, "[k]");
    EXPECT_EQ(task.verbosity, "[k]");
    EXPECT_EQ(task.filePath.str(), "d/7.mq");
    EXPECT_THAT(*task.preProcessCommands, ElementsAre("p 7"));
    EXPECT_THAT(*task.processCommands, ElementsAre("q", "7"));
    EXPECT_THAT(*task.whenEntries, ElementsAre(TaskWhenEntry{"completed 7", {"t.mq", 3, 2, 3, 9}}));
    EXPECT_EQ(task.source, SourceSpec(SourceTaskList{{"a 7 [x]"}}));
    EXPECT_THAT(*task.modEntries, ElementsAre(ModEntry{"charge", "7"}, ModEntry{"7", "v"}));
    EXPECT_EQ(modValues(task), (std::map<std::string, std::string>{{"7", "v"}, {"charge", "7"}}));
}

TEST(Substitution, KeepsTheShapeOfASource) {
    const auto source = [](const char* block, const ValueMap& values) {
        const auto parsed = parse(std::string("$a\n%source ") + block + "\n", false, "t.mq", values);
        return formatSourceSpec(parsed.document.tasks[0].source);
    };
    EXPECT_EQ(source("\n geom [s]\n aux.d [t] kind=[k]", {{"s", "origin"}, {"t", "b c"}, {"k", "x y"}}),
              "geom origin\naux.d \"b c\" kind=\"x y\"");
    EXPECT_EQ(source("\n geom [s]", {{"s", "xyz=a.xyz"}}), "geom xyz=a.xyz");
    EXPECT_EQ(source("\n geom xyz=[f] frame=[n]", {{"f", "a.xyz"}, {"n", "3"}}), "geom xyz=a.xyz frame=3");
    EXPECT_EQ(source("[s]", {{"s", "origin"}}), "origin");
    EXPECT_EQ(source("xyz=[f].xyz frame=2", {{"f", "m"}}), "xyz=m.xyz frame=2");
    EXPECT_EQ(source("opt_[f]", {{"f", "m"}}), "opt_m");
    EXPECT_EQ(source("xyz=[f] frame=1", {{"f", "a b"}}), "xyz=\"a b\" frame=1");
    EXPECT_EQ(source("xyz=[f]", {{"f", "a.xyz frame=3"}}), "xyz=\"a.xyz frame=3\"");
    EXPECT_EQ(source("xyz=a.xyz more [w]", {{"w", "frame=3"}}), "xyz=a.xyz frame=3 more");
    EXPECT_EQ(source("xyz=a.xyz [w]", {{"w", "frame=x"}}), "xyz=a.xyz frame=x")
        << "whoever prints it refuses";
    EXPECT_EQ(source("xyz=a.xyz [w] b", {{"w", ""}}), "xyz=a.xyz b");
    EXPECT_EQ(source("[s]", {{"s", "b,c"}}), "b,c");
}

TEST(Substitution, WhatCannotBeReadAfterwardsIsAFault) {
    const std::string noFrame =
        "has invalid structured %source: structured %source binding 'geom' has an invalid frame selector; "
        "frame must be a positive integer";
    EXPECT_EQ(faultOf("define:\n  n: x\n$a\n%source\n geom xyz=a.xyz frame=[n]\n"),
              "t.mq:4:1-4:8: error: task 'a' " + noFrame);
    EXPECT_EQ(faultOf("define:\n  e: \"\"\n$a\n%source\n geom x q=[e]\n"),
              "t.mq:4:1-4:8: error: task 'a' has invalid structured %source: structured %source binding "
              "'geom' has an invalid selector");
    for (const char* binding : {"geom xyz=[e]", "geom [e]"}) {
        EXPECT_EQ(faultOf("define:\n  e: \"\"\n$a\n%source\n " + std::string(binding) + "\n"),
                  "t.mq:4:1-4:8: error: task 'a' has invalid structured %source: structured %source "
                  "binding 'geom' has an empty source reference");
    }
    EXPECT_EQ(faultOf("define:\n  s: xyz=\n$a\n%source\n geom [s]\n"),
              "t.mq:4:1-4:8: error: task 'a' has invalid structured %source: structured %source binding "
              "'geom' is missing the file name after xyz=");
    EXPECT_EQ(faultOf("$a\n%source\n geom xyz=a.xyz frame=[n]\n"),
              "t.mq:2:1-2:8: error: task 'a' " + noFrame);
    // The last %source counts, and the matrix names the task as it is called then.
    EXPECT_EQ(faultOf("matrix:\n  m: x, y\n$a_[m]\n%source origin\n  %source\n geom xyz=a.xyz frame=[m]\n"),
              "t.mq:5:3-5:10: error: task 'a_x' " + noFrame);
    EXPECT_EQ(faultOf("define:\n  r: foo\n$a\n%mod basisset SVP role=[r]\n"),
              "unsupported %mod basisset role='foo'");
}

} // namespace
} // namespace morquill::taskdsl
