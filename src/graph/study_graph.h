#pragma once

#include "taskdsl/task/task_document.h"

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

/// A task file as a graph: what is drawn and what is joined, without a word on how.
namespace morquill::graph {

enum class NodeKind : std::uint8_t {
    task,
    missing,   ///< a task or derive that is named and that the file lacks
    selection, ///< tasks that are named together: a pattern, all others, all variants of one
    plot,
    derive,
};

/// One box. Its texts are as `visibleText` makes them.
struct GraphNode {
    NodeKind kind = NodeKind::task;
    taskdsl::TaskProgram program = taskdsl::TaskProgram::gaussian; ///< of a task
    std::vector<std::string> lines;                                ///< the name and what is said of it

    friend bool operator==(const GraphNode&, const GraphNode&) = default;
};

enum class EdgeKind : std::uint8_t {
    source,    ///< a `%source` takes its geometry or its data from there
    condition, ///< a `%when` waits for it
    use,       ///< a plot, a derive or a selection is made of it
};

/// One arrow, from what comes first to what needs it; at most one of a kind joins two nodes.
struct GraphEdge {
    std::size_t from = 0; ///< place in the list of nodes
    std::size_t to = 0;
    EdgeKind kind = EdgeKind::source;
    std::vector<std::string> lines; ///< its label

    friend bool operator==(const GraphEdge&, const GraphEdge&) = default;
};

/// Tasks of one matrix combination.
struct GraphCluster {
    std::string title;
    std::vector<std::size_t> nodes; ///< places in the list of nodes

    friend bool operator==(const GraphCluster&, const GraphCluster&) = default;
};

struct StudyGraph {
    std::vector<GraphNode> nodes; ///< tasks, derives, plots, then what they name besides
    std::vector<GraphEdge> edges;
    std::vector<GraphCluster> clusters;

    friend bool operator==(const StudyGraph&, const StudyGraph&) = default;
};

/// The places of the plots and derives, which are drawn at the foot.
[[nodiscard]] std::vector<std::size_t> footNodes(const StudyGraph& graph);
/// The places of the nodes that are neither at the foot nor in a cluster.
[[nodiscard]] std::vector<std::size_t> looseNodes(const StudyGraph& graph);

enum class VariantView : std::uint8_t {
    collapsed, ///< one box for all variants of a task, with their number
    expanded,  ///< one box for each, a cluster for each matrix combination
};

/// How many characters of a condition or a pattern are shown.
inline constexpr std::size_t maxLabelLength = 80;

/// The graph of a document. Its size and the time it takes grow linearly with the document. Throws
/// `DiagnosticError` for a condition that nests too deep.
[[nodiscard]] StudyGraph buildStudyGraph(const taskdsl::TaskDocument& document, VariantView view);

} // namespace morquill::graph
