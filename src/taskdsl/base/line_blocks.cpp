#include "taskdsl/base/line_blocks.h"

#include "support/text.h"

namespace morquill::taskdsl {

BlockEnd findBlockEnd(const std::vector<SourceLine>& lines, std::size_t head, std::size_t limit) noexcept {
    for (std::size_t i = head + 1; i < limit; ++i) {
        if (lines[i].kind() == LineKind::end) {
            return {i, true};
        }
    }
    return {limit, false};
}

std::string_view heredocTerminator(std::string_view value) noexcept {
    const auto terminator = trim(value.substr(2));
    return terminator.empty() ? heredocEnd : terminator;
}

BlockEnd findHeredocEnd(const std::vector<SourceLine>& lines, std::size_t opener,
                        std::string_view terminator) noexcept {
    std::size_t i = opener + 1;
    for (; i < lines.size() && !lines[i].directiveBoundary; ++i) {
        if (trim(lines[i].text()) == terminator) {
            return {i, true};
        }
    }
    return {i, false};
}

} // namespace morquill::taskdsl
