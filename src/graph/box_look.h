#pragma once

#include "graph/study_graph.h"

#include <cstddef>
#include <span>
#include <string>
#include <string_view>

/// How boxes look and what they are called, the same in every format.
namespace morquill::graph {

/// Colours are in the form `#rrggbb`.
struct BoxLook {
    std::string_view name;        ///< a word of letters, by which a format may refer to the look
    std::string_view fill;        ///< colour of the box
    std::string_view line;        ///< colour of its outline
    std::string_view dotShape;    ///< a node shape of Graphviz
    std::string_view dotStyle;    ///< besides "filled"; may be empty
    std::string_view mermaidOpen; ///< the brackets of a Mermaid node
    std::string_view mermaidClose;
};

/// The look of a node: that of its program for a task, that of its kind for all others.
[[nodiscard]] const BoxLook& lookOf(const GraphNode& node) noexcept;

/// The name of the node at a place of the list: "n1" is the first.
[[nodiscard]] std::string nodeId(std::size_t place);

/// All looks: those of the programs in their order, then those of the other kinds.
[[nodiscard]] std::span<const BoxLook> allLooks() noexcept;

} // namespace morquill::graph
