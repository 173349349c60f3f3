// The generating stages at work in the parser: substitution, the matrix, includes of task files.
#include "taskdsl/matrix_expand.h"
#include "taskdsl/task_substitution.h"

#include "parse_text.h"
#include "temporary_directory.h"
#include "test_lines.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>

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

/// Parses a file of a directory.
ParsedText parseFile(const std::string& path, const ValueMap& defines = {}) {
    ParsedText result;
    TaskParser parser(false, [&result](const std::string& warning) { result.warnings.push_back(warning); });
    result.document = parser.parseFile(path, defines);
    return result;
}

TEST(Substitution, GoesIntoEveryFieldThatTakesPart) {
    TaskInfo task("[k]");
    const std::vector<std::string*> fields{&task.guessSourceTask,
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
                                           &task.orcaBlock,
                                           &task.source};
    for (auto* field : fields) {
        *field = "a [k] [x]";
    }
    task.smiles = "[k]";
    task.verbosity = "[k]";
    task.filePath = "d/[k].mq";
    task.preProcessCommands = {"p [k]"};
    task.processCommands = {"q", "[k]"};
    task.whenConditions = {"completed [k]"};
    task.modEntries = {{"charge", "[k]"}, {"[k]", "v"}};
    substituteTask(task, {{"k", "7"}}, true);
    EXPECT_EQ(task.name, "7");
    for (const auto* field : fields) {
        EXPECT_EQ(*field, "a 7 [x]");
    }
    EXPECT_EQ(task.smiles, "[k]");
    EXPECT_EQ(task.verbosity, "[k]");
    EXPECT_EQ(task.filePath.str(), "d/7.mq");
    EXPECT_THAT(task.preProcessCommands, ElementsAre("p 7"));
    EXPECT_THAT(task.processCommands, ElementsAre("q", "7"));
    EXPECT_THAT(task.whenConditions, ElementsAre("completed 7"));
    EXPECT_THAT(task.modEntries, ElementsAre(ModEntry{"charge", "7"}, ModEntry{"7", "v"}));
    EXPECT_EQ(task.modValues, (std::map<std::string, std::string>{{"7", "v"}, {"charge", "7"}}));
}

TEST(Substitution, KeepsTheShapeOfASource) {
    const auto source = [](const char* block, const ValueMap& values) {
        const auto parsed = parse(std::string("$a\n%source ") + block + "\n", false, "t.mq", values);
        return formatSourceSpec(sourceSpecOf(parsed.document.tasks[0]));
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

TEST(Defines, CallersLoseToTheFileAndTheFileKeepsItsText) {
    const auto parsed = parse("define:\n  a: file\n$[b]_[a]\n%keywords [a] [b] [c]\n", false, "t.mq",
                              {{"a", "caller"}, {"b", "caller"}});
    EXPECT_EQ(parsed.document.defines, (ValueMap{{"a", "file"}, {"b", "caller"}}));
    EXPECT_EQ(parsed.document.tasks[0].name, "caller_file");
    EXPECT_EQ(parsed.document.tasks[0].keywords, "file caller [c]");
    EXPECT_EQ(parsed.document.templateTasks[0].keywords, "[a] [b] [c]");
    EXPECT_EQ(messageOf([] {
                  (void)parse("", false, "t.mq", {{"spin", "1"}});
              }),
              "define key 'spin' is reserved for runtime %source placeholders");
    EXPECT_EQ(faultOf("define:\n  uhf.x: 1\n"),
              "define key 'uhf.x' is reserved for runtime %source placeholders");
    EXPECT_EQ(faultOf("matrix:\n  charge: 0, 1\n"),
              "matrix axis 'charge' is reserved for runtime %source placeholders");
}

TEST(Matrix, MakesVariantsCombinationByCombination) {
    const auto parsed = parse(
        "define:\n  a: define\n  k: kept\nmatrix:\n  a: 1,2\n  b: x,y\n$opt\n%keywords [a][b][k]\n$freq\n");
    const auto& tasks = parsed.document.tasks;
    EXPECT_THAT(namesOf(tasks),
                ElementsAre("opt__a_1__b_x", "freq__a_1__b_x", "opt__a_1__b_y", "freq__a_1__b_y",
                            "opt__a_2__b_x", "freq__a_2__b_x", "opt__a_2__b_y", "freq__a_2__b_y"));
    EXPECT_EQ(tasks[2].keywords, "1ykept");
    EXPECT_EQ(tasks[2].templateTaskName, "opt");
    EXPECT_EQ(tasks[2].matrixVariantKey, "a_1__b_y");
    EXPECT_EQ(tasks[2].matrixValues.get(), (ValueMap{{"a", "1"}, {"b", "y"}}));
    EXPECT_THAT(namesOf(parsed.document.templateTasks), ElementsAre("opt", "freq"));
    EXPECT_EQ(parsed.document.templateTasks[0].keywords, "[a][b][k]");
}

TEST(Matrix, OneCombinationKeepsTheNames) {
    const auto parsed = parse("matrix:\n  a: 1\n$opt\n%keywords [a]\n$freq\n%source opt\n");
    EXPECT_THAT(namesOf(parsed.document.tasks), ElementsAre("opt", "freq"));
    EXPECT_EQ(parsed.document.tasks[0].keywords, "1");
    EXPECT_EQ(parsed.document.tasks[0].matrixVariantKey, "a_1");
    EXPECT_EQ(parsed.document.tasks[0].matrixValues.get(), (ValueMap{{"a", "1"}}));
    EXPECT_EQ(parsed.document.tasks[1].source, "opt");
}

TEST(Matrix, OneCombinationRenamesNothing) {
    const auto parsed = parse("matrix:\n  a: 1\n$opt\n$sp_[a]\n%when\n {{opt.energy}} < {{  sp_[a] .e}}\n"
                              " completed  opt and completed  sp_[a]\n");
    EXPECT_THAT(parsed.document.tasks[1].whenConditions,
                ElementsAre("{{opt.energy}} < {{  sp_1 .e}}", "completed  opt and completed  sp_1"));
}

TEST(Matrix, ReferencesFollowTheNames) {
    const auto parsed =
        parse("matrix:\n  a: 1,2\n$opt\n$sp_[a]\n%source\n geom opt\n aux.d opt\n aux.o origin\n"
              "$last\n%source sp_[a]\n%control\n guess opt\n%interface consume opt\n%when\n"
              " completed opt and completed other\n {{ sp_[a].energy }} < {{opt.e}}\n");
    ASSERT_EQ(parsed.document.tasks.size(), 6U);
    const auto& sp = parsed.document.tasks[4];
    EXPECT_EQ(sp.name, "sp_2__a_2");
    EXPECT_EQ(sp.templateTaskName, "sp_[a]");
    EXPECT_EQ(formatSourceSpec(sourceSpecOf(sp)), "geom opt__a_2\naux.d opt__a_2\naux.o origin");
    const auto& last = parsed.document.tasks[5];
    EXPECT_EQ(formatSourceSpec(sourceSpecOf(last)), "sp_2__a_2");
    EXPECT_EQ(last.guessSourceTask, "opt__a_2");
    EXPECT_EQ(last.interfaceProvider, "opt__a_2");
    EXPECT_THAT(last.whenConditions, ElementsAre("completed opt__a_2 and completed other",
                                                 "{{ sp_2__a_2.energy }} < {{ opt__a_2.e}}"));
}

TEST(Matrix, ANameMadeByTheMatrixIsNotRenamedAgain) {
    const auto parsed =
        parse("matrix:\n  a: 1,2\n$t\n$t__a_1\n$u\n%source t\n%when completed t and completed t__a_1\n");
    const auto& task = parsed.document.tasks[2];
    EXPECT_EQ(task.source, "t__a_1");
    EXPECT_THAT(task.whenConditions, ElementsAre("completed t__a_1 and completed t__a_1__a_1"));
}

TEST(Matrix, ReferencesStayInTheirFile) {
    const TemporaryDirectory dir;
    (void)dir.write("b.mq", "$shared\n$user\n%source shared\n");
    const auto path = dir.write("a.mq", "matrix:\n  a: 1,2\n$shared\n%source user\n&INCLUDE b.mq\n");
    const auto parsed = parseFile(path);
    EXPECT_THAT(namesOf(parsed.document.tasks), ElementsAre("shared__a_1", "shared__a_1", "user__a_1",
                                                            "shared__a_2", "shared__a_2", "user__a_2"));
    EXPECT_EQ(parsed.document.tasks[0].source, "user"); // a task of another file
    EXPECT_EQ(parsed.document.tasks[2].source, "shared__a_1");
}

TEST(Matrix, CollidingSuffixesAndFaultsOfTheAxesEndTheParse) {
    EXPECT_EQ(faultOf("matrix:\n  a: x y, x_y\n$t\n"),
              "matrix variant suffix collision detected for 'a_x_y'");
    EXPECT_EQ(faultOf("matrix:\n  - a: 1\n    map: b\n$t\n"), "matrix axis 'a' maps to unknown axis 'b'");
    EXPECT_EQ(faultOf("matrix:\n  : 1\n$t\n"), "matrix axis key cannot be empty");
    EXPECT_THAT(parse("matrix:\n  - a: 1\n    map: b\n").document.tasks, IsEmpty()); // no task, no check
}

TEST(Matrix, GrowthWithoutReasonIsAnError) {
    std::string axes = "matrix:\n";
    for (int i = 0; i < 40; ++i) {
        axes += "  a_" + std::to_string(i) + ": 1, 2\n";
    }
    EXPECT_EQ(faultOf(axes + "$t\n"), "matrix yields more than 1000000 combinations");
    std::string values;
    for (int i = 0; i < 1000; ++i) {
        values += std::to_string(i) + ",";
    }
    EXPECT_EQ(faultOf("matrix:\n  a: " + values + "\n  b: " + values + "\n$t\n$u\n"),
              "matrix yields more than 1000000 task variants");
    EXPECT_EQ(faultOf("matrix:\n  a: " + values + "\n$t\n%keywords " + std::string(2'000'000, 'k') + "\n"),
              "matrix variants hold more than 1024 MiB of text");
}

TEST(Foreach, MakesTasksOfTheItemsOfAPrelude) {
    const auto parsed =
        parse("define:\n  k: v\nmols:\n  - name: water\n  - name: oh\n@foreach mols\n$sp_[mols.name]\n"
              "%keywords [mols.index] [k]\n@end\n");
    EXPECT_THAT(namesOf(parsed.document.templateTasks), ElementsAre("sp_water", "sp_oh"));
    EXPECT_EQ(parsed.document.templateTasks[1].keywords, "2 [k]");
    EXPECT_EQ(parsed.document.tasks[1].keywords, "2 v");
}

TEST(ExpandMatrix, AnAxisWinsOverADefineOfItsNameInATaskName) {
    const auto parsed = parse("define:\n  m: D\nmatrix:\n  m: 1,2\n$b_[m]\n%when completed b_[m]\n");
    EXPECT_THAT(namesOf(parsed.document.templateTasks), ElementsAre("b_[m]"));
    EXPECT_THAT(namesOf(parsed.document.tasks), ElementsAre("b_1__m_1", "b_2__m_2"));
    EXPECT_THAT(parsed.document.tasks[1].whenConditions, ElementsAre("completed b_2__m_2"));
}

TEST(ExpandMatrix, LongValuesCountAlthoughNoTaskHoldsThem) {
    std::string text = "matrix:\n";
    const std::string value(40'000, 'v');
    for (const char* axis : {"a", "b", "c", "d", "e"}) {
        text += "  " + std::string(axis) + ": ";
        for (int i = 0; i < 10; ++i) {
            text += std::to_string(i) + value + ",";
        }
        text += "\n";
    }
    EXPECT_EQ(faultOf(text + "$t\n"), "matrix variants hold more than 1024 MiB of text");
}

TEST(TaskInclude, AppendsWhatTheFileHolds) {
    const TemporaryDirectory dir;
    const auto inner =
        dir.write("sub/b.mq", "x: inner\ny: inner\ndefine:\n  d: inner\nmatrix:\n  m: 1,2\n$b\n"
                              "%keywords [d] [outer] [m]\n@plot barrier p\npoint x value 1\npoint y value "
                              "2\n@end\n@derive q\nemit e = 1\n@end\n&INCLUDE c.mq\n");
    const auto innermost = dir.write("sub/c.mq", "$c\n%keywords [d]\n");
    const auto path =
        dir.write("a.mq", "x: outer\ndefine:\n  outer: o\n$a\n%keywords [d]\n&INCLUDE sub/b.mq\n$z\n");
    const auto parsed = parseFile(path);
    const auto& document = parsed.document;
    EXPECT_THAT(namesOf(document.tasks), ElementsAre("a", "b__m_1", "c__m_1", "b__m_2", "c__m_2", "z"));
    EXPECT_EQ(document.tasks[1].keywords, "inner o 1");
    EXPECT_EQ(document.tasks[1].filePath.str(), inner);
    EXPECT_EQ(document.tasks[2].filePath.str(), innermost);
    EXPECT_EQ(document.tasks[2].keywords, "inner");
    EXPECT_EQ(document.tasks[0].keywords, "[d]");
    EXPECT_EQ(document.settings, (ValueMap{{"x", "outer"}, {"y", "inner"}}));
    EXPECT_EQ(document.defines, (ValueMap{{"outer", "o"}}));
    EXPECT_THAT(document.matrixAxes, IsEmpty());
    EXPECT_EQ(document.plots.size(), 1U);
    EXPECT_EQ(document.derives.size(), 1U);
    EXPECT_THAT(document.includedFiles, ElementsAre(inner, innermost));
    EXPECT_THAT(document.tasks[5].documentTaskNames.get(), testing::SizeIs(6));
    EXPECT_THAT(parsed.warnings, IsEmpty());
}

TEST(TaskInclude, MissingFilesWarnAndTheParseGoesOn) {
    const TemporaryDirectory dir;
    std::filesystem::create_directory(dir.path("d.mq"));
    const auto path = dir.write("a.mq", "$a\n&INCLUDE none.mq\n&INCLUDE d.mq\n&INCLUDE \"\"\n$b\n");
    const auto parsed = parseFile(path);
    EXPECT_THAT(namesOf(parsed.document.tasks), ElementsAre("a", "b"));
    EXPECT_THAT(parsed.warnings, ElementsAre("Warning: Included task file not found: " + dir.path("none.mq"),
                                             "Warning: Included task file not found: " + dir.path("d.mq"),
                                             "Warning: Empty path in &INCLUDE directive."));
}

TEST(TaskInclude, CyclesTellTheWholeChain) {
    const TemporaryDirectory dir;
    const auto a = dir.write("a.mq", "&INCLUDE sub/b.mq\n");
    const auto b = dir.write("sub/b.mq", "&INCLUDE ../c.mq\n");
    std::filesystem::create_symlink("a.mq", dir.path("c.mq"));
    EXPECT_EQ(messageOf([&] { (void)parseFile(a); }),
              "task include cycle detected: " + a + " -> " + b + " -> " + dir.path("c.mq"));
}

TEST(TaskInclude, AFileIsFinishedOnceAndWarnsOnce) {
    const TemporaryDirectory dir;
    (void)dir.write("b.mq", "totcore: 0\n$b\n%program xtb\n%keywords x\n%when completed allothers\n$c\n%when "
                            "completed allothers\n");
    const auto path = dir.write("a.mq", "totmem: 5\n$a\n&INCLUDE b.mq\n");
    const auto parsed = parseFile(path);
    EXPECT_THAT(
        parsed.warnings,
        ElementsAre(
            "task 'b' uses deprecated '%keywords' syntax for '%program xtb'; move command-line arguments to "
            "'%args'.",
            "task file '" + dir.path("b.mq") + "' has invalid header metadata totcore='0'; ignoring it.",
            "potential deadlock: multiple tasks in '" + path + "' use '%when completed allothers': b, c"));
}

TEST(TaskInclude, HeaderValuesOfAnIncludedFileServeTheWholeDocument) {
    const TemporaryDirectory dir;
    (void)dir.write("b.mq", "totcore: 4\n$b\n");
    const auto parsed = parseFile(dir.write("a.mq", "$a\n&INCLUDE b.mq\n"));
    EXPECT_EQ(parsed.document.tasks[0].totalCores, 4);
    EXPECT_EQ(parsed.document.tasks[1].totalCores, 4);
}

TEST(TaskInclude, AnInvalidHeaderValueIsASettingLikeAnyOther) {
    const TemporaryDirectory dir;
    (void)dir.write("c.mq", "totmem: -1\n$c\n");
    (void)dir.write("b.mq", "totcore: many\n$b\n&INCLUDE c.mq\n");
    (void)dir.write("d.mq", "totcore: 4\ntotmem: 8\n$d\n");
    const auto path = dir.write("a.mq", "$a\n&INCLUDE b.mq\n&INCLUDE d.mq\n");
    const auto parsed = parseFile(path);
    EXPECT_EQ(parsed.document.settings, (ValueMap{{"totcore", "many"}, {"totmem", "-1"}}));
    EXPECT_EQ(parsed.document.tasks[0].totalCores, 0);
    EXPECT_EQ(parsed.document.tasks[3].totalCores, 4);
    EXPECT_THAT(
        parsed.warnings,
        ElementsAre(
            "task file '" + dir.path("c.mq") + "' has invalid header metadata totmem='-1'; ignoring it.",
            "task file '" + dir.path("b.mq") + "' has invalid header metadata totcore='many'; ignoring it."));
}

TEST(TaskInclude, AnInvalidHeaderValueOfTheFileItselfWarnsForTheFile) {
    const TemporaryDirectory dir;
    (void)dir.write("b.mq", "totcore: many\n$b\n");
    const auto path = dir.write("a.mq", "totcore: few\n$a\n&INCLUDE b.mq\n");
    EXPECT_THAT(
        parseFile(path).warnings,
        ElementsAre("task file '" + dir.path("b.mq") +
                        "' has invalid header metadata totcore='many'; ignoring it.",
                    "task file '" + path + "' has invalid header metadata totcore='few'; ignoring it."));
}

TEST(TaskInclude, DoublingFilesEnd) {
    const TemporaryDirectory dir;
    for (int i = 0; i < 220; ++i) {
        (void)dir.write("f" + std::to_string(i) + ".mq", "&INCLUDE f" + std::to_string(i + 1) + ".mq\n");
    }
    EXPECT_EQ(messageOf([&] { (void)parseFile(dir.path("f0.mq")); }),
              "task include is nested more than 200 deep: " + dir.path("f200.mq"));
}

TEST(ExtraFiles, StandBeforeTheFile) {
    const TemporaryDirectory dir;
    const auto yaml =
        dir.write("extra.yaml",
                  "x: extra\ny: extra\nc: [extra]\nd: [1, 2]\ndefine:\n  k: extra\n  l: extra\n  m: extra\n"
                  "matrix:\n  a: 1,2\n");
    const auto task = dir.write("extra.mq", "$extra\n%keywords [k]\n");
    const auto path =
        dir.write("t.mq", "x: file\nc: [file]\ndefine:\n  k: file\n$t\n%keywords [k] [l] [m] [a]\n"
                          "@foreach c\n$[c.value]\n@end\n@foreach d\n$d[d.value]\n@end\n");
    const auto parsed = parseFile(path, {{"l", "caller"}});
    EXPECT_THAT(namesOf(parsed.document.templateTasks),
                ElementsAre("extra__a_1", "extra__a_2", "t", "file", "d1", "d2"));
    EXPECT_EQ(parsed.document.settings, (ValueMap{{"x", "file"}, {"y", "extra"}}));
    EXPECT_EQ(parsed.document.defines, (ValueMap{{"k", "file"}, {"l", "caller"}, {"m", "extra"}}));
    EXPECT_EQ(parsed.document.tasks[0].keywords, "file");
    EXPECT_EQ(parsed.document.tasks[2].keywords, "file caller extra 1");
    EXPECT_THAT(parsed.document.includedFiles, ElementsAre(yaml, task));
}

TEST(ExtraFiles, AreLookedForBesideAPathWithADirectory) {
    const TemporaryDirectory dir;
    (void)dir.write("extra.mq", "$extra\n");
    (void)dir.write("t.mq", "$t\n");
    const auto before = std::filesystem::current_path();
    std::filesystem::current_path(dir.path("."));
    const auto bare = namesOf(parseFile("t.mq").document.tasks);
    const auto dotted = namesOf(parseFile("./t.mq").document.tasks);
    std::filesystem::current_path(before);
    EXPECT_THAT(bare, ElementsAre("t"));
    EXPECT_THAT(dotted, ElementsAre("extra", "t"));
}

TEST(ExtraFiles, TheExtraTaskFileIsEnteredOnce) {
    const TemporaryDirectory dir;
    (void)dir.write("extra.mq", "$extra\n&INCLUDE b.mq\n");
    (void)dir.write("b.mq", "$b\n");
    EXPECT_THAT(namesOf(parseFile(dir.path("extra.mq")).document.tasks), ElementsAre("extra", "b"));
    const auto path = dir.write("t.mq", "$t\n&INCLUDE b.mq\n");
    EXPECT_THAT(namesOf(parseFile(path).document.tasks), ElementsAre("extra", "b", "t", "b"));
}

TEST(ExtraFiles, WhatTheyBringCanBeLeftOut) {
    const TemporaryDirectory dir;
    (void)dir.write("extra.yaml", "x: extra\ny: extra\ndefine:\n  k: extra\n  l: extra\n"
                                  "matrix:\n  a: 1,2\n  b: 3\n");
    (void)dir.write("extra.mq", "z: extra\n$extra\n@plot barrier p\npoint x value 1\npoint y value 2\n@end\n"
                                "@derive d\nemit e = 1\n@end\n");
    (void)dir.write("sub/b.mq", "z: inner\nw: inner\n$b\n");
    const auto path = dir.write("t.mq", "x: file\ndefine:\n  k: file\nmatrix:\n  b: 3\n  c: 4\n$t\n"
                                        "%source extra\n&INCLUDE sub/b.mq\n@plot barrier q\npoint x value 1\n"
                                        "point y value 2\n@end\n@derive f\nemit e = 1\n@end\n");
    const auto own = withoutImplicitContent(parseFile(path).document);
    EXPECT_EQ(own.settings, (ValueMap{{"w", "inner"}, {"x", "file"}}));
    EXPECT_EQ(own.defines, (ValueMap{{"k", "file"}}));
    EXPECT_THAT(own.matrixAxes, ElementsAre(MatrixAxis{"b", {"3"}, {}, {}}, MatrixAxis{"c", {"4"}, {}, {}}));
    EXPECT_THAT(own.matrixValues,
                ElementsAre(testing::Pair("b", ElementsAre("3")), testing::Pair("c", ElementsAre("4"))));
    EXPECT_THAT(namesOf(own.templateTasks), ElementsAre("t", "b"));
    EXPECT_THAT(namesOf(own.tasks),
                ElementsAre("t__a_1__b_3__c_4", "b__a_1__b_3__c_4", "t__a_2__b_3__c_4", "b__a_2__b_3__c_4"));
    // References to what is left out are resolved.
    EXPECT_EQ(own.templateTasks[0].source, "extra");
    ASSERT_EQ(own.plots.size(), 1U);
    EXPECT_EQ(own.plots[0].name, "q");
    ASSERT_EQ(own.derives.size(), 1U);
    EXPECT_EQ(own.derives[0].spec.name, "f");
}

TEST(ExtraFiles, AFileOfNothingElseHasNoTasksOfItsOwn) {
    const TemporaryDirectory dir;
    (void)dir.write("extra.mq", "$extra\n");
    const auto own = withoutImplicitContent(parseFile(dir.write("t.mq", "x: 1\n")).document);
    EXPECT_THAT(own.tasks, IsEmpty());
    EXPECT_THAT(own.templateTasks, IsEmpty());
    EXPECT_EQ(own.settings, (ValueMap{{"x", "1"}}));
}

TEST(ByteOrderMark, IsSkippedAtTheStartOfEveryFile) {
    const std::string mark = "\xef\xbb\xbf";
    const TemporaryDirectory dir;
    (void)dir.write("extra.yaml", mark + "x: yaml\n");
    (void)dir.write("extra.mq", mark + "$extra\n");
    (void)dir.write("b.mq", mark + "$b\n");
    (void)dir.write("l.mqlib", mark + "&FRAGMENT task k\n%keywords hf\n");
    (void)dir.write("f.mqfrag", mark + "&FRAGMENT task\n%args -v\n");
    const auto parsed = parseFile(
        dir.write("t.mq", mark + "&INCLUDE l.mqlib as l\n$t\n%program xtb\n&INCLUDE l.k\n&INCLUDE f.mqfrag\n"
                                 "&INCLUDE b.mq\n"));
    EXPECT_EQ(parsed.document.settings, (ValueMap{{"x", "yaml"}}));
    EXPECT_THAT(namesOf(parsed.document.tasks), ElementsAre("extra", "t", "b"));
    EXPECT_EQ(parsed.document.tasks[1].keywords, "hf");
    EXPECT_EQ(parsed.document.tasks[1].args, "-v");
    EXPECT_THAT(parsed.warnings, IsEmpty());
}

TEST(ByteOrderMark, ShiftsNoPlaceAndCountsOnceOnly) {
    const std::string mark = "\xef\xbb\xbf";
    const auto parsed = parse(mark + "$a\n%keywords " + mark + "hf\n");
    EXPECT_EQ(formatSpan(parsed.document.tasks[0].headerSpan), "t.mq:1:1-1:3");
    EXPECT_EQ(parsed.document.tasks[0].keywords, mark + "hf");
    EXPECT_EQ(faultOf(mark + "%keywords hf\n"), "t.mq:1: task directive appears outside a task block");
    EXPECT_THAT(parse(mark + mark + "$a\n").document.tasks, IsEmpty());
}

TEST(Parser, TellsTheLibrariesThatAFileImports) {
    const TemporaryDirectory dir;
    const auto one = dir.write("one.mqlib", "&FRAGMENT task opt\n%keywords k\n%process\n");
    const auto two = dir.write("two.mqlib", "");
    const auto path = dir.write("t.mq", "a: 1\n&INCLUDE one.mqlib as one\n$t\n&INCLUDE one.opt\nfree "
                                        "text\n&INCLUDE t2.mq\n&INCLUDE two.mqlib as two\n");
    (void)dir.write("t2.mq", "&INCLUDE two.mqlib as one\n$u\n");
    const auto parsed = parseFile(path);
    EXPECT_EQ(parsed.document.libraryBindings, (ValueMap{{"one", one}, {"two", two}}));
    EXPECT_EQ(parsed.document.tasks[0].keywords, "k");
    EXPECT_THAT(parsed.document.tasks[0].processCommands, IsEmpty());
    EXPECT_EQ(parsed.document.tasks[0].directives->at(0).span.path.str(), one);
}

} // namespace
} // namespace morquill::taskdsl
