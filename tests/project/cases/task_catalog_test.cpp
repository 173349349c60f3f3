#include "project/cases/task_catalog.h"

#include "fixtures/scratch_tree.h"
#include "support/text.h"

namespace morquill::project {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

/// "a b | x y | a b | a>x a>y": the four parts of a catalog in one line.
std::string show(const TaskCatalog& catalog) {
    std::string text = join(catalog.availableTasks, " ") + " | " + join(catalog.expandedTasks, " ") + " | " +
                       join(catalog.logicalNames, " ") + " |";
    for (const auto& [name, expansions] : catalog.expansionsByName) {
        text += " " + name + ">" + join(expansions, ",");
    }
    return text;
}

class Catalog : public ScratchTree {
  protected:
    std::string scan(const std::string& file) {
        const auto catalog = scanTaskFile(at(file), sink());
        return catalog ? show(*catalog) : catalog.error();
    }
    std::string load(const std::string& file = "p/demo.projmq") {
        warnings.clear();
        const auto catalog = loadCatalog(at("p"), at(file), sink());
        return catalog ? show(*catalog) : catalog.error();
    }
    taskdsl::WarningSink sink() {
        return [this](const std::string& text) { warnings.push_back(text); };
    }
    std::vector<std::string> warnings;
};

constexpr std::string_view twoSolvents =
    "matrix:\n  solv: water,thf\n$opt\n%keywords a [solv]\n$freq\n%keywords b\n";

TEST_F(Catalog, PlainBlocksStandForThemselves) {
    write("a.mq", "$opt\n%keywords a\n$\"s p\"\n%keywords b\n");
    EXPECT_EQ(scan("a.mq"), "opt s p | opt s p | opt s p | opt>opt s p>s p");
    write("empty.mq", "# nothing\n");
    EXPECT_EQ(scan("empty.mq"), " |  |  |");
}

TEST_F(Catalog, AMatrixBlockStandsForItsVariants) {
    write("a.mq", twoSolvents);
    EXPECT_EQ(scan("a.mq"),
              "opt freq | opt__solv_water freq__solv_water opt__solv_thf freq__solv_thf | opt freq | "
              "freq>freq__solv_water,freq__solv_thf freq__solv_thf>freq__solv_thf "
              "freq__solv_water>freq__solv_water opt>opt__solv_water,opt__solv_thf "
              "opt__solv_thf>opt__solv_thf opt__solv_water>opt__solv_water");
}

TEST_F(Catalog, AMatrixOfOneCombinationKeepsTheNames) {
    write("a.mq", "matrix:\n  solv: water\n$opt\n%keywords [solv]\n");
    EXPECT_EQ(scan("a.mq"), "opt | opt | opt | opt>opt");
}

TEST_F(Catalog, BlocksOfALoopStandForThemselves) {
    write("a.mq", "@foreach i in series(1-2)\n$scan[i.value]\n%keywords x\n@end\n$last\n%keywords y\n");
    EXPECT_EQ(scan("a.mq"), "scan1 scan2 last | scan1 scan2 last | scan1 scan2 last | last>last scan1>scan1 "
                            "scan2>scan2");
}

TEST_F(Catalog, BlocksOfALoopKeepTheirVariantsApart) {
    write("a.mq", "matrix:\n  s: x,y\n@foreach i in series(1-2)\n$t[i.value]\n%keywords [s]\n@end\n");
    EXPECT_EQ(scan("a.mq"),
              "t1 t2 | t1__s_x t2__s_x t1__s_y t2__s_y | t1 t2 | t1>t1__s_x,t1__s_y "
              "t1__s_x>t1__s_x t1__s_y>t1__s_y t2>t2__s_x,t2__s_y t2__s_x>t2__s_x t2__s_y>t2__s_y");
}

TEST_F(Catalog, ARepeatedNameIsListedOnce) {
    write("a.mq", "$opt\n%keywords a\n$opt\n%keywords b\n");
    EXPECT_EQ(scan("a.mq"), "opt | opt | opt | opt>opt");
}

TEST_F(Catalog, AScanFailureCarriesTheReason) {
    write("a.mq", "$opt\n%nonsense\n");
    EXPECT_EQ(scan("a.mq"), "failed to parse task file: " + at("a.mq") +
                                ":2:1-2:10: error: task 'opt' contains unknown directive '%nonsense'");
    EXPECT_EQ(scan("missing.mq"), "failed to parse task file: could not open file: " + at("missing.mq"));
    link("loop.mq", "loop.mq");
    EXPECT_EQ(scan("loop.mq"), "failed to parse task file: could not open file: " + at("loop.mq"));
    dir("dir.mq");
    EXPECT_EQ(scan("dir.mq"), "failed to parse task file: could not open file: " + at("dir.mq"));
}

TEST_F(Catalog, AProjectIsTheTemplateAndEveryCase) {
    write("p/demo.projmq", "$opt\n%keywords a\n$soc\n%keywords a\n");
    link("../demo.projmq", "p/m1/m1.mq");
    write("p/m2/m2.mq", "$extra\n%keywords a\n$opt\n%keywords a\n");
    write("p/m3/a.mq", "$first\n%keywords a\n");
    write("p/m3/b.mq", "$second\n%keywords a\n");
    write("p/.m4/m4.mq", "$hidden\n%keywords a\n");
    EXPECT_EQ(load(),
              "opt soc extra first | opt soc extra first | opt soc extra first | extra>extra first>first "
              "opt>opt soc>soc");
}

TEST_F(Catalog, WhatStandsBesideACaseCountsForThatCase) {
    write("p/demo.projmq", "matrix:\n  s: x\n$opt\n%keywords [s]\n");
    for (const char* name : {"m1", "m2", "m3"}) {
        link("../demo.projmq", "p/" + std::string(name) + "/" + name + ".mq");
    }
    write("p/m2/extra.mq", "$pre\n%keywords a\n");
    write("p/m3/extra.yaml", "matrix:\n  t: 1,2\n");
    EXPECT_EQ(load(),
              "opt pre | opt pre opt__t_1__s_x opt__t_2__s_x | opt pre | opt>opt,opt__t_1__s_x,opt__t_2__s_x "
              "opt__t_1__s_x>opt__t_1__s_x opt__t_2__s_x>opt__t_2__s_x pre>pre");
}

TEST_F(Catalog, ACaseIsReadAgainAsIfItStoodBesideTheTemplate) {
    write("p/parts.mqfrag", "%keywords from the part\n");
    write("p/demo.projmq", "$opt\n&INCLUDE parts.mqfrag\n");
    link("../demo.projmq", "p/m1/m1.mq");
    write("p/m2/m2.mq", "$own\n&INCLUDE parts.mqfrag\n");
    EXPECT_EQ(load(), "opt own | opt own | opt own | opt>opt own>own");
}

TEST_F(Catalog, VariantsOfAnIncludedTemplateAreKnownByTheirWrittenName) {
    write("p/demo.projmq", twoSolvents);
    write("p/m1/m1.mq", "# autogenerated by mqkit\n&INCLUDE ../demo.projmq\n");
    EXPECT_EQ(load(), scan("p/demo.projmq"));
}

TEST_F(Catalog, BrokenCasesDoNotStopAProject) {
    write("p/demo.projmq", "$opt\n%keywords a\n");
    write("p/m1/m1.mq", "%oops\n");
    link("gone", "p/m2/m2.mq");
    dir("p/m3/m3.mq");
    write("p/m4/m4.mq", "$four\n%keywords a\n");
    EXPECT_EQ(load(), "opt four | opt four | opt four | four>four opt>opt");
}

TEST_F(Catalog, ABrokenTemplateDoesNotStopAProjectEither) {
    write("p/demo.projmq", "$opt\n%oops\n");
    write("p/m1/m1.mq", "$one\n%keywords a\n");
    EXPECT_EQ(load(), "one | one | one | one>one");
}

TEST_F(Catalog, AProjectWhereNothingParsesTellsTheFirstFailureAndTheCount) {
    write("p/demo.projmq", "$opt\n%oops\n");
    const std::string first = "failed to parse task file: " + at("p/demo.projmq") +
                              ":2:1-2:6: error: task 'opt' contains unknown directive '%oops'";
    EXPECT_EQ(load(), first);
    link("../demo.projmq", "p/m1/m1.mq");
    link("../demo.projmq", "p/m2/m2.mq");
    link("gone", "p/m3/m3.mq");
    EXPECT_EQ(load(), first + " (3 additional case parse error(s))");
    EXPECT_EQ(load("p/none.projmq"), "failed to parse task file: could not open file: " +
                                         at("p/none.projmq") + " (3 additional case parse error(s))");
}

TEST_F(Catalog, AFileThatMayNotBeReadIsAFailure) {
    write("p/demo.projmq", "$opt\n%keywords a\n");
    write("p/m1/m1.mq", "$one\n%keywords a\n");
    write("p/m2/m2.mq", "$two\n%keywords a\n");
    mode("p/demo.projmq", 0);
    mode("p/m2/m2.mq", 0);
    const Unprivileged user;
    EXPECT_EQ(scan("p/m2/m2.mq"), "failed to parse task file: could not open file: " + at("p/m2/m2.mq"));
    EXPECT_EQ(load(), "one | one | one | one>one");
}

TEST_F(Catalog, EveryFileIsWarnedAbout) {
    write("p/demo.projmq", "$opt\n%program xtb\n%keywords --opt\n");
    link("../demo.projmq", "p/m1/m1.mq");
    link("../demo.projmq", "p/m2/m2.mq");
    EXPECT_EQ(load(), "opt | opt | opt | opt>opt");
    const std::string warning =
        "task 'opt' uses deprecated '%keywords' syntax for '%program xtb'; move command-line "
        "arguments to '%args'.";
    EXPECT_THAT(warnings, ElementsAre(warning, warning, warning));
}

} // namespace
} // namespace morquill::project
