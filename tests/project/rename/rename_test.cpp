#include "project/rename/rename.h"

#include "console/command_line.h"
#include "project/status/status_lock.h"

#include "fixtures/file_size_limit.h"
#include "fixtures/golden.h"
#include "fixtures/scratch_tree.h"

namespace morquill::project {
namespace {

using ::testing::ElementsAre;

class Rename : public ScratchTree {
  protected:
    Output rename(const std::vector<std::string>& words) {
        Arguments arguments(words);
        return run("", [&] { return runRename(arguments.argc(), arguments.argv()); });
    }
    Output renameOlderShape(std::initializer_list<std::string> words) {
        Arguments arguments(words);
        return run("", [&] { return runRenameCompatibility(arguments.argc(), arguments.argv()); });
    }
};

TEST_F(Rename, IsRefusedWhileAnotherRunChangesTheStatusFiles) {
    write("p/demo.projmq", "$opt\n");
    link("../demo.projmq", "p/m1/m1.mq");
    write("q/m1.mq", "$opt\n");
    const auto project = lockStatusFiles(TargetKind::Project, at("p"), at("p/demo.projmq"));
    const auto lone = lockStatusFiles(TargetKind::Case, at("q"), at("q/m1.mq"));
    const auto before = tree();
    for (const auto& [file, place] : std::map<std::string, std::string>{
             {"p/demo.projmq", at("p")}, {"p/m1/m1.mq", at("p")}, {"q/m1.mq", at("q")}}) {
        const auto output = rename({"mqkit", "rename", file, "opt", "new"});
        EXPECT_EQ(output.status, 1) << file;
        EXPECT_EQ(output.err,
                  "[mqkit][ERROR] another mqkit is changing the status files here: " + place + "\n");
        EXPECT_EQ(output.out, "");
    }
    EXPECT_EQ(tree(), before);
}

TEST(TaskFileSuffix, BelongsToANameThatIsNoOption) {
    EXPECT_TRUE(hasTaskFileSuffix("a.mq"));
    EXPECT_TRUE(hasTaskFileSuffix(".mq"));
    EXPECT_TRUE(hasTaskFileSuffix("dir/a.projmq"));
    EXPECT_FALSE(hasTaskFileSuffix(""));
    EXPECT_FALSE(hasTaskFileSuffix("-a.mq"));
    EXPECT_FALSE(hasTaskFileSuffix("a.mqlib"));
    EXPECT_FALSE(hasTaskFileSuffix("a.MQ"));
}

TEST(RenameArguments, AreExactlyThreeAndNotEmpty) {
    struct Row {
        std::vector<const char*> words;
        bool good;
    };
    const Row rows[] = {
        {{"mqkit", "rename", "a.mq", "opt", "new"}, true},
        {{"mqkit", "rename", "a.mq", "opt", "-h"}, true},
        {{"mqkit", "rename", "a.mq", "opt"}, false},
        {{"mqkit", "rename", "a.mq", "opt", "new", "x"}, false},
        {{"mqkit", "rename", "help", "opt", "new"}, false},
        {{"mqkit", "rename", "", "opt", "new"}, false},
        {{"mqkit", "rename", "a.mq", "", "new"}, false},
        {{"mqkit", "rename", "a.mq", "opt", ""}, false},
        {{"mqkit", "rename"}, false},
    };
    for (const auto& row : rows) {
        const auto read = [&row] {
            return readRenameWords(static_cast<int>(row.words.size()), row.words.data());
        };
        if (row.good) {
            EXPECT_EQ(read().file, row.words[2]);
        } else {
            EXPECT_THROW((void)read(), console::UsageError);
        }
    }
}

TEST_F(Rename, OfTheOlderShapeTellsWhatIsWrong) {
    struct Row {
        std::vector<const char*> words;
        const char* error;
    };
    const Row rows[] = {
        {{"mqkit", "a.mq", "-r", "opt"},
         "[mqkit][ERROR] -r/--rename expects two values: <old_block> <new_block>\n"},
        {{"mqkit", "a.mq", "--rename"},
         "[mqkit][ERROR] -r/--rename expects two values: <old_block> <new_block>\n"},
        {{"mqkit", "a.mq", "-r", "opt", "new", "b.projmq"},
         "[mqkit][ERROR] specify only one .mq or .projmq file\n"},
        {{"mqkit", "a.mq", "-r", "opt", "new", "--dry-run"}, "[mqkit][ERROR] unknown argument: --dry-run\n"},
        {{"mqkit", "-r", "opt", "a.mq"}, "[mqkit][ERROR] specify a .mq or .projmq file\n"},
        {{"mqkit", "a.mq"}, "[mqkit][ERROR] provide the old and new block names via -r/--rename\n"},
        {{"mqkit", "a.mq", "-r", "", "new"},
         "[mqkit][ERROR] provide the old and new block names via -r/--rename\n"},
        {{"mqkit", "a.mq", "help", "-r"}, ""},
    };
    for (const auto& row : rows) {
        const auto output = run("", [&] {
            try {
                (void)readOlderRenameWords(static_cast<int>(row.words.size()), row.words.data());
                return 0;
            } catch (const console::UsageError& error) {
                return console::reportUsageError(error);
            }
        });
        EXPECT_EQ(output.status, 1);
        EXPECT_EQ(output.err, row.error);
    }
    const char* good[] = {"mqkit", "--rename", "opt", "-x", "a.projmq"};
    const RenameOptions options = readOlderRenameWords(5, good);
    EXPECT_EQ(options.file + " " + options.oldName + " " + options.newName, "a.projmq opt -x");
}

TEST_F(Rename, RefusesBeforeAnythingIsTouched) {
    write("a.mq", "$opt\n%program orca\n$freq\n");
    write("bad.mq", "$opt\n%nonsense\n");
    dir("opt");
    const auto before = tree();
    struct Row {
        std::string file;
        std::string oldName;
        std::string newName;
        std::string error;
    };
    const Row rows[] = {
        {"none.mq", "opt", "new", "[mqkit][ERROR] file does not exist: " + at("none.mq") + "\n"},
        {"opt", "opt", "new", "[mqkit][ERROR] file does not exist: " + at("opt") + "\n"},
        {"a.mq", "opt", "opt", "[mqkit][ERROR] old and new block names are identical; nothing to rename\n"},
        {"a.mq", "soc", "new",
         "[mqkit][ERROR] block not found in task file: $soc\n[mqkit] available blocks: opt, freq\n"},
        {"a.mq", "opt", "freq", "[mqkit][ERROR] target block already exists: $freq\n"},
        {"bad.mq", "opt", "new",
         "[mqkit][ERROR] " + at("bad.mq") +
             ":2:1-2:10: error: task 'opt' contains unknown directive '%nonsense'\n"},
    };
    for (const auto& row : rows) {
        const auto output = rename({"mqkit", "rename", row.file, row.oldName, row.newName});
        EXPECT_EQ(output.status, 1);
        EXPECT_EQ(output.out, "");
        EXPECT_EQ(output.err, row.error);
        EXPECT_EQ(tree(), before);
    }
}

TEST_F(Rename, OfACaseTouchesThatCaseAlone) {
    write("p.projmq", "$opt\n");
    write("m1/m1.mq", "$opt\n%program orca\n$freq\n%source opt\n");
    write("m1/mq.status", "opt RENDERED t -\nfreq RENDERED t -\n");
    write("m1/opt/opt_m1.log", "opt_m1 done\n");
    write("m2/m2.mq", "$opt\n");
    write("m2/opt/comd", "opt");
    const auto output = rename({"mqkit", "rename", "m1/m1.mq", "opt", "new"});
    EXPECT_EQ(output.err, "");
    EXPECT_EQ(output.status, 0);
    EXPECT_EQ(output.out, "[mqkit] rename finished: $opt -> $new\n"
                          "  cases processed: 1\n"
                          "  directories renamed: 1\n"
                          "  files renamed: 1\n"
                          "  text files updated: 3\n"
                          "  databases invalidated: 0\n");
    EXPECT_THAT(tree(), ElementsAre("m1/", "m1/m1.mq = $new\n%program orca\n$freq\n%source new\n",
                                    "m1/mq.status = new RENDERED t -\nfreq RENDERED t -\n", "m1/new/",
                                    "m1/new/new_m1.log = new_m1 done\n", "m2/", "m2/m2.mq = $opt\n",
                                    "m2/opt/", "m2/opt/comd = opt", "p.projmq = $opt\n"));
}

TEST_F(Rename, KeepsBothDirectoriesWhenTheNewOneIsThere) {
    write("m1/m1.mq", "$opt\n");
    write("m1/opt/opt_x", "1");
    write("m1/new/opt_y", "2");
    const auto output = renameOlderShape({"mqkit", "m1/m1.mq", "-r", "opt", "new"});
    EXPECT_EQ(output.status, 1);
    EXPECT_EQ(output.out, "[mqkit] rename finished: $opt -> $new\n"
                          "  cases processed: 1\n"
                          "  directories renamed: 0\n"
                          "  files renamed: 1\n"
                          "  text files updated: 1\n"
                          "  databases invalidated: 0\n");
    EXPECT_EQ(output.err,
              "\n[mqkit][ERROR] errors:\n  - target block directory already exists: " + at("m1/new") + "\n");
    EXPECT_THAT(tree(), ElementsAre("m1/", "m1/m1.mq = $new\n", "m1/new/", "m1/new/new_y = 2", "m1/opt/",
                                    "m1/opt/opt_x = 1"));
}

TEST_F(Rename, OfATaskFileThatLinksToATaskFileStaysInTheGivenCase) {
    write("store/shared.mq", "$opt\n");
    link("../store/shared.mq", "m1/m1.mq");
    dir("m1/opt");
    const auto output = rename({"mqkit", "rename", "m1/m1.mq", "opt", "new"});
    EXPECT_EQ(output.status, 0) << output.err;
    EXPECT_THAT(tree(), ElementsAre("m1/", "m1/m1.mq -> ../store/shared.mq", "m1/new/", "store/",
                                    "store/shared.mq = $new\n"));
}

TEST_F(Rename, OfALinkToATemplateElsewhereTakesItsOwnCaseAlong) {
    write("p/demo.projmq", "$opt\n");
    link("../demo.projmq", "p/m1/m1.mq");
    dir("p/m1/opt");
    link("../p/demo.projmq", "other/o.mq");
    dir("other/opt");
    const auto output = rename({"mqkit", "rename", "other/o.mq", "opt", "new"});
    EXPECT_EQ(output.status, 0) << output.err;
    EXPECT_THAT(tree(),
                ElementsAre("other/", "other/new/", "other/o.mq -> ../p/demo.projmq", "p/",
                            "p/demo.projmq = $new\n", "p/m1/", "p/m1/m1.mq -> ../demo.projmq", "p/m1/new/"));
}

TEST_F(Rename, UsesTheNamesAsWrittenBeforeMatrixExpansion) {
    write("a.mq", "matrix:\n  m: [x, y]\n\n$opt_[m]\n%program orca\n");
    const auto output = rename({"mqkit", "rename", "a.mq", "opt_x", "new"});
    EXPECT_EQ(output.err,
              "[mqkit][ERROR] block not found in task file: $opt_x\n[mqkit] available blocks: opt_[m]\n");
    EXPECT_EQ(rename({"mqkit", "rename", "a.mq", "opt_[m]", "new_[m]"}).status, 0);
    EXPECT_EQ(readTextFile(at("a.mq")), "matrix:\n  m: [x, y]\n\n$new_[m]\n%program orca\n");
}

TEST_F(Rename, StopsWhenTheTemplateCannotBeWritten) {
    write("p.projmq", "$opt\n" + std::string(300, '#'));
    write("m1/m1.mq", "$opt\n");
    dir("m1/opt");
    const auto before = tree();
    Output output;
    {
        const FileSizeLimit limit(305); // room for the old text and for the message, not for the new text
        output = rename({"mqkit", "rename", "p.projmq", "opt", "a_longer_name"});
    }
    EXPECT_EQ(output.status, 1);
    EXPECT_EQ(output.out, "");
    EXPECT_EQ(output.err, "[mqkit][ERROR] failed to update project template: " + at("p.projmq") + "\n");
    EXPECT_EQ(tree(), before);
}

TEST_F(Rename, OfACaseStopsBeforeTheFirstChangeWhenTheTaskFileCannotBeWritten) {
    write("m1/m1.mq", "$opt\n" + std::string(300, '#'));
    write("m1/opt/opt_m1", "opt");
    const auto before = tree();
    Output output;
    {
        const FileSizeLimit limit(305);
        output = rename({"mqkit", "rename", "m1/m1.mq", "opt", "a_longer_name"});
    }
    EXPECT_EQ(output.status, 1);
    EXPECT_EQ(output.out, "");
    EXPECT_EQ(output.err, "[mqkit][ERROR] failed to update project template: " + at("m1/m1.mq") + "\n");
    EXPECT_EQ(tree(), before);
}

TEST_F(Rename, OfACaseWithTwoNamesRenamesEveryFileOnce) {
    write("p.projmq", "$opt\n");
    link("../p.projmq", "m1/m1.mq");
    link("../p.projmq", "m1/n1.mq");
    write("m1/opt/opt_a");
    write("m1/.morq/store/records/opt_m1");
    write("m1/.morq/store/records/opt_n1");
    const auto output = rename({"mqkit", "rename", "p.projmq", "opt", "opt_x"});
    EXPECT_EQ(output.status, 0) << output.err;
    EXPECT_EQ(output.out, "[mqkit] rename finished: $opt -> $opt_x\n"
                          "  cases processed: 2\n"
                          "  directories renamed: 1\n"
                          "  files renamed: 3\n"
                          "  text files updated: 1\n"
                          "  databases invalidated: 0\n");
    EXPECT_THAT(tree("m1"),
                ElementsAre(".morq/", ".morq/store/", ".morq/store/records/",
                            ".morq/store/records/opt_x_m1 = ", ".morq/store/records/opt_x_n1 = ",
                            "m1.mq -> ../p.projmq", "n1.mq -> ../p.projmq", "opt_x/", "opt_x/opt_x_a = "));
}

TEST_F(Rename, OfAnIncludeStubStandsForTheProject) {
    write("p/demo.projmq", "$opt\n");
    write("p/m1/m1.mq", "# autogenerated by mqkit\n&INCLUDE ../demo.projmq\n");
    dir("p/m1/opt");
    link("../demo.projmq", "p/m2/m2.mq");
    dir("p/m2/opt");
    write("other/o.mq", "&INCLUDE ../p/demo.projmq\n");
    dir("other/opt");
    EXPECT_EQ(rename({"mqkit", "rename", "p/m1/m1.mq", "opt", "new"}).status, 0);
    EXPECT_EQ(readTextFile(at("p/demo.projmq")), "$new\n");
    EXPECT_TRUE(isDirectory(at("p/m1/new")) && isDirectory(at("p/m2/new")));
    EXPECT_EQ(rename({"mqkit", "rename", "other/o.mq", "new", "opt"}).status, 0);
    EXPECT_TRUE(isDirectory(at("p/m1/opt")) && isDirectory(at("p/m2/opt")) && isDirectory(at("other/opt")));
}

TEST_F(Rename, RefusesWhatWouldCutACaseOffItsTemplate) {
    write("opt.projmq", "$opt\n");
    write("m1/m1.mq", "&INCLUDE ../opt.projmq\n");
    dir("m1/opt");
    const auto before = tree();
    const auto output = rename({"mqkit", "rename", "opt.projmq", "opt", "new"});
    EXPECT_EQ(output.status, 1);
    EXPECT_EQ(output.out, "");
    EXPECT_EQ(output.err, "[mqkit][ERROR] renaming $opt would change the include of the template in " +
                              at("m1/m1.mq") + "\n");
    EXPECT_EQ(tree(), before);
}

TEST_F(Rename, NeverMovesADirectoryFromOutsideTheCase) {
    write("m1/m1.mq", "$../m2\n");
    dir("m2");
    const auto before = tree();
    const auto output = rename({"mqkit", "rename", "m1/m1.mq", "../m2", "new"});
    EXPECT_EQ(output.status, 1);
    EXPECT_EQ(output.err, "[mqkit][ERROR] the directory of $../m2 would not lie in its case\n");
    EXPECT_EQ(tree(), before);
}

TEST_F(Rename, PrintsItsHelpWhenTheArgumentsDoNotFit) {
    const auto wrong = rename({"/usr/bin/mqkit", "rename"});
    EXPECT_EQ(wrong.status, 1);
    EXPECT_EQ(wrong.out, golden::plainHelp("rename"));
    const auto help = renameOlderShape({"mqkit", "a.mq", "-r", "opt", "new", "-x", "--help"});
    EXPECT_EQ(help.status, 0); // a help token anywhere
    EXPECT_EQ(help.err, "[mqkit][ERROR] unknown argument: -x\n");
    EXPECT_EQ(help.out, wrong.out);
}

} // namespace
} // namespace morquill::project
