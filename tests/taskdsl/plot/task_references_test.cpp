#include "taskdsl/plot/task_references.h"

#include "fixtures/plot_fixture.h"

#include <gtest/gtest.h>

namespace morquill::taskdsl::plot {
namespace {

std::string references(std::string_view text) {
    const auto names = collectPlotTaskReferences(parsePlot(blockOf(text)));
    return join({names.begin(), names.end()}, " ");
}

TEST(PlotTaskReferences, TheSourceIsOneWhenItIsATask) {
    EXPECT_EQ(references("@plot histogram\nfrom task scan\nx energy"), "scan");
    EXPECT_EQ(references("@plot histogram\nfrom task SELF\nx energy"), "");
    for (const char* other : {"variants scan", "derived(scan.table)", "project", "self"}) {
        EXPECT_EQ(references("%plot histogram\nfrom " + std::string(other) + "\nx energy"), "") << other;
    }
}

TEST(PlotTaskReferences, ExpressionsOfEveryKind) {
    const std::pair<const char*, const char*> rows[] = {
        {"@plot barrier\npoint a value {{ t1.e }}\npoint b value energy(t2)", "t1 t2"},
        {"%plot convergence\nx {{ t1.e }}\ny {{ t2.e }}\nthreshold {{ t3.e }} value 1", "t1 t2 t3"},
        {"%plot curve\nx {{ t1.e }}\nseries s = {{ t2.e }}", "t1 t2"},
        {"%plot spectrum\nx {{ t1.e }}\ny {{ t2.e }}", "t1 t2"},
        {"%plot scatter\nx {{ t1.e }}\ny {{ t2.e }}", "t1 t2"},
        {"%plot heatmap\nx {{ t1.e }}\ny {{ t2.e }}\nz {{ t3.e }}", "t1 t2 t3"},
        {"%plot histogram\nx {{ t1.e }}", "t1"},
        {"%plot bar\nx {{ t1.e }}\ny {{ t2.e }}", "t1 t2"},
        {"%plot errorbar\nx {{ t1.e }}\ny {{ t2.e }}\nyerr {{ t3.e }}", "t1 t2 t3"},
        {"%plot frontier\ncolumn c1 task t1\ncolumn t2\norbitals homo", "t1 t2"},
        {"%plot excited\ncolumn c1 task t1\ncolumn t2", "t1 t2"},
    };
    for (const auto& [text, names] : rows) {
        EXPECT_EQ(references(text), names) << text;
    }
}

} // namespace
} // namespace morquill::taskdsl::plot
