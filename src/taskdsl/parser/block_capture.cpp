#include "taskdsl/parser/block_capture.h"

#include "support/text.h"
#include "taskdsl/base/diagnostic.h"
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
    const auto headText = cleanLine(head.text);
    if (!beginsBlock(headText, keyword)) {
        throw DiagnosticError("internal error: expected " + name + " block");
    }
    CapturedBlock block;
    block.header = substituteBrackets(trim(headText.substr(keyword.size())), values);
    block.span = spanOfLine(head.originPath, head.lineNumber, head.text);
    for (std::size_t i = index + 1; i < lines.size(); ++i) {
        const auto text = cleanLine(lines[i].text);
        if (text == "@end") {
            index = i;
            return block;
        }
        if (beginsBlock(text, keyword)) {
            throw DiagnosticError(spanOfLine(lines[i].originPath, lines[i].lineNumber, lines[i].text),
                                  "nested " + name + " blocks are not allowed");
        }
        SourceLine kept = lines[i];
        kept.text = substituteBrackets(kept.text, values);
        if (kept.originPath.empty()) {
            kept.originPath = head.originPath;
        }
        block.lines.push_back(std::move(kept));
    }
    throw DiagnosticError(block.span, "unterminated " + name + " block; expected @end");
}

} // namespace morquill::taskdsl
