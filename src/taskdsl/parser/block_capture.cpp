#include "taskdsl/parser/block_capture.h"

#include "support/text.h"
#include "taskdsl/base/diagnostic.h"
#include "taskdsl/base/line_blocks.h"
#include "taskdsl/base/scan.h"

#include <utility>

namespace morquill::taskdsl {

CapturedBlock captureBlock(std::string_view keyword, const std::vector<SourceLine>& lines, std::size_t& index,
                           const ValueMap& values) {
    const std::string name(keyword);
    if (index >= lines.size()) {
        throw DiagnosticError("invalid " + name + " block start");
    }
    const SourceLine& head = lines[index];
    if (!beginsBlock(head.clean(), keyword)) {
        throw DiagnosticError("internal error: expected " + name + " block");
    }
    CapturedBlock block;
    block.header = substituteBrackets(trim(head.clean().substr(keyword.size())), values);
    block.span = head.span();
    const BlockEnd end = findBlockEnd(lines, index, lines.size());
    for (std::size_t i = index + 1; i < end.index; ++i) {
        if (lines[i].kind() == head.kind()) {
            throw DiagnosticError(lines[i].span(), "nested " + name + " blocks are not allowed");
        }
        SourceLine& kept = block.lines.emplace_back(lines[i]);
        kept.substitute(values);
        if (kept.originPath.empty()) {
            kept.originPath = head.originPath;
        }
    }
    if (!end.isClosed) {
        throw DiagnosticError(block.span, "unterminated " + name + " block; expected @end");
    }
    index = end.index;
    return block;
}

} // namespace morquill::taskdsl
