#include "taskdsl/base/source_line.h"

#include "support/large_memory.h"
#include "support/text.h"
#include "taskdsl/base/scan.h"

namespace morquill::taskdsl {

void SourceLine::classify() noexcept {
    clean_ = cleanLine(text_);
    kind_ = kindOfCleanLine(clean_);
    if (kind_ == LineKind::empty && isHashInclude(trim(text_.view()))) {
        kind_ = LineKind::removedInclude;
    }
}

void SourceLine::putIn(const ValueMap& values) {
    const std::string replaced = substituteBrackets(text_, values);
    if (text_.view() != replaced) {
        text_ = TextSlice(replaced);
        classify();
    }
}

std::vector<SourceLine> makeSourceLines(const TextSlice& text, const SharedText& path) {
    std::vector<SourceLine> lines;
    reserveLarge(lines, countLines(text));
    forEachLine(text.view(), [&](std::string_view line) {
        lines.emplace_back(text, line, path, static_cast<std::uint32_t>(lines.size() + 1));
    });
    return lines;
}

} // namespace morquill::taskdsl
