#include "taskdsl/plot/plot_parser.h"

#include "fixtures/plot_fixture.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace morquill::taskdsl::plot {
namespace {

TEST(PlotHeader, NameKindAndDefaults) {
    const auto plot = parsed("%plot BarChart\nx a\ny b");
    EXPECT_EQ(plot.kind, PlotKind::bar);
    EXPECT_EQ(plot.name, "bar");
    EXPECT_EQ(plot.id, "opt:bar");
    EXPECT_EQ(plot.ownerTask, "opt");
    EXPECT_EQ(plot.scope, PlotScope::task);
    EXPECT_EQ(plot.sourceKind, PlotSourceKind::self);
    EXPECT_EQ(plot.style, PlotStyle::boxes);
    EXPECT_EQ(plot.outputPath, "Results/Plots/[taskname]_bar.png");
    EXPECT_EQ(plot.width, 1000);
    EXPECT_EQ(plot.height, 700);
    EXPECT_FALSE(plot.sizeDeclared);
    EXPECT_EQ(formatSpan(plot.span), "a.mq:1:1-1:15");
}

TEST(PlotHeader, FileLevelPlotsHaveNoOwnerAndNoSource) {
    const auto plot = parsed("@plot \"fmo\" 'my plot' and more\nfrom task opt");
    EXPECT_EQ(plot.kind, PlotKind::frontier);
    EXPECT_EQ(plot.name, "my plot");
    EXPECT_EQ(plot.id, "my plot");
    EXPECT_EQ(plot.outputPath, "Results/Plots/my plot.png");
    EXPECT_EQ(plot.sourceKind, PlotSourceKind::task);
    EXPECT_EQ(plot.sourceArgument, "opt");
    EXPECT_EQ(formatSpan(plot.sourceSpan), "a.mq:2:1-2:13");
}

TEST(PlotHeader, ATaskPlotWithoutOwnerIsNamedByItself) {
    PlotBlock block = blockOf("%plot frontier fmo");
    block.ownerTask.clear();
    EXPECT_EQ(parsePlot(block).id, "fmo");
}

TEST(PlotHeader, Faults) {
    EXPECT_EQ(faultOf("@plot\n x"), "a.mq:1:1-1:6: error: %plot/@plot requires a kind");
    EXPECT_EQ(
        faultOf("@plot pie p"),
        "a.mq:1:1-1:12: error: unknown plot kind 'pie'; supported kinds are barrier, convergence, curve, "
        "spectrum, scatter, heatmap, histogram, bar, errorbar, frontier, excited");
    // The header comes before the reader, the reader before the first statement.
    EXPECT_EQ(faultOf("@plot pie p\n\"").substr(0, 14), "a.mq:1:1-1:12:");
    EXPECT_EQ(faultOf("@plot bar p\nwrong\n)"), "a.mq:3:1: error: unmatched ')' in plot statement");
    EXPECT_EQ(faultOf("@plot frontier \"\"\nfrom task a"),
              "a.mq:1:1-1:18: error: plot '': plot name must not be empty");
}

TEST(PlotStatementTable, UnknownWordsAreEchoedInLowerCase) {
    EXPECT_EQ(faultOf("@plot bar p\n  Foo bar"), "a.mq:2:3-2:9: error: unknown plot statement 'foo'");
    EXPECT_EQ(messageWith("bar", "legend: x"), "unknown plot statement 'legend:'");
    EXPECT_EQ(messageWith("barrier", "label x"), "unknown plot statement 'label'");
    EXPECT_EQ(messageWith("barrier", "value 1"), "unknown plot statement 'value'");
    EXPECT_EQ(messageWith("bar", "\x01"), "unknown plot statement '\x01'");
    EXPECT_EQ(messageWith("bar", "\f"), "unknown plot statement ''");
    EXPECT_EQ(messageWith("bar", "\"x\" a"), "unknown plot statement '\"x\"'");
}

/// A statement word, with a text that is fine where it is valid, the kinds it is valid in and the refusal.
struct KindRow {
    std::vector<std::string_view> statements;
    std::vector<std::string_view> validIn;
    std::string_view refusal;
};

TEST(PlotStatementTable, StatementsAreRefusedInTheWrongKind) {
    const std::vector<KindRow> rows{
        {{"point c value 1"}, {"barrier"}, "point is only valid in a barrier plot"},
        {{"column c", "system c"},
         {"frontier", "excited"},
         "column is only valid in a frontier or excited-state level plot"},
        {{"orbitals homo", "orbital homo"}, {"frontier"}, "orbitals is only valid in a frontier plot"},
        {{"spin both"}, {"frontier"}, "spin is only valid in a frontier plot"},
        {{"roots 1", "root 1", "states 1", "state 1"},
         {"excited"},
         "roots is only valid in an excited-state level plot"},
        {{"arrow a 1 to a 2", "transition a 1 to a 2"},
         {"excited"},
         "arrow is only valid in an excited-state level plot"},
        {{"z c"}, {"heatmap"}, "z is only valid in a heatmap plot"},
        {{"yerr c", "yerror c", "error c"}, {"errorbar"}, "yerr is only valid in an errorbar plot"},
        {{"intensity c"}, {"spectrum"}, "intensity is only valid in a spectrum plot"},
        {{"series a = b"},
         {"convergence", "curve"},
         "named series are currently supported only in convergence and curve plots"},
        {{"threshold a value 1"}, {"convergence"}, "threshold is only valid in a convergence plot"},
        {{"relative first"}, {"barrier", "curve"}, "relative is not valid in a convergence plot"},
        {{"unit eV"},
         {"barrier", "frontier", "excited"},
         "top-level unit is only valid in a barrier, frontier, or excited-state level plot"},
        {{"mode sticks"}, {"spectrum"}, "mode is only valid in a spectrum plot"},
        {{"broaden gaussian 10"}, {"spectrum"}, "broaden is only valid in a spectrum plot"},
        {{"range 0 1"}, {"spectrum", "histogram"}, "range is only valid in a spectrum or histogram plot"},
        {{"bins 5"}, {"histogram"}, "bins is only valid in a histogram plot"},
        {{"density"}, {"histogram"}, "density is only valid in a histogram plot"},
        {{"limit 3"}, {"bar"}, "limit is only valid in a bar plot"},
        {{"diagonal"}, {"scatter"}, "diagonal is only valid in a scatter plot"},
        {{"fit linear"}, {"scatter"}, "fit is only valid in a scatter plot"},
        {{"metrics r2"}, {"scatter"}, "metrics is only valid in a scatter plot"},
    };
    for (const auto& row : rows) {
        for (const auto statement : row.statements) {
            for (const auto kind : allKinds) {
                const bool valid =
                    std::find(row.validIn.begin(), row.validIn.end(), kind) != row.validIn.end();
                EXPECT_EQ(messageWith(kind, statement), valid ? "no fault" : row.refusal)
                    << kind << ": " << statement;
            }
        }
    }
}

TEST(PlotStatementTable, XAndYAreRefusedByKindGroups) {
    const std::vector<std::tuple<std::string_view, std::string_view, std::string_view>> rows{
        {"x", "barrier frontier excited", "x is not valid in a barrier or frontier plot"},
        {"y", "barrier frontier excited", "y is not valid in a barrier or frontier plot"},
        {"y", "histogram", "histogram plot uses x and bins; y is not valid"},
        {"y", "scatter", "scatter plot accepts exactly one y expression"},
        {"x", "convergence curve spectrum scatter heatmap histogram bar errorbar", "no fault"},
        {"y", "convergence curve spectrum heatmap bar errorbar", "no fault"},
    };
    for (const auto& [word, kinds, message] : rows) {
        for (const auto kind : splitBlank(kinds)) {
            EXPECT_EQ(messageWith(kind, std::string(word) + " c"), message) << kind;
        }
    }
}

TEST(PlotStatementTable, SortIsPerKind) {
    for (const auto kind : allKinds) {
        const bool valid = kind == "curve" || kind == "spectrum" || kind == "errorbar";
        const bool bar = kind == "bar";
        EXPECT_EQ(messageWith(kind, "sort by x"),
                  valid ? "no fault"
                  : bar ? "bar sort supports only 'sort by y'"
                        : "sort is only valid in a curve, spectrum, bar, or errorbar plot")
            << kind;
    }
}

TEST(PlotStatementTable, WrongKindComesBeforeWrongWords) {
    EXPECT_EQ(messageWith("scatter", "relative"), "relative is not valid in a convergence plot");
    EXPECT_EQ(messageWith("scatter", "relative to"), "relative is not valid in a convergence plot");
    EXPECT_EQ(messageWith("bar", "bins"), "bins is only valid in a histogram plot");
    // Only a named series is read before it is refused.
    EXPECT_EQ(messageWith("bar", "series a"), "series requires '<id> = <expression>'");
    EXPECT_EQ(messageWith("bar", "series a = b:"),
              "series declaration ending with ':' requires an indented body");
}

TEST(PlotStatementTable, EveryMessageOfAStatement) {
    const std::string style = "unsupported plot style 'thick'";
    const std::string formats = "terminal accepts '<format>' or '<format> size <width> <height>'";
    const std::string shape = "derived source must be derived(derive.table) or derived(derive, table=table)";
    const std::vector<std::tuple<std::string, std::string, std::string>> rows{
        // from
        {"bar", "from", "from requires a source"},
        {"bar", "from task", "from task requires a task name"},
        {"bar", "from variants", "from variants requires a template task name"},
        {"bar", "from matrix", "from variants requires a template task name"},
        {"bar", "from derived", "from derived requires a derive.table selector"},
        {"bar", "from Moon a", "unsupported plot source 'Moon'"},
        {"bar", "from derived(a.b) + 1", shape},
        {"bar", "from derived(a.b)(c)", "unexpected token '('"},
        {"bar", "from derived()", "derived() requires a derive selector"},
        {"bar", "from derived(table=a)", "derived() requires a derive selector"},
        {"bar", "from derived(a, column=b)", "unsupported derived() selector 'column'"},
        {"bar", "from derived(a, b, table=c)",
         "derived() table selector may be positional or named, not both"},
        {"bar", "from derived(a, b, c)", shape},
        {"bar", "from derived(1)", "derived() selector must be an identifier or string literal"},
        {"bar", "from derived(a, 1)", "derived() table selector must be an identifier or string literal"},
        {"bar", "from derived(a, name=f(b))",
         "derived() table selector must be an identifier or string literal"},
        {"bar", "from derived('', b)", "derived source must be 'derive.table'"},
        {"bar", "from derived(a, ' ')", "derived source must be 'derive.table'"},
        {"bar", "from derived(a)", "derived() shorthand must be 'derive.table'"},
        {"bar", "from derived('.a')", "derived() shorthand must be 'derive.table'"},
        {"bar", "from derived(a.)", "derived() shorthand must be 'derive.table'"},
        // axis and legend
        {"bar", "axis x", "axis declaration must end with ':'"},
        {"bar", "axis", "axis declaration must end with ':'"},
        {"bar", "axis :", "axis requires x, y, or y2"},
        {"bar", "axis z:", "axis requires x, y, or y2"},
        {"bar", "axis x:", "axis declaration requires an indented body"},
        {"bar", "axis x:\n label a\naxis X:\n label b", "axis 'X' is declared more than once"},
        {"bar", "axis y:\n label a\naxis left:\n label b", "axis 'left' is declared more than once"},
        {"bar", "axis x:\n label a\n label b", "axis label is declared more than once"},
        {"bar", "axis x:\n label", "axis label requires text"},
        {"bar", "axis x:\n label \"\"", "axis label cannot be empty"},
        {"bar", "axis x:\n unit a\n unit b", "axis unit is declared more than once"},
        {"bar", "axis x:\n unit", "axis unit requires a value"},
        {"bar", "axis x:\n unit ''", "axis unit cannot be empty"},
        {"bar", "axis x:\n scale log\n scale log", "axis scale is declared more than once"},
        {"bar", "axis x:\n scale", "axis scale requires linear or log10"},
        {"bar", "axis x:\n scale ln", "axis scale requires linear or log10"},
        {"bar", "axis x:\n Color red", "unsupported axis modifier 'color'"},
        {"bar", "legend", "legend declaration must be written as 'legend:'"},
        {"bar", "legend x:", "legend declaration must be written as 'legend:'"},
        {"bar", "legend:", "legend declaration requires an indented body"},
        {"bar", "legend:\n visible on\nlegend:\n visible on", "legend is declared more than once"},
        {"bar", "legend:\n position auto\n position auto", "legend position is declared more than once"},
        {"bar", "legend:\n visible on\n visible on", "legend visibility is declared more than once"},
        {"curve", "series a = b\nlegend:\n order a\n order a", "legend order is declared more than once"},
        {"bar", "legend:\n position middle",
         "legend position requires auto, top right, top left, bottom right, bottom left, outside right, or "
         "bottom"},
        {"bar", "legend:\n position",
         "legend position requires auto, top right, top left, bottom right, bottom left, outside right, or "
         "bottom"},
        {"bar", "legend:\n visible maybe", "legend visible requires true or false"},
        {"bar", "legend:\n visible", "legend visible requires true or false"},
        {"curve", "legend:\n order", "legend order requires at least one named series id"},
        {"curve", "legend:\n order a-b", "legend order entries must be simple series identifiers"},
        {"bar", "legend:\n Title x", "unsupported legend modifier 'title'"},
        // output
        {"bar", "output", "output requires a path"},
        {"bar", "format", "format requires a format"},
        {"bar", "terminal", "terminal requires a format"},
        {"bar", "format GIF", "unsupported plot format 'GIF'"},
        {"bar", "terminal gif size 1 2", "unsupported plot format 'gif'"},
        {"bar", "terminal png size 1", formats},
        {"bar", "terminal png 1 2 3", formats},
        {"bar", "terminal png size 1 2 3", formats},
        {"bar", "terminal png size a 2", "terminal size values must be integers"},
        {"bar", "size", "size requires width and height"},
        {"bar", "size 1 2 3", "size requires width and height"},
        {"bar", "size 1 b", "size values must be integers"},
        {"bar", "size 99999999999 1", "size values must be integers"},
        {"bar", "format png\noutput a.svg", "plot output extension does not match the declared format"},
        {"bar", "terminal png\noutput a.svg", "plot output extension does not match the declared format"},
        {"bar", "style", "style requires a value"},
        {"bar", "style thick", style},
        {"bar", "theme", "theme requires a value"},
        {"bar", "theme dark",
         "unsupported plot theme 'dark'; supported themes are auto, scientific, report, matrix, minimal, "
         "level"},
        {"bar", "missing", "missing requires error, skip, or nan"},
        {"bar", "missing drop", "missing requires error, skip, or nan"},
        // points
        {"barrier", "point", "point requires an id"},
        {"barrier", "point c 5 value 1", "unexpected text after barrier point id: '5'"},
        {"barrier", "point c value", "point value requires an expression"},
        {"barrier", "point c value label d", "point value requires an expression"},
        {"barrier", "point c\nvalue", "point value requires an expression"},
        {"barrier", "point c\nvalue +", "plot statement ends with a continuation operator"},
        {"barrier", "point c value )(", "expected a number, identifier, string, function call, or '('"},
        // columns
        {"frontier", "column", "column requires an id"},
        {"frontier", "column a b", "unexpected text after frontier column id: 'b'"},
        {"excited", "column a b", "unexpected text after frontier column id: 'b'"},
        {"frontier", "column a multiplicity triplet",
         "unexpected text after frontier column id: 'multiplicity triplet'"},
        {"frontier", "column a task", "column task requires a task name"},
        {"excited", "column a multiplicity quintet",
         "column multiplicity must be singlet, doublet, triplet, quartet, or a positive integer"},
        {"excited", "column a multiplicity",
         "column multiplicity must be singlet, doublet, triplet, quartet, or a positive integer"},
        {"frontier", "orbitals", "orbitals requires at least one orbital selector"},
        {"frontier", "spin gamma", "frontier spin must be auto, alpha, beta, or both"},
        {"frontier", "spin \"\"", "frontier spin must be auto, alpha, beta, or both"},
        {"frontier", "unit", "unit requires a value"},
        {"excited", "roots", "roots requires at least one root selector or all"},
        {"excited", "roots 0", "roots requires a positive integer root"},
        {"excited", "roots 1 2x", "roots requires a positive integer root"},
        {"excited", "roots ++1", "roots requires a positive integer root"},
        {"excited", "roots '+'", "roots requires a positive integer root"},
        {"excited", "roots +0", "roots requires a positive integer root"},
        {"excited", "roots -1", "roots requires a positive integer root"},
        {"excited", "roots 99999999999", "roots requires a positive integer root"},
        // arrows
        {"excited", "arrow", "arrow requires a source and target"},
        {"excited", "arrow from", "arrow is missing source column"},
        {"excited", "arrow ''", "arrow source column must not be empty"},
        {"excited", "arrow a", "arrow is missing source root"},
        {"excited", "arrow a root", "arrow is missing source root"},
        {"excited", "arrow a root x", "arrow source requires a positive integer root"},
        {"excited", "arrow a s 0", "arrow source requires a positive integer root"},
        {"excited", "arrow a 1", "arrow requires 'to' between source and target"},
        {"excited", "arrow a 1 b 1", "arrow requires 'to' between source and target"},
        {"excited", "arrow a 1 to", "arrow target is missing"},
        {"excited", "arrow a 1 to \"\"", "arrow target column must not be empty"},
        {"excited", "arrow a 1 to b", "arrow target requires root <n>, first lower, or first higher"},
        {"excited", "arrow a 1 to b root", "arrow is missing target root"},
        {"excited", "arrow a 1 to b state x", "arrow target requires a positive integer root"},
        {"excited", "arrow a 1 to b x", "arrow target requires a positive integer root"},
        {"excited", "arrow a 1 to b first", "arrow first target requires lower or higher"},
        {"excited", "arrow a 1 to b first best", "arrow first target must be lower or higher"},
        {"excited", "arrow a 1 to b 1 style", "arrow style requires solid or dashed"},
        {"excited", "arrow a 1 to b 1 style bold", "arrow style must be solid or dashed"},
        {"excited", "arrow a 1 to b 1 Bold", "unexpected arrow option 'Bold'"},
        // series and their modifiers
        {"bar", "x", "x statement requires an expression"},
        {"bar", "X label a", "x statement requires an expression"},
        {"spectrum", "intensity", "intensity statement requires an expression"},
        {"errorbar", "YError", "yerror statement requires an expression"},
        {"errorbar", "error label a", "error statement requires an expression"},
        {"heatmap", "z", "z statement requires an expression"},
        {"curve", "series a =", "series statement requires an expression"},
        {"curve", "series a = :", "series statement requires an expression"},
        {"curve", "series", "series requires '<id> = <expression>'"},
        {"curve", "series f(a=b)", "series requires '<id> = <expression>'"},
        {"curve", "series {{ a.b=c }}", "series requires '<id> = <expression>'"},
        {"curve", "series =", "series id must match [A-Za-z_][A-Za-z0-9_]*"},
        {"curve", "series 1a = b", "series id must match [A-Za-z_][A-Za-z0-9_]*"},
        {"curve", "series a b = c", "series id must match [A-Za-z_][A-Za-z0-9_]*"},
        {"curve", "series a = b:", "series declaration ending with ':' requires an indented body"},
        {"curve", "series a = b:\n  Color red", "unsupported series modifier 'color'"},
        {"curve", "y a ?", "unexpected character '?' in plot expression"},
        {"curve", "y a label", "label requires text"},
        {"curve", "y a unit", "unit option requires a value"},
        {"curve", "y a scale", "series scale requires linear or log10"},
        {"curve", "y a scale ln", "series scale requires linear or log10"},
        {"curve", "y e scale log label a scale ln", "series scale requires linear or log10"},
        {"curve", "y a axis", "axis option requires y or y2"},
        {"curve", "y a axis Z", "unsupported axis 'Z'"},
        {"curve", "y a style", "style requires a value"},
        {"curve", "y a style thick", style},
        {"curve", "series a = b:\n style", "style requires a value"},
        // thresholds
        {"convergence", "threshold", "threshold requires a property expression"},
        {"convergence", "threshold value 1", "threshold requires a property expression"},
        {"convergence", "threshold a value", "threshold value must be numeric"},
        {"convergence", "threshold a value b", "threshold value must be numeric"},
        {"convergence", "threshold a value 1 unit", "threshold unit requires a value"},
        {"convergence", "threshold a value 1 axis", "threshold axis requires y or y2"},
        {"convergence", "threshold a value 1 axis x", "threshold axis requires y or y2"},
        {"convergence", "threshold a label b", "threshold requires 'value <number>'"},
        // the rest of the data statements
        {"curve", "relative", "relative requires a mode"},
        {"curve", "relative Last", "unsupported relative mode 'last'"},
        {"barrier", "relative to", "relative to requires a point id"},
        {"curve", "relative to a",
         "curve plots support only 'relative first', 'relative minimum', or 'relative none'"},
        {"curve", "sort", "only 'sort by x' is supported"},
        {"curve", "sort by y", "only 'sort by x' is supported"},
        {"spectrum", "sort by y", "spectrum sort accepts 'by x' or 'none'"},
        {"errorbar", "sort none", "errorbar sort supports only 'sort by x'"},
        {"bar", "sort", "bar sort requires 'by y', 'y desc', or 'none'"},
        {"bar", "sort by", "bar sort supports only 'sort by y'"},
        {"bar", "sort desc", "bar sort supports only 'sort by y'"},
        {"bar", "sort y up", "bar sort direction must be asc or desc"},
        {"spectrum", "mode", "spectrum mode must be sticks, broadened, sticks+broadened, or sampled"},
        {"spectrum", "mode lines", "spectrum mode must be sticks, broadened, sticks+broadened, or sampled"},
        {"spectrum", "broaden", "broaden requires a function such as gaussian"},
        {"spectrum", "broaden Lorentzian 5", "unsupported spectrum broadening function 'lorentzian'"},
        {"spectrum", "broaden gaussian", "broaden requires fwhm <number>"},
        {"spectrum", "broaden gaussian unit cm-1 x", "unexpected broaden option 'x'"},
        {"spectrum", "broaden gaussian fwhm", "broaden fwhm requires a numeric value"},
        {"spectrum", "broaden gaussian fwhm wide", "broaden fwhm requires a numeric value"},
        {"spectrum", "broaden gaussian 5 unit", "broaden unit requires a value"},
        {"spectrum", "range 1", "range requires two numeric bounds"},
        {"spectrum", "range 1 b", "range requires two numeric bounds"},
        {"histogram", "range 1 2 3", "range requires two numeric bounds"},
        {"histogram", "bins", "bins requires one integer value"},
        {"histogram", "bins 1 2", "bins requires one integer value"},
        {"histogram", "bins many", "bins must be an integer"},
        {"histogram", "bins 99999999999999999999", "bins must be an integer"},
        {"histogram", "bins 0", "bins must be positive"},
        {"histogram", "density maybe", "density accepts true or false"},
        {"bar", "limit", "limit requires one integer value"},
        {"bar", "limit 1 2", "limit requires one integer value"},
        {"bar", "limit x", "limit must be an integer"},
        {"bar", "limit -1", "limit must be positive"},
        {"scatter", "diagonal y=2*x", "diagonal accepts no value or y=x"},
        {"scatter", "fit", "fit requires linear or none"},
        {"scatter", "fit cubic", "scatter fit supports only linear or none"},
        {"scatter", "metrics r2 Bias", "unsupported scatter metric 'bias'"},
    };
    for (const auto& [kind, statement, expected] : rows) {
        EXPECT_EQ(messageWith(kind, statement), expected) << kind << ": " << statement;
    }
}

TEST(PlotStatementTable, FaultsStandWhereTheStatementStands) {
    EXPECT_EQ(faultOf("@plot curve c\n  series a = b +\n\tc:\n   axis z"),
              "a.mq:4:4-4:9: error: unsupported axis 'z'");
    EXPECT_EQ(faultOf("@plot curve c\n  axis x:\n    scale\n"),
              "a.mq:3:5-3:9: error: axis scale requires linear or log10");
    EXPECT_EQ(faultOf("@plot curve c\n\tlegend:\n\t\tvisible\n"),
              "a.mq:3:9: error: legend visible requires true or false");
}

TEST(PlotChecks, TheFirstFindingEndsTheParse) {
    EXPECT_EQ(faultOf("@plot barrier b\n  point a\n  point a"),
              "a.mq:2:3-2:9: error: plot 'b': barrier point 'a' has no value expression");
    EXPECT_EQ(faultOf("@plot barrier b\n  point a"),
              "a.mq:1:1-1:16: error: plot 'b': barrier plot requires at least two "
              "points");
}

TEST(PlotBytes, AnyByteIsReadByName) {
    EXPECT_EQ(parsedWith("bar", "title \xC3\xA9t\xC3\xA9").title, "\xC3\xA9t\xC3\xA9");
    EXPECT_EQ(parsedWith("bar", std::string("title a\0b", 9)).title, std::string("a\0b", 3));
    EXPECT_EQ(parsedWith("bar", "title a\\").title, "a\\");
    EXPECT_EQ(parsedWith("bar", "title a {").title, "a {");
    EXPECT_EQ(messageWith("frontier", "unit \"\""), "plot 'p': frontier plot requires a non-empty unit");
}

} // namespace
} // namespace morquill::taskdsl::plot
