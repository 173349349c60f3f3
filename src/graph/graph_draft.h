#pragma once

#include "graph/study_graph.h"

#include <map>
#include <set>
#include <string>
#include <tuple>
#include <utility>

namespace morquill::graph {

/// A graph as it grows: edges that are added twice are one.
class GraphDraft {
  public:
    /// Adds a node and returns its place.
    std::size_t addNode(GraphNode node);
    /// Adds a line to a node.
    void addLine(std::size_t node, std::string line) { graph_.nodes[node].lines.push_back(std::move(line)); }
    /// Adds an edge, or to the one of the kind that joins the two already; a line that it has is not
    /// repeated, an empty one is none.
    void addEdge(std::size_t from, std::size_t to, EdgeKind kind, std::string line = {});
    void addCluster(GraphCluster cluster) { graph_.clusters.push_back(std::move(cluster)); }

    /// The node of a name and kind, added with the further line when it is not there yet.
    std::size_t nodeOf(NodeKind kind, const std::string& name, const std::string& furtherLine = {});

    /// The whole graph; the draft is of no use afterwards.
    [[nodiscard]] StudyGraph take() { return std::move(graph_); }

  private:
    StudyGraph graph_;
    std::map<std::tuple<std::size_t, std::size_t, EdgeKind>, std::size_t> edges_;
    std::set<std::pair<std::size_t, std::string>> edgeLines_;
    std::map<std::tuple<NodeKind, std::string, std::string>, std::size_t> named_;
};

} // namespace morquill::graph
