#include "graph/mermaid_text.h"

#include "graph/box_look.h"
#include "graph/visible_text.h"
#include "support/line_builder.h"
#include "support/text.h"

#include <algorithm>
#include <iterator>
#include <string_view>

namespace morquill::graph {

namespace {

/// What precedes the label of an edge, what follows it, and the whole arrow of an edge without one.
struct Arrow {
    std::string_view open;
    std::string_view close;
    std::string_view bare;
};

/// In the order of `EdgeKind`.
constexpr Arrow arrows[] = {
    {"-- ", " -->", "-->"},
    {"-. ", " .->", "-.->"},
    {"-- ", " --o", "--o"},
};
static_assert(std::size(arrows) == static_cast<std::size_t>(EdgeKind::use) + 1);

/// A sign and the bytes that it stays as it is between; elsewhere it may begin a list, a rule or an emphasis.
struct JoiningSign {
    char sign;
    bool (*joins)(char c) noexcept;
};
constexpr JoiningSign joiningSigns[] = {{'_', isWordChar}, {'-', isWordChar}, {'.', isDigit}};

bool staysAsItIs(std::string_view text, std::size_t at) noexcept {
    const char c = text[at];
    if (isLetter(c) || isDigit(c) || c == ' ') {
        return true;
    }
    for (const auto& [sign, joins] : joiningSigns) {
        if (c == sign) {
            return at > 0 && at + 1 < text.size() && joins(text[at - 1]) && joins(text[at + 1]);
        }
    }
    return false;
}

/// What Mermaid takes for a line end, a formula, an icon and its own marks for escapes even where it is
/// written by numbers.
constexpr std::string_view misread[] = {"\\n", "$$", ":fa-", "\xef\xac\x82\xc2\xb0", "\xc2\xb6\xc3\x9f"};
/// The number of a character that is not seen and keeps such a text apart.
constexpr std::string_view wordJoiner = "#8288;";

void addCharacter(std::string& out, std::string_view text, std::size_t at, std::size_t length) {
    if (length > 1 || staysAsItIs(text, at)) {
        out += text.substr(at, length);
    } else {
        out.append("#").append(std::to_string(static_cast<unsigned char>(text[at]))).append(";");
    }
}

std::string escapedForMermaid(std::string_view text) {
    std::string out;
    for (std::size_t i = 0; i < text.size();) {
        const auto rest = text.substr(i);
        const auto length = std::max<std::size_t>(characterLength(rest), 1);
        addCharacter(out, text, i, length);
        if (std::any_of(std::begin(misread), std::end(misread),
                        [&](std::string_view word) { return rest.starts_with(word); })) {
            out += wordJoiner;
        }
        i += length;
    }
    return out;
}

void addMermaidNode(LineBuilder& out, const StudyGraph& graph, std::size_t place) {
    const GraphNode& node = graph.nodes[place];
    const BoxLook& look = lookOf(node);
    out.line(nodeId(place), look.mermaidOpen, mermaidLabel(node.lines), look.mermaidClose, ":::", look.name);
}

void addFrame(LineBuilder& out, const StudyGraph& graph, std::string_view id, const std::string& title,
              const std::vector<std::size_t>& places) {
    out.line("subgraph ", id, "[", mermaidLabel({title}), "]");
    out.deeper();
    for (const std::size_t place : places) {
        addMermaidNode(out, graph, place);
    }
    out.shallower();
    out.line("end");
}

void addMermaidEdge(LineBuilder& out, const GraphEdge& edge) {
    const Arrow& arrow = arrows[static_cast<std::size_t>(edge.kind)];
    out.open(nodeId(edge.from), " ");
    if (edge.lines.empty()) {
        out.add(arrow.bare);
    } else {
        out.add(arrow.open, mermaidLabel(edge.lines), arrow.close);
    }
    out.add(" ", nodeId(edge.to)).close();
}

/// The classes that the nodes have, in the order of the looks.
void addClasses(LineBuilder& out, const StudyGraph& graph) {
    std::vector<bool> used(allLooks().size());
    for (const GraphNode& node : graph.nodes) {
        used[static_cast<std::size_t>(&lookOf(node) - allLooks().data())] = true;
    }
    for (const BoxLook& look : allLooks()) {
        if (used[static_cast<std::size_t>(&look - allLooks().data())]) {
            out.line("classDef ", look.name, " fill:", look.fill, ",stroke:", look.line, ",color:#000000",
                     look.dotStyle == "dashed" ? ",stroke-dasharray:4" : "");
        }
    }
}

} // namespace

std::string mermaidLabel(const std::vector<std::string>& lines) {
    return quotedLabel(lines, "<br/>", escapedForMermaid);
}

std::string renderMermaid(const StudyGraph& graph) {
    LineBuilder out;
    out.line("flowchart TD");
    out.deeper();
    std::size_t number = 0;
    for (const GraphCluster& cluster : graph.clusters) {
        addFrame(out, graph, "c" + std::to_string(++number), cluster.title, cluster.nodes);
    }
    for (const std::size_t place : looseNodes(graph)) {
        addMermaidNode(out, graph, place);
    }
    if (const auto places = footNodes(graph); !places.empty()) {
        addFrame(out, graph, "foot", "plots and derives", places);
    }
    for (const GraphEdge& edge : graph.edges) {
        addMermaidEdge(out, edge);
    }
    addClasses(out, graph);
    return out.take();
}

} // namespace morquill::graph
