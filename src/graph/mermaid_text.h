#pragma once

#include "graph/study_graph.h"

#include <string>
#include <vector>

namespace morquill::graph {

/// The graph in the language of Mermaid flowcharts, with plots and derives in a frame of their own. Tasks of
/// one program look alike; sources are solid lines, conditions dotted ones, uses end in a circle.
[[nodiscard]] std::string renderMermaid(const StudyGraph& graph);

/// The lines as one quoted label. Mermaid reads HTML, Markdown, icons, formulas and comments in labels, and
/// not every version the same: all of ASCII but letters, digits, blanks and what joins them is written by its
/// number. The lines are as `visibleText` makes them.
[[nodiscard]] std::string mermaidLabel(const std::vector<std::string>& lines);

} // namespace morquill::graph
