#include "support/directory.h"
#include "support/file.h"
#include "support/text.h"
#include "taskdsl/plot/plot_parser.h"
#include "taskdsl/plot/render.h"

#include "fixtures/plot_fixture.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <set>

namespace morquill::taskdsl::plot {
namespace {

/// The plot blocks of a text, each with the indent of its header: from an `@plot` line through its `@end`, or
/// from a `%plot` line through the lines that are indented deeper.
struct Excerpt {
    std::string indent;
    std::string text;
};

std::vector<Excerpt> plotsIn(std::string_view text) {
    std::vector<Excerpt> found;
    bool inside = false;
    for (const auto line : splitLines(text)) {
        const auto body = trimLeft(line);
        const std::string indent(line.substr(0, line.size() - body.size()));
        const bool opens = body.starts_with("@plot ") || body.starts_with("%plot ");
        if (inside && body != "@end" && indent.size() <= found.back().indent.size()) {
            inside = false;
        }
        if (opens) {
            found.push_back({indent, ""});
            inside = true;
        }
        if (inside) {
            found.back().text += std::string(line) + "\n";
            inside = body != "@end";
        }
    }
    return found;
}

/// The plots of the example files.
std::vector<Excerpt> examples() {
    const std::string directory = "examples/plots/";
    std::vector<Excerpt> found;
    for (const auto& name : listDirectoryEntries(directory)) {
        for (auto& plot : plotsIn(readTextFile(directory + name).value())) {
            found.push_back(std::move(plot));
        }
    }
    return found;
}

TEST(PlotExamples, EachIsACanonicalFixedPointAndEveryKindHasOne) {
    std::set<PlotKind> kinds;
    for (const auto& [indent, text] : examples()) {
        const auto plot = parsed(text);
        EXPECT_EQ(renderPlot(plot, indent), text);
        EXPECT_TRUE(readBack(plot).equal) << text;
        kinds.insert(plot.kind);
    }
    EXPECT_EQ(kinds.size(), std::variant_size_v<PlotData>);
}

} // namespace
} // namespace morquill::taskdsl::plot
