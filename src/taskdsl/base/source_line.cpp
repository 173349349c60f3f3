#include "taskdsl/base/source_line.h"

#include "support/text.h"
#include "taskdsl/base/scan.h"

namespace morquill::taskdsl {

void SourceLine::classify() noexcept {
    const std::string_view clean = cleanLine(text_);
    cleanBegin_ = clean.empty() ? 0 : static_cast<std::size_t>(clean.data() - text_.data());
    cleanSize_ = clean.size();
    kind_ = kindOfCleanLine(clean);
    if (kind_ == LineKind::empty && isHashInclude(trim(text_))) {
        kind_ = LineKind::removedInclude;
    }
}

std::vector<SourceLine> makeSourceLines(std::string_view text, const SharedText& path) {
    const auto rawLines = splitLines(text);
    std::vector<SourceLine> lines;
    lines.reserve(rawLines.size());
    for (const auto raw : rawLines) {
        lines.emplace_back(std::string(raw), path, static_cast<std::uint32_t>(lines.size() + 1));
    }
    return lines;
}

} // namespace morquill::taskdsl
