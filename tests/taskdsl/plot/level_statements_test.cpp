// Barrier points and level columns as records. Their messages are the matter of plot_parser_test.cpp.

#include "fixtures/plot_fixture.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace morquill::taskdsl::plot {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;
using enum PlotKind;

TEST(LevelStatements, APointTakesLabelAndValueOnItsLineOrAfterIt) {
    KindReading reading(barrier);
    reading.read(readPoint, "point ts value e(ts) - e(r) label 'TS 1'");
    EXPECT_TRUE(reading.reading.atPoint);
    reading.read(readPoint, "point 'a b'")
        .read(readPointLabel, "label \"A\"")
        .read(readPointValue, "value -1.5");
    const auto& points = reading.data<BarrierPlotData>().points;
    ASSERT_EQ(points.size(), 2U);
    EXPECT_EQ(points[0].id + "|" + points[0].label + "|" + renderPlotExpression(points[0].value),
              "ts|TS 1|e(ts) - e(r)");
    EXPECT_EQ(points[1].id + "|" + points[1].label + "|" + renderPlotExpression(points[1].value),
              "a b|A|-1.5");
    EXPECT_EQ(formatSpan(points[1].span), "a.mq:5:3-5:20");
    EXPECT_EQ(reading.fault(readPoint, "point"), atStatement("point requires an id"));
    EXPECT_EQ(reading.fault(readPoint, "point a b"),
              atStatement("unexpected text after barrier point id: 'b'"));
    EXPECT_EQ(reading.fault(readPointValue, "value"), atStatement("point value requires an expression"));
}

TEST(LevelStatements, AColumnIsNamedByItsIdUnlessItSaysMore) {
    const auto bare =
        KindReading(frontier).read(readColumn, "column opt").data<FrontierPlotData>().columns.at(0);
    EXPECT_EQ(bare.id + "|" + bare.label + "|" + bare.task, "opt|opt|opt");
    EXPECT_FALSE(bare.multiplicityDeclared);
    const auto full = KindReading(excited)
                          .read(readColumn, "column t label 'Triplet' task td_t multiplicity triplet")
                          .data<ExcitedPlotData>()
                          .columns.at(0);
    EXPECT_EQ(full.id + "|" + full.label + "|" + full.task, "t|Triplet|td_t");
    EXPECT_TRUE(full.multiplicityDeclared);
    const std::pair<const char*, std::int32_t> words[] = {
        {"singlet", 1}, {"S", 1}, {"Doublet", 2}, {"t", 3}, {"q", 4}, {"quartet", 4}, {"6", 6}};
    for (const auto& [word, multiplicity] : words) {
        const auto column = KindReading(excited)
                                .read(readColumn, "column c multiplicity " + std::string(word))
                                .data<ExcitedPlotData>()
                                .columns.at(0);
        EXPECT_EQ(column.multiplicity, multiplicity) << word;
    }
    // Only a level plot of states knows multiplicities.
    EXPECT_EQ(KindReading(frontier).fault(readColumn, "column c multiplicity 3"),
              atStatement("unexpected text after frontier column id: 'multiplicity 3'"));
    EXPECT_EQ(
        KindReading(excited).fault(readColumn, "column c multiplicity odd"),
        atStatement("column multiplicity must be singlet, doublet, triplet, quartet, or a positive integer"));
}

TEST(LevelStatements, SelectionsReplaceTheFormerOnes) {
    KindReading levels(frontier);
    levels.read(readOrbitals, "orbitals HOMO LUMO").read(readOrbitals, "orbitals 'HOMO-1' 12");
    EXPECT_THAT(levels.data<FrontierPlotData>().orbitals, ElementsAre("HOMO-1", "12"));
    EXPECT_EQ(levels.read(readSpin, "spin BETA").data<FrontierPlotData>().spin, SpinSelection::beta);
    EXPECT_EQ(levels.read(readSpin, "spin").data<FrontierPlotData>().spin, SpinSelection::automatic);

    KindReading states(excited);
    EXPECT_THAT(states.read(readRoots, "roots 1 3 2").data<ExcitedPlotData>().roots, ElementsAre(1, 3, 2));
    EXPECT_THAT(states.read(readRoots, "roots 4").data<ExcitedPlotData>().roots, ElementsAre(4));
    for (const char* all : {"roots all", "roots *", "roots 1 ALL"}) {
        EXPECT_THAT(states.read(readRoots, all).data<ExcitedPlotData>().roots, IsEmpty()) << all;
    }
    EXPECT_EQ(states.fault(readRoots, "roots 0"), atStatement("roots requires a positive integer root"));
    EXPECT_EQ(states.fault(readRoots, "roots"),
              atStatement("roots requires at least one root selector or all"));
}

TEST(LevelStatements, AnArrowEndsAtARootOrAtTheNearestOne) {
    struct Row {
        const char* text;
        const char* arrow; ///< source column and root, target mode, target column and root, style
    };
    const Row rows[] = {
        {"arrow from a root 1 to b root 2", "a1 explicit b2 solid"},
        {"arrow a 1 -> b 2", "a1 explicit b2 solid"},
        {"arrow a state 10 => 'b c' s 2 dashed", "a10 explicit b c2 dashed"},
        {"arrow a 1 to b first lower", "a1 lower b0 solid"},
        {"arrow a 1 to b above style dashed", "a1 higher b0 dashed"},
        {"arrow a 1 to b 2 dashed style solid", "a1 explicit b2 solid"}, // the last style counts
    };
    for (const auto& [text, expected] : rows) {
        const auto arrow = KindReading(excited).read(readArrow, text).data<ExcitedPlotData>().arrows.at(0);
        const bool relative = arrow.targetMode != ArrowTargetMode::explicitRoot;
        const char* mode = arrow.targetMode == ArrowTargetMode::firstLower    ? "lower"
                           : arrow.targetMode == ArrowTargetMode::firstHigher ? "higher"
                                                                              : "explicit";
        EXPECT_EQ(arrow.sourceColumn + std::to_string(arrow.sourceRoot) + " " + mode + " " +
                      (relative ? arrow.relativeColumn : arrow.targetColumn) +
                      std::to_string(arrow.targetRoot) + " " + std::string(arrowStyleName(arrow.style)),
                  expected)
            << text;
        EXPECT_EQ((relative ? arrow.targetColumn : arrow.relativeColumn), "") << text;
    }
    EXPECT_EQ(KindReading(excited).fault(readArrow, "arrow a 0 to b 1"),
              atStatement("arrow source requires a positive integer root"));
    EXPECT_EQ(KindReading(excited).fault(readArrow, "arrow a 1 b 1"),
              atStatement("arrow requires 'to' between source and target"));
    EXPECT_EQ(KindReading(excited).fault(readArrow, "arrow a 1 to b 1 red"),
              atStatement("unexpected arrow option 'red'"));
}

TEST(LevelStatements, TheUnitIsThatOfTheKind) {
    EXPECT_EQ(KindReading(barrier).read(readUnit, "unit 'kJ / mol'").data<BarrierPlotData>().unit,
              "kJ / mol");
    EXPECT_EQ(KindReading(frontier).read(readUnit, "unit Eh").data<FrontierPlotData>().unit, "Eh");
    EXPECT_EQ(KindReading(excited).read(readUnit, "unit nm").data<ExcitedPlotData>().unit, "nm");
    EXPECT_EQ(KindReading(barrier).fault(readUnit, "unit"), atStatement("unit requires a value"));
}

TEST(BarrierPoints, LabelAndValueMayComeAfterThePoint) {
    const auto plot = parsed("@plot barrier b\n"
                             "point r label 'R' value energy(r)\n"
                             "point ts\n"
                             "label \"TS 1\"\n"
                             "VALUE energy(ts)\n"
                             "label \"TS 2\"\n"
                             "relative to r\n"
                             "unit kJ/mol\n");
    const auto& data = std::get<BarrierPlotData>(plot.data);
    ASSERT_EQ(data.points.size(), 2U);
    EXPECT_EQ(data.points[0].label, "R");
    EXPECT_EQ(data.points[1].label, "TS 2");
    EXPECT_EQ(renderPlotExpression(data.points[1].value), "energy(ts)");
    EXPECT_EQ(formatSpan(data.points[1].span), "a.mq:3:1-3:8");
    EXPECT_EQ(data.relativeMode, RelativeMode::toPoint);
    EXPECT_EQ(data.relativePoint, "r");
    EXPECT_EQ(data.unit, "kJ/mol");
}

TEST(BarrierPoints, AnyOtherStatementEndsThem) {
    EXPECT_EQ(messageWith("barrier", "point c value 1\ntitle t\nlabel x"), "unknown plot statement 'label'");
    EXPECT_EQ(messageWith("barrier", "point \"\" value 1"), "plot 'p': barrier point id must not be empty");
}

TEST(LevelColumns, LabelAndTaskDefaultToTheId) {
    const auto data =
        dataWith<ExcitedPlotData>("excited", "column a\n"
                                             "system 'b c' label \"B C\" task tdb multiplicity T\n"
                                             "column d multiplicity 5\n");
    ASSERT_EQ(data.columns.size(), 3U);
    EXPECT_EQ(data.columns[0].label, "a");
    EXPECT_EQ(data.columns[0].task, "a");
    EXPECT_FALSE(data.columns[0].multiplicityDeclared);
    EXPECT_EQ(data.columns[1].id, "b c");
    EXPECT_EQ(data.columns[1].label, "B C");
    EXPECT_EQ(data.columns[1].task, "tdb");
    EXPECT_EQ(data.columns[1].multiplicity, 3);
    EXPECT_EQ(data.columns[2].multiplicity, 5);
    const std::vector<std::pair<std::string, int>> rows{{"singlet", 1}, {"s", 1},       {"doublet", 2},
                                                        {"d", 2},       {"triplet", 3}, {"Quartet", 4},
                                                        {"q", 4},       {"7x", 7}};
    for (const auto& [text, multiplicity] : rows) {
        EXPECT_EQ(
            dataWith<ExcitedPlotData>("excited", "column a multiplicity " + text).columns[0].multiplicity,
            multiplicity);
    }
}

TEST(LevelColumns, OrbitalsSpinAndRoots) {
    EXPECT_THAT(dataWith<FrontierPlotData>("frontier", "orbitals a\norbital HOMO-1 'LUMO'").orbitals,
                ElementsAre("HOMO-1", "LUMO"));
    const std::vector<std::pair<std::string, SpinSelection>> rows{
        {"spin", SpinSelection::automatic}, {"spin AUTO", SpinSelection::automatic},
        {"spin a", SpinSelection::alpha},   {"spin alpha", SpinSelection::alpha},
        {"spin b", SpinSelection::beta},    {"spin beta", SpinSelection::beta},
        {"spin both", SpinSelection::both}, {"spin all", SpinSelection::both}};
    for (const auto& [statement, spin] : rows) {
        EXPECT_EQ(dataWith<FrontierPlotData>("frontier", statement).spin, spin) << statement;
    }
    EXPECT_THAT(dataWith<ExcitedPlotData>("excited", "roots 1 \"2\" 3").roots, ElementsAre(1, 2, 3));
    EXPECT_THAT(dataWith<ExcitedPlotData>("excited", "roots +4 '+5'").roots, ElementsAre(4, 5));
    EXPECT_THAT(dataWith<ExcitedPlotData>("excited", "roots 1\nroots 2 ALL x").roots, IsEmpty());
    EXPECT_THAT(dataWith<ExcitedPlotData>("excited", "roots 1\nroots \"*\"").roots, IsEmpty());
}

TEST(ExcitedArrows, EveryForm) {
    // source column and root, target column and root, relative column, mode, style
    using Row =
        std::tuple<std::string, std::string, int, std::string, int, std::string, ArrowTargetMode, int>;
    const auto toRoot = ArrowTargetMode::explicitRoot;
    const auto lower = ArrowTargetMode::firstLower;
    const auto higher = ArrowTargetMode::firstHigher;
    const std::vector<Row> rows{
        {"arrow from a root 1 to b root 2", "a", 1, "b", 2, "", toRoot, 0},
        {"arrow from a root +1 to b +2", "a", 1, "b", 2, "", toRoot, 0},
        {"transition a 1 -> b 2 dashed", "a", 1, "b", 2, "", toRoot, 1},
        {"arrow 'a b' S 1 => b State 2 style DOTTED", "a b", 1, "b", 2, "", toRoot, 1},
        {"arrow a state 3 TO b first lower", "a", 3, "", 0, "b", lower, 0},
        {"arrow a 3 to b first above dash", "a", 3, "", 0, "b", higher, 1},
        {"arrow a 3 to b below style line", "a", 3, "", 0, "b", lower, 0},
        {"arrow a 3 to b higher dashed solid", "a", 3, "", 0, "b", higher, 0},
    };
    for (const auto& [statement, source, root, target, targetRoot, relative, mode, style] : rows) {
        const auto data = dataWith<ExcitedPlotData>("excited", statement);
        ASSERT_EQ(data.arrows.size(), 1U) << statement;
        const auto& arrow = data.arrows[0];
        EXPECT_EQ(arrow.sourceColumn, source) << statement;
        EXPECT_EQ(arrow.sourceRoot, root) << statement;
        EXPECT_EQ(arrow.targetColumn, target) << statement;
        EXPECT_EQ(arrow.targetRoot, targetRoot) << statement;
        EXPECT_EQ(arrow.relativeColumn, relative) << statement;
        EXPECT_EQ(arrow.targetMode, mode) << statement;
        EXPECT_EQ(static_cast<int>(arrow.style), style) << statement;
    }
}

} // namespace
} // namespace morquill::taskdsl::plot
