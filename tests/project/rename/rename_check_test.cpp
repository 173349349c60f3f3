#include "project/rename/rename_check.h"

#include "fixtures/scratch_tree.h"
#include "taskdsl/base/diagnostic.h"

namespace morquill::project {
namespace {

class FindObstacle : public ScratchTree {
  protected:
    /// The obstacle to `old -> new` in a file of that text; "" when there is none.
    std::string find(const std::string& text, const std::string& oldName, const std::string& newName) {
        write("m1/m1.mq", text);
        return findIn({at("m1/m1.mq"), "m1", {{at("m1"), {"m1"}}}, ""}, oldName, newName);
    }
    /// The same in a project with the case m1.
    std::string findInProject(const std::string& text, const std::string& oldName,
                              const std::string& newName) {
        write("demo.projmq", text);
        return findIn({at("demo.projmq"), "", {{at("m1"), {"m1"}}}, root}, oldName, newName);
    }

  private:
    std::string findIn(const RenameScope& scope, const std::string& oldName, const std::string& newName) {
        std::optional<std::string> obstacle;
        EXPECT_EQ(run("",
                      [&] {
                          obstacle = findObstacle(scope, {oldName, newName});
                          return 0;
                      })
                      .err,
                  "");
        return obstacle.value_or("");
    }
};

TEST_F(FindObstacle, TakesTheNamesThatAreWrittenInTheFileItself) {
    write("m1/extra.mq", "$extra\n%program orca\n");
    write("m1/inner.mq", "$inner\n%program orca\n");
    write("m1/f.mqlib", "&FRAGMENT document blocks\n$fragment\n%program orca\n");
    const std::string text = "define:\n  size: big\nmatrix:\n  method: x,y\npairs:\n  - name: p\n"
                             "&INCLUDE f.mqlib as f\n&INCLUDE inner.mq\n&INCLUDE f.blocks\n"
                             "@foreach pairs\n$lp_[pairs.name]\n%program orca\n@end\n"
                             "@foreach? none\n$np_[none.name]\n%program orca\n@end\n"
                             "$opt_[method]\n%program orca\n$sp_[size]\n%program orca\n";
    const std::string written = "lp_[pairs.name], np_[none.name], opt_[method], sp_[size]";
    for (const char* name : {"lp_[pairs.name]", "np_[none.name]", "opt_[method]", "sp_[size]"}) {
        EXPECT_EQ(find(text, name, "new"), "");
        EXPECT_EQ(find(text, name, std::string("x-") + name), "");
        EXPECT_EQ(find(text, name, "inner"), "target block already exists: $inner");
    }
    for (const char* name :
         {"extra", "inner", "fragment", "lp_p", "sp_big", "opt_x", "opt_x__method_x", "none"}) {
        EXPECT_EQ(find(text, name, "new"), "block not found in task file: $" + std::string(name) +
                                               "\n[mqkit] available blocks: " + written);
    }
    // A name that is made elsewhere is taken, too, unless the block makes it itself.
    for (const char* name :
         {"extra", "inner__method_x", "fragment", "lp_p", "lp_[pairs.name]", "np_[none.name]"}) {
        EXPECT_EQ(find(text, "sp_[size]", name), "target block already exists: $" + std::string(name));
    }
    EXPECT_EQ(find(text, "sp_[size]", "sp_big"), "");
}

TEST_F(FindObstacle, IsAHeaderThatWouldNotBeWhatWasAskedFor) {
    EXPECT_EQ(find("$opt\n$opt-2\n", "opt", "new"), "renaming $opt would also turn $opt-2 into $new-2");
    EXPECT_EQ(find("$opt_[m]\n$opt\n", "opt", "new"), "renaming $opt would also turn $opt_[m] into $new_[m]");
    EXPECT_EQ(find("$opt-2\n$opt\n", "opt-2", "opt-3"), "");
    EXPECT_EQ(find("$opt2\n$my_opt\n$\"opt\"\n", "opt", "opt-x"), "");
    // Of two words with one character between them the second stays; here it is the header.
    EXPECT_EQ(find("$-\n", "-", "x"), "");
    EXPECT_EQ(find("$opt\n%keywords << opt\n$a\nopt\n", "opt", "new"), "");
    EXPECT_EQ(find(std::string("$opt\n%keywords a\0b\n", 18), "opt", "new"),
              "a task file with NUL bytes is not rewritten: " + at("m1/m1.mq"));
}

TEST_F(FindObstacle, IsANameThatTheLanguageReadsOtherwise) {
    const std::string same = " the task file would no longer say the same";
    const std::string text =
        "$opt\n%program orca\n$soc\n%source opt\n$last\n%when completed opt and defined x\n";
    EXPECT_EQ(find(text, "opt", "new"), "");
    EXPECT_EQ(find(text, "opt", "a b"), "");
    EXPECT_EQ(find(text, "opt", "origin"), "with $origin for $opt" + same);
    EXPECT_EQ(find(text, "opt", "restart"), "with $restart for $opt" + same);
    EXPECT_EQ(find(text, "opt", "xyz=a.xyz"), "with $xyz=a.xyz for $opt" + same);
    EXPECT_EQ(find(text, "opt", "and"), "with $and for $opt" + same);
    EXPECT_EQ(find(text, "opt", "a or b"), "with $a or b for $opt" + same);
    EXPECT_EQ(find(text, "opt", "AllOthers"), "with $AllOthers for $opt" + same);
    EXPECT_EQ(find(text, "soc", "origin"), ""); // nothing refers to it
    const std::string guess = "$opt\n%program orca\n$soc\n%control\n    guess opt\n";
    EXPECT_EQ(find(guess, "opt", "new"), "");
    EXPECT_EQ(find(guess, "opt", "true"), "with $true for $opt" + same);
}

TEST_F(FindObstacle, IsAWordOfTheLanguageThatWouldBeReplacedWithTheName) {
    EXPECT_EQ(find("$keywords\n%keywords a\n", "keywords", "new"),
              "with $new for $keywords the task file would no longer be read: " + at("m1/m1.mq") +
                  ":2:1-2:7: error: task 'new' contains unknown directive '%new'");
    write("m1/opt.mq", "$a\n");
    EXPECT_EQ(find("$opt\n&INCLUDE opt.mq\n", "opt", "new"),
              "with $new for $opt the task file would no longer say the same");
}

TEST_F(FindObstacle, IsAnotherBlockThatBeginsWithTheNameAndACase) {
    const std::string other = "renaming $opt would also turn $opt_m1 into $sp_m1";
    EXPECT_EQ(find("$opt\n$opt_m1\n", "opt", "sp"), other);
    std::filesystem::remove(at("m1/m1.mq"));
    // The template is rewritten without a case name, mq.status in the case with it.
    EXPECT_EQ(findInProject("$opt\n$opt_m1\n", "opt", "sp"), other + " in case m1");
    EXPECT_EQ(findInProject("$opt\n$opt_m10\n", "opt", "sp"),
              "renaming $opt would also turn $opt_m10 into $sp_m10 in case m1");
    EXPECT_EQ(
        findInProject("pairs:\n  - name: m1\n$opt\n@foreach pairs\n$x-opt_[pairs.name]\n@end\n", "opt", "sp"),
        "renaming $opt would also turn $x-opt_[pairs.name] into $x-sp_[pairs.name]");
    EXPECT_EQ(
        findInProject("pairs:\n  - name: opt_m1\n$opt\n@foreach pairs\n$[pairs.name]\n@end\n", "opt", "sp"),
        other + " in case m1");
    EXPECT_EQ(findInProject("$opt\n$opt_m2\n", "opt", "sp"), "");
    EXPECT_EQ(findInProject("$opt\n$opt_m1\n", "opt_m1", "opt_m2"), "");
}

TEST_F(FindObstacle, IsAlsoLookedForInTheOtherTaskFilesOfTheCases) {
    const std::string place = " (in " + at("m1/m1.mq") + ")";
    write("m1/m1.mq", "&INCLUDE ../demo.projmq\n$sp\n%program orca\n%source opt\n");
    EXPECT_EQ(findInProject("$opt\n", "opt", "sp"), "target block already exists: $sp" + place);
    EXPECT_EQ(findInProject("$opt\n", "opt", "new"), "");
    EXPECT_EQ(findInProject("matrix:\n  m: x,y\n$opt\n%keywords [m]\n", "opt", "new"), "");
    EXPECT_EQ(findInProject("$opt\n", "opt", "origin"),
              "with $origin for $opt the task file would no longer say the same" + place);
    write("m1/m1.mq", "$opt_m1\n%program orca\n");
    EXPECT_EQ(findInProject("$opt\n", "opt", "new"),
              "renaming $opt would also turn $opt_m1 into $new_m1" + place);
    write("m1/m1.mq", "$sp\n%nonsense\n");
    EXPECT_EQ(findInProject("$opt\n", "opt", "sp"), "target block already exists: $sp" + place);
    EXPECT_EQ(findInProject("$opt\n", "opt", "new"), "");

    std::filesystem::remove(at("m1/m1.mq"));
    write("shared.mq", "$sp\n%program orca\n");
    link("../shared.mq", "m1/m1.mq"); // rewritten through the link
    EXPECT_EQ(findInProject("$opt\n", "opt", "sp"), "target block already exists: $sp" + place);

    std::filesystem::remove_all(at("m1"));
    write("m1/second.mq", "$sp\n%program orca\n");
    EXPECT_EQ(find("$opt\n", "opt", "sp"),
              "target block already exists: $sp (in " + at("m1/second.mq") + ")");
    EXPECT_EQ(find("$opt\n", "opt", "new"), "");
    write("m1/second.mq", "$a-opt\n%program orca\n");
    EXPECT_EQ(find("$opt\n", "opt", "new"),
              "renaming $opt would also turn $a-opt into $a-new (in " + at("m1/second.mq") + ")");
}

TEST_F(FindObstacle, IsAKeyThatIsReplacedWithItsValue) {
    const auto known = [](const std::string& key, const std::string& name) {
        return "a block name cannot hold [" + key + "], which is replaced with its value: $" + name;
    };
    const std::string text = "define:\n  size: big\nmatrix:\n  m: x,y\npairs:\n  - name: p\n  - name: q\n"
                             "$opt\n%program orca\n@foreach pairs\n$lp_[pairs.name]\n%program orca\n@end\n"
                             "$sp_[m]\n%program orca\n";
    EXPECT_EQ(find(text, "opt", "opt_[size]"), known("size", "opt_[size]"));
    EXPECT_EQ(find(text, "lp_[pairs.name]", "lp_[pairs.name]_[size]"),
              known("size", "lp_[pairs.name]_[size]"));
    EXPECT_EQ(find(text, "opt", "opt_[none]"), "");
    EXPECT_EQ(find(text, "lp_[pairs.name]", "np_[pairs.name]"), "");
    EXPECT_EQ(find(text, "sp_[m]", "np_[m]"), "");
    // Without its key the blocks of a loop would be one.
    EXPECT_EQ(find(text, "lp_[pairs.name]", "lp"),
              "with $lp for $lp_[pairs.name] several blocks would be named $lp");
    EXPECT_EQ(find(text, "sp_[m]", "sp"), ""); // the matrix tells them apart all the same
    EXPECT_EQ(find(text + "$np_q\n", "lp_[pairs.name]", "np_[pairs.name]"),
              "target block already exists: $np_q");
}

TEST_F(FindObstacle, IsAReferenceThatWouldBeLeftBehind) {
    const auto left = [&](const std::string& reference, const std::string& file) {
        return "with $new for $opt the reference to '" + reference + "' in " + at(file) +
               " would be left behind";
    };
    const std::string text = "&INCLUDE ../common.mq\n$opt\n%program orca\n";
    struct Row {
        const char* directive;
        const char* reference;
    };
    const Row rows[] = {{"%source opt\n", "opt"},
                        {"%source\n    geom opt\n", "opt"},
                        {"%when completed opt and defined x\n", "opt"},
                        {"%when {{ opt.energy }} < 0\n", "opt.energy"},
                        {"%control\n    guess opt\n", "opt"},
                        {"%interface consume opt\n", "opt"}};
    for (const auto& row : rows) {
        write("common.mq", std::string("$soc\n%program orca\n") + row.directive);
        EXPECT_EQ(find(text, "opt", "new"), left(row.reference, "common.mq"));
        EXPECT_EQ(find(text + "$sp\n", "sp", "new"), "");
    }
    write("common.mq", "$soc\n%program orca\n%keywords b3lyp opt\n%when completed opt2\n");
    EXPECT_EQ(find(text, "opt", "new"), "");
    // A block of a matrix that is named as it is in the end.
    EXPECT_EQ(find("define:\n  m: x\n$opt_[m]\n%program orca\n$soc\n%source opt_x\n", "opt_[m]", "new_[m]"),
              "with $new_[m] for $opt_[m] the reference to 'opt_x' in " + at("m1/m1.mq") +
                  " would be left behind");
}

TEST_F(FindObstacle, IsNoReferenceThatIsRewrittenElsewhere) {
    write("m1/inner.mq", "$soc\n%program orca\n%source opt\n");
    EXPECT_EQ(find("&INCLUDE inner.mq\n$opt\n%program orca\n", "opt", "new"), "");
    const std::string library = "&FRAGMENT task wait\n%when completed opt\n";
    const std::string user = "\n$opt\n%program orca\n$last\n%program orca\n&INCLUDE f.wait\n";
    write("m1/f.mqlib", library);
    EXPECT_EQ(find("&INCLUDE f.mqlib as f" + user, "opt", "new"), "");
    write("f.mqlib", library);
    EXPECT_EQ(find("&INCLUDE ../f.mqlib as f" + user, "opt", "new"),
              "with $new for $opt the reference to 'opt' in " + at("f.mqlib") + " would be left behind");
}

TEST_F(FindObstacle, IsAFileNameThatNoDirectoryTakes) {
    const std::string longName = "opt_" + std::string(248, 'x'); // 252 bytes
    write("m1/opt/deep/" + longName);
    EXPECT_EQ(find("$opt\n", "opt", "opt123"), ""); // 255 bytes
    EXPECT_EQ(find("$opt\n", "opt", "opt1234"),
              "renaming $opt would make a file name longer than 255 bytes: " + at("m1/opt/deep/" + longName));
    std::filesystem::remove_all(at("m1/opt"));
    const std::string record = "opt_m1" + std::string(246, 'x');
    write("m1/.morq/store/records/" + record);
    EXPECT_EQ(find("$opt\n", "opt", "opt1234"),
              "renaming $opt would make a file name longer than 255 bytes: " +
                  at("m1/.morq/store/records/" + record));
    EXPECT_EQ(find("$sp\n", "sp", "opt1234"), "");
}

TEST_F(FindObstacle, NeedsAFileThatCanBeRead) {
    EXPECT_THROW((void)findObstacle({at("none.mq"), "", {}, ""}, {"opt", "new"}), taskdsl::DiagnosticError);
    write("bad.mq", "$opt\n%nonsense\n");
    EXPECT_THROW((void)findObstacle({at("bad.mq"), "", {}, ""}, {"opt", "new"}), taskdsl::DiagnosticError);
}

} // namespace
} // namespace morquill::project
