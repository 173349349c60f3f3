#include "graph/box_look.h"

#include <cstddef>
#include <iterator>

namespace morquill::graph {

namespace {

// Programs in the order of `TaskProgram`, then the kinds after `NodeKind::task` in theirs. Similar methods
// have similar colours: blue for ab initio, green for semi-empirical and machine-learned, red for spectra.
// clang-format off
constexpr BoxLook looks[] = {
    {"gaussian",  "#d6e6f5", "#2f6ea5", "box",           "",               "[",   "]"},
    {"orca",      "#cfe8f3", "#1c7c9c", "box",           "rounded",        "(",   ")"},
    {"gamess",    "#dcdff7", "#4a55b5", "box",           "",               "[",   "]"},
    {"xtb",       "#d9f0d3", "#3f8f3a", "box",           "rounded",        "(",   ")"},
    {"mrcc",      "#e3daf3", "#6d4bb0", "box",           "",               "[",   "]"},
    {"maple",     "#e8f3c9", "#6f8f1e", "box",           "rounded",        "(",   ")"},
    {"amesp",     "#d5ece6", "#2a8572", "box",           "",               "[",   "]"},
    {"bdf",       "#f0daf0", "#97449a", "box",           "",               "[",   "]"},
    {"mopac",     "#eef0cf", "#8a8a2a", "box",           "rounded",        "(",   ")"},
    {"fcclasses", "#f8dcd6", "#b5503a", "box",           "",               "[",   "]"},
    {"other",     "#e6e6e6", "#6a6a6a", "box",           "",               "[",   "]"},
    {"script",    "#f6ead2", "#a5772a", "component",     "",               "[[",  "]]"},
    {"missing",   "#ffffff", "#c0392b", "box",           "dashed",         "[",   "]"},
    {"selection", "#ffffff", "#6a6a6a", "ellipse",       "dashed",         "([",  "])"},
    {"plot",      "#fdf6c9", "#a59a1e", "note",          "",               ">",   "]"},
    {"derive",    "#fbe3c4", "#b87418", "hexagon",       "",               "{{",  "}}"},
};
// clang-format on

constexpr std::size_t programCount = static_cast<std::size_t>(taskdsl::TaskProgram::script) + 1;
static_assert(std::size(looks) == programCount + static_cast<std::size_t>(NodeKind::derive));

} // namespace

const BoxLook& lookOf(const GraphNode& node) noexcept {
    if (node.kind != NodeKind::task) {
        return looks[programCount + static_cast<std::size_t>(node.kind) - 1];
    }
    const auto program = static_cast<std::size_t>(node.program);
    return looks[program < programCount ? program : 0];
}

std::string nodeId(std::size_t place) {
    return "n" + std::to_string(place + 1);
}

std::span<const BoxLook> allLooks() noexcept {
    return looks;
}

} // namespace morquill::graph
