#include "taskdsl/plot/printer.h"

#include "taskdsl/plot/substitute_plot.h"

#include "fixtures/plot_fixture.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace morquill::taskdsl::plot {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

/// A statement and the line that it prints as.
struct Row {
    std::string_view written;
    std::string_view expected;
};

/// Reads each statement after the head of a plot, and looks for its line in what is printed.
void expectLines(const std::string& head, const std::vector<Row>& rows) {
    for (const auto& [written, expected] : rows) {
        const auto plot = parsed(head + std::string(written) + "\n");
        const auto result = readBack(plot);
        EXPECT_NE(result.text.find("\n  " + std::string(expected) + "\n"), std::string::npos)
            << written << " prints as\n"
            << result.text;
        EXPECT_TRUE(result.equal) << result.text;
        EXPECT_THAT(result.warnings, IsEmpty()) << written;
        EXPECT_EQ(reprinted(result.text), result.text);
    }
}

std::vector<std::string> warningsOf(std::string_view text) {
    const auto result = readBack(parsed(text));
    EXPECT_EQ(result.equal, result.warnings.empty()) << result.text;
    return result.warnings;
}

TEST(PlotPrinter, ExpressionsWithOptionWordsStandInParentheses) {
    expectLines("@plot convergence p\nfrom task t\nx i\n",
                {
                    {"y 2*log(k)", "y (2 * log(k))"},
                    {"y (log(k))", "y (log(k))"},
                    {"y (label)", "y (label)"},
                    {"y (Unit.x)", "y (Unit.x)"},
                    {"y (log:a)", "y (log:a)"},
                    {"y (style) label a", "y (style) label \"a\""},
                    {"series s = (unit) + (log)", "series s = (unit + log)"},
                    {"series s = (a:)", "series s = (a:)"},
                    {"series s = a: unit e", "series s = a: unit e"},
                    // These are read as they stand.
                    {"y -log(k)", "y -log(k)"},
                    {"y (-log(k)) + 1", "y -log(k) + 1"},
                    {"y f(2*log(k), unit)", "y f(2 * log(k), unit)"},
                    {"y logs + unit_x", "y logs + unit_x"},
                    {"y value", "y value"},
                    {"y (a:)", "y a:"},
                    {"y {{ a.log }}", "y {{ a.log }}"},
                    {"y {{ a.'b c' }} label d", "y {{ a.'b c' }} label \"d\""},
                });
}

TEST(PlotPrinter, UnitsThatAreNoPlainWordAreQuoted) {
    expectLines("@plot convergence p\nfrom task t\nx i\n",
                {
                    {"y e unit \"arb. units\"", "y e unit \"arb. units\""},
                    {"y e unit 'cm -1' log", "y e unit \"cm -1\" log"},
                    {"y e unit \"log\"", "y e unit \"log\""},
                    {"y e unit \"Label/s\"", "y e unit \"Label/s\""},
                    {"y e unit \"a#b\"", "y e unit \"a#b\""},
                    {"y e unit \"(a\"", "y e unit \"(a\""},
                    {"y e unit \"a)\"", "y e unit \"a)\""},
                    {"y e unit \"it's\"", "y e unit \"it's\""},
                    {"y e unit '\"a\"'", "y e unit \"\\\"a\\\"\""},
                    {"y e unit \"a\\nb\"", "y e unit \"a\\nb\""},
                    {"y e unit \"{{\"", "y e unit \"{{\""},
                    {"y e unit \"eV-\"", "y e unit \"eV-\""},
                    {"series s = e unit \"eV:\"", "series s = e unit \"eV:\""},
                    // These are read as they stand.
                    {"y e unit \"eV-\" log", "y e unit eV- log"},
                    {"y e unit \"eV:\"", "y e unit eV:"},
                    {"y e unit '(a b)'", "y e unit (a b)"},
                    {"y e unit \"km/mol\"", "y e unit km/mol"},
                    {"y e unit \"Å^-1\"", "y e unit Å^-1"},
                    {"y e unit 1/s", "y e unit 1/s"},
                    {"y e unit \"value\"", "y e unit value"},
                });
}

TEST(PlotPrinter, Thresholds) {
    expectLines("@plot convergence p\nfrom task t\nx i\ny e\n",
                {
                    {"threshold (value) value 1", "threshold (value) value 1"},
                    {"threshold 2 *(axis) value 1 axis y2", "threshold (2 * axis) value 1 axis y2"},
                    {"threshold 2*log(k) value 1", "threshold 2 * log(k) value 1"},
                    {"threshold e value 1 unit \"a b\"", "threshold e value 1 unit \"a b\""},
                    {"threshold e value 1 unit \"axis\"", "threshold e value 1 unit \"axis\""},
                    {"threshold e value nan unit \"log\"", "threshold e value nan unit log"},
                    {"threshold e value -inf", "threshold e value -inf"},
                });
}

TEST(PlotPrinter, BarrierPoints) {
    const std::string two = "@plot barrier p\npoint a value 1\npoint b value 2\n";
    expectLines(two, {
                         {"point \"A + B\" value 1", "point \"A + B\" value 1"},
                         {"point \"#\" value 1", "point \"#\" value 1"},
                         {"point 'a\"b' value 1", "point \"a\\\"b\" value 1"},
                         {"point p value (label)", "point p value (label)"},
                         {"point p value 2*(value) ", "point p value (2 * value)"},
                         {"point \"A + B\" value 2*(value) ", "point \"A + B\" value (2 * value)"},
                         {"unit \"a #b\"", "unit \"a #b\""},
                         {"unit \" a\"", "unit \" a\""},
                         {"unit \"a/\"", "unit \"a/\""},
                         // These are read as they stand.
                         {"point \"label\" value 1", "point label value 1"},
                         {"point \"c-\" value 1", "point c- value 1"},
                         {"point p value 2*log(k)", "point p value 2 * log(k)"},
                         {"unit \"kJ per mol\"", "unit kJ per mol"},
                         {"unit unit", "unit unit"},
                     });
    expectLines("@plot barrier p\npoint \"A + B\" value 1\npoint first value 2\npoint 'c-' value 3\n",
                {
                    {"relative to 'A + B'", "relative to \"A + B\""},
                    {"relative to 'c-'", "relative to \"c-\""},
                    {"relative to \"first\"", "relative to first"},
                });
}

TEST(PlotPrinter, Broadening) {
    expectLines("%plot spectrum p\nx a\ny b\n",
                {
                    {"broaden gaussian 5 unit \"cm -1\"", "broaden gaussian fwhm 5 unit \"cm -1\""},
                    {"broaden gaussian 5 unit \"cm-\"", "broaden gaussian fwhm 5 unit \"cm-\""},
                    {"broaden gaussian 5 unit \"cm-1\"", "broaden gaussian fwhm 5 unit cm-1"},
                    {"broaden gaussian 5 unit \"fwhm\"", "broaden gaussian fwhm 5 unit fwhm"},
                    {"broaden gaussian inf", "broaden gaussian fwhm inf"},
                });
}

TEST(PlotPrinter, LevelPlots) {
    expectLines("@plot frontier p\nfrom task t\n", {
                                                       {"column \"a b\" task t", "column \"a b\" task \"t\""},
                                                       {"column 'label' label x", "column label label \"x\""},
                                                       {"column 'c-'", "column \"c-\""},
                                                       {"orbitals \"a b\" HOMO", "orbitals \"a b\" HOMO"},
                                                       {"orbitals HOMO \"LUMO+\"", "orbitals HOMO \"LUMO+\""},
                                                       {"orbitals '' \"a,\"", "orbitals \"\" \"a,\""},
                                                       {"orbitals 'a#b' HOMO", "orbitals \"a#b\" HOMO"},
                                                       {"orbitals \"HOMO-\" LUMO", "orbitals HOMO- LUMO"},
                                                       {"orbitals '(a b)'", "orbitals (a b)"},
                                                       {"unit \"#\"", "unit \"#\""},
                                                   });
    expectLines(
        "@plot excited p\nfrom task t\n",
        {
            {"column \"a b\" multiplicity t", "column \"a b\" multiplicity triplet"},
            {"arrow \"a b\" 1 to from lower", "arrow from \"a b\" root 1 to from first lower style solid"},
            {"arrow from 'root' root 1 to \"#\" 2", "arrow from root root 1 to \"#\" root 2 style solid"},
            {"arrow 'a)' 1 to '(b' above", "arrow from \"a)\" root 1 to \"(b\" first higher style solid"},
        });
}

TEST(PlotPrinter, BoundsThatFifteenDigitsBringTogetherHaveSeventeen) {
    expectLines(
        "@plot histogram p\nfrom project\nx a\n",
        {
            {"range 0.1234567890123456 0.1234567890123457", "range 0.12345678901234559 0.12345678901234571"},
            {"range 0 inf", "range 0 inf"},
        });
}

TEST(PlotPrinter, SortNoneForgetsTheDirection) {
    const auto result = readBack(parsed("@plot bar p\nfrom project\nx a\ny b\nsort y asc\nsort none\n"));
    EXPECT_TRUE(result.equal) << result.text;
}

TEST(PlotPrinter, WhatTheCanonicalFormCannotHoldIsWarnedOf) {
    const std::string p = "plot 'p' does not read back: ";
    const std::vector<std::pair<std::string, std::string>> rows{
        {"@plot frontier 'my plot'\nfrom task t",
         "plot 'my plot' does not read back: the name holds a blank"},
        {"@plot frontier \"a\\nb\"\nfrom task t",
         "plot 'a\\nb' does not read back: the name holds a line break"},
        {"@plot frontier '#'\nfrom task t",
         "plot '#' does not read back: the name '#' is printed without quotes"},
        {"@plot frontier p\nfrom task 'c d'", p + "the name of the source holds a blank"},
        {"%plot frontier p\nfrom task 'c#d'", p + "the name of the source 'c#d' is printed without quotes"},
        {"@plot frontier p\nfrom task 'c-'\nspin alpha",
         p + "the name of the source 'c-' is printed without quotes"},
        {"%plot frontier p\nfrom variants ''", p + "the name of the source is empty"},
        {"@plot bar p\nfrom derived t\nx a\ny b", p + "the source 't' is no <derive>.<table>"},
        {"@plot bar p\nfrom project\nx a\ny b\nstyle lines",
         p + "the style 'lines' is not printed and becomes 'boxes'"},
        {"@plot barrier p\npoint a value 1\npoint b value 1\nunit ''",
         p + "an empty unit is not printed and becomes 'kcal/mol'"},
        {"@plot bar p\nfrom project\nx a\ny a + (b + c)",
         p + "parentheses on the right of '+' are not printed"},
        {"@plot bar p\nfrom project\nx a * (b / c)\ny b",
         p + "parentheses on the right of '*' are not printed"},
        {"@plot bar p\nfrom project\nx 627.509474063112345 * a\ny b",
         p + "the number 627.50947406311229 prints with 15 digits"},
        {"@plot histogram p\nfrom project\nx a\nrange 0 0.12345678901234567",
         p + "the number 0.12345678901234566 prints with 15 digits"},
        {"@plot convergence p\nfrom task t\nx a\ny b\nthreshold c value 2625.4996394798254",
         p + "the number 2625.4996394798254 prints with 15 digits"},
        {"@plot bar 'q r'\nfrom project\nx a\ny 1 + (2 + 3)\nstyle lines",
         "plot 'q r' does not read back: the name holds a blank; parentheses on the right of '+' are not "
         "printed; the style 'lines' is not printed and becomes 'boxes'"},
    };
    for (const auto& [written, expected] : rows) {
        EXPECT_THAT(warningsOf(written), ElementsAre(expected)) << written;
    }
}

TEST(PlotPrinter, WhatReadsBackIsNotWarnedOf) {
    for (const std::string_view text : {
             "@plot frontier 'a#b'\nfrom task t",
             "@plot frontier 'a\"b c\"'\nfrom task t",
             "@plot frontier (a b)\nfrom task t",
             "@plot frontier p\nfrom task '(c d)'",
             "@plot frontier p\nfrom task 'c-'", // joins the line `spin auto`, which is the default
             "@plot bar p\nfrom derived('a', 'b c')\nx a - (b - c)\ny (a + b) + c - -d",
             "@plot bar p\nfrom project\nx 0.1 + 1e300\ny 123456789012345",
             "@plot bar p\nfrom project\nx 1e999\ny 1.7976931348623157e308",
         }) {
        EXPECT_THAT(warningsOf(text), IsEmpty()) << text;
    }
}

TEST(PlotPrinter, WhatSubstitutionBringsInIsQuotedOrWarnedOf) {
    struct Case {
        std::string_view text;
        std::string_view value; ///< of [k]
        std::string_view line;
        std::vector<std::string> warnings;
    };
    const std::string p = "plot 'p' does not read back: ";
    const std::vector<Case> cases{
        {"%plot bar p\nx [k]\ny b", "label", "x (label)", {}},
        {"%plot bar p\nx [k]\ny b", "a b", "x a b", {p + "'a b' is no name"}},
        {"%plot bar p\nx [k](1)\ny b", "2", "x 2(1)", {p + "'2' is no name"}},
        {"%plot bar p\nx {{ t.[k] }}\ny b", "}}", "x {{ t.}} }}", {p + "'{{ t.}} }}' is no reference"}},
        {"%plot bar p\nx a unit [k]\ny b", "c d", "x a unit \"c d\"", {}},
        {"%plot bar p\nx a\ny b\noutput [k]",
         "x.svg",
         "output \"x.svg\"",
         {p + "the output 'x.svg' is not of the format 'png'"}},
        {"%plot bar p\nx a\ny b\noutput [k]", "", "output \"\"", {p + "the output is empty"}},
        {"%plot bar p\nx a\ny b\naxis x:\n  label [k]", "", "axis x:", {p + "'axis x:' has no body"}},
        {"%plot barrier p\npoint [k] value 1\npoint b value 1",
         "b",
         "point b value 1",
         {p + "duplicate barrier point id 'b'"}},
        {"%plot bar [k]\nx a\ny b",
         "",
         "x a",
         {"plot '' does not read back: the name is empty; plot name must not be empty"}},
    };
    for (const auto& [text, value, line, warnings] : cases) {
        auto plot = parsed(text);
        substitutePlot(plot, {{"k", std::string(value)}});
        const auto result = readBack(plot);
        EXPECT_NE(result.text.find("\n  " + std::string(line) + "\n"), std::string::npos) << result.text;
        EXPECT_EQ(result.warnings, warnings) << text;
        EXPECT_EQ(result.equal, warnings.empty()) << result.text;
    }
}

TEST(PlotPrinter, LongListsOfOddWordsCostNoMoreThanTheirLength) {
    std::string text = "@plot frontier p\nfrom task t\norbitals";
    for (int i = 0; i < 20000; ++i) {
        text += " \"a b\"";
    }
    EXPECT_TRUE(readBack(parsed(text)).lawful());
}

} // namespace
} // namespace morquill::taskdsl::plot
