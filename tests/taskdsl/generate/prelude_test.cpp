#include "taskdsl/generate/prelude.h"

#include "fixtures/temporary_directory.h"
#include "fixtures/test_lines.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>

namespace morquill::taskdsl {
namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::StartsWith;

/// A prelude, where it ended, and the warnings that it gave.
struct ReadPrelude {
    PreludeResult result;
    std::size_t next = 0;
    std::vector<std::string> warnings;
    ValueMap bindings;
    std::vector<std::string> includedFiles;
};

ReadPrelude read(std::string_view text, const std::string& path = "t.mq") {
    ReadPrelude prelude;
    const WarningSink sink = [&prelude](const std::string& warning) { prelude.warnings.push_back(warning); };
    ParseContext run({.warnings = sink});
    DocumentContext context(run);
    const auto lines = makeSourceLines(text, SharedText(path));
    auto taken = parsePrelude(lines, path, context);
    prelude.result = std::move(taken.value);
    prelude.next = taken.next;
    prelude.bindings = libraryBindings(context);
    prelude.includedFiles = context.includedFiles.names();
    return prelude;
}

std::string fault(std::string_view text, const std::string& path = "t.mq") {
    return messageOf([&] { (void)read(text, path); });
}

TEST(Prelude, ReadsSettingsDefinesAxesAndCollections) {
    const auto prelude = read("#!/usr/bin/env mqkit\n"
                              "# a study\n"
                              "dsl_version: 2\n"
                              "\n"
                              "site:\n"
                              "  queue: {name: long, 'hours': \"48\"}\n"
                              "  empty:\n"
                              "  list: [1, 2]\n"
                              "mols:\n"
                              "  - name: water\n"
                              "    index: 7\n"
                              "    at: {x: 1}\n"
                              "  -\n"
                              "  - oh\n"
                              "  - [a]\n"
                              "define:\n"
                              "  a: 1\n"
                              "matrix:\n"
                              "  f: x, y\n"
                              "define:\n"
                              "  a: 2\n"
                              "  b: 3\n"
                              "$task\n");
    EXPECT_EQ(prelude.result.settings,
              (ValueMap{{"dsl_version", "2"}, {"site.queue.name", "long"}, {"site.queue.hours", "48"}}));
    EXPECT_EQ(prelude.result.defines, (ValueMap{{"a", "2"}, {"b", "3"}}));
    EXPECT_THAT(prelude.result.matrixAxes, ElementsAre(MatrixAxis{"f", {"x", "y"}, {}, {}}));
    EXPECT_THAT(prelude.result.collections,
                ElementsAre(testing::Pair(
                    "mols", ElementsAre(ValueMap{{"at.x", "1"}, {"index", "1"}, {"name", "water"}},
                                        ValueMap{{"index", "3"}, {"value", "oh"}}))));
    EXPECT_EQ(prelude.next, 22U);
    EXPECT_THAT(prelude.warnings, IsEmpty());
}

TEST(Prelude, OfTwoSectionsTheLaterValueCounts) {
    const auto prelude = read("a: old\nb: kept\nl: [x, y]\ndefine:\n  d: 1\na: new\nl: [z]\n");
    EXPECT_EQ(prelude.result.settings, (ValueMap{{"a", "new"}, {"b", "kept"}}));
    EXPECT_THAT(prelude.result.collections.at("l"), ElementsAre(ValueMap{{"index", "1"}, {"value", "z"}}));
}

TEST(Prelude, EndsWhereTheBodyBegins) {
    const std::vector<std::pair<const char*, std::size_t>> rows{
        {"$a\n", 0},
        {"a: 1\n  $a\n", 1},
        {"a: 1\n@plot x\n", 1},
        {"@derive\n", 0},
        {"a: 1\n@end\n", 1},
        {"a: 1\n@foreach? x\n", 1},
        {"@foreach 1\n", 0},
        {"  a: 1\n", 0},
        {"no key\n", 0},
        {": 1\n", 0},
        {"%process a: b\n", 0},
        {"&INCLUDE a.mq\n", 0},
        {"a: 1\n&INCLUDE a.b(x=\n 1)\n", 1},
        {"&INCLUDE a.yaml)\n", 0},
        {"&INCLUDE a.mqlib\n", 0},
        {"&INCLUDE\ta.yaml\n", 0},
        {"# c\n\n  # c\na: 1\n\n", 5},
        {"define:\n  a: 1\n%x\n", 2},
        {"matrix:\n  a: 1\nb\n", 2},
        {"", 0},
    };
    for (const auto& [text, next] : rows) {
        EXPECT_EQ(read(text).next, next) << text;
    }
}

TEST(Prelude, ADefineKeyInsideAMappingIsAKey) {
    EXPECT_EQ(read("a:\n  define: x\n  matrix: y\n").result.settings,
              (ValueMap{{"a.define", "x"}, {"a.matrix", "y"}}));
}

TEST(Prelude, TellsYamlFaultsWithFileAndLine) {
    EXPECT_EQ(fault("# c\na: 1\nb: [1\n$x\n"), "failed to parse YAML prelude in 't.mq': yaml-cpp: error at "
                                               "line 4, column 1: end of sequence flow not found");
    EXPECT_EQ(fault("a: [1\n", ""), "failed to parse YAML prelude in '<memory>': yaml-cpp: error at line 2, "
                                    "column 1: end of sequence flow not found");
    EXPECT_THAT(fault("[a, b]: c\n"), StartsWith("failed to parse YAML prelude in 't.mq': "));
    EXPECT_EQ(fault("- a: b\n"), "structured prelude must be a YAML mapping");
    EXPECT_EQ(fault("\"a: b\"\n"), "structured prelude must be a YAML mapping");
}

TEST(Prelude, ADirectiveInTheYamlPartHasLostItsTask) {
    const std::string message = ": task directive appears outside a task block";
    EXPECT_EQ(fault("dsl_version: 2\n%keywords hf\n"), "t.mq:2" + message);
    EXPECT_EQ(fault("a:\n- 1\n%\nb: 2\n"), "t.mq:3" + message);
    EXPECT_EQ(fault("a: \"x\n%y\"\n", ""), "<memory>:2" + message);
    // Indented, YAML takes it for more of the value above, and the sections for an entry without a key.
    EXPECT_EQ(fault("dsl_version: 2\n\n  %source origin\n  %keywords hf\n"), "t.mq:3" + message);
    EXPECT_EQ(fault("# c\na: {x: 5%}\nb: 1\n  more\n  %keywords hf\nc: 2\n"), "t.mq:5" + message);
    EXPECT_EQ(fault("define:\n  a: 1\n\n  %source origin\n"), "t.mq:4" + message);
    EXPECT_EQ(fault("a: 1\nmatrix:\n  b: 1\n  %keywords hf # x\n"), "t.mq:4" + message);
}

TEST(Prelude, APercentSignInAValueIsText) {
    EXPECT_EQ(read("a: |\n  %keywords hf\nb: 50\n  %of it\nc: 'x\n  %when y'\n").result.settings,
              (ValueMap{{"a", "%keywords hf\n"}, {"b", "50 %of it"}, {"c", "x %when y"}}));
}

TEST(Prelude, WhatTheYamlLibraryLeavesUnreadIsAFault) {
    const auto second = [](const std::string& place) {
        return "failed to parse YAML prelude in 't.mq': yaml-cpp: error at " + place +
               ": a second YAML document is not read";
    };
    EXPECT_EQ(fault("a: 1\n---\nb: 2\n$t\n"), second("line 2, column 1"));
    EXPECT_EQ(fault("# c\na: 1\n...\n# c\nb: 2\n"), second("line 5, column 1"));
    EXPECT_EQ(fault("a: 1\n---\n---\n...\n--- some text\n"), second("line 5, column 1"));
    EXPECT_EQ(fault("{a: 1}\nb: 2\n"), second("line 2, column 1"));
    EXPECT_EQ(fault("a: 1\n--- [1]\n"), second("line 2, column 1"));
    EXPECT_EQ(fault("a: &x 1\n--- *x\n"),
              "failed to parse YAML prelude in 't.mq': yaml-cpp: error at line 2, column 5: the referenced "
              "anchor is not defined");
}

TEST(Prelude, AnEmptySecondYamlDocumentIsHarmless) {
    for (const char* text : {"a: 1\n---\n\n# text\n$t\n", "a: 1\n...\n$t\n", "a: 1\n---\n---\n...\n...\n",
                             "a: |\n  ---\n  ...\nb: 2\n"}) {
        EXPECT_EQ(read(text).result.settings.count("a"), 1U) << text;
    }
}

TEST(Prelude, ADocumentMarkerHidesNoLines) {
    const auto check = [](std::string_view text) {
        return messageOf([&] {
            const auto lines = makeSourceLines(text, "t.mq");
            requireWholePrelude(lines, read(text).next, "t.mq");
        });
    };
    const std::string message = ": a YAML document marker ends the prelude; the lines behind it are not read";
    EXPECT_EQ(check("---\na: 1\n$t\n"), "t.mq:1" + message);
    EXPECT_EQ(check("define:\n  a: 1\n\n...\n---\n  b: 2\n"), "t.mq:4" + message);
    EXPECT_EQ(check("# c\n--- # c\n...\n\n$t\na: 1\n"), "no fault");
    EXPECT_EQ(check("---\n&INCLUDE a.mq\na: 1\n"), "no fault");
    EXPECT_EQ(check("---more\na: 1\n"), "no fault"); // free text
    EXPECT_EQ(check("---\n"), "no fault");
}

TEST(Prelude, AYamlFileIsReadToItsEnd) {
    const TemporaryDirectory dir;
    const auto path = dir.write("a.yaml", "---\na: 1\n");
    (void)dir.write("b.yaml", "b: 1\n\n$t # text\n");
    (void)dir.write("c.yaml", "c: 1\n# text\n\n");
    (void)dir.write("d.yaml", "define:\n  a: 1\n%keywords hf\n");
    const auto prelude = read("&INCLUDE a.yaml\n&INCLUDE b.yaml\n&INCLUDE c.yaml\n", dir.path("t.mq"));
    EXPECT_EQ(prelude.result.settings, (ValueMap{{"b", "1"}, {"c", "1"}}));
    EXPECT_THAT(
        prelude.warnings,
        ElementsAre("Warning: Included YAML file is read up to line 1 only, where '---' ends its prelude: " +
                        path,
                    "Warning: Included YAML file is read up to line 3 only, where '$t' ends its prelude: " +
                        dir.path("b.yaml")));
    EXPECT_EQ(fault("&INCLUDE d.yaml\n", dir.path("t.mq")),
              dir.path("d.yaml") + ":3: task directive appears outside a task block");
}

TEST(Prelude, SmallTextsThatStandForHugeOnesEnd) {
    std::string bomb = "a0: &a0 {x: 1, y: 2}\n";
    for (int i = 1; i < 60; ++i) {
        const auto before = std::to_string(i - 1);
        bomb += "a" + std::to_string(i) + ": &a" + std::to_string(i) + " {x: *a" + before + ", y: *a" +
                before + "}\n";
    }
    EXPECT_EQ(fault(bomb),
              "failed to parse YAML prelude in 't.mq': the section stands for more than 1000000 values or 64 "
              "MiB of text");
    EXPECT_THAT(fault("a: &x {b: *x}\n"), StartsWith("failed to parse YAML prelude in 't.mq': "));
    EXPECT_THAT(fault("a: " + std::string(5000, '{') + "\n"),
                StartsWith("failed to parse YAML prelude in 't.mq': "));
    EXPECT_THAT(fault("a: " + std::string(5000, '[') + "\n"),
                StartsWith("failed to parse YAML prelude in 't.mq': "));
    std::string nested = "a: ";
    for (int i = 0; i < 150; ++i) {
        nested += "{k: ";
    }
    EXPECT_EQ(fault(nested + "1" + std::string(150, '}') + "\n"),
              "failed to parse YAML prelude in 't.mq': mappings are nested more than 100 deep");
}

TEST(Prelude, WarnsOfTheRemovedInclude) {
    const auto prelude = read("#include \"x.yaml\" # old\na: 1\n#INCLUDE\nb: 2\n", "dir/t.mq");
    EXPECT_THAT(
        prelude.warnings,
        ElementsAre("context 't.mq' uses the removed '#INCLUDE' syntax; replace it with '&INCLUDE' (original "
                    "path: x.yaml)\xE3\x80\x82",
                    "context 't.mq' uses the removed '#INCLUDE' syntax; replace it with '&INCLUDE'"
                    "\xE3\x80\x82"));
    EXPECT_EQ(prelude.result.settings, (ValueMap{{"a", "1"}, {"b", "2"}}));
}

TEST(Prelude, YamlIncludesFillInWhatIsFree) {
    const TemporaryDirectory dir;
    (void)dir.write(
        "sub/a.yaml",
        "x: inner\ny: inner\nc: [1]\ndefine:\n  d: inner\n  e: inner\nmatrix:\n  m: inner\n  n: inner\n"
        "&INCLUDE B.YML\n&INCLUDE l.mqlib as lib\n");
    (void)dir.write("sub/B.YML", "z: innermost\ny: innermost\n$task\nq: 1\n");
    (void)dir.write("sub/l.mqlib", "");
    const auto prelude =
        read("x: outer\ndefine:\n  d: outer\nmatrix:\n  m: outer\n&INCLUDE \"sub/a.yaml\"\ny: outer\n",
             dir.path("t.mq"));
    EXPECT_EQ(prelude.result.settings, (ValueMap{{"x", "outer"}, {"y", "outer"}, {"z", "innermost"}}));
    EXPECT_EQ(prelude.result.defines, (ValueMap{{"d", "outer"}, {"e", "inner"}}));
    EXPECT_THAT(prelude.result.matrixAxes,
                ElementsAre(MatrixAxis{"m", {"outer"}, {}, {}}, MatrixAxis{"n", {"inner"}, {}, {}}));
    EXPECT_EQ(prelude.result.collections.count("c"), 1U);
    EXPECT_EQ(prelude.bindings, (ValueMap{{"lib", dir.path("sub/l.mqlib")}}));
    EXPECT_THAT(prelude.includedFiles,
                ElementsAre(dir.path("sub/a.yaml"), dir.path("sub/B.YML"), dir.path("sub/l.mqlib")));
    EXPECT_EQ(prelude.next, 7U);
}

TEST(Prelude, MissingYamlFilesAreWarnings) {
    const TemporaryDirectory dir;
    std::filesystem::create_directory(dir.path("d.yaml"));
    const auto prelude = read("&INCLUDE none.yaml\n&INCLUDE d.yaml\na: 1\n", dir.path("t.mq"));
    EXPECT_THAT(prelude.warnings,
                ElementsAre("Warning: Included YAML file not found: " + dir.path("none.yaml"),
                            "Warning: Included YAML file not found: " + dir.path("d.yaml")));
    EXPECT_EQ(prelude.result.settings, (ValueMap{{"a", "1"}}));
    const WarningSink sink = [](const std::string& text) {
        EXPECT_EQ(text, "Warning: Empty path in &INCLUDE directive.");
    };
    ParseContext run({.warnings = sink});
    DocumentContext context(run);
    EXPECT_TRUE(parseYamlInclude("", "t.mq", context).settings.empty());
}

TEST(Prelude, YamlCyclesAndSecondBindingsAreFaults) {
    const TemporaryDirectory dir;
    const auto a = dir.write("a.yaml", "&INCLUDE b.yaml\n");
    const auto b = dir.write("b.yaml", "&INCLUDE c.yaml\n");
    std::filesystem::create_symlink("a.yaml", dir.path("c.yaml"));
    EXPECT_EQ(fault("&INCLUDE a.yaml\n", dir.path("t.mq")),
              "YAML include cycle detected: " + a + " -> " + b + " -> " + dir.path("c.yaml"));
    (void)dir.write("x.mqlib", "");
    (void)dir.write("y.mqlib", "");
    EXPECT_EQ(
        fault("&INCLUDE x.mqlib as l\n&INCLUDE x.mqlib as l\n&INCLUDE y.mqlib as l\n", dir.path("t.mq")),
        "namespace 'l' is already bound to '" + dir.path("x.mqlib") + "'");
    EXPECT_EQ(fault("&INCLUDE\n"), "empty &INCLUDE target");
    EXPECT_EQ(fault("&INCLUDE a.yaml as q\n"),
              "'as <namespace>' is only valid when including a library file");
}

} // namespace
} // namespace morquill::taskdsl
