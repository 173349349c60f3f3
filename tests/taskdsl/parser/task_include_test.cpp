#include "taskdsl/parser/task_include.h"

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

TEST(TaskInclude, DoublingFilesEnd) {
    const TemporaryDirectory dir;
    for (int i = 0; i < 220; ++i) {
        (void)dir.write("f" + std::to_string(i) + ".mq", "&INCLUDE f" + std::to_string(i + 1) + ".mq\n");
    }
    EXPECT_EQ(messageOf([&] { (void)parseFile(dir.path("f0.mq")); }),
              "task include is nested more than 200 deep: " + dir.path("f200.mq"));
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

} // namespace
} // namespace morquill::taskdsl
