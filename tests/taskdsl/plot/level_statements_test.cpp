// Barrier points and level columns as records. Their messages are the matter of plot_parser_test.cpp.

#include "fixtures/plot_reading.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace morquill::taskdsl::plot {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;
using enum PlotKind;

TEST(LevelStatements, APointTakesLabelAndValueOnItsLineOrBehindIt) {
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

} // namespace
} // namespace morquill::taskdsl::plot
