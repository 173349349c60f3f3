#pragma once

#include "lsp/base/text_buffer.h"

#include <string_view>
#include <vector>

/// From one text to another by edits of whole lines.
namespace morquill::lsp {

struct LineEdit {
    ByteRange range;       ///< of the old text
    std::string_view text; ///< a part of the new text
};

/// The edits that turn one text into the other, in ascending order: few and small, so that a cursor keeps its
/// line. Texts that differ in very many lines are replaced between their first and last difference.
[[nodiscard]] std::vector<LineEdit> lineEdits(std::string_view from, std::string_view to);

} // namespace morquill::lsp
