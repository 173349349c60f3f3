#include "taskdsl/parser/task_parser.h"

#include "fixtures/parse_text.h"
#include "fixtures/temporary_directory.h"
#include "fixtures/test_lines.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>

namespace morquill::taskdsl {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

TEST(TaskParser, DeclaredTasksAreReadAloneAndFromNoOtherFile) {
    TaskParser parser({.legacyMultiSource = true});
    const auto document = parser.parseDeclaredTasks("$a[k]\n%source b,c\n%mod\n charge [n]\n$b\n");
    EXPECT_THAT(namesOf(document.tasks), ElementsAre("a[k]", "b"));
    EXPECT_THAT(whenConditions(document.tasks[0]), ElementsAre("completed c"));
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

TEST(TaskParser, WhatNothingIsPutIntoIsStoredOnce) {
    const auto plain = parse("totcore: 8\n$a\n$b\n");
    EXPECT_TRUE(plain.document.tasks.sharesWith(plain.document.templateTasks));
    const auto substituted = parse("define:\n  k: v\n$a\n%keywords [k]\n$b\n");
    EXPECT_EQ(substituted.document.tasks[0].keywords, "v");
    EXPECT_EQ(substituted.document.templateTasks[0].keywords, "[k]");
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

TEST(TaskParser, CallersLoseToTheFileAndTheFileKeepsItsText) {
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

TEST(TaskParser, MakesTasksOfTheItemsOfAPrelude) {
    const auto parsed =
        parse("define:\n  k: v\nmols:\n  - name: water\n  - name: oh\n@foreach mols\n$sp_[mols.name]\n"
              "%keywords [mols.index] [k]\n@end\n");
    EXPECT_THAT(namesOf(parsed.document.templateTasks), ElementsAre("sp_water", "sp_oh"));
    EXPECT_EQ(parsed.document.templateTasks[1].keywords, "2 [k]");
    EXPECT_EQ(parsed.document.tasks[1].keywords, "2 v");
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

TEST(TaskParser, TellsTheLibrariesThatAFileImports) {
    const TemporaryDirectory dir;
    const auto one = dir.write("one.mqlib", "&FRAGMENT task opt\n%keywords k\n%process\n");
    const auto two = dir.write("two.mqlib", "");
    const auto path = dir.write("t.mq", "a: 1\n&INCLUDE one.mqlib as one\n$t\n&INCLUDE one.opt\nfree "
                                        "text\n&INCLUDE t2.mq\n&INCLUDE two.mqlib as two\n");
    (void)dir.write("t2.mq", "&INCLUDE two.mqlib as one\n$u\n");
    const auto parsed = parseFile(path);
    EXPECT_EQ(parsed.document.libraryBindings, (ValueMap{{"one", one}, {"two", two}}));
    EXPECT_EQ(parsed.document.tasks[0].keywords, "k");
    EXPECT_THAT(*parsed.document.tasks[0].processCommands, IsEmpty());
    EXPECT_EQ(parsed.document.tasks[0].directives->at(0).span.path.str(), one);
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
    EXPECT_EQ(sourceText(own.templateTasks[0]), "extra");
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

TEST(TaskParser, EveryCallIsARunOfItsOwn) {
    const TaskParser parser;
    for (int i = 0; i < 2; ++i) {
        const auto document = parser.parseText("$a\n$b\n", "");
        EXPECT_EQ(document.tasks[0].documentOrder, 0U);
        EXPECT_EQ(document.tasks[1].documentOrder, 1U);
    }
}

TEST(TaskParser, AsksItsCallerForNamesInAngles) {
    const TemporaryDirectory dir;
    const auto library = dir.write("lib/l.mqlib", "&FRAGMENT process clean\nrm x\n");
    const auto path = dir.write("t.mq", "&INCLUDE <l.mqlib> as l\n$a\n%process\n  &INCLUDE l.clean\n");
    std::vector<std::string> asked;
    const TaskParser parser({.findLibraryFile = [&](const std::string& name) {
        asked.push_back(name);
        return library;
    }});
    const auto document = parser.parseFile(path);
    EXPECT_THAT(*document.tasks[0].processCommands, testing::ElementsAre("rm x"));
    EXPECT_EQ(document.libraryBindings, (ValueMap{{"l", library}}));
    EXPECT_THAT(asked, testing::ElementsAre("l.mqlib"));
    EXPECT_EQ(messageOf([&] { (void)TaskParser().parseFile(path); }),
              "fragment library not found: " + dir.path("l.mqlib"));
}

} // namespace
} // namespace morquill::taskdsl
