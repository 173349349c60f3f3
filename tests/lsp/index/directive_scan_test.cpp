#include "lsp/index/directive_scan.h"

#include "fixtures/file_index_print.h"

namespace {

using namespace morquill::lsp;

/// The names of a task with that body.
std::string namesOfBlock(std::string_view body) {
    const auto all = printNames("$t\n" + std::string(body));
    return all.substr(all.find('\n') + 1);
}

TEST(DirectiveScan, ASourceNamesItsTasks) {
    EXPECT_EQ(namesOfBlock("  %source origin\n  %source restart\n"), "");
    EXPECT_EQ(namesOfBlock("  %source opt\n"), "1:10 task opt\n");
    EXPECT_EQ(namesOfBlock("  %source \"two words\"\n"), "1:11 task two words\n");
    EXPECT_EQ(namesOfBlock("  %source a, b guess # c\n"), "1:10 task a\n1:13 task b\n");
    EXPECT_EQ(namesOfBlock("  %source xyz=a.xyz frame=2\n"), "1:14 path a.xyz\n");
    EXPECT_EQ(
        namesOfBlock(
            "  %source\n    geom opt\n    geom.ref xyz=[x].xyz frame=3\n    density cation kind=fchk\n"),
        "2:9 task opt\n3:17 path [x].xyz\n3:18 key x\n4:12 task cation\n");
}

TEST(DirectiveScan, AGuessNamesItsTask) {
    EXPECT_EQ(namesOfBlock("  %control\n    guess true\n    guess opt\n    guess_converter mokit\n"),
              "3:10 task opt\n");
}

TEST(DirectiveScan, AWordThatIsATasksNameIsNoReference) {
    EXPECT_EQ(
        namesOfBlock("  %keywords \"opt freq\"\n  %args opt\n  %process\n    copy opt x\n  %param opt\n"),
        "");
}

TEST(DirectiveScan, ConsumersNameTheirProvider) {
    EXPECT_EQ(namesOfBlock("  %interface provider\n  %interface consume opt\n"), "2:21 task opt\n");
}

TEST(DirectiveScan, KeysStandInAnyText) {
    EXPECT_EQ(namesOfBlock("  %keywords [f]/[b.c] [no key]\n  %body << EOF\n# [d]\nEOF\n  %mod charge [q]\n"),
              "1:13 key f\n1:17 key b.c\n3:3 key d\n5:15 key q\n");
}

TEST(DirectiveScan, WordsHaveTheirKinds) {
    const std::string_view text = "$t\n  %program orca\n  %control\n    totcore 4\n  %nonsense x\n";
    EXPECT_EQ(printWords(text, NameKind::directive), "program control nonsense");
    EXPECT_EQ(printWords(text, NameKind::program), "orca");
    EXPECT_EQ(printWords(text, NameKind::controlKey), "totcore");
}

} // namespace
