#include "templates/library/merge.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace morquill::templates {
namespace {

using ::testing::ElementsAre;

TEST(Merge, OneTemplateGetsAnEmptyLineAfterEachBlock) {
    EXPECT_EQ(mergeTemplateTexts({"$a\n  x\n"}), "$a\n  x\n\n");
    EXPECT_EQ(mergeTemplateTexts({"$a\n  x\n$b\n  y"}), "$a\n  x\n\n$b\n  y\n");
}

TEST(Merge, NoTemplatesMakeAnEmptyText) {
    EXPECT_EQ(mergeTemplateTexts({}), "");
    EXPECT_EQ(mergeTemplateTexts({"", "\n \n"}), "");
}

TEST(Merge, HeadsStandFirstWithOneEmptyLineBetween) {
    EXPECT_EQ(mergeTemplateTexts({"\n\ntotcore: 8\n\n$a\n1", "\n \n$b\n2", "totmem: 16\n\nx: 1\n\n\n$c\n3"}),
              "totcore: 8\n\ntotmem: 16\n\nx: 1\n\n$a\n1\n\n$b\n2\n\n$c\n3\n");
    EXPECT_EQ(mergeTemplateTexts({"only: head"}), "only: head\n");
}

TEST(Merge, EqualBlocksBecomeOne) {
    const std::string opt = "$opt\n  %source origin\n  %keywords opt\n  %process\n    run a\n    run b\n";
    EXPECT_EQ(mergeTemplateTexts({opt, opt}),
              "$opt\n  %source origin\n  %keywords opt\n  %process\n        run a\n        run b\n");
}

TEST(Merge, CommandsOfOneCalculationAreUnited) {
    EXPECT_EQ(mergeTemplateTexts({"$opt\n  %process # all\n    a\n    b\n    c\n  %meta\n    strucid x",
                                  "$opt\n%process\na\nx\nc"}),
              "$opt\n  %process # all\n        a\n        b\n        x\n        c\n  %meta\n    strucid x\n");
}

TEST(Merge, DifferentCalculationsAreNumbered) {
    EXPECT_EQ(mergeTemplateTexts({"$opt # first\n%keywords a", "$opt\n%keywords b", "$opt\n%keywords c",
                                  "$opt\n%keywords b"}),
              "$opt\n%keywords a\n\n$opt_2\n%keywords b\n\n$opt_3\n%keywords c\n");
}

TEST(Merge, GroupsKeepTheOrderOfFirstSight) {
    EXPECT_EQ(mergeTemplateTexts({"$a\n1\n$b\n2", "$c\n3\n$a\n%keywords x"}),
              "$a\n1\n\n$a_2\n%keywords x\n\n$b\n2\n\n$c\n3\n");
}

TEST(SameCalculation, ComparesTheFirstSourceAndKeywordsLines) {
    const auto variant =
        makeVariant({"$a", "  %source  opt ", "%keywords \"b3lyp\"", "%source x", "%keywords y"});
    EXPECT_EQ(variant.source, "opt");
    EXPECT_EQ(variant.keywords, "\"b3lyp\"");
    EXPECT_TRUE(sameCalculation(variant, makeVariant({"$b", "%keywords \"b3lyp\"", "%source opt"})));
    EXPECT_FALSE(sameCalculation(variant, makeVariant({"$a", "%source opt"})));
    EXPECT_FALSE(sameCalculation(variant, makeVariant({"$a", "%source opt2", "%keywords \"b3lyp\""})));
}

TEST(SameCalculation, ADirectiveWithoutABlankOrInAHeredocDoesNotCount) {
    const auto variant =
        makeVariant({"$a", "%source", "geom opt", "%body << X", "%keywords no", "X", "%keywords"});
    EXPECT_EQ(variant.source, "");
    EXPECT_EQ(variant.keywords, "");
}

TEST(Fold, DirectivesThatTheBaseLacksAreAppendedWithTheirLines) {
    EXPECT_THAT(foldLines({"$a", "%source x", "  %meta", "    strucid a"},
                          {"$a", "free text", "%source y", "%meta", "strucid b", "  %mod", "    charge 1", "",
                           "%extrainput one", "%extrainput two"}),
                ElementsAre("$a", "%source x", "  %meta", "    strucid a", "  %mod", "    charge 1", "",
                            "%extrainput one", "%extrainput two"));
}

TEST(Fold, HeredocTextIsNoDirective) {
    EXPECT_THAT(
        foldLines({"$a", "%body << X", "%mod", "X"},
                  {"$a", "%mod", "charge 1", "%extrainput << Y", "%new", "Y"}),
        ElementsAre("$a", "%body << X", "%mod", "X", "%mod", "charge 1", "%extrainput << Y", "%new", "Y"));
    EXPECT_THAT(foldLines({"$a"}, {"$a", "%body << X", "%process", "X"}),
                ElementsAre("$a", "%body << X", "%process", "X"));
}

TEST(Fold, ADirectiveThatOnlyOneSideHasStaysAsWritten) {
    EXPECT_THAT(foldLines({"$a", "%process", "  a", "", "%meta"}, {"$a", "%preprocess", "   b"}),
                ElementsAre("$a", "%process", "  a", "", "%meta", "%preprocess", "   b"));
}

TEST(Fold, PreprocessAndProcessAreUnitedApart) {
    EXPECT_THAT(
        foldLines({"$a", "%preprocess", "a", "%process", "b"},
                  {"$a", "%process", "", "a", "%preprocess", "b"}),
        ElementsAre("$a", "%preprocess", "        a", "        b", "%process", "        b", "        a"));
}

TEST(Fold, ARepeatedDirectiveIsOneListOfCommands) {
    EXPECT_THAT(foldLines({"$a", "%process", "a", "%meta", "strucid x", "%process", "b"},
                          {"$a", "%process", "b", "%process", "c"}),
                ElementsAre("$a", "%process", "        a", "        b", "        c", "%meta", "strucid x"));
}

TEST(Fold, TheBaseIsTheSameWhenNothingIsNew) {
    const std::vector<std::string> base{"$a", "%source origin", "", "%keywords x", ""};
    EXPECT_EQ(foldLines(base, {"$a", "%keywords x", "%source origin"}), base);
}

} // namespace
} // namespace morquill::templates
