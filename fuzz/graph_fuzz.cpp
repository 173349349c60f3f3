// Any bytes -> document -> graph -> dot and Mermaid text, with variants as one box and one by one. Both texts
// are UTF-8 without control characters; quotes, braces and brackets of the dot text balance outside its
// labels, and every line of the Mermaid text closes the quotes that it opens.

#include "fuzz_input.h"
#include "graph/dot_text.h"
#include "graph/mermaid_text.h"
#include "graph/visible_text.h"
#include "support/text.h"
#include "taskdsl/base/diagnostic.h"
#include "taskdsl/parser/task_parser.h"

#include <algorithm>
#include <cstddef>
#include <string>
#include <string_view>

namespace {

using namespace morquill;
using namespace morquill::graph;

using fuzz::fail;

void holdVisible(std::string_view text) {
    for (const auto line : splitLines(text)) {
        if (visibleText(line) != line) {
            fail("a byte is not visible:", line);
        }
    }
}

/// Walks the text as Graphviz does: a backslash in a label takes the next byte along.
void holdDot(std::string_view text) {
    holdVisible(text);
    bool quoted = false;
    std::string open;
    for (std::size_t i = 0; i < text.size(); ++i) {
        const char c = text[i];
        if (quoted && c == '\\') {
            ++i;
        } else if (c == '"') {
            quoted = !quoted;
        } else if (!quoted && (c == '{' || c == '[')) {
            open += c == '{' ? '}' : ']';
        } else if (!quoted && (c == '}' || c == ']')) {
            if (open.empty() || open.back() != c) {
                fail("a bracket closes nothing:", text);
            }
            open.pop_back();
        } else if (quoted && c == '\n') {
            fail("a label runs over the end of its line:", text);
        }
    }
    if (quoted || !open.empty()) {
        fail("something stays open:", text);
    }
}

void holdMermaid(std::string_view text) {
    holdVisible(text);
    for (const auto line : splitLines(text)) {
        if (std::count(line.begin(), line.end(), '"') % 2 != 0) {
            fail("a quote stays open:", line);
        }
    }
}

void holdTexts(const StudyGraph& graph) {
    holdDot(renderDot(graph));
    holdMermaid(renderMermaid(graph));
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const auto text = fuzz::textOf(data, size);
    // As a name of every kind of box, whatever a parser would make of it.
    holdTexts({{{NodeKind::task, {}, {visibleText(text)}}, {NodeKind::plot, {}, {visibleStart(text, 5)}}},
               {{0, 1, EdgeKind::condition, {visibleText(text), visibleText(text)}}},
               {{visibleText(text), {0}}}});
    try {
        const auto document = taskdsl::TaskParser({.legacyMultiSource = true}).parseText(text, "");
        holdTexts(buildStudyGraph(document, VariantView::collapsed));
        holdTexts(buildStudyGraph(document, VariantView::expanded));
    } catch (const taskdsl::DiagnosticError&) {
        return 0;
    }
    return 0;
}
