#include "taskdsl/parser/block_capture.h"

#include "support/text.h"
#include "taskdsl/base/diagnostic.h"
#include "taskdsl/base/scan.h"

#include <utility>

namespace morquill::taskdsl {

TakenLines<CapturedBlock> captureBlock(std::string_view keyword, const std::vector<SourceLine>& lines,
                                       std::size_t head, const ValueMap& values) {
    const std::string name(keyword);
    if (head >= lines.size()) {
        throw DiagnosticError("invalid " + name + " block start");
    }
    const SourceLine& first = lines[head];
    if (!beginsBlock(first.clean(), keyword)) {
        throw DiagnosticError("internal error: expected " + name + " block");
    }
    CapturedBlock block;
    block.header = substituteBrackets(trim(first.clean().substr(keyword.size())), values);
    block.span = first.span();
    const BlockEnd end = findBlockEnd(lines, head, lines.size());
    block.lines.reserve(end.index - head - 1);
    for (std::size_t i = head + 1; i < end.index; ++i) {
        if (lines[i].kind() == first.kind()) {
            throw DiagnosticError(lines[i].span(), "nested " + name + " blocks are not allowed");
        }
        SourceLine& kept = block.lines.emplace_back(lines[i]);
        kept.substitute(values);
        if (kept.originPath.empty()) {
            kept.originPath = first.originPath;
        }
    }
    if (!end.isClosed) {
        throw DiagnosticError(block.span, "unterminated " + name + " block; expected @end");
    }
    return {std::move(block), end.index + 1};
}

} // namespace morquill::taskdsl
