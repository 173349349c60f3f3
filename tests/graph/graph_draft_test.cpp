#include "graph/graph_draft.h"

#include <gtest/gtest.h>

namespace morquill::graph {
namespace {

TEST(GraphDraft, NodesHaveThePlaceOfTheirOrder) {
    GraphDraft draft;
    EXPECT_EQ(draft.addNode({NodeKind::task, {}, {"a"}}), 0U);
    EXPECT_EQ(draft.addNode({NodeKind::plot, {}, {"b"}}), 1U);
    draft.addLine(0, "more");
    EXPECT_EQ(draft.take().nodes,
              (std::vector<GraphNode>{{NodeKind::task, {}, {"a", "more"}}, {NodeKind::plot, {}, {"b"}}}));
}

TEST(GraphDraft, ANodeOfANameIsMadeOnce) {
    GraphDraft draft;
    draft.addNode({NodeKind::task, {}, {"a"}});
    EXPECT_EQ(draft.nodeOf(NodeKind::missing, "a\n", "gone"), 1U);
    EXPECT_EQ(draft.nodeOf(NodeKind::missing, "a\n", "gone"), 1U);
    EXPECT_EQ(draft.nodeOf(NodeKind::missing, "a\n", "no derive"), 2U);
    EXPECT_EQ(draft.nodeOf(NodeKind::selection, "a\n"), 3U);
    EXPECT_EQ(draft.take().nodes, (std::vector<GraphNode>{{NodeKind::task, {}, {"a"}},
                                                          {NodeKind::missing, {}, {"a\\x0a", "gone"}},
                                                          {NodeKind::missing, {}, {"a\\x0a", "no derive"}},
                                                          {NodeKind::selection, {}, {"a\\x0a"}}}));
}

TEST(GraphDraft, EdgesOfAKindBetweenTwoNodesAreOne) {
    GraphDraft draft;
    draft.addEdge(0, 1, EdgeKind::source);
    draft.addEdge(0, 1, EdgeKind::condition, "b");
    draft.addEdge(0, 1, EdgeKind::source, "a");
    draft.addEdge(1, 0, EdgeKind::source, "a");
    draft.addEdge(0, 1, EdgeKind::source, "c");
    draft.addEdge(0, 1, EdgeKind::source, "a");
    draft.addEdge(0, 1, EdgeKind::source);
    EXPECT_EQ(draft.take().edges, (std::vector<GraphEdge>{{0, 1, EdgeKind::source, {"a", "c"}},
                                                          {0, 1, EdgeKind::condition, {"b"}},
                                                          {1, 0, EdgeKind::source, {"a"}}}));
}

} // namespace
} // namespace morquill::graph
