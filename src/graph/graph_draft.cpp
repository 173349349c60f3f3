#include "graph/graph_draft.h"

#include "graph/visible_text.h"

namespace morquill::graph {

std::size_t GraphDraft::addNode(GraphNode node) {
    graph_.nodes.push_back(std::move(node));
    return graph_.nodes.size() - 1;
}

void GraphDraft::addEdge(std::size_t from, std::size_t to, EdgeKind kind, std::string line) {
    const auto [found, isNew] = edges_.try_emplace({from, to, kind}, graph_.edges.size());
    if (isNew) {
        graph_.edges.push_back({from, to, kind, {}});
    }
    if (!line.empty() && edgeLines_.emplace(found->second, line).second) {
        graph_.edges[found->second].lines.push_back(std::move(line));
    }
}

std::size_t GraphDraft::nodeOf(NodeKind kind, const std::string& name, const std::string& furtherLine) {
    const auto [found, isNew] = named_.try_emplace({kind, name, furtherLine}, graph_.nodes.size());
    if (isNew) {
        GraphNode node{kind, {}, {visibleText(name)}};
        if (!furtherLine.empty()) {
            node.lines.push_back(furtherLine);
        }
        addNode(std::move(node));
    }
    return found->second;
}

} // namespace morquill::graph
