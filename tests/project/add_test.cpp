#include "project/project_command.h"

#include "console/messages.h"
#include "fixtures/scratch_tree.h"

namespace morquill::project {
namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::StartsWith;

class Add : public ScratchTree {
  protected:
    Add() { write("p/demo.projmq", "$opt\n"); }

    Output add(const std::vector<std::string>& files, const std::string& path = "p",
               console::RunMode mode = console::RunMode::apply) {
        ProjectOptions options;
        options.subCommand = ProjectSubCommand::Add;
        options.path = path;
        options.xyzFiles = files;
        options.dryRun = mode == console::RunMode::dryRun;
        return run("", [&] { return runProjectWorkflow(options, "/usr/bin/mqkit"); });
    }
    [[nodiscard]] std::string header(const std::string& files) const {
        return "\n[Project Add]\n  project template: " + at("p/demo.projmq") +
               "\n  case files      : " + files + "\n";
    }
};

TEST_F(Add, EveryGeometryBecomesACase) {
    write("mol1.xyz", "1");
    write("in/mol2.XYZ", "2");
    const Output output = add({"mol1.xyz", "in/../in/mol2.XYZ"});
    EXPECT_EQ(output.status, 0);
    EXPECT_EQ(output.err, "");
    EXPECT_EQ(output.out, header("mol1.xyz in/../in/mol2.XYZ") + "[mqkit] add case: mol1 <- " +
                              at("mol1.xyz") +
                              "\ncreated task: mol1 (symlinked to .projmq)\n[mqkit] add case: mol2 <- " +
                              at("in/mol2.XYZ") +
                              "\ncreated task: mol2 (symlinked to .projmq)\n"
                              "\n[mqkit] finished: added 2 case(s).\n");
    EXPECT_THAT(tree("p"), ElementsAre("demo.projmq = $opt\n", "mol1/", "mol1/mol1.mq -> ../demo.projmq",
                                       "mol1/mol1.xyz = 1", "mol2/", "mol2/mol2.XYZ = 2",
                                       "mol2/mol2.mq -> ../demo.projmq"));
}

TEST_F(Add, WhatCannotBeAddedIsToldAndTheRestGoesOn) {
    write("a.xyz");
    write("sub/a.xyz");
    write("b.gjf");
    write("old.xyz");
    write("f.xyz");
    write("p/f", "in the way");
    dir("dir.xyz");
    dir("p/old");
    const Output output = add(
        {"b.gjf", "missing.xyz", "dir.xyz", "a.xyz", "sub/a.xyz", "old.xyz", "old.xyz", "f.xyz", "", ".xyz"});
    EXPECT_EQ(output.status, 2);
    EXPECT_EQ(output.out, header("b.gjf missing.xyz dir.xyz a.xyz sub/a.xyz old.xyz old.xyz f.xyz  .xyz") +
                              "[mqkit] add case: a <- " + at("a.xyz") +
                              "\ncreated task: a (symlinked to .projmq)\n"
                              "[mqkit][SKIP] case directory already exists: " +
                              at("p/old") + "\n[mqkit] add case: f <- " + at("f.xyz") +
                              "\n\n[mqkit] finished: added 1 case(s).\n"
                              "[mqkit] note: 1 case(s) already existed and were skipped.\n"
                              "[mqkit] note: 8 case(s) failed validation or creation.\n");
    EXPECT_EQ(output.err, "[mqkit][WARN] not an .xyz file: " + at("b.gjf") +
                              "\n[mqkit][WARN] xyz file not found: " + at("missing.xyz") +
                              "\n[mqkit][WARN] xyz file not found: " + at("dir.xyz") +
                              "\n[mqkit][WARN] duplicate case name in arguments: a"
                              "\n[mqkit][WARN] duplicate case name in arguments: old"
                              "\n[ERROR] failed to create task f - File exists"
                              "\n[mqkit][WARN] not an .xyz file: " +
                              root + "\n[mqkit][WARN] not an .xyz file: " + at(".xyz") + "\n");
}

TEST_F(Add, SkipsAreNoFailure) {
    write("old.xyz");
    dir("p/old");
    EXPECT_EQ(add({"old.xyz"}).status, 0);
}

TEST_F(Add, ADryRunWritesNothing) {
    write("a.xyz");
    const std::vector<std::string> before = tree();
    const Output output = add({"a.xyz", "b.xyz"}, "p/demo.projmq", console::RunMode::dryRun);
    EXPECT_EQ(output.status, 2);
    EXPECT_EQ(output.out, header("a.xyz b.xyz  (dry-run)") + "[mqkit] add case: a <- " + at("a.xyz") +
                              "\n\n[mqkit] finished: added 1 case(s).\n"
                              "[mqkit] note: 1 case(s) failed validation or creation.\n");
    EXPECT_EQ(tree(), before);
}

TEST_F(Add, UsageErrorsShowTheHelp) {
    Output output = add({});
    EXPECT_EQ(output.status, 1);
    EXPECT_EQ(output.err, "[mqkit][ERROR] project add requires at least one .xyz file.\n");
    EXPECT_THAT(output.out, StartsWith("Usage:\n  mqkit project [command] <options>\n"));
    output = add({"a.xyz"}, "missing");
    EXPECT_EQ(output.status, 1);
    EXPECT_EQ(output.err, "[mqkit][ERROR] could not resolve a .projmq project template from path: " +
                              at("missing") + "\n");
    EXPECT_THAT(output.out, StartsWith("Usage:\n"));
}

TEST_F(Add, NamesOfAnyBytes) {
    write("-n 'q\" $(x)\n\xff.xyz", "g");
    const std::string stem = "-n 'q\" $(x)\n\xff";
    EXPECT_EQ(add({stem + ".xyz"}).status, 0);
    EXPECT_EQ(readTextFile(at("p/" + stem + "/" + stem + ".mq")), "$opt\n");
}

} // namespace
} // namespace morquill::project
