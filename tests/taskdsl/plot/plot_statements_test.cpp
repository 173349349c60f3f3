// The statements that every kind knows, as they change the record. Their messages are the matter of
// plot_parser_test.cpp.

#include "fixtures/plot_fixture.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace morquill::taskdsl::plot {
namespace {

using ::testing::ElementsAre;

KindReading anyKind() {
    return KindReading(PlotKind::curve);
}

TEST(PlotStatements, FromNamesTheSourceOfTheData) {
    struct Row {
        const char* text;
        PlotSourceKind kind;
        const char* argument;
    };
    const Row rows[] = {
        {"from self", PlotSourceKind::self, ""},
        {"from project", PlotSourceKind::project, ""},
        {"from task 'my opt'", PlotSourceKind::task, "my opt"},
        {"from VARIANTS opt", PlotSourceKind::variants, "opt"},
        {"from matrix opt", PlotSourceKind::variants, "opt"},
        {"from derived energies.best", PlotSourceKind::derived, "energies.best"},
        {"from derived(energies.best)", PlotSourceKind::derived, "energies.best"},
        {"from derived('a.b.c')", PlotSourceKind::derived, "a.b.c"},
        {"from Derived(energies, best)", PlotSourceKind::derived, "energies.best"},
        {"from derived(energies, table=' best ')", PlotSourceKind::derived, "energies.best"},
    };
    for (const auto& [text, kind, argument] : rows) {
        KindReading reading = anyKind();
        reading.plot().sourceArgument = "old";
        reading.read(readFrom, text);
        EXPECT_EQ(reading.plot().sourceKind, kind) << text;
        EXPECT_EQ(reading.plot().sourceArgument, argument) << text;
        EXPECT_EQ(formatSpan(reading.plot().sourceSpan), "a.mq:5:3-5:20") << text;
    }
    EXPECT_EQ(anyKind().fault(readFrom, "from Files"), atStatement("unsupported plot source 'Files'"));
    EXPECT_EQ(anyKind().fault(readFrom, "from derived(energies)"),
              atStatement("derived() shorthand must be 'derive.table'"));
    EXPECT_EQ(anyKind().fault(readFrom, "from derived(a, b, table=c)"),
              atStatement("derived() table selector may be positional or named, not both"));
}

TEST(PlotStatements, AnAxisTakesItsBodyAndIsDeclaredOnce) {
    KindReading reading = anyKind();
    reading.read(readAxis, "axis right:", {"label 'Energy'", "unit kJ/mol", "scale log"});
    const auto& axis = reading.plot().y2Axis;
    EXPECT_TRUE(axis.declared);
    EXPECT_EQ(axis.label + "|" + axis.unit, "Energy|kJ/mol");
    EXPECT_EQ(axis.scale, AxisScale::log10);
    EXPECT_TRUE(axis.scaleDeclared);
    EXPECT_EQ(formatSpan(axis.span), "a.mq:5:3-5:20");
    EXPECT_FALSE(reading.plot().xAxis.declared);
    EXPECT_FALSE(reading.plot().yAxis.declared);
    EXPECT_EQ(reading.reading.next, 3U);
    EXPECT_EQ(reading.fault(readAxis, "axis y2:", {"label a"}),
              atStatement("axis 'y2' is declared more than once"));
    EXPECT_EQ(reading.fault(readAxis, "axis X:", {"label a", "label b"}),
              "a.mq:7:5-7:20: error: axis label is declared more than once");
    EXPECT_EQ(anyKind().fault(readAxis, "axis x:"),
              atStatement("axis declaration requires an indented body"));
    EXPECT_EQ(anyKind().fault(readAxis, "axis x"), atStatement("axis declaration must end with ':'"));
    EXPECT_EQ(anyKind().fault(readAxis, "axis z:", {"label a"}), atStatement("axis requires x, y, or y2"));
}

TEST(PlotStatements, ALegendHasPositionVisibilityAndOrder) {
    KindReading reading = anyKind();
    reading.read(readLegend, "legend :", {"position 'top left'", "visible off", "order b 'a'"});
    const auto& legend = reading.plot().legend;
    EXPECT_TRUE(legend.declared);
    EXPECT_EQ(legend.position, LegendPosition::topLeft);
    EXPECT_FALSE(legend.visible);
    EXPECT_THAT(legend.order, ElementsAre("b", "a"));
    EXPECT_EQ(reading.fault(readLegend, "legend :", {"visible on"}),
              atStatement("legend is declared more than once"));
    for (const char* yes : {"visible true", "visible YES", "visible on", "visible 1"}) {
        EXPECT_TRUE(anyKind().read(readLegend, "legend :", {yes}).plot().legend.visible) << yes;
    }
    EXPECT_EQ(anyKind().fault(readLegend, "legend :", {"visible maybe"}),
              "a.mq:6:5-6:20: error: legend visible requires true or false");
    EXPECT_EQ(anyKind().fault(readLegend, "legend :", {"order a-b"}),
              "a.mq:6:5-6:20: error: legend order entries must be simple series identifiers");
    EXPECT_EQ(anyKind().fault(readLegend, "legend below"),
              atStatement("legend declaration must be written as 'legend:'"));
}

TEST(PlotStatements, OutputFormatAndSize) {
    KindReading reading = anyKind();
    reading.read(readTitle, "title 'A: b'").read(readOutput, "output out/a b.svg");
    EXPECT_EQ(reading.plot().title, "A: b");
    EXPECT_EQ(reading.plot().outputPath, "out/a b.svg");
    EXPECT_FALSE(reading.reading.formatDeclared);
    reading.read(readFormat, "format PDF");
    EXPECT_EQ(reading.plot().format, PlotOutputFormat::pdf);
    EXPECT_TRUE(reading.reading.formatDeclared);
    EXPECT_FALSE(reading.plot().sizeDeclared);
    reading.read(readSize, "size 640 480");
    EXPECT_EQ(reading.plot().width, 640);
    EXPECT_EQ(reading.plot().height, 480);
    EXPECT_TRUE(reading.plot().sizeDeclared);

    KindReading terminal = anyKind();
    terminal.read(readTerminal, "terminal svg SIZE 300 200");
    EXPECT_EQ(terminal.plot().format, PlotOutputFormat::svg);
    EXPECT_TRUE(terminal.reading.formatDeclared);
    EXPECT_EQ(terminal.plot().width, 300);
    EXPECT_EQ(terminal.plot().height, 200);
    EXPECT_FALSE(anyKind().read(readTerminal, "terminal svg").plot().sizeDeclared);
    EXPECT_EQ(anyKind().fault(readTerminal, "terminal svg 300 200"),
              atStatement("terminal accepts '<format>' or '<format> size <width> <height>'"));
    EXPECT_EQ(anyKind().fault(readFormat, "format"), atStatement("format requires a format"));
    EXPECT_EQ(anyKind().fault(readTerminal, "terminal"), atStatement("terminal requires a format"));
    EXPECT_EQ(anyKind().fault(readSize, "size 640 wide"), atStatement("size values must be integers"));
    EXPECT_EQ(anyKind().fault(readSize, "size 640 99999999999"), atStatement("size values must be integers"));
}

TEST(PlotStatements, StyleThemeAndMissing) {
    KindReading reading = anyKind();
    reading.read(readStyle, "style linepoints")
        .read(readTheme, "theme 'Matrix'")
        .read(readMissing, "missing NaN");
    EXPECT_EQ(reading.plot().style, PlotStyle::linepoints);
    EXPECT_EQ(reading.plot().theme, PlotTheme::matrix);
    EXPECT_EQ(reading.plot().missing, MissingPolicy::nan);
    EXPECT_EQ(
        reading.fault(readTheme, "theme dark"),
        atStatement("unsupported plot theme 'dark'; supported themes are auto, scientific, report, matrix, "
                    "minimal, level"));
    EXPECT_EQ(reading.fault(readMissing, "missing"), atStatement("missing requires error, skip, or nan"));
}

TEST(PlotSources, EveryForm) {
    const std::vector<std::tuple<std::string, PlotSourceKind, std::string>> rows{
        {"from self", PlotSourceKind::self, ""},
        {"from SELF x", PlotSourceKind::self, ""},
        {"from task 'a b' c", PlotSourceKind::task, "a b"},
        {"from variants scan", PlotSourceKind::variants, "scan"},
        {"from matrix scan", PlotSourceKind::variants, "scan"},
        {"from project", PlotSourceKind::project, ""},
        {"from derived d.t", PlotSourceKind::derived, "d.t"},
        {"from derived (d.t)", PlotSourceKind::derived, "(d.t)"},
        {"from derived(d.t)", PlotSourceKind::derived, "d.t"},
        {"from Derived( \"d.t\" )", PlotSourceKind::derived, "d.t"},
        {"from derived(d, t)", PlotSourceKind::derived, "d.t"},
        {"from derived(' d ', table='t ')", PlotSourceKind::derived, "d.t"},
        {"from derived(d, NAME=t)", PlotSourceKind::derived, "d.t"},
        {"from derived(d, value=t)", PlotSourceKind::derived, "d.t"},
    };
    for (const auto& [statement, kind, argument] : rows) {
        const auto plot = parsedWith("scatter", statement);
        EXPECT_EQ(plot.sourceKind, kind) << statement;
        EXPECT_EQ(plot.sourceArgument, argument) << statement;
    }
}

TEST(PlotSources, AWrittenSourceOverridesSelf) {
    EXPECT_EQ(parsed("%plot frontier f\nfrom task sp").sourceKind, PlotSourceKind::task);
}

TEST(PlotAxes, EveryNameAndModifier) {
    const auto plot = parsedWith("curve", "axis x :\n  label \"d(C-C)\"\n  unit Angstrom\n  scale log\n"
                                          "axis RIGHT:\n  scale Linear\n"
                                          "axis 'left':\n  unit a b\n");
    EXPECT_TRUE(plot.xAxis.declared);
    EXPECT_EQ(plot.xAxis.label, "d(C-C)");
    EXPECT_EQ(plot.xAxis.unit, "Angstrom");
    EXPECT_EQ(plot.xAxis.scale, AxisScale::log10);
    EXPECT_TRUE(plot.xAxis.scaleDeclared);
    EXPECT_EQ(formatSpan(plot.xAxis.span), "a.mq:5:1-5:8");
    EXPECT_TRUE(plot.y2Axis.declared);
    EXPECT_EQ(plot.y2Axis.scale, AxisScale::linear);
    EXPECT_TRUE(plot.y2Axis.scaleDeclared);
    EXPECT_EQ(plot.yAxis.unit, "a b");
    EXPECT_FALSE(plot.yAxis.scaleDeclared);
}

TEST(PlotLegend, Forms) {
    const auto plot = parsedWith(
        "curve", "series a = b\nseries c = d\nLEGEND:\n  position Right Top\n  visible off\n  order c 'a'\n");
    EXPECT_TRUE(plot.legend.declared);
    EXPECT_FALSE(plot.legend.visible);
    EXPECT_EQ(plot.legend.position, LegendPosition::topRight);
    EXPECT_THAT(plot.legend.order, ElementsAre("c", "a"));
    EXPECT_EQ(parsedWith("bar", "legend :\n  position \" outside right \"").legend.position,
              LegendPosition::outsideRight);
    for (const std::string_view text : {"true", "YES", "on", "1"}) {
        EXPECT_TRUE(parsedWith("bar", "legend:\n visible " + std::string(text)).legend.visible) << text;
    }
    for (const std::string_view text : {"false", "no", "off", "0"}) {
        EXPECT_FALSE(parsedWith("bar", "legend:\n visible " + std::string(text)).legend.visible) << text;
    }
}

TEST(PlotOutput, PathFormatAndSize) {
    const std::vector<std::tuple<std::string, std::string, PlotOutputFormat>> rows{
        {"", "Results/Plots/p.png", PlotOutputFormat::png},
        {"format SVG", "Results/Plots/p.svg", PlotOutputFormat::svg},
        {"output a.PDF", "a.PDF", PlotOutputFormat::pdf},
        {"output \"my plots/a.svg\"", "my plots/a.svg", PlotOutputFormat::svg},
        {"output a.unknown", "a.unknown", PlotOutputFormat::png},
        {"output a.svg/c", "a.svg/c", PlotOutputFormat::png},
        {"output a.svg\\c", "a.svg\\c", PlotOutputFormat::png},
        {"output a.svg\nformat svg", "a.svg", PlotOutputFormat::svg},
        {"output a.dat\nformat pdf", "a.dat", PlotOutputFormat::pdf},
        {"output a.", "a.", PlotOutputFormat::png},
        {"output \"\"", "Results/Plots/p.png", PlotOutputFormat::png},
        {"terminal dumb", "Results/Plots/p.dumb", PlotOutputFormat::dumb},
        {"format pdf extra", "Results/Plots/p.pdf", PlotOutputFormat::pdf},
    };
    for (const auto& [statement, path, format] : rows) {
        const auto plot = parsedWith("bar", statement);
        EXPECT_EQ(plot.outputPath, path) << statement;
        EXPECT_EQ(plot.format, format) << statement;
    }
    const auto chemdraw = parsedWith("frontier", "output a.chemdraw");
    EXPECT_EQ(chemdraw.format, PlotOutputFormat::cdxml);

    const auto sized = parsedWith("bar", "size 800x600 700");
    EXPECT_EQ(sized.width, 800);
    EXPECT_EQ(sized.height, 700);
    EXPECT_TRUE(sized.sizeDeclared);
    const auto terminal = parsedWith("bar", "terminal pdf SIZE 10 20");
    EXPECT_EQ(terminal.width, 10);
    EXPECT_EQ(terminal.height, 20);
    EXPECT_TRUE(terminal.sizeDeclared);
    EXPECT_EQ(terminal.format, PlotOutputFormat::pdf);
    EXPECT_EQ(faultOf("@plot bar p\nfrom self\nx a\ny b\nformat png\noutput a.svg"),
              "a.mq:1:1-1:12: error: plot output extension does not match the declared format");
}

TEST(PlotOutput, StyleThemeAndMissing) {
    const auto plot = parsedWith("bar", "style LINE more\ntheme \"Sci\"\nmissing NaN");
    EXPECT_EQ(plot.style, PlotStyle::lines);
    EXPECT_EQ(plot.theme, PlotTheme::scientific);
    EXPECT_EQ(plot.missing, MissingPolicy::nan);
}

} // namespace
} // namespace morquill::taskdsl::plot
