#pragma once

#include "graph/study_graph.h"

#include <string>
#include <string_view>

namespace morquill::graph {

/// The graph in the language of Graphviz, with plots and derives at the foot. Tasks of one program look
/// alike; sources are solid lines, conditions dashed ones, uses dotted ones that end in a circle.
[[nodiscard]] std::string renderDot(const StudyGraph& graph);

/// The lines as one quoted label: what Graphviz would read as an escape, an entity or the end is escaped. The
/// lines are as `visibleText` makes them.
[[nodiscard]] std::string dotLabel(const std::vector<std::string>& lines);

} // namespace morquill::graph
