#include "graph/dot_text.h"

#include "graph/box_look.h"
#include "graph/visible_text.h"
#include "support/line_builder.h"

#include <iterator>

namespace morquill::graph {

namespace {

/// How the kinds of edges look, in the order of `EdgeKind`.
constexpr std::string_view edgeStyles[] = {
    "",
    "style=dashed",
    "style=dotted, arrowhead=odot",
};
static_assert(std::size(edgeStyles) == static_cast<std::size_t>(EdgeKind::use) + 1);

/// Graphviz reads entities in every label.
std::string escapedForDot(std::string_view text) {
    std::string out;
    for (const char c : text) {
        if (c == '&') {
            out += "&amp;";
            continue;
        }
        out.append(c == '"' || c == '\\' ? 1 : 0, '\\').append(1, c);
    }
    return out;
}

void addDotNode(LineBuilder& out, const StudyGraph& graph, std::size_t place) {
    const GraphNode& node = graph.nodes[place];
    const BoxLook& look = lookOf(node);
    out.line(nodeId(place), " [label=", dotLabel(node.lines), ", shape=", look.dotShape, ", style=\"filled",
             look.dotStyle.empty() ? "" : ",", look.dotStyle, "\", fillcolor=\"", look.fill, "\", color=\"",
             look.line, "\"];");
}

void addDotEdge(LineBuilder& out, const GraphEdge& edge) {
    const std::string_view style = edgeStyles[static_cast<std::size_t>(edge.kind)];
    out.open(nodeId(edge.from), " -> ", nodeId(edge.to));
    if (!style.empty() || !edge.lines.empty()) {
        out.add(" [", style, style.empty() || edge.lines.empty() ? "" : ", ");
        if (!edge.lines.empty()) {
            out.add("label=", dotLabel(edge.lines));
        }
        out.add("]");
    }
    out.add(";").close();
}

void addClusters(LineBuilder& out, const StudyGraph& graph) {
    std::size_t number = 0;
    for (const GraphCluster& cluster : graph.clusters) {
        out.line("subgraph cluster_", std::to_string(++number), " {");
        out.deeper();
        out.line("label=", dotLabel({cluster.title}), ";");
        for (const std::size_t place : cluster.nodes) {
            addDotNode(out, graph, place);
        }
        out.shallower();
        out.line("}");
    }
}

void addFoot(LineBuilder& out, const StudyGraph& graph) {
    const auto places = footNodes(graph);
    if (places.empty()) {
        return;
    }
    out.line("{");
    out.deeper();
    out.line("rank=sink;");
    for (const std::size_t place : places) {
        addDotNode(out, graph, place);
    }
    out.shallower();
    out.line("}");
}

} // namespace

std::string dotLabel(const std::vector<std::string>& lines) {
    return quotedLabel(lines, "\\n", escapedForDot);
}

std::string renderDot(const StudyGraph& graph) {
    LineBuilder out;
    out.line("digraph study {");
    out.deeper();
    // Boxes further apart than usual: so are then two arrows between the same boxes.
    out.line("graph [fontname=\"Helvetica\", fontsize=11, color=\"#999999\", style=rounded, nodesep=0.5];");
    out.line("node [fontname=\"Helvetica\", fontsize=11];");
    out.line("edge [fontname=\"Helvetica\", fontsize=9];");
    addClusters(out, graph);
    for (const std::size_t place : looseNodes(graph)) {
        addDotNode(out, graph, place);
    }
    addFoot(out, graph);
    for (const GraphEdge& edge : graph.edges) {
        addDotEdge(out, edge);
    }
    out.shallower();
    out.line("}");
    return out.take();
}

} // namespace morquill::graph
