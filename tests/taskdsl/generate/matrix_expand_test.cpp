#include "taskdsl/generate/matrix_expand.h"

#include "fixtures/parse_text.h"
#include "fixtures/temporary_directory.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace morquill::taskdsl {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

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
    EXPECT_EQ(sourceText(parsed.document.tasks[1]), "opt");
}

TEST(Matrix, AVariantHasItsValuesByKeyWhateverTheOrderOfTheAxes) {
    const auto parsed = parse("matrix:\n  b: 1,2\n  a: x\n$opt\n");
    const auto& tasks = parsed.document.tasks;
    ASSERT_EQ(tasks.size(), 2U);
    EXPECT_EQ(tasks[0].matrixVariantKey, "b_1__a_x");
    EXPECT_EQ(tasks[0].matrixValues.get(), (ValueMap{{"a", "x"}, {"b", "1"}}));
    EXPECT_EQ(tasks[1].matrixValues.get(), (ValueMap{{"a", "x"}, {"b", "2"}}));
    EXPECT_EQ(tasks[1].matrixValues->begin()->first, "a");
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
    EXPECT_EQ(formatSourceSpec(sp.source), "geom opt__a_2\naux.d opt__a_2\naux.o origin");
    const auto& last = parsed.document.tasks[5];
    EXPECT_EQ(formatSourceSpec(last.source), "sp_2__a_2");
    EXPECT_EQ(last.guessSourceTask, "opt__a_2");
    EXPECT_EQ(last.interfaceProvider, "opt__a_2");
    EXPECT_THAT(whenConditions(last), ElementsAre("completed opt__a_2 and completed other",
                                                  "{{ sp_2__a_2.energy }} < {{ opt__a_2.e}}"));
}

TEST(Matrix, ANameMadeByTheMatrixIsNotRenamedAgain) {
    const auto parsed =
        parse("matrix:\n  a: 1,2\n$t\n$t__a_1\n$u\n%source t\n%when completed t and completed t__a_1\n");
    const auto& task = parsed.document.tasks[2];
    EXPECT_EQ(sourceText(task), "t__a_1");
    EXPECT_THAT(whenConditions(task), ElementsAre("completed t__a_1 and completed t__a_1__a_1"));
}

TEST(Matrix, ReferencesStayInTheirFile) {
    const TemporaryDirectory dir;
    (void)dir.write("b.mq", "$shared\n$user\n%source shared\n");
    const auto path = dir.write("a.mq", "matrix:\n  a: 1,2\n$shared\n%source user\n&INCLUDE b.mq\n");
    const auto parsed = parseFile(path);
    EXPECT_THAT(namesOf(parsed.document.tasks), ElementsAre("shared__a_1", "shared__a_1", "user__a_1",
                                                            "shared__a_2", "shared__a_2", "user__a_2"));
    EXPECT_EQ(sourceText(parsed.document.tasks[0]), "user"); // a task of another file
    EXPECT_EQ(sourceText(parsed.document.tasks[2]), "shared__a_1");
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

TEST(ExpandMatrix, AnAxisWinsOverADefineOfItsNameInATaskName) {
    const auto parsed = parse("define:\n  m: D\nmatrix:\n  m: 1,2\n$b_[m]\n%when completed b_[m]\n");
    EXPECT_THAT(namesOf(parsed.document.templateTasks), ElementsAre("b_[m]"));
    EXPECT_THAT(namesOf(parsed.document.tasks), ElementsAre("b_1__m_1", "b_2__m_2"));
    EXPECT_THAT(whenConditions(parsed.document.tasks[1]), ElementsAre("completed b_2__m_2"));
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

TEST(Matrix, OneCombinationRenamesNothing) {
    const auto parsed = parse("matrix:\n  a: 1\n$opt\n$sp_[a]\n%when\n {{opt.energy}} < {{  sp_[a] .e}}\n"
                              " completed  opt and completed  sp_[a]\n");
    EXPECT_THAT(whenConditions(parsed.document.tasks[1]),
                ElementsAre("{{opt.energy}} < {{  sp_1 .e}}", "completed  opt and completed  sp_1"));
}

} // namespace
} // namespace morquill::taskdsl
