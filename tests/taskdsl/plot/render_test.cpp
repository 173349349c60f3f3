#include "taskdsl/plot/render.h"

#include "fixtures/plot_fixture.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace morquill::taskdsl::plot {
namespace {

/// What was written, and what it prints as; that must print as itself.
struct Rendered {
    std::string_view written;
    std::string_view expected;
};

const Rendered renderedRows[] = {
    {"@plot barrier path\n"
     "title \"Path\"\n"
     "relative to r\n"
     "unit kJ/mol\n"
     "point r value energy(r)\n"
     "point ts\n"
     "label \"TS \\\"1\\\"\"\n"
     "value energy(ts)-(a-b)\n"
     "from project\n",
     "@plot barrier path\n"
     "  from project\n"
     "  point r value energy(r)\n"
     "  point ts label \"TS \\\"1\\\"\" value energy(ts) - (a - b)\n"
     "  relative to r\n"
     "  unit kJ/mol\n"
     "  title \"Path\"\n"
     "  output \"Results/Plots/path.png\"\n"
     "  format png\n"
     "@end\n"},
    {"%plot barrier\n"
     "relative min\n"
     "point a value 1\n"
     "point b value 1e-5\n",
     "%plot barrier barrier\n"
     "  point a value 1\n"
     "  point b value 1e-05\n"
     "  relative minimum\n"
     "  unit kcal/mol\n"
     "  output \"Results/Plots/[taskname]_barrier.png\"\n"
     "  format png\n"},
    {"@plot convergence opt\n"
     "threshold max_force value 4.5e-4 axis left\n"
     "threshold max_step value 1.8e-3 label step unit a.u. axis right\n"
     "y energy axis right label E\n"
     "series f = force log unit a.u. style line axis y\n"
     "x step\n"
     "from task opt\n"
     "legend:\n"
     "  order f\n"
     "  position bottom left\n"
     "axis right:\n"
     "  unit a.u.\n"
     "axis x:\n"
     "  scale linear\n"
     "  label \"Step\"\n"
     "axis y:\n"
     "  scale log\n"
     "style linespoints\n"
     "theme sci\n"
     "missing skip\n"
     "terminal svg size 800 600\n",
     "@plot convergence opt\n"
     "  from task opt\n"
     "  x step\n"
     "  y energy label \"E\" axis y2\n"
     "  series f = force unit a.u. log axis y style lines\n"
     "  threshold max_force value 0.00045\n"
     "  threshold max_step value 0.0018 label \"step\" unit a.u. axis y2\n"
     "  axis x:\n"
     "    label \"Step\"\n"
     "    scale linear\n"
     "  axis y:\n"
     "    scale log10\n"
     "  axis y2:\n"
     "    unit \"a.u.\"\n"
     "  legend:\n"
     "    position bottom left\n"
     "    visible true\n"
     "    order f\n"
     "  style linepoints\n"
     "  theme scientific\n"
     "  missing skip\n"
     "  output \"Results/Plots/opt.svg\"\n"
     "  format svg\n"
     "  size 800 600\n"
     "@end\n"},
    {"@plot curve scan\n"
     "from matrix scan\n"
     "x distance unit Angstrom\n"
     "series e = energy:\n"
     "  scale log10\n"
     "relative first\n"
     "sort x\n"
     "legend:\n"
     "  visible no\n",
     "@plot curve scan\n"
     "  from variants scan\n"
     "  x distance unit Angstrom\n"
     "  series e = energy log\n"
     "  relative first\n"
     "  sort by x\n"
     "  legend:\n"
     "    visible false\n"
     "  output \"Results/Plots/scan.png\"\n"
     "  format png\n"
     "@end\n"},
    {"%plot spectrum ir\n"
     "intensity ir_intensity\n"
     "x frequency * 0.96\n"
     "mode overlay\n"
     "broaden gaussian 15 unit cm-1\n"
     "range 4e2 4000\n"
     "sort none\n",
     "%plot spectrum ir\n"
     "  x frequency * 0.96\n"
     "  y ir_intensity\n"
     "  mode sticks+broadened\n"
     "  broaden gaussian fwhm 15 unit cm-1\n"
     "  range 400 4000\n"
     "  sort none\n"
     "  output \"Results/Plots/[taskname]_ir.png\"\n"
     "  format png\n"},
    {"%plot spectrum uv\n"
     "x e\n"
     "y f\n",
     "%plot spectrum uv\n"
     "  x e\n"
     "  y f\n"
     "  mode sticks\n"
     "  output \"Results/Plots/[taskname]_uv.png\"\n"
     "  format png\n"},
    {"@plot correlation fit\n"
     "from derived(d, t)\n"
     "metrics R2 mae\n"
     "fit linear\n"
     "diagonal\n"
     "y b\n"
     "x a\n",
     "@plot scatter fit\n"
     "  from derived(\"d.t\")\n"
     "  x a\n"
     "  y b\n"
     "  diagonal y=x\n"
     "  fit linear\n"
     "  metrics r2 mae\n"
     "  output \"Results/Plots/fit.png\"\n"
     "  format png\n"
     "@end\n"},
    {"@plot matrixmap grid\n"
     "from self\n"
     "z c label \"C\"\n"
     "y b\n"
     "x a\n"
     "missing nan\n",
     "@plot heatmap grid\n"
     "  from self\n"
     "  x a\n"
     "  y b\n"
     "  z c label \"C\"\n"
     "  missing nan\n"
     "  output \"Results/Plots/grid.png\"\n"
     "  format png\n"
     "@end\n"},
    {"@plot hist h\n"
     "from project\n"
     "x a\n"
     "density\n"
     "range -1.5 1.5\n",
     "@plot histogram h\n"
     "  from project\n"
     "  x a\n"
     "  bins 30\n"
     "  range -1.5 1.5\n"
     "  density true\n"
     "  output \"Results/Plots/h.png\"\n"
     "  format png\n"
     "@end\n"},
    {"@plot bar b\n"
     "from project\n"
     "limit 5\n"
     "sort y\n"
     "x a\n"
     "y b\n"
     "output \"my \\\\ \\\"b\\\".pdf\"\n",
     "@plot bar b\n"
     "  from project\n"
     "  x a\n"
     "  y b\n"
     "  sort by y desc\n"
     "  limit 5\n"
     "  style boxes\n"
     "  output \"my \\\\ \\\"b\\\".pdf\"\n"
     "  format pdf\n"
     "@end\n"},
    {"@plot bar b\n"
     "from project\n"
     "sort y asc\n"
     "style points\n"
     "x a\n"
     "y b\n",
     "@plot bar b\n"
     "  from project\n"
     "  x a\n"
     "  y b\n"
     "  sort by y asc\n"
     "  style points\n"
     "  output \"Results/Plots/b.png\"\n"
     "  format png\n"
     "@end\n"},
    {"@plot errorbars e\n"
     "from project\n"
     "sort by x\n"
     "error c\n"
     "y b\n"
     "x a\n",
     "@plot errorbar e\n"
     "  from project\n"
     "  x a\n"
     "  y b\n"
     "  yerr c\n"
     "  sort by x\n"
     "  style points\n"
     "  output \"Results/Plots/e.png\"\n"
     "  format png\n"
     "@end\n"},
    {"%plot fmo\n"
     "from task sp\n"
     "orbitals HOMO-1 HOMO LUMO\n"
     "system a label A task a\n"
     "column b label b task spb\n"
     "column c label \"\"\n"
     "spin all\n"
     "unit hartree\n"
     "output levels.cdxml\n",
     "%plot frontier frontier\n"
     "  from task sp\n"
     "  column a label \"A\"\n"
     "  column b task \"spb\"\n"
     "  column c label \"\"\n"
     "  orbitals HOMO-1 HOMO LUMO\n"
     "  spin both\n"
     "  unit hartree\n"
     "  output \"levels.cdxml\"\n"
     "  format cdxml\n"},
    {"@plot eslevels es\n"
     "unit nm\n"
     "transition b 3 to a below dotted\n"
     "arrow a s 1 => b s 2\n"
     "arrow a 1 to b first above\n"
     "roots 1 2 3\n"
     "column a multiplicity 1\n"
     "column b multiplicity t task td\n"
     "column c multiplicity 5\n",
     "@plot excited es\n"
     "  column a multiplicity singlet\n"
     "  column b task \"td\" multiplicity triplet\n"
     "  column c multiplicity 5\n"
     "  roots 1 2 3\n"
     "  arrow from b root 3 to a first lower style dashed\n"
     "  arrow from a root 1 to b root 2 style solid\n"
     "  arrow from a root 1 to b first higher style solid\n"
     "  unit nm\n"
     "  output \"Results/Plots/es.png\"\n"
     "  format png\n"
     "@end\n"},
};

TEST(RenderPlot, CanonicalTextIsItsOwnFixedPoint) {
    for (const auto& row : renderedRows) {
        EXPECT_EQ(reprinted(row.written), row.expected);
        EXPECT_EQ(reprinted(row.expected), row.expected);
        EXPECT_TRUE(readBack(parsed(row.written)).lawful()) << row.written;
    }
}

TEST(RenderPlot, TheIndentStandsBeforeEveryLine) {
    const auto plot = parsed("%plot curve c\nx a\ny b\naxis x:\n  unit s");
    EXPECT_EQ(renderPlot(plot, "  "), "  %plot curve c\n"
                                      "    x a\n"
                                      "    y b\n"
                                      "    axis x:\n"
                                      "      unit \"s\"\n"
                                      "    output \"Results/Plots/[taskname]_c.png\"\n"
                                      "    format png\n");
    EXPECT_EQ(renderPlot(parsed("@plot frontier f\nfrom task a"), "\t"),
              "\t@plot frontier f\n"
              "\t  from task a\n"
              "\t  spin auto\n"
              "\t  unit eV\n"
              "\t  output \"Results/Plots/f.png\"\n"
              "\t  format png\n"
              "\t@end\n");
}

TEST(RenderPlot, PrintsNamesAndDefaultStylesAsTheyAre) {
    // These do not read back as they were: the forms of the name and the source have no quotes, and "lines"
    // is the style that is left out.
    EXPECT_EQ(reprinted("@plot bar \"a b\"\nfrom task 'c d'\nx a\ny b unit 'k l'\nstyle lines"),
              "@plot bar a b\n"
              "  from task c d\n"
              "  x a\n"
              "  y b unit \"k l\"\n"
              "  output \"Results/Plots/a b.png\"\n"
              "  format png\n"
              "@end\n");
}

TEST(RenderPlot, RangesBeyondFifteenDigitsAreRounded) {
    const auto text = reprinted("@plot histogram h\nfrom project\nx a\nrange 0.1234567890123456789 1e300");
    EXPECT_NE(text.find("  range 0.123456789012346 1e+300\n"), std::string::npos) << text;
}

} // namespace
} // namespace morquill::taskdsl::plot
